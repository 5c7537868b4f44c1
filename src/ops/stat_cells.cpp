// The order of a cell's values is found by counting for each how many stand before it: n (n - 1) / 2 comparisons,
// without branches, for many cells at once. Cells with values that the plain sort treats in its own way go through that
// sort.
#include "ops/stat_cells.h"

#include "core/computed.h"
#include "ops/stat_cells_avx2.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <limits>
#include <vector>

namespace gridforge::ops {

namespace {

constexpr float kPicked = 9.0e29F;
constexpr float kDryDepth = 0.01F;
constexpr float kNoSource = 0.0F;

// From so many ranks on they are picked together.
constexpr std::size_t kManyRanks = 3;

// Cells that are worked on together: their intermediate results stay in the fastest cache.
constexpr std::size_t kStretch = 512;
using Numbers = std::array<float, kStretch>;
using Flags = std::array<std::int32_t, kStretch>;

float dryLimit(float null)
{
    return null + kDryDepth;
}

// Calls work(stretch of each grid, place of its first cell) along the cells.
template <typename Work>
void overStretches(CellStack grids, Work work)
{
    assert(!grids.empty() && grids.size() <= static_cast<std::size_t>(kMaxStatGrids));
    std::array<std::span<const float>, kMaxStatGrids> stretch;
    const std::size_t cells = grids.front().size();
    for (std::size_t from = 0; from < cells; from += kStretch) {
        const std::size_t count = std::min(kStretch, cells - from);
        for (std::size_t k = 0; k < grids.size(); ++k) {
            stretch[k] = grids[k].subspan(from, count);
        }
        work(CellStack(stretch).first(grids.size()), from);
    }
}

// Steps over the cells of one grid, or of a pair
// ---------------------------------------------------------------------------------------------------------------------
// `__restrict` promises that nothing overlaps, and the loops are kept from being inlined where that would be forgotten: a loop that
// checks for it at run time goes cell by cell more often than not. Cells are loaded before it is known whether they are
// wanted, as the loops would not vectorise otherwise.

template <typename Worse>
[[gnu::noinline]] void takeBetter(const float* __restrict cells, std::size_t count, float null, float source,
                                  float* __restrict best, float* __restrict sources, Worse worse)
{
    for (std::size_t i = 0; i < count; ++i) {
        const float cell = cells[i];
        const float kept = best[i];
        const float from = sources[i];
        const bool enters = (cell > null) & !worse(cell, kept);
        best[i] = enters ? cell : kept;
        sources[i] = enters ? source : from;
    }
}

// One more where a cell is not above the limit.
[[gnu::noinline]] void addDry(const float* __restrict cells, std::size_t count, float limit,
                              std::int32_t* __restrict dry)
{
    for (std::size_t i = 0; i < count; ++i) {
        dry[i] += cells[i] <= limit ? 1 : 0;
    }
}

// One more where a cell is above the limit.
[[gnu::noinline]] void addWet(const float* __restrict cells, std::size_t count, float limit,
                              std::int32_t* __restrict wet)
{
    for (std::size_t i = 0; i < count; ++i) {
        wet[i] += cells[i] > limit ? 1 : 0;
    }
}

// Each cell of the second grid is taken to stand before that of the first, an earlier grid, until that is seen not to
// hold.
[[gnu::noinline]] void orderPair(const float* __restrict a, const float* __restrict b, std::size_t count,
                                 std::int32_t* __restrict beforeA, std::int32_t* __restrict beforeB)
{
    for (std::size_t i = 0; i < count; ++i) {
        const std::int32_t inOrder = a[i] <= b[i] ? 1 : 0;
        beforeA[i] -= inOrder;
        beforeB[i] += inOrder;
    }
}

// The cells whose place is the one wanted.
[[gnu::noinline]] void takePlaced(const float* __restrict cells, std::size_t count, float source,
                                  const std::int32_t* __restrict places, std::int32_t wanted, float* __restrict values,
                                  float* __restrict sources)
{
    for (std::size_t i = 0; i < count; ++i) {
        const float cell = cells[i];
        const float kept = values[i];
        const float from = sources[i];
        const bool hit = places[i] == wanted;
        values[i] = hit ? cell : kept;
        sources[i] = hit ? source : from;
    }
}

// The lowest of the cells that reach the mean.
[[gnu::noinline]] void takeReaching(const float* __restrict cells, std::size_t count, float source,
                                    const float* __restrict mean, float* __restrict lowest, float* __restrict sources)
{
    for (std::size_t i = 0; i < count; ++i) {
        const float cell = cells[i];
        const float kept = lowest[i];
        const float from = sources[i];
        const bool enters = (cell >= mean[i]) & (cell < kept);
        lowest[i] = enters ? cell : kept;
        sources[i] = enters ? source : from;
    }
}

// What holds is written, the rest is null.
[[gnu::noinline]] void writeWhere(std::size_t count, const std::int32_t* __restrict holds, float null,
                                  const float* __restrict from, float* __restrict to)
{
    for (std::size_t i = 0; i < count; ++i) {
        const float value = from[i];
        to[i] = holds[i] != 0 ? value : null;
    }
}

// Steps over a stretch of all grids
// ---------------------------------------------------------------------------------------------------------------------

// The best of the values above null, and its first source; kNoSource if none is. What is kept starts as NaN, so
// the first value always wins.
template <typename Worse>
void findBest(CellStack grids, float null, Numbers& best, Numbers& sources, Worse worse)
{
    const std::size_t count = grids.front().size();
    std::fill_n(sources.begin(), count, kNoSource);
    std::fill_n(best.begin(), count, std::numeric_limits<float>::quiet_NaN());
    for (std::size_t k = 0; k < grids.size(); ++k) {
        takeBetter(grids[k].data(), count, null, static_cast<float>(k + 1), best.data(), sources.data(), worse);
    }
}

// In how many grids each cell is dry.
void countDry(CellStack grids, float limit, Flags& dry)
{
    const std::size_t count = grids.front().size();
    std::fill_n(dry.begin(), count, 0);
    for (const std::span<const float> grid : grids) {
        addDry(grid.data(), count, limit, dry.data());
    }
}

// In how many grids each cell is above the limit.
void countWet(CellStack grids, float limit, Flags& wet)
{
    const std::size_t count = grids.front().size();
    std::fill_n(wet.begin(), count, 0);
    for (const std::span<const float> grid : grids) {
        addWet(grid.data(), count, limit, wet.data());
    }
}

// Does any cell hold what only the plain sort can find the place of: not a number, or as large as its mark?
bool needsPlainSort(CellStack grids)
{
    std::int32_t odd = 0;
    for (const std::span<const float> grid : grids) {
        for (const float cell : grid) {
            odd |= cell < kPicked ? 0 : 1;
        }
    }
    return odd != 0;
}

std::span<const float> gather(CellStack grids, std::size_t i, std::array<float, kMaxStatGrids>& values)
{
    for (std::size_t k = 0; k < grids.size(); ++k) {
        values[k] = grids[k][i];
    }
    return std::span<const float>(values).first(grids.size());
}

bool allDry(std::span<const float> values, float limit)
{
    const bool anyWet = std::ranges::any_of(values, [limit](float value) { return value > limit; });
    const bool anyDry = std::ranges::any_of(values, [limit](float value) { return value <= limit; });
    return anyDry && !anyWet;
}

// How many values stand before each in the ascending order.
void countBefore(CellStack grids, std::span<Flags> before)
{
    const std::size_t count = grids.front().size();
    const std::size_t n = grids.size();
    for (std::size_t j = 0; j < n; ++j) {
        std::fill_n(before[j].begin(), count, static_cast<std::int32_t>(n - 1 - j));
    }
    for (std::size_t j = 0; j < n; ++j) {
        for (std::size_t k = j + 1; k < n; ++k) {
            orderPair(grids[j].data(), grids[k].data(), count, before[j].data(), before[k].data());
        }
    }
}

void pickRank(CellStack grids, std::span<const Flags> before, const Flags& wet, float null, const RankResult& result,
              std::size_t from)
{
    const std::size_t count = grids.front().size();
    Numbers values;
    Numbers sources;
    std::fill_n(values.begin(), count, null);
    std::fill_n(sources.begin(), count, null);
    for (std::size_t k = 0; k < grids.size(); ++k) {
        takePlaced(grids[k].data(), count, static_cast<float>(k + 1), before[k].data(), result.rank - 1, values.data(),
                   sources.data());
    }
    writeWhere(count, wet.data(), null, values.data(), result.values.data() + from);
    writeWhere(count, wet.data(), null, sources.data(), result.sources.data() + from);
}

// The grid that each place came from is looked up cell by cell, which costs less than pickRank from three ranks on.
void pickRanks(CellStack grids, std::span<const Flags> before, const Flags& wet, float null,
               std::span<const RankResult> results, std::size_t from)
{
    std::array<std::size_t, kMaxStatGrids> gridAt{};
    for (std::size_t i = 0; i < grids.front().size(); ++i) {
        for (std::size_t k = 0; k < grids.size(); ++k) {
            gridAt[static_cast<std::size_t>(before[k][i])] = k;
        }
        const bool blank = wet[i] == 0;
        for (const RankResult& result : results) {
            const std::size_t k = gridAt[static_cast<std::size_t>(result.rank - 1)];
            result.values[from + i] = blank ? null : grids[k][i];
            result.sources[from + i] = blank ? null : static_cast<float>(k + 1);
        }
    }
}

void rankPlainly(CellStack grids, float null, std::span<const RankResult> results, std::size_t from)
{
    std::array<float, kMaxStatGrids> values;
    for (std::size_t i = 0; i < grids.front().size(); ++i) {
        const std::span<const float> cell = gather(grids, i, values);
        const bool blank = allDry(cell, dryLimit(null));
        const SortedCell sorted = blank ? SortedCell{} : sortCell(cell);
        for (const RankResult& result : results) {
            const auto place = static_cast<std::size_t>(result.rank - 1);
            result.values[from + i] = blank ? null : sorted.values[place];
            result.sources[from + i] = blank ? null : static_cast<float>(sorted.sources[place]);
        }
    }
}

void rankStretch(CellStack grids, float null, std::span<const RankResult> results, std::size_t from,
                 std::span<Flags> before)
{
    if (needsPlainSort(grids)) {
        rankPlainly(grids, null, results, from);
        return;
    }
    Flags wet;
    countWet(grids, dryLimit(null), wet);
    countBefore(grids, before);
    if (results.size() >= kManyRanks) {
        pickRanks(grids, before, wet, null, results, from);
        return;
    }
    for (const RankResult& result : results) {
        pickRank(grids, before, wet, null, result, from);
    }
}

// Ranks the first cells of a stretch and returns how many these are: none if one of them needs the plain sort.
std::size_t rankLanes(CellStack grids, float null, std::span<const RankResult> results, std::size_t from)
{
    std::size_t done = 0;
    for (const RankResult& result : results) {
        const auto picked = pickRankLanes(grids, null, dryLimit(null), kPicked, result, from);
        if (!picked) {
            return 0;
        }
        done = *picked;
    }
    return done;
}

// The grid whose value first reaches the mean in ascending order: the lowest of those that reach it.
void findReaching(CellStack grids, const Numbers& mean, Numbers& sources)
{
    const std::size_t count = grids.front().size();
    Numbers lowest;
    std::fill_n(lowest.begin(), count, kPicked);
    std::fill_n(sources.begin(), count, kNoSource);
    for (std::size_t k = 0; k < grids.size(); ++k) {
        takeReaching(grids[k].data(), count, static_cast<float>(k + 1), mean.data(), lowest.data(), sources.data());
    }
}

void findReachingPlainly(CellStack grids, const Numbers& mean, Numbers& sources)
{
    std::array<float, kMaxStatGrids> values;
    for (std::size_t i = 0; i < grids.front().size(); ++i) {
        const SortedCell sorted = sortCell(gather(grids, i, values));
        sources[i] = kNoSource;
        for (std::size_t k = 0; k < grids.size(); ++k) {
            if (sorted.values[k] >= mean[i]) {
                sources[i] = static_cast<float>(sorted.sources[k]);
                break;
            }
        }
    }
}

void takeMeans(CellStack grids, Numbers& mean)
{
    const std::size_t count = grids.front().size();
    std::fill_n(mean.begin(), count, 0.0F);
    for (const std::span<const float> grid : grids) {
        for (std::size_t i = 0; i < count; ++i) {
            mean[i] += grid[i];
        }
    }
    const auto n = static_cast<float>(grids.size());
    for (std::size_t i = 0; i < count; ++i) {
        mean[i] = stored(mean[i] / n);
    }
}

} // namespace

SortedCell sortCell(std::span<const float> values)
{
    assert(values.size() <= static_cast<std::size_t>(kMaxStatGrids));
    std::array<float, kMaxStatGrids> left{};
    std::ranges::copy(values, left.begin());
    SortedCell sorted;
    for (std::size_t k = 0; k < values.size(); ++k) {
        std::size_t smallest = 0;
        for (std::size_t j = 1; j < values.size(); ++j) {
            if (left[j] < left[smallest]) {
                smallest = j;
            }
        }
        sorted.values[k] = left[smallest];
        sorted.sources[k] = static_cast<std::int32_t>(smallest) + 1;
        left[smallest] = kPicked;
    }
    return sorted;
}

void findMinimum(CellStack grids, float null, std::span<float> values, std::span<float> sources)
{
    overStretches(grids, [&](CellStack stretch, std::size_t from) {
        const std::size_t count = stretch.front().size();
        Flags holds;
        Numbers best;
        Numbers bestSources;
        countDry(stretch, dryLimit(null), holds);
        findBest(stretch, null, best, bestSources, [](float cell, float kept) { return cell >= kept; });
        for (std::size_t i = 0; i < count; ++i) {
            const bool noneDry = holds[i] == 0;
            const bool found = bestSources[i] != kNoSource;
            holds[i] = (noneDry & found) ? 1 : 0;
        }
        writeWhere(count, holds.data(), null, best.data(), values.data() + from);
        writeWhere(count, holds.data(), null, bestSources.data(), sources.data() + from);
    });
}

void findMaximum(CellStack grids, float null, std::span<float> values, std::span<float> sources)
{
    overStretches(grids, [&](CellStack stretch, std::size_t from) {
        const std::size_t count = stretch.front().size();
        const float limit = dryLimit(null);
        Flags holds;
        Numbers best;
        Numbers bestSources;
        findBest(stretch, null, best, bestSources, [](float cell, float kept) { return cell <= kept; });
        for (std::size_t i = 0; i < count; ++i) {
            holds[i] = best[i] > limit ? 1 : 0;
        }
        writeWhere(count, holds.data(), null, best.data(), values.data() + from);
        writeWhere(count, holds.data(), null, bestSources.data(), sources.data() + from);
    });
}

void findMean(CellStack grids, float null, std::span<float> values, std::span<float> sources)
{
    overStretches(grids, [&](CellStack stretch, std::size_t from) {
        const std::size_t count = stretch.front().size();
        Flags holds;
        Numbers mean;
        Numbers reaching;
        countDry(stretch, dryLimit(null), holds);
        takeMeans(stretch, mean);
        if (needsPlainSort(stretch)) {
            findReachingPlainly(stretch, mean, reaching);
        } else {
            findReaching(stretch, mean, reaching);
        }
        for (std::size_t i = 0; i < count; ++i) {
            holds[i] = holds[i] == 0 ? 1 : 0;
        }
        writeWhere(count, holds.data(), null, mean.data(), values.data() + from);
        for (std::size_t i = 0; i < count; ++i) {
            holds[i] &= reaching[i] != kNoSource ? 1 : 0;
        }
        writeWhere(count, holds.data(), null, reaching.data(), sources.data() + from);
    });
}

void findFraction(CellStack grids, float null, std::span<float> values)
{
    const float limit = dryLimit(null);
    const auto n = static_cast<float>(grids.size());
    overStretches(grids, [&](CellStack stretch, std::size_t from) {
        const std::size_t count = stretch.front().size();
        Flags dry;
        Flags wet;
        countDry(stretch, limit, dry);
        countWet(stretch, limit, wet);
        float* const out = values.data() + from;
        for (std::size_t i = 0; i < count; ++i) {
            const float fraction = static_cast<float>(wet[i]) / n;
            const bool someDry = dry[i] != 0;
            const bool noneWet = wet[i] == 0;
            out[i] = (someDry & noneWet) ? out[i] : fraction;
        }
    });
}

void findRanks(CellStack grids, float null, std::span<const RankResult> results)
{
    std::vector<Flags> before(grids.size());
    overStretches(grids, [&](CellStack stretch, std::size_t from) {
        const std::size_t done = results.size() < kManyRanks ? rankLanes(stretch, null, results, from) : 0;
        if (done == stretch.front().size()) {
            return;
        }
        std::array<std::span<const float>, kMaxStatGrids> rest;
        for (std::size_t k = 0; k < stretch.size(); ++k) {
            rest[k] = stretch[k].subspan(done);
        }
        rankStretch(CellStack(rest).first(stretch.size()), null, results, from + done, before);
    });
}

} // namespace gridforge::ops
