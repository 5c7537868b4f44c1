#include "rainfall/step_cells.h"

#include "core/computed.h"

#include <cassert>

namespace gridforge::rainfall {

void rainByHyetograph(std::span<const float> depths, std::span<const std::int32_t> hyetographs,
                      std::span<const float> factors, float null, std::span<float> step, std::span<float> total)
{
    assert(hyetographs.size() == step.size() && factors.size() == step.size() && total.size() == step.size());
    for (std::size_t i = 0; i < step.size(); ++i) {
        const bool rains = hyetographs[i] > 0;
        const float value = stored(depths[rains ? static_cast<std::size_t>(hyetographs[i]) : 0] * factors[i]);
        step[i] = rains ? value : null;
        total[i] = rains ? stored(total[i] + value) : total[i];
    }
}

void rainByTriangle(std::span<const std::array<float, 3>> corners, const TrianglePlaces& places, float null,
                    std::span<float> step, std::span<float> total)
{
    const auto& [triangle, a, b] = places;
    assert(triangle.size() == step.size() && a.size() == step.size() && b.size() == step.size());
    for (std::size_t i = 0; i < step.size(); ++i) {
        if (triangle[i] <= 0) {
            step[i] = null;
            continue;
        }
        const auto& [z1, z2, z3] = corners[static_cast<std::size_t>(triangle[i] - 1)];
        step[i] = stored(z3 + (((z1 + ((z2 - z1) * a[i])) - z3) * b[i]));
        total[i] = stored(total[i] + step[i]);
    }
}

void addWeighted(std::span<const float> values, std::span<const float> weights, std::span<double> sums)
{
    const std::size_t columns = sums.size();
    double* const sum = sums.data();
    for (std::size_t p = 0; p < values.size(); ++p) {
        const auto value = static_cast<double>(values[p]);
        const float* const weight = weights.subspan(p * columns, columns).data();
        for (std::size_t c = 0; c < columns; ++c) {
            sum[c] = sum[c] + value * static_cast<double>(weight[c]);
        }
    }
}

void sumListed(std::span<const float> values, const PointLists& lists, std::span<double> sums)
{
    assert(lists.counts.size() == sums.size());
    for (std::size_t c = 0; c < sums.size(); ++c) {
        const std::size_t start = c * lists.length;
        double sum = 0.0;
        for (std::size_t k = start; k < start + static_cast<std::size_t>(lists.counts[c]); ++k) {
            const float value = values[static_cast<std::size_t>(lists.points[k])];
            sum = sum + static_cast<double>(value) * static_cast<double>(lists.weights[k]);
        }
        sums[c] = sum;
    }
}

void rainByWeights(std::span<const double> sums, std::span<const double> weightSums, std::span<float> step,
                   std::span<float> total)
{
    assert(weightSums.size() == sums.size() && step.size() == sums.size() && total.size() == sums.size());
    for (std::size_t c = 0; c < sums.size(); ++c) {
        step[c] = stored(static_cast<float>(sums[c] / weightSums[c]));
        total[c] = stored(total[c] + step[c]);
    }
}

} // namespace gridforge::rainfall
