#include "network/insert_vertices.h"

#include "host/console.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>
#include <vector>

namespace gridforge::test {
namespace {

using testing::DoubleEq;
using testing::DoubleNear;
using testing::ElementsAre;
using testing::Pointwise;

network::NbcSection withPoints(const std::vector<double>& x, const std::vector<double>& y, float distance,
                               float spacing, std::optional<float> material = {})
{
    network::NbcSections sections;
    sections.all.emplace_back();
    sections.all[0].x = x;
    sections.all[0].y = y;
    sections.all[0].distance = distance;
    testing::internal::CaptureStdout();
    network::nbc_insert_vertices(sections, spacing, material);
    flushConsole();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Inserting additional vertices along sections...\n   Done\n");
    return sections.all[0];
}

TEST(InsertVertices, EqualStepsBetweenTheEnds)
{
    // 10 / 3 = 3 points, so four steps of 2.5.
    const network::NbcSection section = withPoints({0, 10}, {5, 5}, 0, 3);
    EXPECT_THAT(section.pointX, ElementsAre(0, 2.5, 5, 7.5, 10));
    EXPECT_THAT(section.pointY, ElementsAre(5, 5, 5, 5, 5));
    EXPECT_THAT(section.pointZ, ElementsAre(-9999, -9999, -9999, -9999, -9999));
    EXPECT_THAT(section.pointMaterial, ElementsAre(-9999, -9999, -9999, -9999, -9999));
}

TEST(InsertVertices, AnInnerVertexStandsTwice)
{
    const network::NbcSection section = withPoints({0, 4, 4}, {0, 0, 3}, 0, 4);
    EXPECT_THAT(section.pointX, ElementsAre(0, 4, 4, 4));
    EXPECT_THAT(section.pointY, ElementsAre(0, 0, 0, 3));
}

TEST(InsertVertices, ASegmentAsLongAsTheSpacingStays)
{
    EXPECT_THAT(withPoints({0, 4}, {0, 0}, 0, 4).pointX, ElementsAre(0, 4));
    EXPECT_THAT(withPoints({0, 8}, {0, 0}, 0, 4).pointX, Pointwise(DoubleNear(1e-12), {0.0, 8 / 3.0, 16 / 3.0, 8.0}));
}

TEST(InsertVertices, ASectionsOwnDistanceGoesFirst)
{
    EXPECT_THAT(withPoints({0, 4}, {0, 0}, 3, 1).pointX, ElementsAre(0, 2, 4));
    // Up to 0.001 it is none.
    EXPECT_THAT(withPoints({0, 4}, {0, 0}, 0.001F, 3).pointX, ElementsAre(0, 2, 4));
}

TEST(InsertVertices, ADistanceBelow0KeepsTheVertices)
{
    const network::NbcSection section = withPoints({0, 40, 50}, {0, 1, 2}, -0.5F, 1, 6.5F);
    EXPECT_THAT(section.pointX, ElementsAre(0, 40, 50));
    EXPECT_THAT(section.pointY, ElementsAre(0, 1, 2));
    EXPECT_THAT(section.pointMaterial, ElementsAre(6.5F, 6.5F, 6.5F));
}

TEST(InsertVertices, StepsGoThroughSinglePrecision)
{
    // The difference 0.1 is rounded to single precision before it is shared out.
    const double wide = 0.1 + 2;
    const network::NbcSection section = withPoints({2, wide}, {0, 0}, 0, 0.09F);
    EXPECT_THAT(section.pointX,
                ElementsAre(2.0, DoubleEq(2 + static_cast<double>(static_cast<float>(wide - 2)) * 0.5), wide));
}

TEST(InsertVertices, TheNumberOfStepsIsOneOfSinglePrecision)
{
    // The single-precision 0.7 by 0.1 is 6.99999978, which single precision rounds to 7: seven points between the ends.
    EXPECT_EQ(withPoints({0, 0.7}, {0, 0}, 0, 0.1F).points(), 2 + 7);
}

TEST(InsertVertices, OddSpacingsInsertNothing)
{
    EXPECT_THAT(withPoints({0, 4}, {0, 0}, 0, -3).pointX, ElementsAre(0, 4));
    EXPECT_THAT(withPoints({0, 4}, {0, 0}, 0, std::numeric_limits<float>::quiet_NaN()).pointX, ElementsAre(0, 4));
    EXPECT_TRUE(withPoints({7}, {7}, 0, 1).pointX.empty());
}

} // namespace
} // namespace gridforge::test
