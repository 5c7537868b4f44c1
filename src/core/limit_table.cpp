#include "core/limit_table.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace gridforge::inline core {

LimitTable::LimitTable(std::span<const float> limits) : limits_(limits.begin(), limits.end())
{
    constexpr std::size_t kFew = 16; // are compared faster than looked up
    constexpr std::size_t kMany = std::numeric_limits<std::uint8_t>::max();
    if (limits.size() <= kFew || limits.size() > kMany ||
        !std::ranges::all_of(limits, [](float limit) { return std::isfinite(limit); })) {
        return;
    }
    lowest_ = limits.front();
    scale_ = static_cast<float>(kPlaces - 1) / (limits.back() - lowest_);
    if (!std::isfinite(scale_) || !(scale_ > 0.0F) || placeOf(limits.back()) >= kPlaces) {
        return;
    }
    std::array<std::size_t, kPlaces> counts{};
    for (const float limit : limits) {
        ++counts[placeOf(limit)];
    }
    std::size_t below = 0;
    for (std::size_t place = 0; place < kPlaces; ++place) {
        before_[place] = static_cast<std::uint8_t>(below);
        below += counts[place];
    }
    before_[kPlaces] = static_cast<std::uint8_t>(below);
    const std::size_t most = std::ranges::max(counts);
    most_ = most <= kMostInAPlace ? most : 0;
    limits_.insert(limits_.end(), kMostInAPlace, std::numeric_limits<float>::infinity());
}

} // namespace gridforge::inline core
