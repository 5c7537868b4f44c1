// Cells of an .asc grid to text, and the extremes that decide how wide its fields are. No input or output here.
#pragma once

#include <cstdint>
#include <span>

namespace gridforge::grid {

// Writes each cell right-justified in fixed notation with `decimals` decimals, `width` characters a cell and nothing
// between them, so `out` has width * row.size() bytes. Values are rounded from the stored 32 bits, exact ties to
// even; signs, leading zeros, NaN and values that do not fit are as in realField.
void formatAscRow(std::span<const float> row, std::int32_t width, std::int32_t decimals, char* out);

// The same, one field at a time.
void formatAscFields(std::span<const float> row, std::int32_t width, std::int32_t decimals, char* out);

struct ValueRange {
    float smallest = 0;
    float largest = 0;
    bool any = false; // false if no cell was a number: the extremes are then 0
};

// The smallest and the largest of `cells` and of the extremes `before` of other cells; NaN is ignored.
ValueRange findExtremes(std::span<const float> cells, const ValueRange& before = {});
// The extremes of two sets of cells together.
ValueRange joined(const ValueRange& first, const ValueRange& second);

} // namespace gridforge::grid
