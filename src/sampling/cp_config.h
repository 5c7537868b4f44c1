// The symbols of calibration points by their difference, read from the file of -config.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace gridforge::sampling {

inline constexpr std::int32_t kMaxThresholds = 100;

struct SymbolThreshold {
    float upTo = 0; // the greatest difference that takes this symbol
    std::int32_t shape = 0;
    std::int32_t colour = 0;
    std::int32_t size = 0;
};

// A heading line, then one threshold a line, not falling. Fewer than two, more than 100 and what cannot be read end the
// run.
std::vector<SymbolThreshold> readSymbolThresholds(const std::string& name);

// The symbol of the first threshold that the difference does not exceed; nothing above all of them and for not-a-number.
std::optional<std::string> symbolStyle(const std::vector<SymbolThreshold>& thresholds, float difference);

} // namespace gridforge::sampling
