#include "rainfall/point_search.h"

#include "unit/rainfall/plain_rainfall.h"

#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <tuple>
#include <vector>

namespace gridforge::test {
namespace {

rainfall::RfPoints pointsAlong(const std::vector<double>& x)
{
    rainfall::RfPoints points;
    for (const double place : x) {
        points.records.push_back({{}, place, 5, 0});
    }
    return points;
}

TEST(SnappedPoint, IsTheNearestAndTheFirstOfSeveral)
{
    const rainfall::RfPoints points = pointsAlong({0, 10, 10.0004, 10, 20});
    std::vector<float> distances(5);
    EXPECT_EQ(rainfall::snappedPoint(10, 5, points, distances), 2);
    EXPECT_EQ(rainfall::snappedPoint(10.0004, 5, points, distances), 3);
    EXPECT_EQ(rainfall::snappedPoint(20, 5, points, distances), 5);
}

TEST(SnappedPoint, IsMissingFromAMillimetreOn)
{
    const rainfall::RfPoints points = pointsAlong({0});
    std::vector<float> distances(1);
    EXPECT_EQ(rainfall::snappedPoint(0.0009, 5, points, distances), 1);
    EXPECT_EQ(rainfall::snappedPoint(static_cast<double>(0.001F), 5, points, distances), 0);
    EXPECT_EQ(rainfall::snappedPoint(std::numeric_limits<double>::quiet_NaN(), 5, points, distances), 0);
    EXPECT_EQ(rainfall::snappedPoint(0, 5, {}, {}), 0);
}

TEST(PointsInside, AreCountedAndTheLastGivesItsRecord)
{
    const std::vector<double> x = {0, 4, 4, 0, 0, 4};
    const std::vector<double> y = {0, 0, 4, 4, 0, 0};
    const rainfall::RfRegion region = rainfall::rfRegion(x, y);
    const GridHeader grid = rainfallGrid(5, 5, 0, 0, 1.0F);
    rainfall::RfPoints points;
    const auto found = [&] {
        const rainfall::RfPointsInside inside = rainfall::pointsInside(region, grid, points);
        return std::tuple{inside.count, inside.last.name, inside.last.f1, inside.last.f2};
    };
    EXPECT_EQ(found(), (std::tuple{std::int64_t{0}, std::string(), 0.0F, 0.0F}));
    points.records = {{{"outside", 9, 9}, 5, 2, 0}};
    EXPECT_EQ(found(), (std::tuple{std::int64_t{0}, std::string(), 0.0F, 0.0F}));
    points.records.push_back({{"one", 2, 3}, 1, 1, 0});
    EXPECT_EQ(found(), (std::tuple{std::int64_t{1}, std::string("one"), 2.0F, 3.0F}));
    points.records.push_back({{"", 4, 5}, 3, 3, 0}); // without a name it is found all the same
    points.records.push_back({{"beyond", 9, 9}, 2, -1, 0});
    EXPECT_EQ(found(), (std::tuple{std::int64_t{2}, std::string(), 4.0F, 5.0F}));
}

} // namespace
} // namespace gridforge::test
