// Whole runs of -stat on grids that hold every odd number, against each statistic cell by cell.
#include "support/consoles.h"
#include "support/odd_grids.h"

#include <cstddef>
#include <functional>
#include <gtest/gtest.h>
#include <optional>
#include <string>

namespace gridforge::test {
namespace {

constexpr float kNullOfGrids = -9999;
constexpr float kDry = kNullOfGrids + 0.01F; // and below

struct Statistic {
    float value = kNullOfGrids;
    float source = kNullOfGrids;
};

bool isBefore(float one, float other, bool greatest)
{
    return greatest ? one > other : one < other;
}

// The greatest or the smallest of the values that are numbers, of those above the null if `above`, and its first place from 1.
std::optional<Statistic> extremeOf(const Values& cell, bool greatest, bool above)
{
    std::optional<Statistic> found;
    for (std::size_t k = 0; k < cell.size(); ++k) {
        const bool counts = above ? cell[k] > kNullOfGrids : cell[k] == cell[k];
        if (counts && (!found || isBefore(cell[k], found->value, greatest))) {
            found = Statistic{cell[k], static_cast<float>(k + 1)};
        }
    }
    return found;
}

bool isDryIn(const Values& cell, bool all)
{
    const std::optional<Statistic> tested = extremeOf(cell, all, false);
    return tested && tested->value <= kDry;
}

Statistic minimumOf(const Values& cell)
{
    return isDryIn(cell, false) ? Statistic{} : extremeOf(cell, false, true).value_or(Statistic{});
}

Statistic maximumOf(const Values& cell)
{
    return isDryIn(cell, true) ? Statistic{} : extremeOf(cell, true, true).value_or(Statistic{});
}

// The smallest that is left, the first of those that tie; 9.0e+29 takes its place. What is no number is smaller than nothing, and
// nothing is smaller than it.
std::vector<Statistic> sorted(const Values& cell)
{
    Values left = cell;
    std::vector<Statistic> order;
    while (order.size() < cell.size()) {
        std::size_t smallest = 0;
        for (std::size_t k = 1; k < left.size(); ++k) {
            smallest = left[k] < left[smallest] ? k : smallest;
        }
        order.push_back({left[smallest], static_cast<float>(smallest + 1)});
        left[smallest] = 9.0e+29F;
    }
    return order;
}

Statistic rankOf(const Values& cell, std::size_t rank)
{
    return isDryIn(cell, true) ? Statistic{} : sorted(cell)[rank - 1];
}

Statistic meanOf(const Values& cell)
{
    if (isDryIn(cell, false)) {
        return {};
    }
    float sum = 0;
    for (const float value : cell) {
        sum += value;
    }
    Statistic mean{sum / static_cast<float>(cell.size()), kNullOfGrids};
    for (const Statistic& next : sorted(cell)) {
        if (next.value >= mean.value) {
            mean.source = next.source;
            break;
        }
    }
    return mean;
}

Statistic fractionOf(const Values& cell)
{
    if (isDryIn(cell, true)) {
        return {};
    }
    int wet = 0;
    for (const float value : cell) {
        wet += value > kDry ? 1 : 0;
    }
    return {static_cast<float>(wet) / static_cast<float>(cell.size()), 0};
}

class OddStatistics : public testing::TestWithParam<std::size_t> {
protected:
    // Runs `flags` over as many grids as the parameter says.
    void start(const std::string& flags)
    {
        std::string arguments = "-b " + flags;
        for (std::size_t k = 1; k <= GetParam(); ++k) {
            arguments += " g" + std::to_string(k) + ".flt";
        }
        run_.emplace((arguments + " -out r").c_str());
        for (std::size_t k = 1; k <= GetParam(); ++k) {
            giveOddGrid(*run_, "g" + std::to_string(k), kNullOfGrids, seedOf(k));
        }
        run_->start();
        EXPECT_TRUE(run_->reachedEnd()) << run_->console();
    }

    void expectValues(const std::string& output, const std::function<Statistic(const Values&)>& of,
                      float Statistic::*part)
    {
        SCOPED_TRACE(output);
        std::vector<Values> grids;
        for (std::size_t k = 1; k <= GetParam(); ++k) {
            grids.push_back(oddGrid(kNullOfGrids, seedOf(k)));
        }
        Values expected;
        for (std::size_t i = 0; i < kOddRows * kOddColumns; ++i) {
            Values cell;
            for (const Values& grid : grids) {
                cell.push_back(grid[i]);
            }
            expected.push_back(of(cell).*part);
        }
        expectSameBits(valuesOf(run_->read(output)), expected);
    }

    void expectBoth(const std::string& base, const std::function<Statistic(const Values&)>& of)
    {
        expectValues(base + "_Val.flt", of, &Statistic::value);
        expectValues(base + "_Src.flt", of, &Statistic::source);
    }

    void expectRank(const std::string& base, std::size_t rank)
    {
        expectBoth(base, [rank](const Values& cell) { return rankOf(cell, rank); });
    }

    std::size_t medianRank() const { return GetParam() / 2 + 1; }

private:
    std::uint32_t seedOf(std::size_t k) const { return static_cast<std::uint32_t>(100 * GetParam() + k); }

    std::optional<ToolRun> run_;
};

TEST_P(OddStatistics, OfAllKindsInOneRun)
{
    start("-statAll -statRankAll");
    expectBoth("r_Min", minimumOf);
    expectBoth("r_Max", maximumOf);
    expectBoth("r_Mean", meanOf);
    expectValues("r_Frac_Wet.flt", fractionOf, &Statistic::value);
    for (std::size_t rank = 1; rank <= GetParam(); ++rank) {
        expectRank(rank == medianRank() ? "r_Median" : "r_Rank" + std::to_string(rank), rank);
    }
}

TEST_P(OddStatistics, OneByOne)
{
    start("-statMin");
    expectBoth("r_Min", minimumOf);
    start("-statMax");
    expectBoth("r_Max", maximumOf);
    start("-statMean");
    expectBoth("r_Mean", meanOf);
    start("-statFrac");
    expectValues("r_Frac_Wet.flt", fractionOf, &Statistic::value);
    start("-statMedian");
    expectRank("r_Median", medianRank());
    start("-statRank1 -statRank2");
    expectRank("r_Rank1", 1);
    expectRank("r_Rank2", 2);
}

INSTANTIATE_TEST_SUITE_P(Grids, OddStatistics, testing::Values(2, 3, 6, 10));

} // namespace
} // namespace gridforge::test
