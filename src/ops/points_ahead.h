// The points of an .xyz file, read by all threads before the run opens it.
#pragma once

#include "ops/xyz_cells.h"

#include <optional>
#include <string_view>

namespace gridforge::ops {

// Nothing if a line holds no point, there is no memory for all, or the file is no plain one: then it must be read from start
// to end.
std::optional<PointList> pointsAhead(std::string_view name);

} // namespace gridforge::ops
