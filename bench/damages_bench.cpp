// Levels of building polygons on a grid of 5000 by 5000 cells of 1 m: 20,000 outlines of 6 vertices and of 60, all over the
// grid. Every cell of a window by the plain region test, and row by row by the prepared one; both give the same sums.
#include "damages/building_cells.h"
#include "damages/curves.h"
#include "plane/geometry.h"

#include <algorithm>
#include <array>
#include <benchmark/benchmark.h>
#include <cmath>
#include <numbers>
#include <random>
#include <vector>

namespace {

using namespace gridforge;

constexpr std::int32_t kCells = 5000;
constexpr int kBuildings = 20000;

struct SampledGrid {
    GridHeader header;
    Grid cells;
};

SampledGrid makeGrid()
{
    SampledGrid grid;
    grid.header.nrows = kCells;
    grid.header.ncols = kCells;
    grid.header.xll = 382000;
    grid.header.yll = 6354000;
    grid.header.cellsize = 1;
    grid.header.cellsize8 = 1;
    if (!grid.cells.allocate(kCells, kCells)) {
        return grid;
    }
    std::mt19937 random(1);
    std::uniform_int_distribution<int> chance(0, 9);
    for (float& cell : grid.cells.cells()) {
        cell = chance(random) < 3 ? grid.header.null : 20.0F + static_cast<float>(random() % 4096U) / 1024.0F;
    }
    return grid;
}

const SampledGrid& theGrid()
{
    static const SampledGrid grid = makeGrid();
    return grid;
}

// Ragged rounds of 7 to 12 m radius, as read: with the closing vertex and the slot after it.
std::vector<SampledRegion> makeBuildings(std::int64_t vertices)
{
    std::mt19937_64 random(2);
    std::uniform_real_distribution<double> place(20, kCells - 20);
    std::uniform_real_distribution<double> radius(7, 12);
    std::vector<SampledRegion> buildings(kBuildings);
    for (SampledRegion& building : buildings) {
        const double x = theGrid().header.xll + place(random);
        const double y = theGrid().header.yll + place(random);
        for (std::int64_t i = 0; i < vertices; ++i) {
            const double angle = 2 * std::numbers::pi * static_cast<double>(i) / static_cast<double>(vertices);
            const double r = radius(random);
            building.x.push_back(x + r * std::cos(angle));
            building.y.push_back(y + r * std::sin(angle));
        }
        for (std::size_t i = 0; i < 2; ++i) {
            building.x.push_back(building.x[i]);
            building.y.push_back(building.y[i]);
        }
        building.box = boxAround(building.x, building.y);
    }
    return buildings;
}

damages::InsideCells plainly(const SampledRegion& building, const CellWindow& window, const SampledGrid& grid)
{
    const auto vertices = static_cast<std::int32_t>(building.x.size());
    const std::array<std::int32_t, 1> ir = {vertices - 1};
    damages::InsideCells cells;
    for (std::int32_t row = window.firstRow; row <= window.lastRow; ++row) {
        for (std::int32_t column = window.firstColumn; column <= window.lastColumn; ++column) {
            if (!INSIDE_POLYGON_8(cornerX(grid.header, column), cornerY(grid.header, row), building.x, building.y,
                                  vertices, building.box.xmin, ir, 1) ||
                grid.cells(row, column) == grid.header.null) {
                continue;
            }
            cells.maximum = std::max(cells.maximum, grid.cells(row, column));
            cells.sum += grid.cells(row, column);
            ++cells.count;
        }
    }
    return cells;
}

template <typename Sample>
void measure(benchmark::State& state, const Sample& sample)
{
    const std::vector<SampledRegion> buildings = makeBuildings(state.range(0));
    for (auto _ : state) {
        float sum = 0;
        for (const SampledRegion& building : buildings) {
            sum += sample(building, damages::buildingWindow(building.box, theGrid().header)).sum;
        }
        benchmark::DoNotOptimize(sum);
    }
    InsideWalk walk;
    for (const SampledRegion& building : buildings) {
        const CellWindow window = damages::buildingWindow(building.box, theGrid().header);
        const damages::InsideCells fast =
            damages::cellsInside(building, window, theGrid().header, theGrid().cells, walk);
        const damages::InsideCells plain = plainly(building, window, theGrid());
        if (fast.maximum != plain.maximum || fast.sum != plain.sum || fast.count != plain.count) {
            state.SkipWithError("the two tests differ");
            break;
        }
    }
    state.SetItemsProcessed(state.iterations() * kBuildings);
}

void plainTest(benchmark::State& state)
{
    measure(state, [](const SampledRegion& building, const CellWindow& window) {
        return plainly(building, window, theGrid());
    });
}
BENCHMARK(plainTest)->Arg(6)->Arg(60)->Unit(benchmark::kMillisecond);

void byRows(benchmark::State& state)
{
    InsideWalk walk;
    measure(state, [&walk](const SampledRegion& building, const CellWindow& window) {
        return damages::cellsInside(building, window, theGrid().header, theGrid().cells, walk);
    });
}
BENCHMARK(byRows)->Arg(6)->Arg(60)->Unit(benchmark::kMillisecond);

// Curves of 10 and of 1000 points, depths all over them.
void lookup(benchmark::State& state)
{
    std::vector<float> depths;
    std::vector<float> damages;
    for (std::int64_t i = 0; i < state.range(0); ++i) {
        depths.push_back(static_cast<float>(i));
        damages.push_back(static_cast<float>(i * i));
    }
    std::mt19937 random(3);
    std::uniform_real_distribution<float> place(-1, depths.back() * 0.999F);
    std::vector<float> asked(kBuildings);
    std::generate(asked.begin(), asked.end(), [&] { return place(random); });
    for (auto _ : state) {
        float sum = 0;
        for (const float depth : asked) {
            sum += damages::dmg_curve_lookup(depths, damages, depth);
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * kBuildings);
}
BENCHMARK(lookup)->Arg(10)->Arg(1000)->Unit(benchmark::kMicrosecond);

} // namespace
