// What reader and writer of .shp and .dbf know of their layout.
#pragma once

#include <cstddef>
#include <cstdint>

namespace gridforge::gis::shp {

inline constexpr std::size_t kShpHeaderBytes = 100;
inline constexpr std::size_t kVertexBytes = 16;

// The types of shapes.
inline constexpr std::int32_t kNull = 0;
inline constexpr std::int32_t kPoint = 1;
inline constexpr std::int32_t kPolyline = 3;
inline constexpr std::int32_t kPolygon = 5;
inline constexpr std::int32_t kMultiPoint = 8;

inline constexpr int kDbfHeaderBytes = 32;
inline constexpr char kEndOfFields = 13;
inline constexpr char kEndOfTable = 26;

} // namespace gridforge::gis::shp
