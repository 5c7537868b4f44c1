#include "ops/stat_cells.h"

#include "support/odd_cells.h"
#include "support/plain_statistics.h"

#include <algorithm>
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>

namespace gridforge::test {
namespace {

using testing::ElementsAre;

constexpr float kNullA = -9999.0F;

// The cells of several grids; at(i) are the values of one cell in list order.
struct Stack {
    std::vector<std::vector<float>> grids;

    std::vector<std::span<const float>> spans() const { return {grids.begin(), grids.end()}; }
    std::size_t cells() const { return grids.front().size(); }
    std::vector<float> at(std::size_t i) const
    {
        std::vector<float> values;
        for (const std::vector<float>& grid : grids) {
            values.push_back(grid[i]);
        }
        return values;
    }
};

struct Result {
    std::vector<float> values;
    std::vector<float> sources;

    explicit Result(std::size_t cells) : values(cells, 77.0F), sources(cells, 77.0F) {}
};

using Find = void (*)(ops::CellStack, float, std::span<float>, std::span<float>);

Result found(Find find, const Stack& stack, float null = kNullA)
{
    Result result(stack.cells());
    find(stack.spans(), null, result.values, result.sources);
    return result;
}

Result ranked(const Stack& stack, std::int32_t rank, float null = kNullA)
{
    Result result(stack.cells());
    const std::array<ops::RankResult, 1> wanted{{{rank, result.values, result.sources}}};
    ops::findRanks(stack.spans(), null, wanted);
    return result;
}

// Cell by cell: all active, a null in the second grid, all null, ties.
const Stack kThree{{{3, 8, kNullA, 5}, {1, kNullA, kNullA, 5}, {2, 4, kNullA, 5}}};

TEST(FindMinimum, ANullInAnyGridBlanksTheCell)
{
    const Result result = found(ops::findMinimum, kThree);
    EXPECT_THAT(result.values, ElementsAre(1, kNullA, kNullA, 5));
    EXPECT_THAT(result.sources, ElementsAre(2, kNullA, kNullA, 1));
}

TEST(FindMaximum, OnlyNullInAllGridsBlanksTheCell)
{
    const Result result = found(ops::findMaximum, kThree);
    EXPECT_THAT(result.values, ElementsAre(3, 8, kNullA, 5));
    EXPECT_THAT(result.sources, ElementsAre(1, 1, kNullA, 1));
}

TEST(FindMean, TheSourceIsTheLowestValueThatReachesIt)
{
    const Result result = found(ops::findMean, kThree);
    EXPECT_THAT(result.values, ElementsAre((3.0F + 1.0F + 2.0F) / 3.0F, kNullA, kNullA, 5));
    EXPECT_THAT(result.sources, ElementsAre(3, kNullA, kNullA, 1)); // the mean 2 is reached by the third grid's 2
}

TEST(FindMean, HasNoSourceWhereRoundingLiftsItAboveAllValues)
{
    // 0.1 summed up seven times in single precision and divided by seven gives more than 0.1.
    float sum = 0;
    for (int k = 0; k < 7; ++k) {
        sum += 0.1F;
    }
    ASSERT_GT(sum / 7.0F, 0.1F);
    const Stack stack{std::vector<std::vector<float>>(7, {0.1F})};
    const Result result = found(ops::findMean, stack);
    EXPECT_THAT(result.values, ElementsAre(sum / 7.0F));
    EXPECT_THAT(result.sources, ElementsAre(kNullA));
}

TEST(FindRanks, NullsTakePartInTheOrder)
{
    EXPECT_THAT(ranked(kThree, 1).values, ElementsAre(1, kNullA, kNullA, 5));
    EXPECT_THAT(ranked(kThree, 1).sources,
                ElementsAre(2, 2, kNullA, 1)); // the null's own grid, but null where all are dry
    EXPECT_THAT(ranked(kThree, 2).values, ElementsAre(2, 4, kNullA, 5));
    EXPECT_THAT(ranked(kThree, 2).sources, ElementsAre(3, 3, kNullA, 2));
    EXPECT_THAT(ranked(kThree, 3).values, ElementsAre(3, 8, kNullA, 5));
    EXPECT_THAT(ranked(kThree, 3).sources, ElementsAre(1, 1, kNullA, 3));
}

TEST(FindRanks, ANullAmongTheDataTakesTheRankOfItsSize)
{
    const float null = 100.0F;
    const Stack stack{{{20000, 5}, {null, 300}, {5, null}}};
    EXPECT_THAT(ranked(stack, 1, null).values, ElementsAre(5, 5));
    EXPECT_THAT(ranked(stack, 2, null).values, ElementsAre(null, null));
    EXPECT_THAT(ranked(stack, 2, null).sources, ElementsAre(2, 3));
    EXPECT_THAT(ranked(stack, 3, null).values, ElementsAre(20000, 300));
}

TEST(StatCells, ANullAboveTheDataBlanksEveryStatistic)
{
    const float null = 9999.0F;
    const Stack stack{{{5, null, 7}, {1, 4, 7}, {3, 2, 7}}}; // without a null too: no value reaches above it
    for (const Find find : {ops::findMinimum, ops::findMaximum, ops::findMean}) {
        EXPECT_THAT(found(find, stack, null).values, testing::Each(null));
        EXPECT_THAT(found(find, stack, null).sources, testing::Each(null));
    }
    for (const std::int32_t rank : {1, 2, 3}) {
        EXPECT_THAT(ranked(stack, rank, null).values, testing::Each(null));
        EXPECT_THAT(ranked(stack, rank, null).sources, testing::Each(null));
    }
    std::vector<float> fraction(3, null);
    ops::findFraction(stack.spans(), null, fraction);
    EXPECT_THAT(fraction, testing::Each(null));
}

TEST(FindFraction, CountsWhatIsAboveTheNull)
{
    std::vector<float> values(4, 77.0F);
    ops::findFraction(kThree.spans(), kNullA, values);
    EXPECT_THAT(values, ElementsAre(1, 2.0F / 3.0F, 77, 1)); // a dry cell stays as it was
}

TEST(DryLimit, IsAHundredthAboveTheNullInSingles)
{
    const float limit = kNullA + 0.01F;
    const Stack at{{{limit}, {limit}}};
    const Stack above{{{std::nextafter(limit, 0.0F)}, {std::nextafter(limit, 0.0F)}}};
    EXPECT_THAT(found(ops::findMinimum, at).values, ElementsAre(kNullA));
    EXPECT_THAT(found(ops::findMinimum, above).values, ElementsAre(std::nextafter(limit, 0.0F)));
    EXPECT_THAT(found(ops::findMaximum, at).values, ElementsAre(kNullA));
    EXPECT_THAT(found(ops::findMean, at).values, ElementsAre(kNullA));
    EXPECT_THAT(ranked(at, 1).values, ElementsAre(kNullA));
    EXPECT_THAT(ranked(above, 1).sources, ElementsAre(1));
}

TEST(SortCell, KeepsListOrderOfEqualValues)
{
    const ops::SortedCell sorted = ops::sortCell(std::vector<float>{5, 3, 5, 3});
    EXPECT_THAT(std::vector<float>(sorted.values.begin(), sorted.values.begin() + 4), ElementsAre(3, 3, 5, 5));
    EXPECT_THAT(std::vector<int>(sorted.sources.begin(), sorted.sources.begin() + 4), ElementsAre(2, 4, 1, 3));
}

TEST(SortCell, ValuesOfTheMarksSizeGiveWayToIt)
{
    // The 4 of grid 1 is picked first and its place then holds 9.0e29, which is less than 1.0e30.
    const ops::SortedCell sorted = ops::sortCell(std::vector<float>{4, 1.0e30F});
    EXPECT_EQ(sorted.values[1], 9.0e29F);
    EXPECT_EQ(sorted.sources[1], 1);
}

// --- Beside the plain form of each statistic -------------------------------------------------------------------------

template <typename Plain>
void expectPlain(const Stack& stack, const Result& result, Plain plain)
{
    Result expected(stack.cells());
    for (std::size_t i = 0; i < stack.cells(); ++i) {
        const PlainStatistic one = plain(stack.at(i));
        expected.values[i] = one.value;
        expected.sources[i] = one.source;
    }
    EXPECT_EQ(bitsOf(result.values), bitsOf(expected.values));
    EXPECT_EQ(bitsOf(result.sources), bitsOf(expected.sources));
}

void expectAllPlain(const Stack& stack, float null)
{
    expectPlain(stack, found(ops::findMinimum, stack, null),
                [null](const std::vector<float>& v) { return plainExtreme(v, null, false); });
    expectPlain(stack, found(ops::findMaximum, stack, null),
                [null](const std::vector<float>& v) { return plainExtreme(v, null, true); });
    expectPlain(stack, found(ops::findMean, stack, null),
                [null](const std::vector<float>& v) { return plainMean(v, null); });
    for (std::size_t rank = 1; rank <= stack.grids.size(); ++rank) {
        expectPlain(stack, ranked(stack, static_cast<std::int32_t>(rank), null),
                    [null, rank](const std::vector<float>& v) { return plainRank(v, null, rank); });
    }
    std::vector<float> fraction(stack.cells(), 77.0F);
    std::vector<float> expected;
    ops::findFraction(stack.spans(), null, fraction);
    for (std::size_t i = 0; i < stack.cells(); ++i) {
        expected.push_back(plainFraction(stack.at(i), null, 77.0F));
    }
    EXPECT_EQ(bitsOf(fraction), bitsOf(expected));
}

TEST(StatCells, AgreeWithThePlainFormsOnTiesAndNulls)
{
    for (const float null : {kNullA, 0.0F, 2.0F, 9999.0F}) {
        for (std::uint32_t n = 2; n <= 10; ++n) {
            Stack stack;
            for (std::uint32_t k = 0; k < n; ++k) {
                stack.grids.push_back(tiedCells(1537, null, 100 * n + k));
            }
            SCOPED_TRACE(testing::Message() << n << " grids, null " << null);
            expectAllPlain(stack, null);
        }
    }
}

TEST(StatCells, AgreeWithThePlainFormsOnOddValues)
{
    for (std::uint32_t n = 2; n <= 10; ++n) {
        Stack stack;
        for (std::uint32_t k = 0; k < n; ++k) {
            stack.grids.push_back(oddCells(700, kNullA, 1000 * n + k));
        }
        SCOPED_TRACE(testing::Message() << n << " grids");
        expectAllPlain(stack, kNullA);
    }
}

TEST(FindRanks, SeveralRanksAtOnceEachInItsPlace)
{
    for (std::uint32_t n = 2; n <= 10; ++n) {
        Stack stack;
        for (std::uint32_t k = 0; k < n; ++k) {
            stack.grids.push_back(tiedCells(1100, kNullA, 10 * n + k));
        }
        // All ranks in falling order, and the first two.
        for (const std::uint32_t count : {n, 2U}) {
            std::vector<Result> results(count, Result(stack.cells()));
            std::vector<ops::RankResult> wanted;
            for (std::uint32_t p = 0; p < count; ++p) {
                const auto rank = static_cast<std::int32_t>(count - p);
                wanted.push_back({rank, results[p].values, results[p].sources});
            }
            ops::findRanks(stack.spans(), kNullA, wanted);
            for (std::uint32_t p = 0; p < count; ++p) {
                const Result alone = ranked(stack, wanted[p].rank);
                EXPECT_EQ(results[p].values, alone.values);
                EXPECT_EQ(results[p].sources, alone.sources);
            }
        }
    }
}

TEST(FindMean, ANotANumberThatIsComputedHasTheBitsOfTheQuietOne)
{
    const std::vector<float> highest(kVectorsAndRest, kInfinity);
    const std::vector<float> odd(kVectorsAndRest, kOddNaN);
    const Result result = found(ops::findMean, {{highest, odd}});
    EXPECT_TRUE(allQuietNaN(result.values));
    EXPECT_THAT(result.sources, testing::Each(kNullA)); // no value reaches it
}

} // namespace
} // namespace gridforge::test
