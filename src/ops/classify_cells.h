// The class of each cell in a row of classes.
#pragma once

#include <cstdint>
#include <span>

namespace gridforge::ops {

// The number from 1 of the first limit that a cell does not exceed, or one more than there are limits. `limits` are as
// risingLimits gives them; `numbers` is as long as `cells`.
void findClasses(std::span<const float> cells, std::span<const float> limits, std::span<std::int32_t> numbers);

// The same as cells; null cells stay null. `output` is as long as `cells`.
void classifyCells(std::span<const float> cells, float null, std::span<const float> limits, std::span<float> output);

} // namespace gridforge::ops
