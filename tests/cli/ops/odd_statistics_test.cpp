// Whole runs of -stat on grids that hold every odd number, against each statistic cell by cell.
#include "support/consoles.h"
#include "support/odd_grids.h"
#include "support/plain_statistics.h"

#include <cstddef>
#include <functional>
#include <gtest/gtest.h>
#include <optional>
#include <string>

namespace gridforge::test {
namespace {

constexpr float kNullOfGrids = -9999;
PlainStatistic minimumOf(const Values& cell)
{
    return plainExtreme(cell, kNullOfGrids, false);
}

PlainStatistic maximumOf(const Values& cell)
{
    return plainExtreme(cell, kNullOfGrids, true);
}

PlainStatistic meanOf(const Values& cell)
{
    return plainMean(cell, kNullOfGrids);
}

PlainStatistic fractionOf(const Values& cell)
{
    return {plainFraction(cell, kNullOfGrids, kNullOfGrids), 0};
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

    void expectValues(const std::string& output, const std::function<PlainStatistic(const Values&)>& of,
                      float PlainStatistic::*part)
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

    void expectBoth(const std::string& base, const std::function<PlainStatistic(const Values&)>& of)
    {
        expectValues(base + "_Val.flt", of, &PlainStatistic::value);
        expectValues(base + "_Src.flt", of, &PlainStatistic::source);
    }

    void expectRank(const std::string& base, std::size_t rank)
    {
        expectBoth(base, [rank](const Values& cell) { return plainRank(cell, kNullOfGrids, rank); });
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
    expectValues("r_Frac_Wet.flt", fractionOf, &PlainStatistic::value);
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
    expectValues("r_Frac_Wet.flt", fractionOf, &PlainStatistic::value);
    start("-statMedian");
    expectRank("r_Median", medianRank());
    start("-statRank1 -statRank2");
    expectRank("r_Rank1", 1);
    expectRank("r_Rank2", 2);
}

INSTANTIATE_TEST_SUITE_P(Grids, OddStatistics, testing::Values(2, 3, 6, 10));

} // namespace
} // namespace gridforge::test
