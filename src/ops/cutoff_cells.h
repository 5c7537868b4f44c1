// A grid's cells where they reach a cutoff, or a second grid's cells where the first reaches it.
#pragma once

#include <span>

namespace gridforge::ops {

// All spans are of one length, and every cell of `output` is assigned, with `null` where the test fails. A cell of exactly the
// cutoff stays. The test grid's null is a number like any other: it fails only where it lies below the cutoff.

void keepFrom(std::span<const float> cells, float cutoff, float null, std::span<float> output);
// The cells of `values` that are not `valuesNull`, where `test` reaches the cutoff.
void filterFrom(std::span<const float> test, float cutoff, std::span<const float> values, float valuesNull, float null,
                std::span<float> output);

} // namespace gridforge::ops
