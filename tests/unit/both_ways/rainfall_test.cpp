// Rainfall grids do not depend on how many threads compute them, nor on the size of the pieces.
#include "support/both_ways.h"
#include "support/environment.h"
#include "support/operation_run.h"
#include "support/rainfall_files.h"

#include <gtest/gtest.h>
#include <ostream>
#include <string>

namespace gridforge::test {
namespace {

void giveLayer(GivenFiles& given, const std::string& name, const std::string& objects, const std::string& records)
{
    given[name + ".mif"] = mifHeader({"Name Char(40)", "F1 Float", "F2 Float"}) + objects;
    given[name + ".mid"] = records;
}

// 47 by 30 cells of 10 m, more than two squares of cells in each direction.
GivenFiles storm(const std::string& method)
{
    GivenFiles given;
    given["rain.rfc"] = "RF GRID Cell Size == 10\nRF GRID Size (X,Y) == 300, 470\nRF GRID Origin == 100 200\n"
                        "RF Grid Format == FLT\n" +
                        kThreeHyetographs + method;
    given["a.csv"] = "Time,Depth\n0,2\n0.5,4\n1,0.7\n";
    given["b.csv"] = "Time,Depth\n0,10\n0.5,20\n1,3.3\n";
    given["c.csv"] = "Time,Depth\n0,6\n0.5,30\n1,9.1\n";
    giveLayer(given, "gauges",
              mifPoint("110 220") + mifPoint("390 230") + mifPoint("250 660") + mifPoint("180 400") +
                  mifPoint("333 515") + mifPoint("105 205"),
              "a,1,1\nb,1,0.9\nc,0.8,1\nb,1,1.1\na,1.2,1\nc,1,1\n");
    giveLayer(given, "triangles", mifRegion(4, "110 220\n390 230\n250 660\n110 220\n"), "x,1,1\n");
    giveLayer(given, "areas",
              mifRegion(5, "100 200\n260 210\n240 480\n90 470\n100 200\n") +
                  mifRegion(5, "270 220\n410 220\n400 600\n280 590\n270 220\n"),
              "x,1,1\ny,1,1\n");
    return given;
}

struct Method {
    std::string name;
    std::string commands;
};

std::ostream& operator<<(std::ostream& out, const Method& method)
{
    return out << method.name;
}

class RainfallMethods : public testing::TestWithParam<Method> {};

TEST_P(RainfallMethods, DoNotDependOnThreads)
{
    const GivenFiles given = storm(GetParam().commands);
    const Outcome one = [&] {
        const Environment environment({{"GRIDFORGE_THREADS", "1"}});
        return runOperationOn(given, "-rf rain.rfc");
    }();
    ASSERT_EQ(one.files.count("rain_total.flt"), 1U) << one.console;
    expectSameInPieces(one, GetParam().name, [&](const auto&) { return runOperationOn(given, "-rf rain.rfc"); });
}

const std::string kByIdw = "RF Interpolation Method == IDW\nRead GIS RF Points == gauges.mif\n";
const std::string kByTin = "RF Interpolation Method == TIN\nRead GIS RF Points == gauges.mif\n"
                           "Read GIS RF Triangle == triangles.mif\n";
const std::string kByPolygons = "RF Interpolation Method == POLY\nRead GIS RF Points == gauges.mif\n"
                                "Read GIS RF Polygon == areas.mif\n";

INSTANTIATE_TEST_SUITE_P(Rainfall, RainfallMethods,
                         testing::Values(Method{"AllByIdw", kByIdw},
                                         Method{"NearestByIdw",
                                                kByIdw + "IDW Max Point == 3\nIDW Max Distance == 300\n"},
                                         Method{"Tin", kByTin}, Method{"Polygons", kByPolygons}),
                         [](const auto& one) { return one.param.name; });

} // namespace
} // namespace gridforge::test
