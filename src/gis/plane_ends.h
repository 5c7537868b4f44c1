// The end of the run at a region that is not whole.
#pragma once

#include <string_view>

namespace gridforge::gis {

// For a region whose rings end before its vertices. The message names `routine` and `form`.
[[noreturn]] void failRings(std::string_view routine, int form);

} // namespace gridforge::gis
