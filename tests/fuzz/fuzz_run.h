// What the fuzz targets share: files of the input's bytes in memory, and runs that end without ending the process.
#pragma once

#include "gis/layer_reader.h"
#include "gis/layer_table.h"
#include "host/console.h"
#include "host/ends.h"
#include "host/memory/memory_system.h"
#include "host/units.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace gridforge::fuzz {

struct EndOfRun {};

inline void give(const std::string& name, std::string_view bytes)
{
    giveMemoryFile(name, bytes);
}

// Nobody answers the console; an end of the run comes back as EndOfRun.
inline void prepare()
{
    static const bool ready = [] {
        useSystem(memorySystem());
        restartConsole();
        replaceProcessEnd([] { throw EndOfRun(); });
        return true;
    }();
    static_cast<void>(ready);
    flushConsole();
    takeMemoryConsole();
    startUnits(1000);
    gis::initialise();
}

// The loop of the operations over a layer, to its end or that of the run.
inline void readLayer(const std::string& name, bool coordinates)
{
    constexpr std::int32_t kMaxVertices = 10000;
    try {
        prepare();
        gis::OpenLayer& layer = gis::openFiles(name);
        gis::readHeader(layer);
        gis::LayerObject object;
        gis::Coordinates vertices;
        std::string line;
        while (!layer.end) {
            if (gis::readKind(layer, object)) {
                gis::readRecord(layer, object.name, line);
                gis::readCoordinates(layer, object, vertices, kMaxVertices, coordinates);
            }
        }
        gis::close(layer);
    } catch (const EndOfRun&) {
        closeAllUnits();
    }
}

// The bytes before and after the first `separator`; without one all are before.
inline std::pair<std::string_view, std::string_view> split(std::string_view bytes, std::string_view separator)
{
    const std::size_t at = bytes.find(separator);
    return at == std::string_view::npos ? std::pair{bytes, std::string_view()}
                                        : std::pair{bytes.substr(0, at), bytes.substr(at + separator.size())};
}

} // namespace gridforge::fuzz
