#include "gis/mif/writer.h"

#include "gis/layer_reader.h"
#include "gis/layer_table.h"
#include "gis/layer_writer.h"
#include "host/console.h"
#include "support/child_run.h"
#include "support/consoles.h"
#include "support/layer_files.h"
#include "support/write_layer.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>

namespace gridforge::test {
namespace {

using testing::HasSubstr;

using gis::Kind;
using gis::LayerWriter;

// Everything after the header that this writes; `write` gets the open layer.
class MifWriting : public testing::Test {
protected:
    static LayerWriter createOutput()
    {
        gis::initialise();
        return gis::createLayer("out.mif",
                                {.columns = {{"ID", "Char", 12}}, .projection = {"CoordSys NonEarth Units \"m\"", ""}});
    }

    ChildRun write(const std::function<void(LayerWriter&)>& code)
    {
        return runInChild(folder, [&] {
            LayerWriter layer = createOutput();
            code(layer);
            layer.close();
        });
    }

    std::string objects(const std::function<void(LayerWriter&)>& code)
    {
        const ChildRun run = write(code);
        EXPECT_FALSE(run.ended) << run.console;
        const std::string text = folder.read("out.mif");
        const std::string behind = "\r\nData\r\n\r\n";
        return text.substr(text.find(behind) + behind.size());
    }

    ScratchFolder folder;
};

TEST_F(MifWriting, TheHeaderHoldsTheColumns)
{
    runInChild(folder, [] {
        gis::initialise();
        gis::createLayer(
            "out.mif",
            {.columns = {{"Prop_Type", "Char", 100}, {"FFL", "Float"}, {"F2", "Float", 100}, {" N ", " Integer ", -1}},
             .projection = {"CoordSys Earth Projection 8, 33, \"m\"  ", ""}})
            .close();
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
        gis::initialise();
        gis::createLayer("out.mif", {}).close();
    });
    EXPECT_THAT(folder.read("out.mif"), testing::StartsWith("Version 300\r\nCharset \"WindowsLatin1\"\r\n"
                                                            "Delimiter \",\"\r\n\r\nColumns 0\r\nData\r\n"));
}

TEST_F(MifWriting, EachKindHasItsLines)
{
    EXPECT_EQ(objects([](LayerWriter& layer) {
                  writeObject(layer, Kind::point, {}, {{1.5, -2.25}}, "");
                  writeObject(layer, Kind::multipoint, {}, {{1, 2}, {3, 4}}, "");
                  writeObject(layer, Kind::line, {}, {{1, 2}, {3, 4}}, "");
                  writeObject(layer, Kind::polyline, {}, {{1, 2}, {3, 4}, {5, 6}}, "");
                  writeObject(layer, Kind::combinedPolyline, {1, 3}, {{1, 2}, {3, 4}, {5, 6}}, "");
                  writeObject(layer, Kind::text, {}, {{1, 2}, {3, 4}, {5, 6}}, "\"a label\"  ");
                  writeObject(layer, Kind::none, {}, {}, "");
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
    EXPECT_EQ(objects([](LayerWriter& layer) {
                  writeObject(layer, Kind::region, {0}, {{0, 0}, {1, 0}, {1, 1}, {0, 0}}, "");
                  // Two rings of 5 and 6 vertices: 11 in all, starting at 1 and 6.
                  writeObject(layer, Kind::region, {1, 6},
                              {{0, 0}, {9, 0}, {9, 9}, {0, 9}, {0, 0}, {1, 1}, {2, 1}, {3, 2}, {2, 2}, {1, 2}, {1, 1}},
                              "");
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
    EXPECT_EQ(objects([](LayerWriter& layer) {
                  gis::Feature point = featureOf(Kind::point, {{1, 2}});
                  point.style = {"   ", "Second alone"};
                  layer.write(point);
                  point.style = {"    Symbol (37,255,12)", "Second alone"};
                  layer.write(point);
                  point.style = {"    Symbol (37,255,12)", " "};
                  layer.write(point);
                  layer.write({.style = {"    Symbol (37,255,12)", ""}});
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
    EXPECT_EQ(objects([&](LayerWriter& layer) {
                  writeObject(layer, Kind::polyline, {},
                              {{1234567890.5, 123456789.25},
                               {-12345678.5, -123456789.5},
                               {0.0000005, 0.0000015},
                               {-0.0000001, 999999999.9999996},
                               {infinity, -infinity},
                               {nan, 1e300}},
                              "");
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
    const ChildRun run = write([](LayerWriter& layer) {
        writeObject(layer, Kind::point, {}, {{1, 2}}, "  \"a\",1   ");
        writeObject(layer, Kind::point, {}, {{1, 2}}, std::string(1010, 'x'));
    });
    EXPECT_FALSE(run.ended);
    EXPECT_EQ(folder.read("out.mid"), "  \"a\",1\r\n" + std::string(1000, 'x') + "\r\n");
}

TEST_F(MifWriting, KindsThatCannotBeWrittenEndTheRun)
{
    for (const Kind kind : {Kind::ellipse, Kind::rectangle, Kind::roundedRectangle, Kind::arc}) {
        const ChildRun run = write([&](LayerWriter& layer) { writeObject(layer, kind, {}, {}, ""); });
        EXPECT_THAT(run.console, HasSubstr("\n\nERROR 0350 - Trying to write a MIF object that is not yet supported.  "
                                           "Please contact SUPPORT_CONTACT.\n" +
                                           kExits));
    }
}

TEST_F(MifWriting, PartsThatDoNotRiseEndTheRun)
{
    const auto consoleFor = [&](const std::vector<std::int32_t>& parts) {
        return write([&](LayerWriter& layer) {
                   writeObject(layer, Kind::region, parts,
                               {{0, 0}, {1, 0}, {1, 1}, {0, 0}, {0, 0}, {1, 0}, {1, 1}, {0, 0}}, "");
               })
            .console;
    };
    EXPECT_THAT(consoleFor({1, 5, 5}),
                HasSubstr("\nShould not be here [gisO_%ir(i) <= gisO_%ir(i-1)] - please contact SUPPORT_CONTACT.\n"
                          "GIS Layer   =    1\n"
                          "i           =    3\n"
                          "gisO_%ir(i) =    5\n"
                          "gisO_%nr    =    3\n" +
                          kExits));
    EXPECT_THAT(consoleFor({0, 1, 5}), HasSubstr("i           =    2\ngisO_%ir(i) =    1\n"));
    EXPECT_THAT(consoleFor({1, 5, 0}), HasSubstr("i           =    3\ngisO_%ir(i) =    0\n"));
    EXPECT_THAT(consoleFor({1, 5, 9}), HasSubstr("Should not be here [gisWriteObject] - please contact"));
}

TEST_F(MifWriting, ObjectsWithoutTheirVerticesMustNotOccur)
{
    const auto consoleFor = [&](Kind kind, const std::vector<Vertex>& vertices) {
        return write([&](LayerWriter& layer) { writeObject(layer, kind, {}, vertices, ""); }).console;
    };
    const auto misuse = HasSubstr("\nShould not be here [gisWriteObject] - please contact SUPPORT_CONTACT.\n");
    EXPECT_THAT(consoleFor(Kind::point, {}), misuse);
    EXPECT_THAT(consoleFor(Kind::line, {{1, 2}}), misuse);
    EXPECT_THAT(consoleFor(Kind::text, {{1, 2}, {3, 4}}), misuse);
    EXPECT_THAT(write([](LayerWriter& layer) {
                    layer.write({.kind = Kind::polyline, .x = {1, 2}, .y = {3}});
                }).console,
                misuse);
}

TEST_F(MifWriting, VerticesAndColumnsPastTheirLimitsEndTheRun)
{
    EXPECT_THAT(write([](LayerWriter& layer) {
                    std::vector<Vertex> vertices(100000);
                    writeObject(layer, Kind::polyline, {}, vertices, "");
                    say("all in");
                    vertices.emplace_back();
                    writeObject(layer, Kind::polyline, {}, vertices, "");
                }).console,
                HasSubstr("all in\nERROR - Number of vertices of output object exceeds maximum: 100000\n"));
    EXPECT_THAT(runInChild(folder,
                           [] {
                               std::vector<gis::Column> columns(256, {"A", "Float"});
                               gis::createLayer("out.mif", {.columns = columns}).close();
                               say("all in");
                               columns.push_back({"A", "Float"});
                               gis::createLayer("out.mif", {.columns = columns});
                           })
                    .console,
                HasSubstr("all in\nERROR - Number of attributes of output layer exceeds maximum: 256\n"));
}

TEST_F(MifWriting, AFullDiskIsTold)
{
    const auto write = [this](Kind kind, const std::vector<Vertex>& vertices) {
        return MifWriting::write([&](LayerWriter& layer) { writeObject(layer, kind, {}, vertices, "1"); }).console;
    };
    std::filesystem::create_symlink("/dev/full", folder.path() / "out.mif");
    EXPECT_THAT(write(Kind::point, {{1, 2}}),
                HasSubstr("\nERROR 0439 - Writing .mif file object coordinates.\n" + kExits));
    std::filesystem::remove(folder.path() / "out.mif");
    std::filesystem::remove(folder.path() / "out.mid");
    std::filesystem::create_symlink("/dev/full", folder.path() / "out.mid");
    EXPECT_THAT(write(Kind::point, {{1, 2}}),
                HasSubstr("\nERROR 0254 - Failed to write attribute data record for a POINT object "
                          "in GIS layer.\n" +
                          kExits));
    EXPECT_THAT(write(Kind::polyline, {{1, 2}, {3, 4}}),
                HasSubstr("\nERROR 0254 - Failed to write attribute data record for a PLINE object in GIS "
                          "layer.\n" +
                          kExits));
}

TEST_F(MifWriting, WhatIsWrittenReadsBack)
{
    const ChildRun run = runInChild(folder, [] {
        LayerWriter layer = createOutput();
        writeObject(layer, Kind::polyline, {}, {{293000.123456, 6178000.5}, {293001, 6178002}}, "\"a, b\"");
        layer.close();
        gis::LayerReader back = gis::openLayer("out.mif");
        gis::Coordinates c;
        gis::LayerObject& object = *back.next();
        back.readCoordinates(object, c, 100);
        const bool same = c.np == 2 && c.x[0] == 293000.123456 && c.y[0] == 6178000.5 && c.x[1] == 293001;
        say("same ", same ? 1 : 0, " ", object.record, " end ", back.next() == nullptr ? 1 : 0);
    });
    EXPECT_THAT(run.console, HasSubstr("same 1 \"a, b\" end 1\n"));
}

} // namespace
} // namespace gridforge::test
