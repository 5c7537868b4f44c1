// An open input layer of either family, as the table of layers holds it.
#pragma once

#include "gis/mif/reader.h"
#include "gis/shp/reader.h"

#include <cstdint>
#include <string>
#include <variant>

namespace gridforge::gis {

struct OpenLayer {
    std::int32_t id = 0;
    std::string name;
    bool end = false; // nothing is left to read
    std::variant<mif::MifInput, shp::ShpInput> files;
};

} // namespace gridforge::gis
