// The first grid less the second, and where only one of the two is active.
#pragma once

#include <span>

namespace gridforge::ops {

// The cells of one of the two grids and its own null.
struct DifGrid {
    std::span<const float> cells;
    float null = 0;
};

// What the wet/dry grid says of cells that are active in one grid only.
inline constexpr float kOnlyFirstActive = 99.0F;
inline constexpr float kOnlySecondActive = -99.0F;

// All spans are of one length, and every cell of the results is assigned, with the first grid's null where
// there is nothing to say.

// First less second where both are active.
void subtractActive(const DifGrid& first, const DifGrid& second, std::span<float> difference);
// The same with a null cell counting as 0 where the other grid is active, so that the result is a change of depth.
void subtractChange(const DifGrid& first, const DifGrid& second, std::span<float> difference);
// subtractActive, and the class of the cells that are active in one grid only.
void subtractWetDry(const DifGrid& first, const DifGrid& second, std::span<float> difference, std::span<float> wetDry);

} // namespace gridforge::ops
