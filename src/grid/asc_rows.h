// Rows of .asc cells from an open text unit.
#pragma once

#include "host/units.h"

#include <span>

namespace gridforge::grid {

// Reads the next row of cells free-form, over as many lines as it takes, and skips the rest of its last line.
// False on a value that is no number and on an early end of the file.
bool readAscRow(Unit unit, std::span<float> row);

} // namespace gridforge::grid
