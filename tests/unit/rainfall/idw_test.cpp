#include "rainfall/idw.h"

#include "support/child_run.h"
#include "support/process_limits.h"
#include "unit/rainfall/plain_rainfall.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>

namespace gridforge::test {
namespace {

void expectPlain(const rainfall::RfIdwTables& fast, const PlainIdw& plain, const GridHeader& grid, int round)
{
    const rainfall::RfIdwMethod& method = fast.method;
    for (std::int32_t r = 1; r <= grid.nrows; ++r) {
        for (std::int32_t c = 1; c <= grid.ncols; ++c) {
            const double sum = plain.weightSum[plain.cell(r, c)];
            ASSERT_TRUE(sameBits<double>(std::span(&fast.weightSum(r, c), 1), std::span(&sum, 1))) << round;
            const std::int32_t last = method.useAll ? fast.points : plain.count[plain.cell(r, c)];
            if (!method.useAll) {
                ASSERT_EQ(fast.count(r, c), last) << round;
            }
            for (std::int32_t k = 1; k <= last; ++k) {
                const std::size_t place =
                    method.useAll
                        ? fast.rowStart(r) + static_cast<std::size_t>(k - 1) * static_cast<std::size_t>(grid.ncols) +
                              static_cast<std::size_t>(c - 1)
                        : fast.rowStart(r) +
                              static_cast<std::size_t>(c - 1) * static_cast<std::size_t>(method.listLength) +
                              static_cast<std::size_t>(k - 1);
                const auto weight = static_cast<double>(fast.weight[place]);
                const double wanted = plain.weight[plain.place(r, c, k)];
                ASSERT_TRUE(sameBits<double>(std::span(&weight, 1), std::span(&wanted, 1)) ||
                            (std::isnan(weight) && std::isnan(wanted)))
                    << round;
                if (!method.useAll) {
                    ASSERT_EQ(fast.pointNumber[place], plain.pointNumber[plain.place(r, c, k)]) << round;
                }
            }
        }
    }
}

rainfall::RfIdwTables weighed(const GridHeader& grid, const rainfall::RfPoints& points,
                              const rainfall::RfIdwMethod& method)
{
    rainfall::RfIdwTables tables;
    rainfall::allocateTables(grid, method, points.count(), tables);
    rainfall::rf_idw_weights(grid, points, tables);
    return tables;
}

class IdwWeights : public testing::Test {
protected:
    std::mt19937 random_{29};
    double upTo(unsigned n) { return static_cast<double>(random_() % n); }

    // On a lattice of half cells, so that many are equally far and some lie on centres, or anywhere.
    rainfall::RfPoints scattered(int count, const GridHeader& grid, bool onLattice)
    {
        rainfall::RfPoints points;
        for (int i = 0; i < count; ++i) {
            rainfall::RfPoint point;
            const double shift = onLattice ? 0.0 : upTo(1000) / 1000;
            point.x = grid.xll + ((upTo(120) - 10) * 0.5 + shift) * grid.cellsize8;
            point.y = grid.yll + ((upTo(100) - 10) * 0.5 - shift) * grid.cellsize8;
            points.records.push_back(point);
        }
        return points;
    }
};

TEST_F(IdwWeights, OfASubsetAreThoseOfThePlainSearches)
{
    for (int round = 0; round < 120; ++round) {
        const bool large = round % 2 == 0;
        const GridHeader grid = rainfallGrid(1 + round % 41, 53 - round % 17, large ? 293000.25 : 0.0,
                                             large ? 6178000.5 : 0.0, round % 3 == 0 ? 0.7F : 25.0F);
        const rainfall::RfPoints points = scattered(2 + round % 60, grid, round % 4 != 0);
        rainfall::RfIdwMethod method;
        method.useAll = false;
        method.listLength = 1 + static_cast<std::int32_t>(random_()) % (points.count() - 1);
        method.listLength = std::clamp(method.listLength, 1, points.count() - 1);
        method.maxDistance = round % 5 == 0 ? 12.0F * grid.cellsize : -99.0F;
        method.exponent = round % 7 == 0 ? 1.5F : 2.0F;
        expectPlain(weighed(grid, points, method), weighPlainly(grid, points, method), grid, round);
    }
}

TEST_F(IdwWeights, OfPointsFurtherThanAListedOneAreThoseOfThePlainSearches)
{
    const GridHeader grid = rainfallGrid(5, 40, 0, 0, 10.0F);
    const double inf = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    int round = 0;
    for (const double far : {9999990.0, 9999999.0, 10000100.0, 3e7, 1e39, 1e300, inf, nan}) {
        for (const double also : {far, 2 * far, 5.0, 600.0}) {
            rainfall::RfPoints points;
            for (const double x : {far, 3 * far, also, 12.0, also}) {
                rainfall::RfPoint point;
                point.x = x;
                point.y = 20;
                points.records.push_back(point);
            }
            for (const std::int32_t listLength : {1, 2, 3, 4}) {
                for (const float maxDistance : {-99.0F, 50.0F}) {
                    const rainfall::RfIdwMethod method{false, listLength, maxDistance, 2.0F};
                    expectPlain(weighed(grid, points, method), weighPlainly(grid, points, method), grid, ++round);
                }
            }
        }
    }
}

TEST_F(IdwWeights, OfAllPointsAreThoseOfThePlainLoop)
{
    for (int round = 0; round < 60; ++round) {
        const bool large = round % 2 == 0;
        const GridHeader grid = rainfallGrid(1 + round % 11, 13, large ? 293000.25 : 0.0, large ? 6178000.5 : 0.0,
                                             round % 3 == 0 ? 0.7F : 25.0F);
        const rainfall::RfPoints points = scattered(round % 20, grid, round % 4 != 0);
        rainfall::RfIdwMethod method;
        method.listLength = points.count() + round % 3; // more: hyetographs outnumber the points
        method.maxDistance = round % 5 == 0 ? 6.0F * grid.cellsize : 0.0F;
        method.exponent = round % 7 == 0 ? 3.25F : 2.0F;
        expectPlain(weighed(grid, points, method), weighPlainly(grid, points, method), grid, round);
    }
}

TEST(IdwMemory, DistancesThatCannotBeHadEndTheRun)
{
    if (!canLimitMemory()) {
        GTEST_SKIP() << "a sanitizer has memory of its own";
    }
    const ScratchFolder folder;
    const ChildRun run = runInChild(folder, [] {
        const GridHeader grid = rainfallGrid(1, 1, 0, 0, 1.0F);
        rainfall::RfPoints points;
        points.records.resize(2000000); // 8 MB of distances
        rainfall::RfIdwTables tables;
        rainfall::allocateTables(grid, {false, 1, -99.0F, 2.0F}, points.count(), tables);
        limitMemory(4);
        rainfall::rf_idw_weights(grid, points, tables);
    });
    EXPECT_TRUE(run.ended);
    EXPECT_THAT(run.console, testing::HasSubstr("\nERROR - Allocating RAM for storing IDW distances\n"));
}

TEST(IdwMethod, SettlesWhichPointsAreUsed)
{
    const auto settled = [](std::int32_t wanted, std::int32_t points, std::int32_t hyetographs) {
        rainfall::RfSettings settings;
        settings.idwMaxPoints = wanted;
        const rainfall::RfIdwMethod method = rainfall::settleIdwMethod(settings, points, hyetographs);
        return std::pair{method.useAll, method.listLength};
    };
    EXPECT_EQ(settled(0, 4, 3), (std::pair{true, 4}));
    EXPECT_EQ(settled(-1, 3, 4), (std::pair{true, 4}));
    EXPECT_EQ(settled(4, 4, 9), (std::pair{true, 4}));
    EXPECT_EQ(settled(5, 4, 9), (std::pair{true, 4}));
    EXPECT_EQ(settled(3, 4, 9), (std::pair{false, 3}));
}

} // namespace
} // namespace gridforge::test
