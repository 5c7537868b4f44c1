// Ends of the run for what the routines of the plane report in place of a result.
#pragma once

#include "plane/lattice_cells.h"

#include <cstdint>
#include <string_view>

namespace gridforge::gis {

// The rings of a region end before its vertices. `routine` and `form` are those that messages name.
[[noreturn]] void failRings(std::string_view routine, int form);

// Returns for `done` only.
void requireGridline(GridlineEnd end, std::int32_t limit);

} // namespace gridforge::gis
