// How the plain and the prepared form of the region test walk the rings of a region.
#pragma once

#include <cstdint>
#include <span>

namespace gridforge::inline plane {

// Calls `ring(second, end)` for each ring, vertices counted from 1: its edges start at the vertices from its second to its
// closing one, and the last of them ends in the slot after it. A ring whose end is not between its second vertex and the
// last edge goes on to the last edge. False if the rings end before the vertices.
template <typename Ring>
bool walkRings(std::int32_t np, std::span<const std::int32_t> ir, std::int32_t nr, const Ring& ring)
{
    const std::int64_t last = std::int64_t{np} - 1;
    std::int64_t i = 1;
    for (std::int32_t k = 0; i < last; ++k) {
        if (k >= nr) {
            return false;
        }
        const std::int64_t second = i + 1;
        const std::int64_t given = ir[static_cast<std::size_t>(k)];
        const std::int64_t end = given >= second && given <= last ? given : last;
        ring(static_cast<std::size_t>(second), static_cast<std::size_t>(end));
        i = end + 2;
    }
    return true;
}

// The y of the nearest vertex before vertex `second`, going back from `end`, that differs from the y of `second`; that of
// `second` if none differs.
template <typename Real>
Real yAheadOfSecond(std::span<const Real> y, std::size_t second, std::size_t end)
{
    const Real own = y[second - 1];
    for (std::size_t i = end; i > second; --i) {
        if (y[i - 1] != own) {
            return y[i - 1];
        }
    }
    return own;
}

} // namespace gridforge::inline plane
