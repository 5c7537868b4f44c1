// What the fuzz targets share: files of the input's bytes in memory, and runs that end without ending the process.
#pragma once

#include "gis/layers.h"
#include "host/ends.h"
#include "host/units.h"

#include <cstdint>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <unistd.h>

namespace gridforge::fuzz {

struct EndOfRun {};

// The folder of this process's files, in memory where the system has such a place.
inline const std::string& folder()
{
    static const std::string theFolder = [] {
        std::string pattern = std::filesystem::exists("/dev/shm") ? "/dev/shm/fuzz-XXXXXX" : "/tmp/fuzz-XXXXXX";
        return std::string(mkdtemp(pattern.data())) + "/";
    }();
    return theFolder;
}

inline void give(const std::string& name, std::string_view bytes)
{
    std::ofstream out(folder() + name, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

// The console goes nowhere, and nobody answers; an end of the run comes back as EndOfRun.
inline void prepare()
{
    static const bool ready = [] {
        const int nowhere = open("/dev/null", O_RDWR);
        dup2(nowhere, STDIN_FILENO);
        dup2(nowhere, STDOUT_FILENO);
        replaceProcessEnd([] { throw EndOfRun(); });
        std::atexit([] { std::filesystem::remove_all(folder()); });
        return true;
    }();
    static_cast<void>(ready);
    startUnits(1000);
    gisInitialise(-1, "", "", "");
}

// The loop of the operations over a layer, to its end or that of the run.
inline void readLayer(const std::string& name, bool coordinates)
{
    constexpr std::int32_t kMaxVertices = 10000;
    try {
        prepare();
        std::int32_t gisID = gisOpenLayer(folder() + name, "", "I ");
        gisReadHeader(gisID);
        GisO gisO;
        GisCoordinates vertices;
        std::string line;
        while (!gisLayer(gisID).layerEnd) {
            if (gisObjectType(gisID, gisO)) {
                gisReadRecord(gisID, gisO, line);
                gisReadObject(gisID, gisO, vertices, kMaxVertices, coordinates);
            }
        }
        gisCloseLayer(gisID);
    } catch (const EndOfRun&) {
        closeAllUnits(false);
    }
}

// The bytes before and behind the first of `separator`; nothing behind where there is none.
inline std::pair<std::string_view, std::string_view> split(std::string_view bytes, std::string_view separator)
{
    const std::size_t at = bytes.find(separator);
    return at == std::string_view::npos ? std::pair{bytes, std::string_view()}
                                        : std::pair{bytes.substr(0, at), bytes.substr(at + separator.size())};
}

} // namespace gridforge::fuzz
