#include "sampling/search_polygon.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <gtest/gtest.h>

namespace gridforge::test {
namespace {

TEST(SearchPolygon, StartsInTheEastAndGoesRoundEvery30Degrees)
{
    const sampling::SearchPolygon polygon = sampling::searchPolygon(100, 200, 10.0F);
    EXPECT_EQ(polygon.x[0], 105);
    EXPECT_EQ(polygon.y[0], 200);
    EXPECT_EQ(polygon.x[3], 100);
    EXPECT_EQ(polygon.y[3], 205);
    EXPECT_EQ(polygon.x[6], 95);
    EXPECT_EQ(polygon.y[6], 200);
    EXPECT_EQ(polygon.x[9], 100);
    EXPECT_EQ(polygon.y[9], 195);
    EXPECT_NEAR(polygon.x[1], 100 + 5 * std::sqrt(3.0) / 2, 1e-6);
    EXPECT_NEAR(polygon.y[1], 200 + 2.5, 1e-6);
    EXPECT_EQ(polygon.xmin, 95);
}

TEST(SearchPolygon, OffsetsAreSinglePrecision)
{
    const sampling::SearchPolygon polygon = sampling::searchPolygon(0, 0, 10.0F);
    EXPECT_EQ(polygon.x[1], static_cast<double>(5.0F * 0.866025403784438647F));
    EXPECT_NE(polygon.x[1], 5 * 0.866025403784438647);
}

TEST(SearchPolygon, AroundNowhereHasTheBitsOfTheQuietNotANumber)
{
    const auto odd = std::bit_cast<double>(0xfff8123456789abcU);
    const sampling::SearchPolygon polygon = sampling::searchPolygon(odd, odd, 10.0F);
    EXPECT_EQ(std::bit_cast<std::uint64_t>(polygon.x[5]), 0x7ff8000000000000U);
    EXPECT_EQ(std::bit_cast<std::uint64_t>(polygon.y[13]), 0x7ff8000000000000U);
}

TEST(SearchPolygon, RepeatsTheFirstTwoVertices)
{
    const sampling::SearchPolygon polygon = sampling::searchPolygon(1, 2, 3.0F);
    EXPECT_EQ(polygon.x[12], polygon.x[0]);
    EXPECT_EQ(polygon.y[12], polygon.y[0]);
    EXPECT_EQ(polygon.x[13], polygon.x[1]);
    EXPECT_EQ(polygon.y[13], polygon.y[1]);
}

TEST(SearchPolygon, HasSidesWhereTheCircleBulges)
{
    const sampling::SearchPolygon polygon = sampling::searchPolygon(0, 0, 2.0F);
    const double apothem = std::cos(std::acos(-1.0) / 12); // of a polygon of 12 sides around radius 1: 0.966
    const double c = std::cos(std::acos(-1.0) / 12);
    const double s = std::sin(std::acos(-1.0) / 12);
    EXPECT_TRUE(sampling::insideSearchPolygon(polygon, 0.99 * apothem * c, 0.99 * apothem * s));
    EXPECT_FALSE(sampling::insideSearchPolygon(polygon, 1.01 * apothem * c, 1.01 * apothem * s));
    EXPECT_TRUE(sampling::insideSearchPolygon(polygon, 0.1, 0.05));
    EXPECT_FALSE(sampling::insideSearchPolygon(polygon, 0.9, 0.9));
}

} // namespace
} // namespace gridforge::test
