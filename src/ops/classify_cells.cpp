#include "ops/classify_cells.h"

#include "core/limit_table.h"
#include "ops/classify_cells_avx2.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cstddef>

namespace gridforge::ops {

void findClasses(std::span<const float> cells, std::span<const float> limits, std::span<std::int32_t> numbers)
{
    assert(cells.size() == numbers.size());
    const float* const in = cells.data();
    std::int32_t* const number = numbers.data();
    const std::size_t count = cells.size();
    std::ranges::fill(numbers, 1);
    // Counting the limits that a cell passes does without branches, and the loop over cells vectorises. A cell that is
    // not a number passes them all.
    for (const float limit : limits) {
        for (std::size_t i = 0; i < count; ++i) {
            number[i] += in[i] <= limit ? 0 : 1;
        }
    }
}

namespace {

void classifyPlainly(std::span<const float> cells, float null, std::span<const float> limits, std::span<float> output)
{
    if (const LimitTable table(limits); table.mostInAPlace() > 0) {
        table.forEach(cells, [&](std::size_t i, std::size_t passed) {
            const auto number = static_cast<float>(static_cast<std::int32_t>(passed) + 1);
            output[i] = cells[i] != null ? number : null;
        });
        return;
    }
    constexpr std::size_t kStretch = 1024;
    std::array<std::int32_t, kStretch> numbers;
    for (std::size_t from = 0; from < cells.size(); from += kStretch) {
        const std::size_t count = std::min(kStretch, cells.size() - from);
        findClasses(cells.subspan(from, count), limits, std::span(numbers).first(count));
        const float* const in = cells.data() + from;
        float* const out = output.data() + from;
        for (std::size_t i = 0; i < count; ++i) {
            const auto number = static_cast<float>(numbers[i]);
            out[i] = in[i] != null ? number : null;
        }
    }
}

} // namespace

void classifyCells(std::span<const float> cells, float null, std::span<const float> limits, std::span<float> output)
{
    assert(cells.size() == output.size());
    const std::size_t done = classifyLanes(cells, null, limits, output);
    if (done < cells.size()) {
        classifyPlainly(cells.subspan(done), null, limits, output.subspan(done));
    }
}

} // namespace gridforge::ops
