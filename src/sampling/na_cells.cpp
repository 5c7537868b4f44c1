#include "sampling/na_cells.h"

#include "core/rounding.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <utility>

namespace gridforge::sampling {

bool collectInside(const SampledRegion& region, const GridHeader& header, const Grid& cells, const CellWindow& window,
                   std::size_t most, std::vector<float>& values)
{
    InsideWalk walk;
    prepareWalk(region, walk);
    forEachInsideRun(header, window, CellPlace::northEastCorner, walk,
                     [&](std::int32_t row, std::int32_t first, std::int32_t count) {
                         if (values.size() <= most) {
                             std::ranges::copy_if(cellsOfRun(cells, row, first, count), std::back_inserter(values),
                                                  [null = header.null](float cell) { return cell != null; });
                         }
                     });
    return values.size() <= most;
}

namespace {

struct LadderStage {
    float step;
    int most;
};
constexpr std::array<LadderStage, 6> kLadder = {
    {{0.1F, 20}, {0.25F, 20}, {0.5F, 20}, {1.0F, 20}, {10.0F, 10}, {100.0F, 8}}};
constexpr std::size_t kMaxHeights = 100;
// The first stage may end at a whole height from this step on.
constexpr int kFirstWholeStep = 11;

bool isWhole(float height)
{
    const float fraction = std::abs(height - std::trunc(height));
    return fraction < 0.001F || fraction > 0.999F;
}

// The tenth above the minimum.
float secondHeight(float minimum)
{
    const float tenths = std::floor((minimum + 0.002F) * 10.0F);
    return (static_cast<float>(truncateToInt(static_cast<double>(tenths))) + 1.0F) / 10.0F;
}

} // namespace

std::vector<float> heightLadder(float minimum, float maximum)
{
    std::vector<float> heights;
    heights.reserve(kMaxHeights);
    heights.push_back(minimum + 0.001F);
    heights.push_back(secondHeight(minimum));
    for (const LadderStage& stage : kLadder) {
        for (int step = 1; step <= stage.most; ++step) {
            heights.push_back(heights.back() + stage.step);
            if (heights.back() > maximum) {
                return heights;
            }
            if (&stage == kLadder.data() && step >= kFirstWholeStep && isWhole(heights.back())) {
                break;
            }
        }
    }
    return heights;
}

HeightCounts countByHeight(std::span<const float> values, std::span<const float> heights)
{
    // Where rounding makes the heights fall, the first that is not exceeded is the first among the highest so far.
    std::vector<float> rising(heights.begin(), heights.end());
    for (std::size_t i = 1; i < rising.size(); ++i) {
        rising[i] = std::max(rising[i], rising[i - 1]);
    }
    std::vector<std::int64_t> counts(rising.size() + 1, 0);
    for (const float value : values) {
        const auto found =
            std::partition_point(rising.begin(), rising.end(), [value](float height) { return !(value <= height); });
        ++counts[static_cast<std::size_t>(found - rising.begin())];
    }

    HeightCounts result;
    result.above = counts.back();
    counts.pop_back();
    counts.front() = std::max(counts.front(), std::int64_t{1});
    for (std::size_t i = 1; i < counts.size(); ++i) {
        counts[i] += counts[i - 1];
    }
    result.upTo = std::move(counts);
    return result;
}

} // namespace gridforge::sampling
