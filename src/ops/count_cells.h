// How many cells are wet. The counts of pieces of a grid add up.
#pragma once

#include <cstdint>
#include <span>

namespace gridforge::ops {

// The cells that are not null.
std::int64_t countActive(std::span<const float> cells, float null);
// The cells that are not null and greater than the cutoff, unlike -cd, where a cell of exactly the cutoff stays.
std::int64_t countAbove(std::span<const float> cells, float null, float cutoff);

} // namespace gridforge::ops
