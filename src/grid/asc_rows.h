// Rows of .asc cells from an open text unit.
#pragma once

#include "host/units.h"

#include <span>

namespace gridforge::grid {

// Reads the next row of cells free-form, from as many lines as it needs, and skips the rest of its last line. False if a
// value is no number or the file ends too early.
bool readAscRow(Unit unit, std::span<float> row);

} // namespace gridforge::grid
