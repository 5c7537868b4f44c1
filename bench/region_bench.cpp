// The region test over a window of 1000 by 1000 cells, for regions of 12 to 100,000 vertices: every cell by the plain
// routine (on every 50th row, as it is slow), and row by row by the prepared region, its preparation counted in.
#include "plane/geometry.h"
#include "plane/region_rows.h"

#include <benchmark/benchmark.h>
#include <cmath>
#include <cstdint>
#include <numbers>
#include <random>
#include <vector>

namespace {

using namespace gridforge;

constexpr int kCells = 1000;
constexpr int kPlainStep = 50;

struct Star {
    std::vector<double> x;
    std::vector<double> y;
    std::vector<std::int32_t> ir;
    double xmin = 0;

    std::int32_t np() const { return static_cast<std::int32_t>(x.size()); }
};

Star star(std::int64_t vertices)
{
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> jitter(0.9, 1);
    Star region;
    for (std::int64_t i = 0; i < vertices; ++i) {
        const double angle = 2 * std::numbers::pi * static_cast<double>(i) / static_cast<double>(vertices);
        const double radius = kCells / 2.0 * jitter(random);
        region.x.push_back(500 + radius * std::cos(angle));
        region.y.push_back(500 + radius * std::sin(angle));
    }
    for (std::size_t i = 0; i < 2; ++i) {
        region.x.push_back(region.x[i]);
        region.y.push_back(region.y[i]);
    }
    region.ir = {static_cast<std::int32_t>(vertices) + 1};
    return region;
}

void plain(benchmark::State& state)
{
    const Star region = star(state.range(0));
    for (auto _ : state) {
        int inside = 0;
        for (int row = 0; row < kCells; row += kPlainStep) {
            for (int column = 0; column < kCells; ++column) {
                inside += INSIDE_POLYGON_8(column, row, region.x, region.y, region.np(), region.xmin, region.ir, 1);
            }
        }
        benchmark::DoNotOptimize(inside);
    }
    state.SetItemsProcessed(state.iterations() * kCells * (kCells / kPlainStep));
}
BENCHMARK(plain)->Arg(12)->Arg(1000)->Arg(100000)->Unit(benchmark::kMillisecond);

void prepared(benchmark::State& state)
{
    const Star drawn = star(state.range(0));
    std::vector<double> px(kCells);
    for (std::size_t i = 0; i < px.size(); ++i) {
        px[i] = static_cast<double>(i);
    }
    std::vector<std::uint8_t> inside(kCells);
    PreparedRegion region;
    for (auto _ : state) {
        prepareRing(drawn.x, drawn.y, drawn.xmin, region);
        for (int row = 0; row < kCells; ++row) {
            insideRegionRow(region, row, px, inside);
            benchmark::DoNotOptimize(inside.data());
        }
        if (!insideRegion(region, 500, 500) ||
            INSIDE_POLYGON_8(499, 77, drawn.x, drawn.y, drawn.np(), 0, drawn.ir, 1) != insideRegion(region, 499, 77)) {
            state.SkipWithError("the prepared region is wrong");
        }
    }
    state.SetItemsProcessed(state.iterations() * kCells * kCells);
}
BENCHMARK(prepared)->Arg(12)->Arg(1000)->Arg(100000)->Unit(benchmark::kMillisecond);

} // namespace
