#include "gis/mif_writer.h"

#include "gis/layers.h"
#include "host/console.h"
#include "support/child_run.h"
#include "support/layer_files.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>

namespace gridforge::test {
namespace {

using testing::HasSubstr;

// Everything behind the header that this writes; `write` gets the open layer.
class MifWriting : public testing::Test {
protected:
    static std::int32_t openOutput()
    {
        gisInitialise(-1, "", "", "");
        gisOutputAttributes().clear();
        gisOutputCoordinates().clear();
        gisCoordSysLine() = "CoordSys NonEarth Units \"m\"";
        gisOutputAttributes().add("ID", "Char", 12);
        const std::int32_t id = gisOpenLayer("out.mif", "", "O ");
        gisWriteHeader(id);
        return id;
    }

    ChildRun write(const std::function<void(std::int32_t)>& code)
    {
        return runInChild(folder, [&] {
            std::int32_t id = openOutput();
            code(id);
            gisCloseLayer(id);
        });
    }

    std::string objects(const std::function<void(std::int32_t)>& code)
    {
        const ChildRun run = write(code);
        EXPECT_FALSE(run.ended) << run.console;
        const std::string text = folder.read("out.mif");
        const std::string behind = "\r\nData\r\n\r\n";
        return text.substr(text.find(behind) + behind.size());
    }

    ScratchFolder folder;
};

void vertices(std::initializer_list<std::pair<double, double>> list)
{
    gisOutputCoordinates().clear();
    for (const auto& [x, y] : list) {
        gisOutputCoordinates().add(x, y);
    }
}

TEST_F(MifWriting, TheHeaderHoldsTheColumns)
{
    runInChild(folder, [] {
        gisInitialise(-1, "", "", "");
        gisCoordSysLine() = "CoordSys Earth Projection 8, 33, \"m\"  ";
        gisOutputAttributes().clear();
        gisOutputAttributes().add("Prop_Type", "Char", 100);
        gisOutputAttributes().add("FFL", "Float");
        gisOutputAttributes().add("F2", "Float", 100);
        gisOutputAttributes().add(" N ", " Integer ", -1);
        std::int32_t id = gisOpenLayer("out.mif", "", "O ");
        gisWriteHeader(id);
        gisCloseLayer(id);
    });
    EXPECT_EQ(folder.read("out.mif"), "Version 300\r\nCharset \"WindowsLatin1\"\r\nDelimiter \",\"\r\n"
                                      "CoordSys Earth Projection 8, 33, \"m\"\r\nColumns 4\r\n"
                                      "  Prop_Type Char(100)\r\n  FFL Float\r\n  F2 Float(100)\r\n  N Integer\r\n"
                                      "Data\r\n\r\n");
    EXPECT_EQ(folder.read("out.mid"), "");
}

TEST_F(MifWriting, WithoutCoordSysTheFourthLineIsEmpty)
{
    runInChild(folder, [] {
        gisInitialise(-1, "", "", "");
        gisCoordSysLine().clear();
        std::int32_t id = gisOpenLayer("out.mif", "", "O ");
        gisWriteHeader(id);
        gisCloseLayer(id);
    });
    EXPECT_THAT(folder.read("out.mif"), testing::StartsWith("Version 300\r\nCharset \"WindowsLatin1\"\r\n"
                                                            "Delimiter \",\"\r\n\r\nColumns 0\r\nData\r\n"));
}

TEST_F(MifWriting, EachKindHasItsLines)
{
    EXPECT_EQ(objects([](std::int32_t id) {
                  GisO point;
                  point.point = true;
                  vertices({{1.5, -2.25}});
                  gisWriteObject(id, point);
                  GisO multipoint;
                  multipoint.multipoint = true;
                  vertices({{1, 2}, {3, 4}});
                  gisWriteObject(id, multipoint);
                  GisO line;
                  line.line = true;
                  vertices({{1, 2}, {3, 4}});
                  gisOutputCoordinates().np = 0; // a line is two vertices whatever np says
                  gisWriteObject(id, line);
                  GisO pline;
                  pline.pline = true;
                  vertices({{1, 2}, {3, 4}, {5, 6}});
                  gisWriteObject(id, pline);
                  GisO multiple;
                  multiple.plineMultiple = true;
                  multiple.nr = 2;
                  multiple.ir = {1, 3};
                  gisWriteObject(id, multiple);
                  GisO text;
                  text.text = true;
                  gisDataLine() = "\"a label\"  ";
                  gisWriteObject(id, text);
                  GisO none;
                  none.none = true;
                  gisWriteObject(id, none);
              }),
              "Point         1.500000       -2.250000\r\n"
              "MultiPoint 2\r\n"
              "        1.000000        2.000000\r\n"
              "        3.000000        4.000000\r\n"
              "Line         1.000000        2.000000        3.000000        4.000000\r\n"
              "Pline 3\r\n"
              "        1.000000        2.000000\r\n"
              "        3.000000        4.000000\r\n"
              "        5.000000        6.000000\r\n"
              "Pline Multiple 2\r\n"
              " 2\r\n"
              "        1.000000        2.000000\r\n"
              "        3.000000        4.000000\r\n"
              " 1\r\n"
              "        5.000000        6.000000\r\n"
              "Text\r\n"
              "\"a label\"\r\n"
              "               3.000           4.000           5.000           6.000\r\n"
              "none\r\n");
}

TEST_F(MifWriting, RegionsCountTheVerticesOfEachRing)
{
    EXPECT_EQ(objects([](std::int32_t id) {
                  GisO region;
                  region.region = true;
                  region.nr = 0;
                  region.ir = {0};
                  vertices({{0, 0}, {1, 0}, {1, 1}, {0, 0}});
                  gisWriteObject(id, region);
                  // Two rings of 5 and 6 vertices: 11 in all, starting at 1 and 6.
                  region.nr = 2;
                  region.ir = {1, 6};
                  vertices({{0, 0}, {9, 0}, {9, 9}, {0, 9}, {0, 0}, {1, 1}, {2, 1}, {3, 2}, {2, 2}, {1, 2}, {1, 1}});
                  gisWriteObject(id, region);
              }),
              "Region 1\r\n 4\r\n"
              "        0.000000        0.000000\r\n"
              "        1.000000        0.000000\r\n"
              "        1.000000        1.000000\r\n"
              "        0.000000        0.000000\r\n"
              "Region 2\r\n 5\r\n"
              "        0.000000        0.000000\r\n"
              "        9.000000        0.000000\r\n"
              "        9.000000        9.000000\r\n"
              "        0.000000        9.000000\r\n"
              "        0.000000        0.000000\r\n"
              " 6\r\n"
              "        1.000000        1.000000\r\n"
              "        2.000000        1.000000\r\n"
              "        3.000000        2.000000\r\n"
              "        2.000000        2.000000\r\n"
              "        1.000000        2.000000\r\n"
              "        1.000000        1.000000\r\n");
}

TEST_F(MifWriting, StylesFollowEachObjectButNone)
{
    EXPECT_EQ(objects([](std::int32_t id) {
                  GisO point;
                  point.point = true;
                  vertices({{1, 2}});
                  gisLayer(id).mifLayer.style1 = "   ";
                  gisLayer(id).mifLayer.style2 = "Second alone";
                  gisWriteObject(id, point);
                  gisLayer(id).mifLayer.style1 = "    Symbol (37,255,12)";
                  gisWriteObject(id, point);
                  gisLayer(id).mifLayer.style2 = " ";
                  gisWriteObject(id, point);
                  GisO none;
                  none.none = true;
                  gisWriteObject(id, none);
              }),
              "Point         1.000000        2.000000\r\n"
              "Point         1.000000        2.000000\r\n    Symbol (37,255,12)\r\nSecond alone\r\n"
              "Point         1.000000        2.000000\r\n    Symbol (37,255,12)\r\n"
              "none\r\n");
}

TEST_F(MifWriting, ValuesThatDoNotFitAreAsterisks)
{
    const double infinity = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(objects([&](std::int32_t id) {
                  GisO pline;
                  pline.pline = true;
                  vertices({{1234567890.5, 123456789.25},
                            {-12345678.5, -123456789.5},
                            {0.0000005, 0.0000015},
                            {-0.0000001, 999999999.9999996},
                            {infinity, -infinity},
                            {nan, 1e300}});
                  gisWriteObject(id, pline);
              }),
              "Pline 6\r\n"
              "****************123456789.250000\r\n"
              "-12345678.500000****************\r\n"
              "        0.000000        0.000002\r\n" // the stored values lie just below and above the half
              "       -0.000000****************\r\n"
              "        Infinity       -Infinity\r\n"
              "             NaN****************\r\n");
}

TEST_F(MifWriting, RecordsAreTheDataLines)
{
    const ChildRun run = write([](std::int32_t id) {
        GisO point;
        point.point = true;
        point.name = "POINT";
        gisDataLine() = "  \"a\",1   ";
        gisWriteRecord(id, point);
        gisDataLine() = std::string(1010, 'x');
        gisWriteRecord(id, point);
        gisDataLineLarge() = std::string(100010, 'y');
        gisWriteRecordLarge(id, point);
    });
    EXPECT_FALSE(run.ended);
    EXPECT_EQ(folder.read("out.mid"),
              "  \"a\",1\r\n" + std::string(1000, 'x') + "\r\n" + std::string(100000, 'y') + "\r\n");
}

TEST_F(MifWriting, KindsThatCannotBeWrittenEndTheRun)
{
    for (bool GisO::*kind : {&GisO::ellipse, &GisO::rect, &GisO::roundRect, &GisO::arc}) {
        const ChildRun run = write([&](std::int32_t id) {
            GisO other;
            other.*kind = true;
            gisWriteObject(id, other);
        });
        EXPECT_THAT(run.console, HasSubstr("\n\nERROR 0350 - Trying to write a MIF object that is not yet supported.  "
                                           "Please contact SUPPORT_CONTACT.\n\nPress Enter to Close\n"));
    }
}

TEST_F(MifWriting, PartsThatDoNotRiseEndTheRun)
{
    const auto consoleFor = [&](std::vector<std::int32_t> parts) {
        return write([&](std::int32_t id) {
                   GisO region;
                   region.region = true;
                   region.nr = 3;
                   region.ir = parts;
                   vertices({{0, 0}, {1, 0}, {1, 1}, {0, 0}, {0, 0}, {1, 0}, {1, 1}, {0, 0}});
                   gisWriteObject(id, region);
               })
            .console;
    };
    EXPECT_THAT(consoleFor({1, 5, 5}),
                HasSubstr("\nShould not be here [gisO_%ir(i) <= gisO_%ir(i-1)] - please contact SUPPORT_CONTACT.\n"
                          "GIS Layer   =    1\n"
                          "i           =    3\n"
                          "gisO_%ir(i) =    5\n"
                          "gisO_%nr    =    3\n"
                          "\nPress Enter to Close\n"));
    EXPECT_THAT(consoleFor({0, 1, 5}), HasSubstr("i           =    2\ngisO_%ir(i) =    1\n"));
    EXPECT_THAT(consoleFor({1, 5}), HasSubstr("i           =    3\ngisO_%ir(i) =    0\n")); // no such part
    EXPECT_THAT(consoleFor({1, 5, 9}), HasSubstr("Should not be here [gisWriteObject] - please contact"));
}

TEST_F(MifWriting, VerticesAndColumnsPastTheirLimitsEndTheRun)
{
    EXPECT_THAT(runInChild(folder,
                           [] {
                               gisOutputCoordinates().clear();
                               for (int i = 0; i < 100000; ++i) {
                                   gisOutputCoordinates().add(i, i);
                               }
                               say("all in");
                               gisOutputCoordinates().add(0, 0);
                           })
                    .console,
                testing::StartsWith("all in\nERROR - Number of vertices of output object exceeds maximum: 100000\n"));
    EXPECT_THAT(runInChild(folder,
                           [] {
                               for (int i = 0; i < 256; ++i) {
                                   gisOutputAttributes().add("A", "Float");
                               }
                               say("all in");
                               gisOutputAttributes().add("A", "Float");
                           })
                    .console,
                testing::StartsWith("all in\nERROR - Number of attributes of output layer exceeds maximum: 256\n"));
}

TEST_F(MifWriting, AFullDiskIsTold)
{
    const auto point = [](std::int32_t id) {
        GisO gisO;
        gisO.point = true;
        vertices({{1, 2}});
        gisWriteObject(id, gisO);
        gisDataLine() = "1";
        gisWriteRecord(id, gisO);
    };
    std::filesystem::create_symlink("/dev/full", folder.path() / "out.mif");
    EXPECT_THAT(write(point).console,
                HasSubstr("\nERROR 0439 - Writing .mif file object coordinates.\n\nPress Enter to Close\n"));
    std::filesystem::remove(folder.path() / "out.mif");
    std::filesystem::remove(folder.path() / "out.mid");
    std::filesystem::create_symlink("/dev/full", folder.path() / "out.mid");
    EXPECT_THAT(write(point).console,
                HasSubstr("\nERROR 0254 - Failed to write attribute data record for a POINT object "
                          "in GIS layer.\n\nPress Enter to Close\n"));
    EXPECT_THAT(write([](std::int32_t id) {
                    GisO gisO;
                    gisO.name = "PLINE";
                    gisDataLineLarge() = "1";
                    gisWriteRecordLarge(id, gisO);
                }).console,
                HasSubstr("\nERROR 0254 - Failed to write large attribute data record for a PLINE object in GIS "
                          "layer.\n\nPress Enter to Close\n"));
}

TEST_F(MifWriting, WhatIsWrittenReadsBack)
{
    const ChildRun run = write([](std::int32_t id) {
        GisO pline;
        pline.pline = true;
        vertices({{293000.123456, 6178000.5}, {293001, 6178002}});
        gisWriteObject(id, pline);
        gisDataLine() = "\"a, b\"";
        gisWriteRecord(id, pline);
        gisCloseLayer(id);
        id = gisOpenLayer("out.mif", "", "I ");
        gisReadHeader(id);
        GisO gisO;
        GisCoordinates c;
        std::string record;
        gisObjectType(id, gisO);
        gisReadRecord(id, gisO, record);
        gisReadObject(id, gisO, c, 100);
        const bool same = c.np == 2 && c.x[0] == 293000.123456 && c.y[0] == 6178000.5 && c.x[1] == 293001;
        say("same ", same ? 1 : 0, " ", record, " end ", gisLayer(id).layerEnd ? 1 : 0);
    });
    EXPECT_THAT(run.console, HasSubstr("same 1 \"a, b\" end 1\n"));
}

} // namespace
} // namespace gridforge::test
