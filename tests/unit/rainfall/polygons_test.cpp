#include "rainfall/polygons.h"

#include "unit/rainfall/plain_rainfall.h"

#include <gtest/gtest.h>
#include <string>
#include <tuple>
#include <vector>

namespace gridforge::test {
namespace {

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
