#include "sampling/sampled_layer.h"

#include "support/child_run.h"
#include "support/consoles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

namespace gridforge::test {
namespace {

using testing::ElementsAre;

constexpr std::int32_t kEnough = 100;

gis::Coordinates lineOf(std::vector<double> x, std::vector<double> y)
{
    gis::Coordinates read;
    read.np = static_cast<std::int32_t>(x.size());
    read.x = std::move(x);
    read.y = std::move(y);
    read.reserve(read.np);
    return read;
}

TEST(InsertVertices, ASegmentOfExactlyTheSpacingGetsNone)
{
    const sampling::LineVertices line = sampling::insertVertices(lineOf({0, 10}, {5, 5}), 10.0F, kEnough);
    EXPECT_THAT(line.x, ElementsAre(0, 10));
    EXPECT_THAT(line.y, ElementsAre(5, 5));
}

TEST(InsertVertices, EachSegmentCountsAgainstTheMost)
{
    const gis::Coordinates read = lineOf({0, 25, 50}, {0, 0, 0}); // two vertices in each: 3 + 2 + 2
    EXPECT_TRUE(sampling::withVertices(read, 10.0F, 7));
    EXPECT_FALSE(sampling::withVertices(read, 10.0F, 6));
    EXPECT_FALSE(sampling::withVertices(read, 10.0F, 5)); // of which none is left for the last segment
}

TEST(InsertVertices, ASegmentOfTwoAndAHalfSpacingsGetsTwo)
{
    const sampling::LineVertices line = sampling::insertVertices(lineOf({0, 0}, {0, 25}), 10.0F, kEnough);
    EXPECT_THAT(line.y, ElementsAre(0, 25 * (1.0 / 3.0), 25 * (2.0 / 3.0), 25));
}

TEST(InsertVertices, EachSegmentIsDividedByItself)
{
    const sampling::LineVertices line = sampling::insertVertices(lineOf({0, 12, 15, 27}, {0, 0, 4, 4}), 6.0F, kEnough);
    EXPECT_THAT(line.x, ElementsAre(0, 4, 8, 12, 15, 19, 23, 27)); // 12 is twice the spacing: two more, so thirds
    EXPECT_THAT(line.y, ElementsAre(0, 0, 0, 0, 4, 4, 4, 4));
}

TEST(InsertVertices, ANegativeOrMissingSpacingInsertsNothing)
{
    EXPECT_EQ(sampling::insertVertices(lineOf({0, 12}, {0, 0}), -1.0F, kEnough).count(), 2U);
    EXPECT_EQ(
        sampling::insertVertices(lineOf({0, 12}, {0, 0}), std::numeric_limits<float>::quiet_NaN(), kEnough).count(),
        2U);
    EXPECT_EQ(sampling::insertVertices(lineOf({3, 3}, {4, 4}), 0.0F, kEnough).count(),
              2U); // no length, so nothing to divide
}

TEST(InsertVertices, TakesLinesOfOneVertexAndNone)
{
    EXPECT_THAT(sampling::insertVertices(lineOf({3}, {4}), 1.0F, kEnough).x, ElementsAre(3));
    EXPECT_EQ(sampling::insertVertices(gis::Coordinates{}, 1.0F, kEnough).count(), 0U);
}

TEST(InsertVertices, AsManyVerticesAsAllowedPassAndOneMoreEndsTheRun)
{
    const gis::Coordinates line = lineOf({0, 12, 15}, {0, 0, 4});
    EXPECT_EQ(sampling::insertVertices(line, 6.0F, 5).count(), 5U); // two go into the segment of 12
    const ScratchFolder folder;
    const ChildRun run = runInChild(folder, [&line] { sampling::insertVertices(line, 6.0F, 4); });
    EXPECT_EQ(run.console, "ERROR - Number of vertices in polyline exceeds maximum: 4\n" + kExits);
}

} // namespace
} // namespace gridforge::test
