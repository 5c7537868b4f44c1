// Kernels of the cell-wise operations beside their plain forms, on cells of which three in ten are null. Each pair is checked
// for the same bits before it is timed.
#include "ops/classify_cells.h"
#include "ops/count_cells.h"
#include "ops/cutoff_cells.h"
#include "ops/dif_cells.h"
#include "ops/flood_extent_cells.h"
#include "ops/fuzzy_cells.h"
#include "ops/histogram_cells.h"
#include "ops/max_min_cells.h"
#include "ops/multiply_cells.h"
#include "ops/resize_cells.h"
#include "ops/stat_cells.h"
#include "ops/transform_cells.h"
#include "plane/cell_array.h"
#include "run/rows.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <cstring>
#include <random>
#include <utility>
#include <vector>

namespace gridforge {
namespace {

constexpr float kNull = -9999.0F;
constexpr std::int32_t kSide = 1000;
constexpr std::size_t kCells = std::size_t{kSide} * kSide;

std::vector<float> madeCells(std::uint32_t seed)
{
    std::mt19937 random(seed);
    std::vector<float> cells(kCells);
    for (float& cell : cells) {
        cell = random() % 10 < 3 ? kNull : static_cast<float>(random() % 100000) * 5.0e-5F;
    }
    return cells;
}

bool sameBits(std::span<const float> a, std::span<const float> b)
{
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size_bytes()) == 0;
}

// Times one of two forms that fill `result`, once both have given the same.
template <typename Fast, typename Plain>
void compare(benchmark::State& state, std::size_t results, Fast fast, Plain plain)
{
    std::vector<float> first(results, kNull);
    std::vector<float> second(results, kNull);
    fast(first);
    plain(second);
    if (!sameBits(first, second)) {
        state.SkipWithError("the two forms differ");
        return;
    }
    for (auto _ : state) {
        if (state.range(0) == 0) {
            fast(first);
        } else {
            plain(first);
        }
        benchmark::DoNotOptimize(first.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * static_cast<std::int64_t>(kCells));
}

void subtract(benchmark::State& state)
{
    const std::vector<float> a = madeCells(1);
    const std::vector<float> b = madeCells(2);
    std::vector<float> classes(kCells);
    compare(
        state, kCells,
        [&](std::vector<float>& out) {
            ops::subtractWetDry({a, kNull}, {b, kNull}, out, classes);
        },
        [&](std::vector<float>& out) {
            for (std::size_t i = 0; i < kCells; ++i) {
                out[i] = kNull;
                classes[i] = kNull;
                if (a[i] != kNull && b[i] != kNull) {
                    out[i] = a[i] - b[i];
                } else if (a[i] != kNull) {
                    classes[i] = ops::kOnlyFirstActive;
                } else if (b[i] != kNull) {
                    classes[i] = ops::kOnlySecondActive;
                }
            }
        });
}

void cutoff(benchmark::State& state)
{
    const std::vector<float> a = madeCells(1);
    compare(
        state, kCells, [&](std::vector<float>& out) { ops::keepFrom(a, 1.0F, kNull, out); },
        [&](std::vector<float>& out) {
            for (std::size_t i = 0; i < kCells; ++i) {
                out[i] = kNull;
                if (a[i] >= 1.0F) {
                    out[i] = a[i];
                }
            }
        });
}

void transform(benchmark::State& state)
{
    const std::vector<float> a = madeCells(1);
    compare(
        state, kCells, [&](std::vector<float>& out) { ops::transformCells(a, 0.3F, 7.0F, kNull, out); },
        [&](std::vector<float>& out) {
            for (std::size_t i = 0; i < kCells; ++i) {
                out[i] = kNull;
                if (a[i] != kNull) {
                    out[i] = a[i] * 0.3F + 7.0F;
                }
            }
        });
}

void extent(benchmark::State& state)
{
    const std::vector<float> a = madeCells(1);
    compare(
        state, kCells, [&](std::vector<float>& out) { ops::markWet(a, kNull, out); },
        [&](std::vector<float>& out) {
            for (std::size_t i = 0; i < kCells; ++i) {
                out[i] = a[i] == kNull || std::abs(a[i]) < ops::kWetFrom ? kNull : 1.0F;
            }
        });
}

void fuzzy(benchmark::State& state)
{
    const std::vector<float> a = madeCells(1);
    compare(
        state, kCells, [&](std::vector<float>& out) { ops::countActiveCells(a, kNull, out); },
        [&](std::vector<float>& out) {
            for (std::size_t i = 0; i < kCells; ++i) {
                if (a[i] != kNull) {
                    out[i] = out[i] == kNull ? 1.0F : out[i] + 1.0F;
                }
            }
        });
}

// The second grid of a list, with the sources.
void maximum(benchmark::State& state)
{
    const std::vector<float> a = madeCells(1);
    const std::vector<float> b = madeCells(2);
    std::vector<float> sources(kCells);
    compare(
        state, kCells,
        [&](std::vector<float>& out) {
            std::ranges::copy(a, out.begin());
            ops::takeMaximum(b, kNull, 2, out, sources);
        },
        [&](std::vector<float>& out) {
            std::ranges::copy(a, out.begin());
            for (std::size_t i = 0; i < kCells; ++i) {
                if (b[i] != kNull && b[i] > out[i]) {
                    out[i] = b[i];
                    sources[i] = 2;
                }
            }
        });
}

void multiply(benchmark::State& state)
{
    const std::vector<float> a = madeCells(1);
    const std::vector<float> b = madeCells(2);
    compare(
        state, kCells, [&](std::vector<float>& out) { ops::multiplyCells(a, kNull, b, kNull, out); },
        [&](std::vector<float>& out) {
            for (std::size_t i = 0; i < kCells; ++i) {
                out[i] = kNull;
                if (a[i] != kNull && b[i] != kNull) {
                    out[i] = a[i] * b[i];
                }
            }
        });
}

void count(benchmark::State& state)
{
    const std::vector<float> a = madeCells(1);
    compare(
        state, 1, [&](std::vector<float>& out) { out[0] = static_cast<float>(ops::countAbove(a, kNull, 1.0F)); },
        [&](std::vector<float>& out) {
            out[0] = static_cast<float>(std::ranges::count_if(a, [](float cell) { return cell != kNull && cell > 1; }));
        });
}

std::vector<float> limitsOf(std::int64_t classes)
{
    std::vector<float> limits;
    for (std::int64_t i = 1; i <= classes; ++i) {
        limits.push_back(5.0F * static_cast<float>(i) / static_cast<float>(classes + 1));
    }
    return limits;
}

std::size_t plainClass(float cell, const std::vector<float>& limits)
{
    std::size_t i = 0;
    while (i < limits.size() && !(cell <= limits[i])) {
        ++i;
    }
    return i;
}

void classify(benchmark::State& state)
{
    const std::vector<float> a = madeCells(1);
    const std::vector<float> limits = limitsOf(state.range(1));
    compare(
        state, kCells, [&](std::vector<float>& out) { ops::classifyCells(a, kNull, limits, out); },
        [&](std::vector<float>& out) {
            for (std::size_t i = 0; i < kCells; ++i) {
                out[i] = a[i] == kNull ? kNull : static_cast<float>(plainClass(a[i], limits) + 1);
            }
        });
}

void histogram(benchmark::State& state)
{
    const std::vector<float> a = madeCells(1);
    const std::vector<float> limits = limitsOf(state.range(1));
    const auto asFloats = [](const std::vector<std::int64_t>& counts, std::vector<float>& out) {
        std::ranges::transform(counts, out.begin(), [](std::int64_t count) { return static_cast<float>(count); });
    };
    compare(
        state, limits.size() + 1,
        [&](std::vector<float>& out) {
            std::vector<std::int64_t> counts(limits.size() + 1);
            ops::countBins(a, kNull, limits, counts);
            asFloats(counts, out);
        },
        [&](std::vector<float>& out) {
            std::vector<std::int64_t> counts(limits.size() + 1);
            for (const float cell : a) {
                if (cell != kNull) {
                    ++counts[plainClass(cell, limits)];
                }
            }
            asFloats(counts, out);
        });
}

void resizeAverage(benchmark::State& state)
{
    const auto factor = static_cast<std::int32_t>(state.range(1));
    Grid grid;
    Grid output;
    const ops::Tiling tiling = ops::tilingOf(kSide, kSide, factor);
    if (!grid.allocate(kSide, kSide) || !output.allocate(tiling.rows, tiling.columns)) {
        state.SkipWithError("no memory");
        return;
    }
    std::ranges::copy(madeCells(1), grid.cells().begin());
    ops::TileRow tiles = ops::emptyTiles(ops::ResizeMethod::average, tiling, kNull);
    const auto tile = [&](std::int32_t r, std::int32_t c) {
        double sum = 0;
        std::int32_t count = 0;
        for (std::int32_t i = (r - 1) * factor + 1; i <= std::min(r * factor, kSide); ++i) {
            for (std::int32_t j = (c - 1) * factor + 1; j <= std::min(c * factor, kSide); ++j) {
                if (grid(i, j) != kNull) {
                    sum += static_cast<double>(grid(i, j));
                    ++count;
                }
            }
        }
        return count > 0 ? static_cast<float>(sum / static_cast<double>(static_cast<float>(count))) : kNull;
    };
    compare(
        state, output.cells().size(),
        [&](std::vector<float>& out) {
            for (std::int32_t r = 1; r <= tiling.rows; ++r) {
                const ops::CellRows under = ops::rowsUnder(tiling, r);
                ops::takeRows(run::rowsOf(std::as_const(grid), under.first, under.last), tiles);
                ops::finishTiles(tiles, output.row(r));
            }
            std::ranges::copy(output.cells(), out.begin());
        },
        [&](std::vector<float>& out) {
            auto at = out.begin();
            for (std::int32_t r = tiling.rows; r >= 1; --r) {
                for (std::int32_t c = 1; c <= tiling.columns; ++c) {
                    *at++ = tile(r, c);
                }
            }
        });
}

struct Stack {
    std::vector<std::vector<float>> grids;
    std::vector<std::span<const float>> spans;

    explicit Stack(std::int64_t count)
    {
        for (std::int64_t k = 0; k < count; ++k) {
            grids.push_back(madeCells(static_cast<std::uint32_t>(k)));
        }
        spans.assign(grids.begin(), grids.end());
    }
    std::span<const float> at(std::size_t i, std::vector<float>& values) const
    {
        for (std::size_t k = 0; k < grids.size(); ++k) {
            values[k] = grids[k][i];
        }
        return values;
    }
};

void statMinimum(benchmark::State& state)
{
    const Stack stack(state.range(1));
    std::vector<float> sources(kCells);
    std::vector<float> values(stack.grids.size());
    compare(
        state, kCells, [&](std::vector<float>& out) { ops::findMinimum(stack.spans, kNull, out, sources); },
        [&](std::vector<float>& out) {
            for (std::size_t i = 0; i < kCells; ++i) {
                const auto cell = stack.at(i, values);
                const auto least = std::ranges::min_element(cell);
                const bool dry = *least <= kNull + 0.01F;
                out[i] = dry ? kNull : *least;
                sources[i] = dry ? kNull : static_cast<float>(least - cell.begin() + 1);
            }
        });
}

// The ranks from 1 to range(2), by counting and by the sort of each cell.
void statRanks(benchmark::State& state)
{
    const Stack stack(state.range(1));
    const auto ranks = static_cast<std::size_t>(state.range(2));
    std::vector<float> sources(kCells * ranks);
    std::vector<float> values(stack.grids.size());
    compare(
        state, kCells * ranks,
        [&](std::vector<float>& out) {
            std::vector<ops::RankResult> results;
            for (std::size_t p = 0; p < ranks; ++p) {
                results.push_back({static_cast<std::int32_t>(p) + 1, std::span(out).subspan(p * kCells, kCells),
                                   std::span(sources).subspan(p * kCells, kCells)});
            }
            findRanks(stack.spans, kNull, results);
        },
        [&](std::vector<float>& out) {
            for (std::size_t i = 0; i < kCells; ++i) {
                const auto cell = stack.at(i, values);
                const bool dry = *std::ranges::max_element(cell) <= kNull + 0.01F;
                const ops::SortedCell sorted = ops::sortCell(cell);
                for (std::size_t p = 0; p < ranks; ++p) {
                    out[p * kCells + i] = dry ? kNull : sorted.values[p];
                    sources[p * kCells + i] = dry ? kNull : static_cast<float>(sorted.sources[p]);
                }
            }
        });
}

void statMean(benchmark::State& state)
{
    const Stack stack(state.range(1));
    std::vector<float> sources(kCells);
    std::vector<float> values(stack.grids.size());
    compare(
        state, kCells, [&](std::vector<float>& out) { ops::findMean(stack.spans, kNull, out, sources); },
        [&](std::vector<float>& out) {
            for (std::size_t i = 0; i < kCells; ++i) {
                const auto cell = stack.at(i, values);
                out[i] = kNull;
                if (*std::ranges::min_element(cell) > kNull + 0.01F) {
                    float sum = 0;
                    for (const float value : cell) {
                        sum += value;
                    }
                    out[i] = sum / static_cast<float>(cell.size());
                    sources[i] = static_cast<float>(ops::sortCell(cell).sources[0]);
                }
            }
        });
}

// The first argument: 0 times the kernel, 1 its plain form.
BENCHMARK(subtract)->Arg(0)->Arg(1);
BENCHMARK(cutoff)->Arg(0)->Arg(1);
BENCHMARK(transform)->Arg(0)->Arg(1);
BENCHMARK(extent)->Arg(0)->Arg(1);
BENCHMARK(fuzzy)->Arg(0)->Arg(1);
BENCHMARK(maximum)->Arg(0)->Arg(1);
BENCHMARK(multiply)->Arg(0)->Arg(1);
BENCHMARK(count)->Arg(0)->Arg(1);
BENCHMARK(classify)->ArgsProduct({{0, 1}, {5, 100}});
BENCHMARK(histogram)->ArgsProduct({{0, 1}, {5, 100}});
BENCHMARK(resizeAverage)->ArgsProduct({{0, 1}, {2, 3, 50}});
BENCHMARK(statMinimum)->ArgsProduct({{0, 1}, {2, 8}});
BENCHMARK(statMean)->ArgsProduct({{0, 1}, {8}});
BENCHMARK(statRanks)->ArgsProduct({{0, 1}, {2, 8, 10}, {1}});
BENCHMARK(statRanks)->ArgsProduct({{0, 1}, {8}, {8}});

} // namespace
} // namespace gridforge
