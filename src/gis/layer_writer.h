// Output layers: created with their columns and projection, then written object by object, then closed. What cannot be
// written ends the run with a message.
#pragma once

#include "gis/feature.h"
#include "gis/mif/writer.h"
#include "gis/shp/writer.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

namespace gridforge::gis {

class LayerWriter {
public:
    LayerWriter(std::int32_t id, std::string name, std::variant<mif::MifOutput, shp::ShpOutput> files);
    LayerWriter(LayerWriter&&) = default;
    LayerWriter& operator=(LayerWriter&&) = default;
    LayerWriter(const LayerWriter&) = delete;
    LayerWriter& operator=(const LayerWriter&) = delete;
    ~LayerWriter() = default;

    // Writes the object and its record. More than kMaxWriteVertices vertices, and parts out of order, end the run.
    void write(const Feature& feature);
    // Completes the files and closes them. The console shows it, so it has its place in the run.
    void close();

private:
    std::int32_t id_; // 0 when closed
    std::string name_;
    std::variant<mif::MifOutput, shp::ShpOutput> files_;
};

// Creates the files of a layer, of the family that the extension names, with their headers. More than 256 columns end
// the run.
LayerWriter createLayer(std::string_view fileName, const LayerSpec& spec);

} // namespace gridforge::gis
