// The end of the run where a region of the plane is not whole.
#pragma once

#include <string_view>

namespace gridforge::gis {

// The rings of a region end before its vertices. `routine` and `form` are those that messages name.
[[noreturn]] void failRings(std::string_view routine, int form);

} // namespace gridforge::gis
