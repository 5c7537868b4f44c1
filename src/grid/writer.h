// The single writer of .asc and .flt grids.
#pragma once

#include "grid/cell_source.h"
#include "grid/format.h"
#include "plane/grid_header.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace gridforge::grid {

// Decimals of .asc cells unless a setting changes them.
inline constexpr std::int32_t kDefaultDecimals = 3;
// With more, one field would be longer than the write buffer.
inline constexpr std::int32_t kMaxDecimals = 1'000'000;

// The files of the output grid `base`, without its .prj.
std::vector<std::string> gridOutputFiles(Format format, std::string_view base);

// Writes the grid `base` with the extension of `format` and, if `projectionText` is not blank, its .prj. Size, corner, cell
// size and null are those of `header`; `decimals` below 0 count as 3.
void writeGrid(Format format, std::string_view base, const GridHeader& header, const CellSource& cells,
               std::string_view projectionText, std::int32_t decimals = kDefaultDecimals);

} // namespace gridforge::grid
