// The water level of a coarse model on a finer terrain: fine levels, fine depths, and further grids cut to their extent.
#pragma once

#include "run/common.h"
#include "run/inputs.h"

#include <cstdint>
#include <optional>
#include <string>

namespace gridforge::remap {

enum class Interpolation {
    none,
    nearest, // which no flag selects
    idw,
    tin
};

struct RemapOptions {
    Interpolation interpolation = Interpolation::none;
    std::string waterLevelGrid;
    std::string demGrid;
    std::string extentGrid;     // blank: none
    std::int32_t idwPoints = 0; // 0: the default of the method
    float freeboard = 0.0F;
    std::optional<float> buffer; // how far the extent may grow

    friend bool operator==(const RemapOptions&, const RemapOptions&) = default;
};

void runRemap(const run::Common& common, const RemapOptions& options, const run::InputFileList& inputs);

} // namespace gridforge::remap
