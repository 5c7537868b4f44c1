// Loops over cells, inlined so that they vectorise together with the operation on a cell. An operation should compute each
// case before it selects one, and join conditions by & and |, because && and || are branches.
#pragma once

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <span>

namespace gridforge::inline core {

// output[i] = of(cells[i]). All spans here are of one length, and `output` overlaps no other.
template <typename Of>
void mapCells(std::span<const float> cells, std::span<float> output, Of of)
{
    assert(cells.size() == output.size());
    const float* const in = cells.data();
    float* const out = output.data();
    for (std::size_t i = 0; i < output.size(); ++i) {
        out[i] = of(in[i]);
    }
}

// output[i] = of(first[i], second[i])
template <typename Of>
void mapCells(std::span<const float> first, std::span<const float> second, std::span<float> output, Of of)
{
    assert(first.size() == output.size() && second.size() == output.size());
    const float* const a = first.data();
    const float* const b = second.data();
    float* const out = output.data();
    for (std::size_t i = 0; i < output.size(); ++i) {
        out[i] = of(a[i], b[i]);
    }
}

// kept[i] = of(kept[i])
template <typename Of>
void updateCells(std::span<float> kept, Of of)
{
    float* const cells = kept.data();
    for (std::size_t i = 0; i < kept.size(); ++i) {
        cells[i] = of(cells[i]);
    }
}

// kept[i] = of(kept[i], cells[i])
template <typename Of>
void updateCells(std::span<float> kept, std::span<const float> cells, Of of)
{
    assert(cells.size() == kept.size());
    const float* const in = cells.data();
    float* const out = kept.data();
    for (std::size_t i = 0; i < kept.size(); ++i) {
        out[i] = of(out[i], in[i]);
    }
}

// How many cells `is` holds for. Counts in 32 bits stretch by stretch, because that vectorises well.
template <typename Is>
std::int64_t countCells(std::span<const float> cells, Is is)
{
    constexpr std::size_t kStretch = std::size_t{1} << 16;
    std::int64_t total = 0;
    for (std::size_t from = 0; from < cells.size(); from += kStretch) {
        std::int32_t found = 0;
        for (const float cell : cells.subspan(from, std::min(kStretch, cells.size() - from))) {
            found += is(cell) ? 1 : 0;
        }
        total += found;
    }
    return total;
}

} // namespace gridforge::inline core
