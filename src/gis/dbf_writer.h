// Output of .dbf tables.
#pragma once

#include "gis/records.h"

#include <cstdint>
#include <string_view>

namespace gridforge {

// Writes header and field list, with today's date.
void dbfWriteHeader(const GisOutputAttributes& attributes, DbfTable& dbf);

// Writes one record of the values in `line`. A field without a value in the line keeps the text that this field number
// was given last, in whatever layer.
void dbfdataline(DbfTable& dbf, std::string_view line);
void dbfdatalinelarge(DbfTable& dbf, std::string_view line);

// Writes the closing byte, completes the record count of the header and closes the unit.
void dbfWriteEoF(DbfTable& dbf);

// An unsigned value as the signed word of the same bits; out of range ends the run.
std::int8_t i1u(std::int32_t value);
std::int16_t i2u(std::int32_t value);
std::int32_t i4u(std::int64_t value);

} // namespace gridforge
