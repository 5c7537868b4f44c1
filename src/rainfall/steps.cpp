#include "rainfall/steps.h"

#include "core/per_worker.h"
#include "host/threads.h"
#include "rainfall/step_cells.h"
#include "run/rows.h"

#include <algorithm>
#include <array>
#include <span>

namespace gridforge::rainfall {

namespace {

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
    run::overBlocks(now.size(), [&](const run::CellBlock& block) {
        const auto [from, count] = block;
        rainByHyetograph(depths, index.subspan(from, count), factor.subspan(from, count), null,
                         now.subspan(from, count), total.subspan(from, count));
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
    run::overBlocks(now.size(), [&](const run::CellBlock& block) {
        const auto [from, count] = block;
        rainByTriangle(corners, {number.subspan(from, count), a.subspan(from, count), b.subspan(from, count)}, null,
                       now.subspan(from, count), total.subspan(from, count));
    });
}

void rf_step_idw(const RfHyetographs& hyetographs, const RfPoints& points, std::size_t step, const RfIdwTables& tables,
                 RfGrids& grids)
{
    const std::vector<float> values = pointValues(hyetographs, points, step);
    const auto columns = static_cast<std::size_t>(tables.weightSum.ncols());
    PerWorker<std::vector<double>> rooms(workersOf(static_cast<std::size_t>(tables.weightSum.nrows())));
    parallelFor(static_cast<std::size_t>(tables.weightSum.nrows()), [&](std::size_t piece, std::size_t worker) {
        const auto row = static_cast<std::int32_t>(piece) + 1;
        std::vector<double>& sums = rooms[worker];
        sums.resize(columns);
        if (tables.method.useAll) {
            std::ranges::fill(sums, 0.0);
            addWeighted(std::span(values).subspan(1, points.records.size()), tables.weightsOf(row), sums);
        } else {
            const auto length = static_cast<std::size_t>(tables.method.listLength);
            sumListed(values, {length, tables.count.row(row), tables.pointsOf(row), tables.weightsOf(row)}, sums);
        }
        rainByWeights(sums, tables.weightSum.row(row), grids.step.row(row), grids.cumulative.row(row));
    });
}

} // namespace gridforge::rainfall
