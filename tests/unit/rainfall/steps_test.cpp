#include "rainfall/steps.h"

#include "support/odd_cells.h"
#include "unit/rainfall/plain_rainfall.h"

#include <gtest/gtest.h>
#include <random>

namespace gridforge::test {
namespace {

class RainfallSteps : public testing::Test {
protected:
    RainfallSteps() : grid(rainfallGrid(13, 17, 100, 200, 10.0F))
    {
        for (int h = 0; h < 7; ++h) {
            rainfall::RfHyetograph hyetograph;
            for (int t = 0; t < 3; ++t) {
                hyetograph.time.push_back(static_cast<float>(t));
                hyetograph.depth.push_back(some() * 30.0F);
            }
            hyetographs.records.push_back(hyetograph);
        }
        for (int p = 0; p < 5; ++p) {
            rainfall::RfPoint point;
            point.record = {"", 0.2F + some(), 0.2F + some()};
            point.x = 100.0 + static_cast<double>(some()) * 170;
            point.y = 200.0 + static_cast<double>(some()) * 130;
            point.hyetograph = 1 + static_cast<std::int32_t>(random() % 7);
            points.records.push_back(point);
        }
        for (rainfall::RfGrids* grids : {&fast, &plain}) {
            EXPECT_TRUE(grids->step.allocate(grid.nrows, grid.ncols));
            EXPECT_TRUE(grids->cumulative.allocate(grid.nrows, grid.ncols));
        }
        std::ranges::fill(fast.step.cells(), 77.0F); // what a step before has left
    }

    float some() { return static_cast<float>(random() % 10007) / 10007.0F; }

    void expectSame(std::size_t step)
    {
        EXPECT_TRUE(sameCellBits(fast.step, plain.step)) << step;
        EXPECT_TRUE(sameCellBits(fast.cumulative, plain.cumulative)) << step;
    }

    std::mt19937 random{3};
    GridHeader grid;
    rainfall::RfHyetographs hyetographs;
    rainfall::RfPoints points;
    rainfall::RfGrids fast;
    rainfall::RfGrids plain;
};

TEST_F(RainfallSteps, OfPolygonsAreThoseOfThePlainLoop)
{
    rainfall::RfPolygonTables tables;
    rainfall::allocateTables(grid, tables);
    for (std::size_t i = 0; i < grid.cells(); ++i) {
        const std::int32_t index = static_cast<std::int32_t>(random() % 9) - 1;
        tables.index.cells()[i] = index < 0 ? -999 : index; // 0 too
        tables.factor.cells()[i] = some() * 2.0F;
    }
    for (std::size_t step = 0; step < 3; ++step) {
        rainfall::rf_step_polygon(hyetographs, step, tables, -999.0F, fast);
        stepPolygonPlainly(hyetographs, step, tables, plain);
        expectSame(step);
    }
}

TEST_F(RainfallSteps, OfTrianglesAreThoseOfThePlainLoop)
{
    const std::vector<rainfall::RfTriangle> triangles{{1, 2, 3}, {3, 4, 5}, {5, 1, 1}};
    const rainfall::RfTinPoints tinPoints = rainfall::rfTinPoints(points);
    rainfall::RfTinTables tables;
    rainfall::allocateTables(grid, tables);
    for (std::size_t i = 0; i < grid.cells(); ++i) {
        tables.triangle.cells()[i] = static_cast<std::int32_t>(random() % 4);
        tables.ratioA.cells()[i] = some();
        tables.ratioB.cells()[i] = some();
    }
    for (std::size_t step = 0; step < 3; ++step) {
        rainfall::rf_step_tin(hyetographs, points, step, triangles, tinPoints, tables, -999.0F, fast);
        stepTinPlainly(hyetographs, points, step, triangles, tables, plain);
        expectSame(step);
    }
}

TEST_F(RainfallSteps, OfDistancesAreThoseOfThePlainLoop)
{
    for (const rainfall::RfIdwMethod& method :
         {rainfall::RfIdwMethod{true, 5, -99.0F, 2.0F}, rainfall::RfIdwMethod{true, 7, 60.0F, 2.0F},
          rainfall::RfIdwMethod{false, 3, -99.0F, 1.5F}, rainfall::RfIdwMethod{false, 4, 60.0F, 2.0F}}) {
        for (rainfall::RfGrids* grids : {&fast, &plain}) {
            std::ranges::fill(grids->cumulative.cells(), 0.0F);
        }
        rainfall::RfIdwTables tables;
        rainfall::allocateTables(grid, method, points.count(), tables);
        rainfall::rf_idw_weights(grid, points, tables);
        const PlainIdw plainTables = weighPlainly(grid, points, method);
        for (std::size_t step = 0; step < 3; ++step) {
            rainfall::rf_step_idw(hyetographs, points, step, tables, fast);
            stepIdwPlainly(hyetographs, points, step, plainTables, method.useAll, plain);
            expectSame(step);
        }
    }
}

TEST_F(RainfallSteps, ANotANumberThatIsComputedHasTheBitsOfTheQuietOne)
{
    for (rainfall::RfHyetograph& hyetograph : hyetographs.records) {
        std::ranges::fill(hyetograph.depth, kInfinity);
    }
    rainfall::RfPolygonTables polygons;
    rainfall::allocateTables(grid, polygons);
    std::ranges::fill(polygons.index.cells(), 1);
    std::ranges::fill(polygons.factor.cells(), 0.0F);
    rainfall::rf_step_polygon(hyetographs, 0, polygons, -999.0F, fast);
    EXPECT_TRUE(allQuietNaN(fast.step.cells())); // infinity times 0
    EXPECT_TRUE(allQuietNaN(fast.cumulative.cells()));

    std::ranges::fill(polygons.factor.cells(), 1.0F);
    std::ranges::fill(fast.cumulative.cells(), -kInfinity);
    rainfall::rf_step_polygon(hyetographs, 0, polygons, -999.0F, fast);
    EXPECT_TRUE(allQuietNaN(fast.cumulative.cells()));

    rainfall::RfTinTables tin;
    rainfall::allocateTables(grid, tin);
    std::ranges::fill(tin.triangle.cells(), 1); // of three corners with infinite rain: their difference
    rainfall::rf_step_tin(hyetographs, points, 0, {{1, 2, 3}}, rainfall::rfTinPoints(points), tin, -999.0F, fast);
    EXPECT_TRUE(allQuietNaN(fast.step.cells()));
    EXPECT_TRUE(allQuietNaN(fast.cumulative.cells()));
}

TEST_F(RainfallSteps, ACellOnAPointHasTheBitsOfTheQuietNotANumber)
{
    points.records[1].x = 105; // the centre of the cell in the south-west
    points.records[1].y = 205;
    for (const rainfall::RfIdwMethod& method :
         {rainfall::RfIdwMethod{true, 5, -99.0F, 2.0F}, rainfall::RfIdwMethod{false, 3, -99.0F, 1.5F}}) {
        rainfall::RfIdwTables tables;
        rainfall::allocateTables(grid, method, points.count(), tables);
        rainfall::rf_idw_weights(grid, points, tables);
        rainfall::rf_step_idw(hyetographs, points, 0, tables, fast);
        EXPECT_TRUE(allQuietNaN(fast.step.row(1).first(1)));
        EXPECT_TRUE(allQuietNaN(fast.cumulative.row(1).first(1)));
        EXPECT_FALSE(std::isnan(fast.step(1, 2)));
    }
}

} // namespace
} // namespace gridforge::test
