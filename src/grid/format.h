// The file formats of grids.
#pragma once

namespace gridforge::grid {

enum class Format { asc, flt };

} // namespace gridforge::grid
