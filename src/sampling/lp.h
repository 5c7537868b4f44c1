// -lp: invert and banks along the lines of a layer.
#pragma once

#include "grid/grid.h"
#include "plane/across_line.h"
#include "run/common.h"
#include "run/inputs.h"

#include <string>

namespace gridforge::sampling {

struct FoundSample {
    float value = 0;
    double x = 0; // stays 0 where no cell was found
    double y = 0;
};

// The lowest cell of the samples, 99999.0 if none has a value, at the place of its cell.
FoundSample lowestSample(const AcrossLine& line, const GridHeader& header, const Grid& cells, const SampleRange& range);
// The highest one, -99999.0 if none has a value, at the place of its sample.
FoundSample highestSample(const AcrossLine& line, const GridHeader& header, const Grid& cells,
                          const SampleRange& range);

struct LpOptions {
    std::string layer;
    float spacing = 100.0F; // of the points along a line
    float searchDistance = 1000.0F;
    bool check = false; // writes the found points as a layer

    friend bool operator==(const LpOptions&, const LpOptions&) = default;
};

void runLongProfile(const run::Common& common, const LpOptions& options, const run::InputFileList& inputs);

} // namespace gridforge::sampling
