#include "gis/painting.h"

#include "host/console.h"
#include "support/child_run.h"
#include "support/layer_files.h"
#include "support/sanitizers.h"
#include "support/shp_bytes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <numbers>

namespace gridforge::test {
namespace {

using testing::EndsWith;
using testing::HasSubstr;

using Paint = void (*)(std::int32_t, const PaintedLattice&, Grid&);

// What the console says behind the layer's header when it is painted, and then the grid, north row first.
std::string painted(const ScratchFolder& folder, const char* layer, Paint paint = gisPaintCells,
                    const PaintedLattice& lattice = {.size = 2}, std::int32_t rows = 3, std::int32_t columns = 5)
{
    const ChildRun run = runInChild(folder, [&] {
        gisInitialise(-1, "", "", "");
        std::int32_t gisID = gisOpenLayer(layer, "", "I ");
        gisReadHeader(gisID);
        say("--");
        Grid values;
        ASSERT_TRUE(values.allocate(rows, columns));
        paint(gisID, lattice, values);
        for (std::int32_t row = rows; row >= 1; --row) {
            std::string text;
            for (const float value : values.row(row)) {
                text += std::to_string(static_cast<int>(value));
            }
            say(text);
        }
    });
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.errors, "");
    return run.console.substr(run.console.find("--\n") + 3);
}

void giveLayer(const ScratchFolder& folder, std::string_view body, std::string_view records)
{
    folder.give("l.mif", mifText(body));
    folder.give("l.mid", records);
}

TEST(PaintCells, EachObjectPaintsWhatItTouchesOverTheOnesBefore)
{
    const ScratchFolder folder;
    giveLayer(folder,
              "Region 1\n5\n1 2.5\n7 2.5\n7 5.5\n1 5.5\n1 2.5\nPline 3\n1 1\n5 1\n5 3\nLine 9 5 9 1\nPoint 3 5\n",
              "1,a\n2,b\n3.5,c\n4,d\n");
    EXPECT_EQ(painted(folder, "l.mif"), "...GIS REGION (6 vertices /1 polygons) assigned 1. to 8 cells\n"
                                        "...GIS PLINE (3 vertices) assigned a value of 2. to 4 cells\n"
                                        "...GIS LINE (2 vertices) assigned a value of 3.5 to 3 cells\n"
                                        "...GIS POINT (1 vertices) assigned a value of 4. to 1 cells\n"
                                        "14113\n"
                                        "11213\n"
                                        "22203\n");
}

TEST(PaintCells, AShapefilePaintsLikeAMif)
{
    const ScratchFolder folder;
    folder.give("l.shp", shpBytes(5, {partsRecord(5, {0}, {1, 2.5, 7, 2.5, 7, 5.5, 1, 5.5, 1, 2.5})}));
    folder.give("l.dbf", dbfHeader(1, {{"V", 'N', 3}}) + "   6\x1A");
    EXPECT_EQ(painted(folder, "l.shp"), "...GIS Polygon (6 vertices /1 polygons) assigned 6. to 8 cells\n"
                                        "66660\n66660\n00000\n");
}

TEST(PaintCells, WhatLiesOutsideIsLeftOut)
{
    const ScratchFolder folder;
    giveLayer(folder, "Point -0.5 1\nPoint 3 6.5\nLine -5 3 15 3\nRegion 1\n4\n20 20\n30 20\n30 30\n20 20\n",
              "1\n2\n3\n4\n");
    EXPECT_EQ(painted(folder, "l.mif"), "...GIS POINT (1 vertices) assigned a value of 1. to 0 cells\n"
                                        "...GIS POINT (1 vertices) assigned a value of 2. to 0 cells\n"
                                        "...GIS LINE (2 vertices) assigned a value of 3. to 5 cells\n"
                                        "...GIS REGION (5 vertices /1 polygons) assigned 4. to 0 cells\n"
                                        "00000\n33333\n00000\n");
}

TEST(PaintCells, TheAxesMayBeTurned)
{
    const ScratchFolder folder;
    // The columns run north from (100, 200), so the rows run west: 3 north and 1 west is column 2, row 1.
    giveLayer(folder, "Point 99 203\n", "7\n");
    const PaintedLattice turned{.x0 = 100, .y0 = 200, .angle = std::numbers::pi / 2, .size = 2};
    EXPECT_THAT(painted(folder, "l.mif", gisPaintCells, turned), EndsWith("00000\n00000\n07000\n"));
}

TEST(PaintCells, RegionsLeaveTheMarginAlone)
{
    const ScratchFolder folder;
    giveLayer(folder, "Region 1\n5\n-9 -9\n99 -9\n99 99\n-9 99\n-9 -9\n", "1\n");
    EXPECT_THAT(painted(folder, "l.mif", gisPaintCells, {.size = 2, .margin = 1}), EndsWith("00000\n11110\n11110\n"));
}

TEST(PaintPoints, APointStandsForTheCellAroundIt)
{
    const ScratchFolder folder;
    // Points at 0, 2, 4 and so on: the region holds those at 2, 4 and 6 of the row at 2.
    giveLayer(folder, "Region 1\n5\n1.5 1.5\n6.5 1.5\n6.5 2.5\n1.5 2.5\n1.5 1.5\nPoint 7.5 0.5\n", "1\n2\n");
    EXPECT_EQ(painted(folder, "l.mif", gisPaintPoints),
              "...GIS REGION (6 vertices /1 polygons) assigned 1. to 3 points\n"
              "...GIS POINT (1 vertices) assigned a value of 2. to 1 points\n"
              "00000\n01110\n00002\n");
}

TEST(PaintCells, OtherObjectsAreToldOfAndPassedOver)
{
    const ScratchFolder folder;
    giveLayer(folder, "None\nPline Multiple 1\n2\n1 1\n5 1\nPoint 1 1\n", "1\n2\n3\n");
    EXPECT_EQ(painted(folder, "l.mif"),
              "\nWARNING 2073 - Object ignored.  Only Points, Lines, Polylines & Regions used.\nGIS Object = NONE\n"
              "\nWARNING 2073 - Object ignored.  Only Points, Lines, Polylines & Regions used.\n"
              "GIS Object = PLINE MULTIPLE\n"
              "...GIS POINT (1 vertices) assigned a value of 3. to 1 cells\n"
              "00000\n00000\n30000\n");
}

TEST(PaintCells, AValueThatCannotBeReadEndsTheRun)
{
    const ScratchFolder folder;
    for (const std::string record : {"\"a\",1", "1x,2"}) {
        giveLayer(folder, "Point 1 1\n", record + "\n");
        EXPECT_EQ(painted(folder, "l.mif"),
                  "\nERROR 2148 - Reading attribute data from data line below.\nData Line = " + record +
                      "\n\nPress Enter to Close\n");
    }
}

TEST(PaintCells, AWindowThatMemoryCannotHoldEndsTheRun)
{
    if (kSanitized) {
        GTEST_SKIP() << "the sanitizer ends the process over such a size";
    }
    const ScratchFolder folder;
    giveLayer(folder, "Region 1\n5\n0 0\n4e9 0\n4e9 4e9\n0 4e9\n0 0\n", "1\n");
    const ChildRun run = runInChild(folder, [] {
        gisInitialise(-1, "", "", "");
        std::int32_t gisID = gisOpenLayer("l.mif", "", "I ");
        gisReadHeader(gisID);
        Grid values;
        // More cells than there can be: a grid of that size cannot be had either, but knows its rows and columns.
        EXPECT_FALSE(values.allocate(2147483647, 2147483647));
        gisPaintCells(gisID, {.size = 2}, values);
    });
    EXPECT_THAT(run.console, EndsWith("\nERROR - Could not allocate memory (RAM) for Inside Region == Method B.\n"
                                      "\nPress Enter to Close\n"));
}

} // namespace
} // namespace gridforge::test
