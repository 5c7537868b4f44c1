// The order in which results grids are worked on.
#pragma once

#include "damages/records.h"

#include <optional>
#include <span>
#include <vector>

namespace gridforge::damages {

// The results grids from the most frequent event to the rarest; of equal probabilities the first listed goes first.
// Nothing where some are listed and none is above -9999.
std::optional<std::vector<DmgRes>> sortByFrequency(std::span<const DmgRes> listed);

} // namespace gridforge::damages
