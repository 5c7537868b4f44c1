// The handle of an open file.
#pragma once

#include <cstdint>

namespace gridforge::inline host {

using Unit = std::int32_t; // 0: none

// What a failed write of a unit does in place of the usual message: another message and an end of the run.
using WriteFailure = void (*)(Unit unit);

} // namespace gridforge::inline host
