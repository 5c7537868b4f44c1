// Which cells are wet.
#pragma once

#include <span>

namespace gridforge::ops {

// Depths of a smaller magnitude are dry.
inline constexpr float kWetFrom = 0.0001F;

// 1.0 for cells of at least that magnitude, `null` for null and dry cells; `output` is as long as `cells`.
void markWet(std::span<const float> cells, float null, std::span<float> output);

} // namespace gridforge::ops
