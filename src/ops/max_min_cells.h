// The extreme value of each cell over a list of grids, and the number of the grid it came from.
#pragma once

#include <span>

namespace gridforge::ops {

enum class Extreme { minimum, maximum };

// For one grid after the other. `current` and `null` are the cells and the null of the grid being taken, `extreme`
// and `sources` what is kept of all grids so far; `sources` may be empty. Cells equal to `null` do not count, and of equal
// values the earliest grid stays as source.

// A cell enters where it is greater than what is kept, which starts at the first grid's null: values below that null never
// do.
void takeMaximum(std::span<const float> current, float null, float source, std::span<float> extreme,
                 std::span<float> sources);
// A cell enters where it is less than what is kept or where that equals `null`. Where grids differ in their null a kept cell
// that is still empty is so not seen as empty.
void takeMinimum(std::span<const float> current, float null, float source, std::span<float> extreme,
                 std::span<float> sources);

// One grid that is taken.
struct Taken {
    std::span<const float> cells;
    float null;
    float source;
};

// takeMaximum or takeMinimum.
void takeExtremes(const Taken& taken, Extreme wanted, std::span<float> extreme, std::span<float> sources);
// The same for the first grid: what is kept is assigned, and `null` where no cell enters.
void startExtremes(const Taken& first, Extreme wanted, float null, std::span<float> extreme, std::span<float> sources);

} // namespace gridforge::ops
