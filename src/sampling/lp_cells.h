// The lowest and the highest cell across a line.
#pragma once

#include "plane/across_line.h"
#include "plane/cell_array.h"
#include "plane/grid_header.h"

namespace gridforge::sampling {

struct FoundSample {
    float value = 0;
    double x = 0; // stays 0 where no cell was found
    double y = 0;
};

// What a search finds where no cell has a value.
inline constexpr float kNoLowest = 99999.0F;
inline constexpr float kNoHighest = -99999.0F;

// The lowest cell of the samples, kNoLowest if none has a value, at the place of its cell.
FoundSample lowestSample(const AcrossLine& line, const GridHeader& header, const Grid& cells, const SampleRange& range);
// The highest one, kNoHighest if none has a value, at the place of its sample.
FoundSample highestSample(const AcrossLine& line, const GridHeader& header, const Grid& cells,
                          const SampleRange& range);

} // namespace gridforge::sampling
