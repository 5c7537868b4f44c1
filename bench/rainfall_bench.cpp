// The kernels of rainfall grids over a million cells: the weights of IDW by the nearest points, beside one search over all
// points for each place of a list; triangles; and a time step by each method.
#include "plane/geometry.h"
#include "rainfall/idw.h"
#include "rainfall/polygons.h"
#include "rainfall/steps.h"
#include "rainfall/triangles.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

namespace {

using namespace gridforge;

constexpr std::int32_t kSide = 1000;

GridHeader gridOf(std::int32_t rows)
{
    GridHeader grid;
    grid.nrows = rows;
    grid.ncols = kSide;
    grid.xll = 293000;
    grid.yll = 6178000;
    grid.cellsize = 25.0F;
    grid.cellsize8 = 25.0;
    grid.null = -999.0F;
    return grid;
}

rainfall::RfPoints scattered(std::int64_t count, const GridHeader& grid)
{
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> along(0, kSide * grid.cellsize8);
    rainfall::RfPoints points;
    for (std::int64_t i = 0; i < count; ++i) {
        rainfall::RfPoint point;
        point.record = {"", 1.0F, 1.0F};
        point.x = grid.xll + along(random);
        point.y = grid.yll + along(random);
        point.hyetograph = static_cast<std::int32_t>(i) + 1;
        points.records.push_back(point);
    }
    return points;
}

rainfall::RfHyetographs hyetographs(std::int64_t count)
{
    rainfall::RfHyetographs result;
    for (std::int64_t i = 0; i < count; ++i) {
        result.records.push_back({"", {0.0F, 1.0F}, {static_cast<float>(i % 17), 2.0F}});
    }
    return result;
}

rainfall::RfGrids gridsOf(const GridHeader& grid)
{
    rainfall::RfGrids grids;
    if (!grids.step.allocate(grid.nrows, grid.ncols) || !grids.cumulative.allocate(grid.nrows, grid.ncols)) {
        std::abort();
    }
    return grids;
}

void setCells(benchmark::State& state, const GridHeader& grid)
{
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(grid.cells()));
}

// --- Weights ---------------------------------------------------------------------------------------------------------

// Of one row in fifty, as it is slow.
void nearestPlainly(benchmark::State& state)
{
    const GridHeader grid = gridOf(kSide);
    const rainfall::RfPoints points = scattered(state.range(0), grid);
    const auto k = static_cast<std::size_t>(state.range(1));
    std::vector<float> distances(points.records.size());
    constexpr std::int32_t kStep = 50;
    for (auto _ : state) {
        double sum = 0;
        for (std::int32_t row = 1; row <= grid.nrows; row += kStep) {
            for (std::int32_t column = 1; column <= grid.ncols; ++column) {
                std::ranges::transform(points.records, distances.begin(), [&](const rainfall::RfPoint& point) {
                    return DISTANCE_8(grid.x(column), grid.y(row), point.x, point.y);
                });
                for (std::size_t n = 0; n < k; ++n) {
                    const auto nearest = std::ranges::min_element(distances);
                    sum += static_cast<double>(1.0F / std::pow(*nearest, 2.0F));
                    *nearest = 9999999.0F;
                }
            }
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(grid.cells()) / kStep);
}

void nearest(benchmark::State& state)
{
    const GridHeader grid = gridOf(kSide);
    const rainfall::RfPoints points = scattered(state.range(0), grid);
    const rainfall::RfIdwMethod method{false, static_cast<std::int32_t>(state.range(1)), -99.0F, 2.0F};
    rainfall::RfIdwTables tables;
    allocateTables(grid, method, points.count(), tables);
    for (auto _ : state) {
        std::ranges::fill(tables.count.cells(), 0);
        rf_idw_weights(grid, points, tables);
    }
    setCells(state, grid);
}

void allPoints(benchmark::State& state)
{
    const GridHeader grid = gridOf(kSide);
    const rainfall::RfPoints points = scattered(state.range(0), grid);
    rainfall::RfIdwTables tables;
    allocateTables(grid, {true, points.count(), -99.0F, 2.0F}, points.count(), tables);
    for (auto _ : state) {
        rf_idw_weights(grid, points, tables);
    }
    setCells(state, grid);
}

BENCHMARK(nearestPlainly)->Args({20, 4})->Args({100, 8})->Args({1000, 12})->Unit(benchmark::kMillisecond);
BENCHMARK(nearest)->Args({20, 4})->Args({100, 8})->Args({1000, 12})->Unit(benchmark::kMillisecond);
BENCHMARK(allPoints)->Arg(20)->Unit(benchmark::kMillisecond);

// --- Triangles -------------------------------------------------------------------------------------------------------

// Squares cut in two over the whole grid.
struct Mesh {
    std::vector<rainfall::RfTriangle> triangles;
    rainfall::RfTinPoints points;
};

Mesh mesh(std::int32_t squares, const GridHeader& grid)
{
    Mesh mesh;
    for (std::int32_t j = 0; j <= squares; ++j) {
        for (std::int32_t i = 0; i <= squares; ++i) {
            mesh.points.x.push_back(grid.xll + kSide * grid.cellsize8 * i / squares);
            mesh.points.y.push_back(grid.yll + kSide * grid.cellsize8 * j / squares);
            mesh.points.hyetograph.push_back(static_cast<std::int32_t>(mesh.points.x.size()));
            const std::int32_t corner = j * (squares + 1) + i + 1;
            if (i < squares && j < squares) {
                mesh.triangles.push_back({corner, corner + 1, corner + squares + 1});
                mesh.triangles.push_back({corner + 1, corner + squares + 2, corner + squares + 1});
            }
        }
    }
    return mesh;
}

void triangles(benchmark::State& state)
{
    const GridHeader grid = gridOf(kSide);
    const Mesh tin = mesh(static_cast<std::int32_t>(state.range(0)), grid);
    rainfall::RfTinTables tables;
    allocateTables(grid, tables);
    for (auto _ : state) {
        for (std::size_t e = 0; e < tin.triangles.size(); ++e) {
            paintTriangle(static_cast<std::int32_t>(e) + 1, rfCorners(tin.triangles[e], tin.points, grid), grid,
                          tables);
        }
    }
    setCells(state, grid);
}
BENCHMARK(triangles)->Arg(1)->Arg(20)->Unit(benchmark::kMillisecond);

// --- Steps -----------------------------------------------------------------------------------------------------------

void stepPolygon(benchmark::State& state)
{
    const GridHeader grid = gridOf(kSide);
    rainfall::RfPolygonTables tables;
    allocateTables(grid, tables);
    for (std::size_t i = 0; i < grid.cells(); ++i) {
        tables.index.cells()[i] = i % 3 == 0 ? -999 : static_cast<std::int32_t>(i / 1000 % 20) + 1;
        tables.factor.cells()[i] = 0.9F;
    }
    const rainfall::RfHyetographs rain = hyetographs(20);
    rainfall::RfGrids grids = gridsOf(grid);
    for (auto _ : state) {
        rf_step_polygon(rain, 0, tables, grid.null, grids);
    }
    setCells(state, grid);
}
BENCHMARK(stepPolygon)->Unit(benchmark::kMillisecond);

void stepTin(benchmark::State& state)
{
    const GridHeader grid = gridOf(kSide);
    const Mesh tin = mesh(20, grid);
    rainfall::RfTinTables tables;
    allocateTables(grid, tables);
    for (std::size_t e = 0; e < tin.triangles.size(); ++e) {
        paintTriangle(static_cast<std::int32_t>(e) + 1, rfCorners(tin.triangles[e], tin.points, grid), grid, tables);
    }
    const auto count = static_cast<std::int64_t>(tin.points.x.size());
    const rainfall::RfPoints points = scattered(count, grid);
    const rainfall::RfHyetographs rain = hyetographs(count);
    rainfall::RfGrids grids = gridsOf(grid);
    for (auto _ : state) {
        rf_step_tin(rain, points, 0, tin.triangles, tin.points, tables, grid.null, grids);
    }
    setCells(state, grid);
}
BENCHMARK(stepTin)->Unit(benchmark::kMillisecond);

// Points, and 0 for all of them or how many count.
void stepIdw(benchmark::State& state)
{
    const GridHeader grid = gridOf(kSide);
    const rainfall::RfPoints points = scattered(state.range(0), grid);
    const bool useAll = state.range(1) == 0;
    const rainfall::RfIdwMethod method{useAll, useAll ? points.count() : static_cast<std::int32_t>(state.range(1)),
                                       -99.0F, 2.0F};
    rainfall::RfIdwTables tables;
    allocateTables(grid, method, points.count(), tables);
    rf_idw_weights(grid, points, tables);
    const rainfall::RfHyetographs rain = hyetographs(state.range(0));
    rainfall::RfGrids grids = gridsOf(grid);
    for (auto _ : state) {
        rf_step_idw(rain, points, 0, tables, grids);
    }
    setCells(state, grid);
}
BENCHMARK(stepIdw)->Args({20, 0})->Args({20, 4})->Unit(benchmark::kMillisecond);

} // namespace
