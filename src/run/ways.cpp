#include "run/ways.h"

#include <array>

namespace gridforge::run {

namespace {

using WayCounts = std::array<std::size_t, static_cast<std::size_t>(Way::noRoom) + 1>;

WayCounts& wayCounts()
{
    static WayCounts counts{};
    return counts;
}

} // namespace

void countWay(Way way)
{
    ++wayCounts()[static_cast<std::size_t>(way)];
}

std::size_t waysGone(Way way)
{
    return wayCounts()[static_cast<std::size_t>(way)];
}

} // namespace gridforge::run
