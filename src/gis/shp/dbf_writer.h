// Output of .dbf tables.
#pragma once

#include "gis/layer_spec.h"
#include "gis/shp/records.h"

#include <cstdint>
#include <span>
#include <string_view>

namespace gridforge::gis::shp {

// Writes header and field list, with today's date.
void dbfWriteHeader(std::span<const Column> columns, DbfTable& dbf);

// Writes one record with the values in `line`. A field without a value gets the text that the field of its number got last,
// in whatever layer.
void dbfdataline(DbfTable& dbf, std::string_view line);

// Writes the closing byte, completes the record count of the header and closes the unit.
void dbfWriteEoF(DbfTable& dbf);

// An unsigned value as the signed word of the same bits. A value out of range ends the run.
std::int8_t i1u(std::int32_t value);
std::int16_t i2u(std::int32_t value);

} // namespace gridforge::gis::shp
