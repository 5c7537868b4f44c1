// Each statistic of -stat by plain loops over the values of one cell, in the order of the grids.
#pragma once

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <optional>
#include <vector>

namespace gridforge::test {

// The smallest or the largest of the values that are numbers; none if none is.
inline std::optional<float> plainLimit(const std::vector<float>& values, bool largest)
{
    std::optional<float> result;
    for (const float value : values) {
        if (value == value && (!result || (largest ? value > *result : value < *result))) {
            result = value;
        }
    }
    return result;
}

// Value and source of one cell.
struct PlainStatistic {
    float value;
    float source;
};

inline PlainStatistic plainExtreme(const std::vector<float>& values, float null, bool largest)
{
    const std::optional<float> tested = plainLimit(values, largest);
    if (!tested || *tested <= null + 0.01F) {
        return {null, null};
    }
    std::vector<float> above;
    std::ranges::copy_if(values, std::back_inserter(above), [null](float value) { return value > null; });
    const float best = *plainLimit(above, largest);
    return {best, static_cast<float>(std::ranges::find(values, best) - values.begin() + 1)};
}

// Rank by picking the smallest that is left; mean by the sum in list order.
inline std::vector<PlainStatistic> plainOrder(const std::vector<float>& values)
{
    std::vector<float> left = values;
    std::vector<PlainStatistic> order;
    for (std::size_t k = 0; k < values.size(); ++k) {
        std::size_t l = 0;
        for (std::size_t j = 1; j < left.size(); ++j) {
            if (left[j] < left[l]) {
                l = j;
            }
        }
        order.push_back({left[l], static_cast<float>(l + 1)});
        left[l] = 9.0e+29F;
    }
    return order;
}

inline PlainStatistic plainRank(const std::vector<float>& values, float null, std::size_t rank)
{
    const std::optional<float> largest = plainLimit(values, true);
    if (largest && *largest <= null + 0.01F) {
        return {null, null};
    }
    return plainOrder(values)[rank - 1];
}

inline PlainStatistic plainMean(const std::vector<float>& values, float null)
{
    const std::optional<float> smallest = plainLimit(values, false);
    if (smallest && *smallest <= null + 0.01F) {
        return {null, null};
    }
    float sum = 0;
    for (const float value : values) {
        sum += value;
    }
    PlainStatistic mean{sum / static_cast<float>(values.size()), null};
    for (const PlainStatistic& one : plainOrder(values)) {
        if (one.value >= mean.value) {
            mean.source = one.source;
            break;
        }
    }
    return mean;
}

// `before` where the cell is dry.
inline float plainFraction(const std::vector<float>& values, float null, float before)
{
    const std::optional<float> largest = plainLimit(values, true);
    if (largest && *largest <= null + 0.01F) {
        return before;
    }
    const auto wet = std::ranges::count_if(values, [null](float value) { return value > null + 0.01F; });
    return static_cast<float>(wet) / static_cast<float>(values.size());
}

} // namespace gridforge::test
