// The columns of a layer, and all that an output layer needs: its columns, its projection and, for Shapefiles, its families
// of shapes.
#pragma once

#include "gis/projection.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace gridforge::gis {

inline constexpr std::int32_t kMaxColumns = 256;
inline constexpr std::size_t kColumnNameWidth = 32;
inline constexpr std::size_t kColumnTypeWidth = 24;
inline constexpr std::size_t kRecordWidth = 1000;

struct Column {
    std::string name = {}; // cut at 32
    std::string type = {}; // "Char", "Float", "Integer", "Decimal", "Logical"; cut at 24
    std::int32_t length = 0;
};

struct LayerSpec {
    std::vector<Column> columns = {};
    Projection projection = {};
    // Letters of "PLR": points, lines and regions of a Shapefile each have their own set of files, as name_P.shp.
    std::string families = {};
};

} // namespace gridforge::gis
