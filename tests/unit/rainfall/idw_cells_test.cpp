#include "rainfall/idw_cells.h"

#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

namespace gridforge::test {
namespace {

using testing::ElementsAre;

constexpr float kInfinity = std::numeric_limits<float>::infinity();

// --- All points, on a line of cells at x = 0 and 4, y = 0 ------------------------------------------------------------

struct Weighed {
    std::vector<float> weights;
    std::vector<double> sums;
};

Weighed weighed(const rainfall::RfIdwMethod& method, const std::vector<double>& x, const std::vector<double>& y)
{
    const std::vector<double> centres{0, 4};
    Weighed result{std::vector<float>(x.size() * 2), std::vector<double>(2)};
    rainfall::weighAll(method, {x, y}, centres, 0, result.weights, result.sums);
    return result;
}

TEST(WeighAll, GivesThePowerOfTheDistancePointByPoint)
{
    const Weighed two = weighed({true, 2, -99, 2}, {2, 0}, {0, 2});
    EXPECT_THAT(two.weights, ElementsAre(1 / 4.0F, 1 / 4.0F, 1 / 4.0F, testing::FloatEq(1 / 20.0F)));
    EXPECT_THAT(two.sums, ElementsAre(0.5, testing::DoubleNear(0.3, 1e-7)));
}

TEST(WeighAll, GivesAPointBeyondTheLimitNoWeight)
{
    EXPECT_THAT(weighed({true, 1, 2, 1}, {2}, {0}).weights, ElementsAre(0.5F, 0.5F)); // at the limit
    EXPECT_THAT(weighed({true, 1, 3, 1}, {0.5}, {0}).weights, ElementsAre(2, 0));
    EXPECT_THAT(weighed({true, 1, 0.001F, 1}, {2}, {0}).weights, ElementsAre(0.5F, 0.5F)); // no limit
}

TEST(WeighAll, GivesAPointAtTheCentreAnInfiniteWeight)
{
    EXPECT_THAT(weighed({true, 1, -99, 2}, {4}, {0}).weights, ElementsAre(1 / 16.0F, kInfinity));
}

TEST(WeighAll, CountsMissingPointsAtTheOrigin)
{
    const Weighed three = weighed({true, 3, -99, 1}, {0}, {1}); // two points are missing
    EXPECT_EQ(three.sums[0], std::numeric_limits<double>::infinity());
    EXPECT_NEAR(three.sums[1], 1 / std::sqrt(17.0) + 2 * (1 / 4.0), 1e-7);
}

// --- The nearest points ----------------------------------------------------------------------------------------------

// The points listed for the only cell, whose centre is at 0, 0.
std::vector<std::int32_t> listed(const rainfall::RfIdwMethod& method, const std::vector<double>& x)
{
    rainfall::RfIdwTables tables;
    tables.method = method;
    EXPECT_TRUE(tables.weightSum.allocate(1, 1) && tables.count.allocate(1, 1) &&
                tables.weight.allocate(static_cast<std::size_t>(method.listLength)) &&
                tables.pointNumber.allocate(static_cast<std::size_t>(method.listLength)));
    std::vector<float> distances(x.size());
    const std::vector<double> y(x.size());
    const std::vector<double> centre{0};
    rainfall::NearestPoints({x, y}, distances).listRows({centre, centre}, 1, tables);
    const auto numbers = tables.pointNumber.all().first(static_cast<std::size_t>(tables.count(1, 1)));
    return {numbers.begin(), numbers.end()};
}

TEST(NearestPoints, AreListedFromTheNearestAndTheFirstOfEqualOnes)
{
    EXPECT_THAT(listed({false, 3, -99, 2}, {5, -1, 1, 0.5, 9}), ElementsAre(4, 2, 3));
    EXPECT_THAT(listed({false, 1, -99, 2}, {5, -5}), ElementsAre(1));
}

TEST(NearestPoints, EndAtTheLimit)
{
    EXPECT_THAT(listed({false, 3, 2, 2}, {5, 2, 1, 7}), ElementsAre(3, 2));
    EXPECT_THAT(listed({false, 3, 0.5F, 2}, {5, 2, 1, 7}), ElementsAre());
}

TEST(NearestPoints, FurtherThanAListedOneAreNotFound)
{
    // The first point is listed again in place of the second.
    EXPECT_THAT(listed({false, 2, -99, 2}, {1, 3e7, 3e7}), ElementsAre(1, 1));
}

} // namespace
} // namespace gridforge::test
