// Depth-damage curves.
#pragma once

#include "damages/records.h"

#include <span>
#include <string>

namespace gridforge::damages {

// Reads the points of a curve file after its heading line into `curve`. A line that is not two numbers, more than
// `maxPoints` points, fewer than 2 and depths that do not rise end the run.
void dmg_read_curve(const std::string& fileName, std::int32_t maxPoints, DmgCurve& curve);

// The depth is that of the last point or more.
bool isPastCurve(std::span<const float> depths, float depth);
// The damage at a depth above the floor; both spans hold one value a point, at least 2. The first damage stands for
// every depth below the curve, the last one for every depth past it. Not-a-number gives not-a-number.
float dmg_curve_lookup(std::span<const float> depths, std::span<const float> damages, float depth);

} // namespace gridforge::damages
