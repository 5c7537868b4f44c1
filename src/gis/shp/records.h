// The files of a Shapefile layer, as readers and writers keep them.
#pragma once

#include "host/units.h"
#include "plane/box.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

namespace gridforge::gis::shp {

inline constexpr std::int32_t kMaxDbfFields = 128;
inline constexpr std::size_t kDbfNameWidth = 11;

// Each file is opened on two units, because users see their numbers on the console. The big-endian one is hardly needed: every
// field is put into its byte order here.

// The .shp that a layer is read from.
struct ShpSource {
    Unit shpUnit = 0;
    Unit shpUnitBE = 0;
    std::int32_t recordShapeType = 0; // of the record whose head has been read
};

// One set of shape files that is written.
struct ShpTarget {
    Unit shpUnit = 0;
    Unit shpUnitBE = 0;
    Unit shxUnit = 0;
    Unit shxUnitBE = 0;
    Unit prjUnit = 0;
    std::int32_t shapeType = 0;  // 1, 3 or 5
    std::int32_t fileLength = 0; // of the .shp, in 16-bit words
    std::int32_t nRecords = 0;
    std::int32_t shxOffset = 0; // of the next record, in 16-bit words
    Box box{0, 0, -1.0, -1.0};
};

// The attribute table beside a set of shape files.
struct DbfTable {
    Unit dbfUnit = 0;
    std::int32_t nRecords = 0;
    std::int32_t currentRecord = 0;
    std::int32_t nFields = 0;
    std::int32_t recordLength = 0; // without the deletion byte
    std::array<std::int32_t, kMaxDbfFields> fieldLength{};
    std::array<std::int32_t, kMaxDbfFields> fieldDecimals{};
    std::array<std::string, kMaxDbfFields> fieldName;
    std::array<char, kMaxDbfFields> fieldType{};
};

} // namespace gridforge::gis::shp
