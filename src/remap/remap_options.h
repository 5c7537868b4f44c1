// What the flags of -remap set.
#pragma once

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

} // namespace gridforge::remap
