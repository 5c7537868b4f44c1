// Writes rows of cells as the text of an .asc grid.
#pragma once

#include "grid/cell_source.h"
#include "host/units.h"

#include <cstdint>

namespace gridforge::grid {

// The width of a field that all cells fit in: room for the largest magnitude, the decimals, the sign and a blank.
std::int32_t ascFieldWidth(const CellSource& cells, std::int32_t decimals);

// Writes all rows to an open text unit, with the number of each thousandth row on the console. Several threads format and
// write if the file has positions.
void writeAscRows(Unit unit, const CellSource& cells, std::int32_t width, std::int32_t decimals);

} // namespace gridforge::grid
