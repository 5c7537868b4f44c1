// The searches of the sampling operations on a made terrain of 3000 by 3000 cells of 1 m, a fifth of them null in patches.
// Where there is a plain form, both are checked for the same result first.
#include "plane/across_line.h"
#include "plane/cell_window.h"
#include "run/sampled_region.h"
#include "sampling/cell_extremes.h"
#include "sampling/cell_search.h"
#include "sampling/ground_level.h"
#include "sampling/line_vertices.h"
#include "sampling/lp_cells.h"
#include "sampling/na_cells.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <numbers>
#include <random>
#include <vector>

namespace gridforge {
namespace {

constexpr std::int32_t kSide = 3000;
constexpr int kPoints = 10000;
constexpr int kPlainPoints = 20;

struct Made {
    GridHeader header;
    Grid cells;
    std::vector<double> x; // of the points, which are 600 from the edge at least
    std::vector<double> y;
};

// A valley that falls to the south, with hills and noise.
const Made& made()
{
    static const Made terrain = [] {
        Made m;
        m.header.nrows = kSide;
        m.header.ncols = kSide;
        m.header.xll = 0;
        m.header.yll = 0;
        m.header.cellsize = 1.0F;
        m.header.cellsize8 = 1.0;
        if (!m.cells.allocate(kSide, kSide)) {
            std::abort();
        }
        std::mt19937 random(1);
        std::uniform_real_distribution<float> noise(0, 0.5F);
        for (std::int32_t row = 1; row <= kSide; ++row) {
            for (std::int32_t column = 1; column <= kSide; ++column) {
                const double hills = 5 * std::sin(row * 0.01) * std::cos(column * 0.013);
                const double valley = std::abs(column - kSide / 2.0) * 0.01 + row * 0.002;
                m.cells(row, column) = hills > 3.2 ? m.header.null : static_cast<float>(valley + hills) + noise(random);
            }
        }
        std::uniform_real_distribution<double> place(600, kSide - 600);
        for (int i = 0; i < kPoints; ++i) {
            m.x.push_back(place(random));
            m.y.push_back(place(random));
        }
        return m;
    }();
    return terrain;
}

sampling::CellSearch searchOf(std::size_t point, std::int64_t distance)
{
    const Made& m = made();
    return sampling::searchAround(m.header, m.x[point], m.y[point], static_cast<float>(distance));
}

// --- -cp -------------------------------------------------------------------------------------------------------------

void nearest(benchmark::State& state)
{
    const Made& m = made();
    for (auto _ : state) {
        sampling::EmptyTiles tiles(m.header, m.cells);
        for (std::size_t i = 0; i < kPoints; ++i) {
            benchmark::DoNotOptimize(nearestCell(searchOf(i, state.range(0)), m.header, m.cells, tiles));
        }
    }
    state.SetItemsProcessed(state.iterations() * kPoints);
}
BENCHMARK(nearest)->Arg(20)->Arg(1000)->Unit(benchmark::kMillisecond);

// On a grid of nulls.
void nearestOfNothing(benchmark::State& state)
{
    const Made& m = made();
    Grid dry;
    if (!dry.allocate(kSide, kSide)) {
        std::abort();
    }
    std::ranges::fill(dry.cells(), m.header.null);
    for (auto _ : state) {
        sampling::EmptyTiles tiles(m.header, dry);
        for (std::size_t i = 0; i < kPoints; ++i) {
            benchmark::DoNotOptimize(nearestCell(searchOf(i, state.range(0)), m.header, dry, tiles));
        }
    }
    state.SetItemsProcessed(state.iterations() * kPoints);
}
BENCHMARK(nearestOfNothing)->Arg(20)->Arg(1000)->Unit(benchmark::kMillisecond);

// Every cell of the window, the polygon asked last.
sampling::FoundExtremes plainExtremes(const sampling::CellSearch& search, const GridHeader& header, const Grid& cells)
{
    sampling::FoundExtremes found;
    float lowest = sampling::kNoValue;
    float highest = -sampling::kNoValue;
    for (std::int32_t row = search.window.firstRow; row <= search.window.lastRow; ++row) {
        const double y = cornerY(header, row);
        for (std::int32_t column = search.window.firstColumn; column <= search.window.lastColumn; ++column) {
            const float value = cells(row, column);
            if (value == header.null || !(value < lowest || value > highest)) {
                continue;
            }
            const double x = cornerX(header, column);
            if (!insideSearchPolygon(search.polygon, x, y)) {
                continue;
            }
            if (value < lowest) {
                lowest = value;
                found.lowest = sampling::FoundCell{value, 0, x, y};
            }
            if (value > highest) {
                highest = value;
                found.highest = sampling::FoundCell{value, 0, x, y};
            }
        }
    }
    return found;
}

bool samePlace(const std::optional<sampling::FoundCell>& a, const std::optional<sampling::FoundCell>& b)
{
    return a.has_value() == b.has_value() && (!a || (a->value == b->value && a->x == b->x && a->y == b->y));
}

void extremes(benchmark::State& state)
{
    const Made& m = made();
    sampling::ExtremeSearch checked(m.header, m.cells);
    for (std::size_t i = 0; i < kPlainPoints; ++i) {
        const sampling::CellSearch search = searchOf(i, state.range(0));
        const sampling::FoundExtremes found = checked.find(search);
        const sampling::FoundExtremes plain = plainExtremes(search, m.header, m.cells);
        if (!samePlace(found.lowest, plain.lowest) || !samePlace(found.highest, plain.highest)) {
            state.SkipWithError("the two forms differ");
            return;
        }
    }
    for (auto _ : state) {
        sampling::ExtremeSearch search(m.header, m.cells);
        for (std::size_t i = 0; i < kPoints; ++i) {
            benchmark::DoNotOptimize(search.find(searchOf(i, state.range(0))));
        }
    }
    state.SetItemsProcessed(state.iterations() * kPoints);
}
BENCHMARK(extremes)->Arg(20)->Arg(100)->Arg(1000)->Unit(benchmark::kMillisecond);

void extremesOfOnePoint(benchmark::State& state)
{
    const Made& m = made();
    std::size_t i = 0;
    for (auto _ : state) {
        sampling::ExtremeSearch search(m.header, m.cells);
        benchmark::DoNotOptimize(search.find(searchOf(i++ % kPoints, state.range(0))));
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(extremesOfOnePoint)->Arg(20)->Arg(1000)->Unit(benchmark::kMillisecond);

void plainExtremesOfAFew(benchmark::State& state)
{
    const Made& m = made();
    for (auto _ : state) {
        for (std::size_t i = 0; i < kPlainPoints; ++i) {
            benchmark::DoNotOptimize(plainExtremes(searchOf(i, state.range(0)), m.header, m.cells));
        }
    }
    state.SetItemsProcessed(state.iterations() * kPlainPoints);
}
BENCHMARK(plainExtremesOfAFew)->Arg(20)->Arg(100)->Arg(1000)->Unit(benchmark::kMillisecond);

// --- -lp and -brkline ------------------------------------------------------------------------------------------------

void profileVertices(benchmark::State& state)
{
    const Made& m = made();
    const std::int32_t half = samplesToSide(m.header, static_cast<float>(state.range(0)), 0.5F);
    const std::int32_t full = samplesToSide(m.header, static_cast<float>(state.range(0)), 1.0F);
    for (auto _ : state) {
        for (std::size_t i = 0; i < kPoints; ++i) {
            const AcrossLine line = acrossLine(m.header, m.x[i], m.y[i], static_cast<float>(i % 360));
            benchmark::DoNotOptimize(sampling::lowestSample(line, m.header, m.cells, {-half, half}));
            benchmark::DoNotOptimize(sampling::highestSample(line, m.header, m.cells, {0, full}));
            benchmark::DoNotOptimize(sampling::highestSample(line, m.header, m.cells, {-full, 0}));
        }
    }
    state.SetItemsProcessed(state.iterations() * kPoints);
}
BENCHMARK(profileVertices)->Arg(20)->Arg(1000)->Unit(benchmark::kMillisecond);

void breaklineAcross(benchmark::State& state)
{
    const Made& m = made();
    const std::int32_t samples = samplesToSide(m.header, static_cast<float>(state.range(0)), 0.5F);
    for (auto _ : state) {
        for (std::size_t i = 0; i < kPoints; ++i) {
            const AcrossLine line = acrossLine(m.header, m.x[i], m.y[i], static_cast<float>(i % 360));
            benchmark::DoNotOptimize(
                levelAcross(line, m.header, m.cells, {-samples, samples}, sampling::LevelRule::highest));
        }
    }
    state.SetItemsProcessed(state.iterations() * kPoints);
}
BENCHMARK(breaklineAcross)->Arg(20)->Unit(benchmark::kMillisecond);

void breaklineCircle(benchmark::State& state)
{
    const Made& m = made();
    const auto width = static_cast<float>(state.range(0));
    const sampling::LevelRule rule = state.range(1) == 0 ? sampling::LevelRule::mean : sampling::LevelRule::highest;
    InsideWalk walk;
    for (auto _ : state) {
        for (std::size_t i = 0; i < kPoints; ++i) {
            benchmark::DoNotOptimize(levelInCircle(sampling::searchPolygon(m.x[i], m.y[i], width),
                                                   searchWindow(m.header, m.x[i], m.y[i], width), m.header, m.cells,
                                                   rule, walk));
        }
    }
    state.SetItemsProcessed(state.iterations() * kPoints);
}
BENCHMARK(breaklineCircle)->Args({5, 0})->Args({20, 0})->Args({20, 1})->Args({200, 0})->Unit(benchmark::kMillisecond);

// --- -na -------------------------------------------------------------------------------------------------------------

void nodalArea(benchmark::State& state)
{
    const Made& m = made();
    gis::Coordinates ring;
    ring.np = static_cast<std::int32_t>(state.range(0)) + 2;
    ring.reserve(ring.np);
    for (std::size_t i = 0; i < static_cast<std::size_t>(ring.np); ++i) {
        const double angle = 2 * std::numbers::pi * static_cast<double>(i) / static_cast<double>(state.range(0));
        const double radius = 1000 + 400 * std::sin(7 * angle);
        ring.x[i] = kSide / 2.0 + radius * std::cos(angle);
        ring.y[i] = kSide / 2.0 + radius * std::sin(angle);
    }
    const SampledRegion region = run::sampledRegion(ring);
    const CellWindow window = regionWindow(region, m.header);
    std::size_t cells = 0;
    for (auto _ : state) {
        std::vector<float> values;
        sampling::collectInside(region, m.header, m.cells, window, 10000000, values);
        cells = values.size();
        benchmark::DoNotOptimize(sampling::countByHeight(values, sampling::heightLadder(-5.0F, 25.0F)));
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(cells));
}
BENCHMARK(nodalArea)->Arg(12)->Arg(1000)->Arg(100000)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace gridforge
