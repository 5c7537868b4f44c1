#include "rainfall/steps.h"

#include "core/computed.h"
#include "host/threads.h"

#include <algorithm>
#include <cassert>
#include <span>

namespace gridforge::rainfall {

namespace {

// Calls `work` with stretches of cells that make up the whole, for several at a time.
template <typename Work>
void eachStretch(std::size_t cells, Work work)
{
    constexpr std::size_t kCells = std::size_t{1} << 18;
    const std::size_t each = cellsPerPiece(kCells);
    parallelFor((cells + each - 1) / each,
                [&](std::size_t piece, std::size_t) { work(piece * each, std::min(cells, (piece + 1) * each)); });
}

// The rain at each point, from 1 on; place 0 and the places after the points hold 0.
std::vector<float> pointValues(const RfHyetographs& hyetographs, const RfPoints& points, std::size_t step)
{
    const auto places = static_cast<std::size_t>(std::max(points.count(), hyetographs.count())) + 1;
    std::vector<float> values(places);
    for (std::size_t p = 0; p < points.records.size(); ++p) {
        const RfPoint& point = points.records[p];
        const RfHyetograph& hyetograph = hyetographs.records[static_cast<std::size_t>(point.hyetograph - 1)];
        values[p + 1] = (hyetograph.depth[step] * point.record.f1) * point.record.f2;
    }
    return values;
}

} // namespace

void rf_step_polygon(const RfHyetographs& hyetographs, std::size_t step, const RfPolygonTables& tables, float null,
                     RfGrids& grids)
{
    std::vector<float> depths(1);
    for (const RfHyetograph& hyetograph : hyetographs.records) {
        depths.push_back(hyetograph.depth[step]);
    }
    const std::span<const std::int32_t> index = tables.index.cells();
    const std::span<const float> factor = tables.factor.cells();
    const std::span<float> now = grids.step.cells();
    const std::span<float> total = grids.cumulative.cells();
    assert(index.size() == now.size() && factor.size() == now.size() && total.size() == now.size());
    eachStretch(now.size(), [&](std::size_t from, std::size_t to) {
        for (std::size_t i = from; i < to; ++i) {
            const bool rains = index[i] > 0;
            const float value = stored(depths[rains ? static_cast<std::size_t>(index[i]) : 0] * factor[i]);
            now[i] = rains ? value : null;
            total[i] = rains ? stored(total[i] + value) : total[i];
        }
    });
}

void rf_step_tin(const RfHyetographs& hyetographs, const RfPoints& points, std::size_t step,
                 const std::vector<RfTriangle>& triangles, const RfTinPoints& tinPoints, const RfTinTables& tables,
                 float null, RfGrids& grids)
{
    const std::vector<float> values = pointValues(hyetographs, points, step);
    // The value is looked up by the number of the point's hyetograph, as if that were the number of the point,
    // on purpose: earlier results rely on it. With points in the order of the hyetographs it is the point's own.
    std::vector<std::array<float, 3>> corners;
    corners.reserve(triangles.size());
    for (const RfTriangle& triangle : triangles) {
        const auto valueAt = [&](std::int32_t point) {
            const std::int32_t hyetograph = tinPoints.hyetograph[static_cast<std::size_t>(point - 1)];
            return values[static_cast<std::size_t>(hyetograph)];
        };
        corners.push_back({valueAt(triangle[0]), valueAt(triangle[1]), valueAt(triangle[2])});
    }
    const std::span<const std::int32_t> number = tables.triangle.cells();
    const std::span<const float> a = tables.ratioA.cells();
    const std::span<const float> b = tables.ratioB.cells();
    const std::span<float> now = grids.step.cells();
    const std::span<float> total = grids.cumulative.cells();
    assert(number.size() == now.size() && a.size() == now.size() && b.size() == now.size());
    eachStretch(now.size(), [&](std::size_t from, std::size_t to) {
        for (std::size_t i = from; i < to; ++i) {
            if (number[i] <= 0) {
                now[i] = null;
                continue;
            }
            const auto& [z1, z2, z3] = corners[static_cast<std::size_t>(number[i] - 1)];
            now[i] = stored(z3 + (((z1 + ((z2 - z1) * a[i])) - z3) * b[i]));
            total[i] = stored(total[i] + now[i]);
        }
    });
}

namespace {

// Adds value times weight over one row, point by point, so that the cells go side by side while each of them adds in
// the order of the points.
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

double listedSum(std::span<const float> values, const RfIdwTables& tables, std::size_t start, std::int32_t count)
{
    double sum = 0.0;
    for (std::size_t k = start; k < start + static_cast<std::size_t>(count); ++k) {
        const float value = values[static_cast<std::size_t>(tables.pointNumber[k])];
        sum = sum + static_cast<double>(value) * static_cast<double>(tables.weight[k]);
    }
    return sum;
}

void addListed(std::span<const float> values, const RfIdwTables& tables, std::int32_t row, std::span<double> sums)
{
    const std::span<const std::int32_t> counts = tables.count.row(row);
    std::size_t start = tables.rowStart(row);
    for (std::size_t c = 0; c < sums.size(); ++c) {
        sums[c] = listedSum(values, tables, start, counts[c]);
        start += static_cast<std::size_t>(tables.method.listLength);
    }
}

} // namespace

void rf_step_idw(const RfHyetographs& hyetographs, const RfPoints& points, std::size_t step, const RfIdwTables& tables,
                 RfGrids& grids)
{
    const std::vector<float> values = pointValues(hyetographs, points, step);
    const auto columns = static_cast<std::size_t>(tables.weightSum.ncols());
    std::vector<std::vector<double>> rooms(workersOf(static_cast<std::size_t>(tables.weightSum.nrows())));
    parallelFor(static_cast<std::size_t>(tables.weightSum.nrows()), [&](std::size_t piece, std::size_t worker) {
        const auto row = static_cast<std::int32_t>(piece) + 1;
        std::vector<double>& sums = rooms[worker];
        sums.resize(columns);
        if (tables.method.useAll) {
            std::ranges::fill(sums, 0.0);
            addWeighted(std::span(values).subspan(1, points.records.size()),
                        tables.weight.all().subspan(tables.rowStart(row), tables.rowWeights()), sums);
        } else {
            addListed(values, tables, row, sums);
        }
        const std::span<const double> weightSum = tables.weightSum.row(row);
        const std::span<float> now = grids.step.row(row);
        const std::span<float> total = grids.cumulative.row(row);
        for (std::size_t c = 0; c < sums.size(); ++c) {
            now[c] = stored(static_cast<float>(sums[c] / weightSum[c]));
            total[c] = stored(total[c] + now[c]);
        }
    });
}

} // namespace gridforge::rainfall
