// The ways that the cells of runs take.
#pragma once

#include <cstddef>

namespace gridforge::run {

// Which way a run's cells went, and if not ahead, why.
enum class Way { ahead, oddInput, otherLattice, oddText, textGrid, wideWindows, readRefused, noRoom };
// How often in this process. For tests: nothing else shows it.
std::size_t waysGone(Way way);
void countWay(Way way);

} // namespace gridforge::run
