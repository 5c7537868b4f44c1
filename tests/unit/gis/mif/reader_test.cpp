#include "gis/mif/reader.h"

#include "gis/layer_reader.h"
#include "gis/layer_table.h"
#include "gis/mif/keywords.h"
#include "host/console.h"
#include "support/child_run.h"
#include "support/consoles.h"
#include "support/layer_files.h"

#include <cmath>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace gridforge::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

// One object as it comes out of the read loop.
struct ReadObject : gis::LayerObject {
    std::vector<double> x;
    std::vector<double> y;
    double xc = 0;
    double yc = 0;
    float angle = 0;
    float length = 0;
};

class MifReading : public testing::Test {
protected:
    MifReading()
    {
        startUnits(1000);
        gis::initialise();
    }
    ~MifReading() override { closeAllUnits(); }

    // All objects of a .mif with this body, by the loop of the operations.
    std::vector<ReadObject> read(std::string_view body, int records, std::int32_t maxVertices = 1000)
    {
        giveMif(folder, "l", body, records);
        gis::LayerReader layer = gis::openLayer((folder.path() / "l.mif").string());
        std::vector<ReadObject> objects;
        gis::Coordinates c;
        while (gis::LayerObject* next = layer.next()) {
            layer.readCoordinates(*next, c, maxVertices);
            ReadObject object{*next, {}, {}};
            object.x.assign(c.x.begin(), c.x.begin() + c.np);
            object.y.assign(c.y.begin(), c.y.begin() + c.np);
            object.xc = c.xc;
            object.yc = c.yc;
            object.angle = c.angle;
            object.length = c.length;
            objects.push_back(object);
        }
        layer.close();
        return objects;
    }

    // The only object of such a .mif.
    ReadObject readOne(std::string_view body)
    {
        const std::vector<ReadObject> objects = read(body, 1);
        EXPECT_EQ(objects.size(), 1U);
        return objects.empty() ? ReadObject() : objects.front();
    }

    // The console of a run over such a layer, which ends by a message.
    std::string endOf(std::string_view body, int records = 1, std::int32_t maxVertices = 1000, bool coordinates = true)
    {
        giveMif(folder, "l", body, records);
        return endOfFile(maxVertices, coordinates);
    }

    std::string endOfFile(std::int32_t maxVertices = 1000, bool coordinates = true)
    {
        const ChildRun run = runInChild(folder, [&] {
            gis::initialise();
            gis::OpenLayer& layer = gis::openFiles("l.mif");
            gis::readHeader(layer);
            gis::LayerObject object;
            gis::Coordinates c;
            std::string record;
            while (!layer.end) {
                if (gis::readKind(layer, object)) {
                    gis::readRecord(layer, object.name, record);
                    gis::readCoordinates(layer, object, c, maxVertices, coordinates);
                }
            }
        });
        EXPECT_TRUE(run.ended) << run.console;
        return run.console;
    }

    ScratchFolder folder;
};

// --- Header ----------------------------------------------------------------------------------------------------------

void expectDefinition(std::string_view line, std::string_view name, std::string_view type)
{
    const gis::Column column = gis::mif::splitDefinition(line, 32);
    EXPECT_EQ(column.name, name);
    EXPECT_EQ(column.type, type);
}

TEST_F(MifReading, SplitsADefinitionAtTheFirstBlank)
{
    expectDefinition("  Name Char(12)", "Name", "Char(12)");
    expectDefinition("Area  Char (50)", "Area", "Char (50)");
    expectDefinition("Lonely", "Lonely", "");
    expectDefinition(std::string(40, 'n') + " " + std::string(30, 't'), std::string(32, 'n'), std::string(24, 't'));
}

TEST_F(MifReading, TabsInADefinitionCountAsBlanks)
{
    expectDefinition("\tName\tChar\t(12)\t", "Name", "Char (12)");
    expectDefinition(" \tArea \t Decimal(9,\t2)", "Area", "Decimal(9, 2)");
    expectDefinition("\tLonely\t", "Lonely", "");
}

TEST_F(MifReading, TabsInObjectLinesCountAsBlanks)
{
    const auto objects = read("Point\t1\t2\n"
                              "\tPoint\t\n\t3\t4\n"
                              "Line\t1\t2\t3\t4\t\n"
                              "Pline\t2\n1\t2\n\t5\t6\n"
                              "pline\tMULTIPLE\t1\n\t2\t\n7\t8\n9\t10\n"
                              "Region\t1\n\t5\n0\t0\n10\t0\n10\t6\n0\t6\n0\t0\n\tCenter\t7\t8\n",
                              6);
    ASSERT_EQ(objects.size(), 6U);
    EXPECT_THAT(objects[0].x, ElementsAre(1));
    EXPECT_THAT(objects[0].y, ElementsAre(2));
    EXPECT_THAT(objects[1].x, ElementsAre(3));
    EXPECT_THAT(objects[1].y, ElementsAre(4));
    EXPECT_THAT(objects[2].x, ElementsAre(1, 3));
    EXPECT_THAT(objects[3].y, ElementsAre(2, 6));
    EXPECT_EQ(objects[4].name, "PLINE MULTIPLE");
    EXPECT_EQ(objects[4].sections, 1);
    EXPECT_THAT(objects[4].x, ElementsAre(7, 9));
    EXPECT_THAT(objects[5].x, ElementsAre(0, 10, 10, 0, 0, 10));
    EXPECT_EQ(objects[5].xc, 7);
    EXPECT_EQ(objects[5].yc, 8);
}

TEST_F(MifReading, HeaderWordsMayStandAnywhereInTheirLineAndInAnyCase)
{
    folder.give("l.mif", "the columns 1\nother\nData_Type Integer\n my dAtA follows\nPoint 1 2\n");
    folder.give("l.mid", "a\n");
    // "columns" is found in the first line, but the count is read from its eighth character on: "mns 1".
    EXPECT_THAT(endOfFile(), HasSubstr("\n\nERROR 0314 - Could not read number of attributes in .mif file\n"));
    folder.give("l.mif", "cOLUMNS 1\n  Data_Type Integer\n my dAtA follows\nColumns 7\nPoint 1 x\n");
    EXPECT_THAT(endOfFile(), HasSubstr("1 MIF Fields: Name [#/Type]: Data_Type [1/Integer]  \n\nERROR 0308"));
}

TEST_F(MifReading, BadHeadersEndTheRun)
{
    folder.give("l.mid", "a\n");
    const auto endOfHeader = [&](std::string_view text) {
        folder.give("l.mif", text);
        return endOfFile();
    };
    EXPECT_THAT(endOfHeader(""),
                HasSubstr("\n\nERROR 0315 - Could not find start of attribute definitions in .mif file\n"));
    EXPECT_THAT(endOfHeader("Version 300\nData\n"), HasSubstr("ERROR 0315 - "));
    EXPECT_THAT(endOfHeader("Columns\n"),
                HasSubstr("\n\nERROR 0314 - Could not read number of attributes in .mif file\n"));
    EXPECT_THAT(endOfHeader("Columns 99999999999\n"), HasSubstr("ERROR 0314 - "));
    EXPECT_THAT(endOfHeader("Columns 0\nData\n"),
                HasSubstr("\n\nERROR 0319 - No attributes specified in .mif file.\n"));
    EXPECT_THAT(endOfHeader("Columns -2\nData\n"), HasSubstr("ERROR 0319 - "));
    EXPECT_THAT(endOfHeader("Columns 2\n  A Float\n"),
                HasSubstr("\n\nERROR 0316 - Could not read attribute definitions in .mif file\n"));
    EXPECT_THAT(endOfHeader("Columns 1\n  A Float\nPoint 1 2\n"),
                HasSubstr("\n\nERROR 0313 - Could not find start of \"Data\" block in .mif file.\n"));
}

TEST_F(MifReading, ColumnsPastTheLimitEndTheRun)
{
    folder.give("l.mid", "a\n");
    std::string columns;
    for (int i = 1; i <= 256; ++i) {
        columns += " c" + std::to_string(i) + " Float\n";
    }
    folder.give("l.mif", "Columns 256\n" + columns + "Data\nPoint 1 x\n");
    EXPECT_THAT(endOfFile(), HasSubstr("c256 [256/Float]  \n\nERROR 0308"));
    folder.give("l.mif", "Columns 257\n" + columns + " d Float\nData\nPoint 1 x\n");
    EXPECT_THAT(endOfFile(), HasSubstr("\n\nERROR - Number of attributes in .mif file exceeds maximum: 256\n"));
    folder.give("l.mif", "Columns 2147483647\n");
    EXPECT_THAT(endOfFile(), HasSubstr("\n\nERROR - Number of attributes in .mif file exceeds maximum: 256\n"));
}

// --- Kinds -----------------------------------------------------------------------------------------------------------

// The .mif of a test's own, open for the search for objects.
gis::mif::MifInput openObjects(const ScratchFolder& folder, std::string_view text)
{
    folder.give("o.txt", text);
    gis::mif::MifInput input;
    OPENER(input.mifUnit, "I ", (folder.path() / "o.txt").string());
    return input;
}

TEST_F(MifReading, KnowsEachKeyword)
{
    const std::vector<std::pair<std::string, gis::Kind>> kinds = {
        {"POINT", gis::Kind::point},
        {"PLINE MULTIPLE", gis::Kind::combinedPolyline},
        {"PLINE", gis::Kind::polyline},
        {"LINE", gis::Kind::line},
        {"REGION", gis::Kind::region},
        {"MULTIPOINT", gis::Kind::multipoint},
        {"NONE", gis::Kind::none},
        {"RECT", gis::Kind::rectangle},
        {"ROUNDRECT", gis::Kind::roundedRectangle},
        {"TEXT", gis::Kind::text},
        {"ARC", gis::Kind::arc},
        {"ELLIPSE", gis::Kind::ellipse},
    };
    for (const auto& [keyword, kind] : kinds) {
        EXPECT_EQ(gis::mif::keywordOf(kind), keyword);
        for (const char* form : {"%", "   %", "\t%", " \t %"}) {
            std::string line = form;
            std::string mixed = keyword;
            mixed[1] = static_cast<char>(mixed[1] - 'A' + 'a');
            line.replace(line.find('%'), 1, mixed);
            gis::mif::MifInput input = openObjects(folder, "    Pen (1,2,0)\nBrush (2,16777215)\n\nCenter 1 2\n3 4\n" +
                                                               line + " 7 rest\nnext\n");
            gis::LayerObject object;
            ASSERT_TRUE(readKind(input, object)) << line;
            EXPECT_EQ(object.kind, kind) << line;
            EXPECT_EQ(object.name, keyword);
            EXPECT_EQ(input.rest, " 7 rest");
            EXPECT_FALSE(readKind(input, object));
            EXPECT_TRUE(atEnd(input.mifUnit));
            CLOSER(input.mifUnit);
        }
    }
}

TEST_F(MifReading, WordsNeedNoBlankBehindThem)
{
    gis::mif::MifInput input = openObjects(folder, "Points\nLineString 5\nRegions\n");
    gis::LayerObject object;
    EXPECT_TRUE(readKind(input, object) && object.kind == gis::Kind::point);
    EXPECT_EQ(input.rest, "s");
    EXPECT_TRUE(readKind(input, object) && object.kind == gis::Kind::line);
    EXPECT_EQ(input.rest, "String 5");
    EXPECT_TRUE(readKind(input, object) && object.kind == gis::Kind::region);
}

TEST_F(MifReading, CollectionsEndTheRun)
{
    EXPECT_THAT(endOf("Collection 2\n"), HasSubstr("\n\nERROR 0303 - MIF \"Collection\" objects not supported.  Delete "
                                                   "or disaggregate object.\n"));
}

TEST_F(MifReading, RegionsOf10000RingsPassAndOfOneMoreEndTheRun)
{
    std::string body = "Region 10000\n";
    for (int i = 0; i < 10000; ++i) {
        body += "0\n";
    }
    const auto objects = read(body, 1, 100000);
    ASSERT_EQ(objects.size(), 1U);
    EXPECT_EQ(objects[0].rings, 10000);
    EXPECT_EQ(objects[0].x.size(), 10000U);
    EXPECT_THAT(endOf("  REGION 10001\n1\n"),
                HasSubstr("\n\nERROR 0304 - Exceeded maximum number of polygons in region below of 10000\n"
                          "  REGION 10001\n"));
}

TEST_F(MifReading, CountsThatCannotBeReadStayOne)
{
    gis::mif::MifInput input = openObjects(folder, "Region x\nPline Multiple\nMultiPoint 4\n");
    gis::LayerObject object;
    ASSERT_TRUE(readKind(input, object));
    EXPECT_EQ(object.rings, 1);
    object.clear();
    ASSERT_TRUE(readKind(input, object));
    EXPECT_EQ(object.sections, 1);
    object.clear();
    ASSERT_TRUE(readKind(input, object));
    EXPECT_EQ(object.sections, 4);
}

// --- Coordinates -----------------------------------------------------------------------------------------------------

TEST_F(MifReading, PointsStandOnTheirLineOrTheNext)
{
    const auto objects = read("point 1.5 -2\nPoint\n  3,4e2\nPOINT5,6\n", 3);
    ASSERT_EQ(objects.size(), 3U);
    EXPECT_THAT(objects[0].x, ElementsAre(1.5));
    EXPECT_THAT(objects[0].y, ElementsAre(-2));
    EXPECT_EQ(objects[0].xc, 1.5);
    EXPECT_EQ(objects[0].yc, -2);
    EXPECT_EQ(objects[0].angle, 0);
    EXPECT_EQ(objects[0].length, 0);
    EXPECT_TRUE(objects[0].haveCoordinates);
    EXPECT_EQ(objects[0].record, "\"r1\",1");
    EXPECT_EQ(objects[1].x[0], 3);
    EXPECT_EQ(objects[1].y[0], 400);
    EXPECT_EQ(objects[2].x[0], 5);
    EXPECT_EQ(objects[2].record, "\"r3\",3");
}

TEST_F(MifReading, APointFillsTwoSlots)
{
    giveMif(folder, "l", "Point 1 2\n");
    gis::OpenLayer& layer = gis::openFiles((folder.path() / "l.mif").string());
    gis::readHeader(layer);
    gis::LayerObject object;
    gis::Coordinates c;
    gis::readKind(layer, object);
    gis::readCoordinates(layer, object, c, 2);
    EXPECT_EQ(c.np, 1);
    EXPECT_EQ(c.x[1], 1);
    EXPECT_EQ(c.y[1], 2);
    gis::close(layer);
}

TEST_F(MifReading, AMultipointGivesItsFirstPoint)
{
    const auto objects = read("MultiPoint 3\n1 2\n3 4\n5 6\nPoint 7 8\n", 2);
    ASSERT_EQ(objects.size(), 2U);
    EXPECT_EQ(objects[0].sections, 3);
    EXPECT_THAT(objects[0].x, ElementsAre(1));
    EXPECT_EQ(objects[1].x[0], 7);
}

TEST_F(MifReading, LinesAndRectanglesAreTwoVertices)
{
    const auto objects = read("Line 1 2 4 6\nRect 0 0 10 20\nRoundRect 2 2 4 2\n", 3);
    ASSERT_EQ(objects.size(), 3U);
    EXPECT_THAT(objects[0].x, ElementsAre(1, 4));
    EXPECT_THAT(objects[0].y, ElementsAre(2, 6));
    EXPECT_EQ(objects[0].xc, 2.5);
    EXPECT_EQ(objects[0].yc, 4);
    EXPECT_EQ(objects[0].length, 5.0F); // 3, 4, 5
    EXPECT_EQ(objects[0].angle, static_cast<float>(std::atan2(4.0, 3.0) * 180.0 / std::acos(-1.0)));
    EXPECT_EQ(objects[1].kind, gis::Kind::rectangle);
    EXPECT_THAT(objects[1].x, ElementsAre(0, 10));
    EXPECT_EQ(objects[1].yc, 10);
    EXPECT_EQ(objects[2].kind, gis::Kind::roundedRectangle);
    EXPECT_EQ(objects[2].angle, 0);
    EXPECT_EQ(objects[2].length, 2);
}

TEST_F(MifReading, EllipsesAndArcsHaveNoVertices)
{
    const auto objects = read("Point 1 1\nEllipse 0 0 1 1\nArc 0 0 1 1\n 0 90\nNone\nText \"a\"\n 1 2 3 4\n", 5);
    ASSERT_EQ(objects.size(), 5U);
    EXPECT_EQ(objects[1].kind, gis::Kind::ellipse);
    EXPECT_TRUE(objects[1].x.empty());
    EXPECT_FALSE(objects[1].haveCoordinates);
    EXPECT_EQ(objects[2].kind, gis::Kind::arc);
    EXPECT_EQ(objects[3].kind, gis::Kind::none);
    EXPECT_EQ(objects[4].kind, gis::Kind::text);
    EXPECT_EQ(objects[4].record, "\"r5\",5");
}

TEST_F(MifReading, PolylinesHaveTheirCentreAtHalfOfTheirLength)
{
    // 4 east, then 6 north: half of the length, 5, lies 1 up the second segment.
    const auto objects = read("\tPline 3\n0 0\n4 0\n4,6\n    Pen (1,2,0)\npline 2\n1 1\n1 1\n", 2);
    ASSERT_EQ(objects.size(), 2U);
    EXPECT_EQ(objects[0].kind, gis::Kind::polyline);
    EXPECT_THAT(objects[0].x, ElementsAre(0, 4, 4));
    EXPECT_THAT(objects[0].y, ElementsAre(0, 0, 6));
    EXPECT_EQ(objects[0].length, 10);
    EXPECT_EQ(objects[0].xc, 4);
    EXPECT_NEAR(objects[0].yc, 1, 1e-6);
    EXPECT_EQ(objects[0].angle, 90);
    EXPECT_EQ(objects[1].length, 0);
    EXPECT_TRUE(std::isnan(objects[1].xc)); // no length, no middle
}

TEST_F(MifReading, AVertexAtHalfOfTheLengthBelongsToTheSegmentBeforeIt)
{
    const ReadObject object = readOne("Pline 3\n0 0\n5 0\n5 5\n");
    EXPECT_EQ(object.xc, 5);
    EXPECT_EQ(object.yc, 0);
    EXPECT_EQ(object.angle, 0);
}

TEST_F(MifReading, PolylinesOfFewerThanTwoVerticesDoNoHarm)
{
    const auto objects = read("Pline 1\n3 4\nPline 0\n", 2);
    ASSERT_EQ(objects.size(), 2U);
    EXPECT_THAT(objects[0].x, ElementsAre(3));
    EXPECT_EQ(objects[0].length, 0);
}

TEST_F(MifReading, OfAMultiplePolylineTheFirstSectionIsRead)
{
    const auto objects = read("Pline Multiple 2\n  2\n1 2\n3 4\n  3\n5 6\n7 8\n9 9\n    Pen (1,2,0)\nPoint 7 7\n", 2);
    ASSERT_EQ(objects.size(), 2U);
    EXPECT_EQ(objects[0].kind, gis::Kind::combinedPolyline);
    EXPECT_EQ(objects[0].sections, 2);
    EXPECT_THAT(objects[0].x, ElementsAre(1, 3));
    EXPECT_EQ(objects[1].x[0], 7);
}

TEST_F(MifReading, ARegionRepeatsItsSecondVertexBehindItsLast)
{
    const ReadObject object = readOne("Region  1\n  5\n0 0\n10 0\n10 6\n0 6\n0 0\n    Pen (1,2,0)\n    Brush (1,0)\n");
    EXPECT_EQ(object.kind, gis::Kind::region);
    EXPECT_EQ(object.rings, 1);
    EXPECT_EQ(object.parts[0], 5);
    EXPECT_THAT(object.x, ElementsAre(0, 10, 10, 0, 0, 10));
    EXPECT_THAT(object.y, ElementsAre(0, 0, 6, 6, 0, 0));
    EXPECT_EQ(object.xc, 5); // the mean of the four corners
    EXPECT_EQ(object.yc, 3);
}

TEST_F(MifReading, EachRingOfARegionHasItsSlot)
{
    const ReadObject object = readOne("Region  2\n  5\n0 0\n10 0\n10 6\n0 6\n0 0\n 4\n1 1\n2 1\n2 2\n1 1\n");
    EXPECT_EQ(object.rings, 2);
    EXPECT_EQ(object.parts[0], 5);
    EXPECT_EQ(object.parts[1], 10);
    EXPECT_THAT(object.x, ElementsAre(0, 10, 10, 0, 0, 10, 1, 2, 2, 1, 2));
    // The mean runs over all but the last two: 5 of the first ring, its slot, and 3 of the second.
    EXPECT_DOUBLE_EQ(object.xc, (0 + 10 + 10 + 0 + 0 + 10 + 1 + 2 + 2) / 9.0);
    EXPECT_DOUBLE_EQ(object.yc, (0 + 0 + 6 + 6 + 0 + 0 + 1 + 1 + 2) / 9.0);
}

TEST_F(MifReading, OnlyTheLastRegionTakesItsCentreFromTheFile)
{
    const std::string square = "Region 1\n5\n0 0\n10 0\n10 6\n0 6\n0 0\n    Pen (1,2,0)\n    Center 7 8\n";
    const auto objects = read(square + square, 2);
    ASSERT_EQ(objects.size(), 2U);
    EXPECT_EQ(objects[0].xc, 5);
    EXPECT_EQ(objects[0].yc, 3);
    EXPECT_EQ(objects[1].xc, 7);
    EXPECT_EQ(objects[1].yc, 8);
}

TEST_F(MifReading, ACentreWithAnythingBehindItHasNoEffect)
{
    const ReadObject object = readOne("Region 1\n5\n0 0\n10 0\n10 6\n0 6\n0 0\nCenter 7 8\n    Pen (1,2,0)\n");
    EXPECT_EQ(object.xc, 5);
}

TEST_F(MifReading, LowerCaseAndCrLfReadTheSame)
{
    const auto objects = read("region 1\r\n4\r\n0 0\r\n3 0\r\n3 3\r\n0 0\r\npline 2\r\n1 1\r\n2 2", 2);
    ASSERT_EQ(objects.size(), 2U);
    EXPECT_THAT(objects[0].x, ElementsAre(0, 3, 3, 0, 3));
    EXPECT_THAT(objects[1].y, ElementsAre(1, 2));
}

TEST_F(MifReading, ObjectsThatAreNotReadArePassedOver)
{
    giveMif(folder, "l", "Pline 2\n1 1\n2 2\nRegion 1\n4\n0 0\n3 0\n3 3\n0 0\nPoint 8 9\n", 3);
    gis::OpenLayer& layer = gis::openFiles((folder.path() / "l.mif").string());
    gis::readHeader(layer);
    gis::LayerObject object;
    gis::Coordinates c;
    std::string record;
    while (!layer.end) {
        if (gis::readKind(layer, object)) {
            gis::readRecord(layer, object.name, record);
            if (object.kind == gis::Kind::point) {
                gis::readCoordinates(layer, object, c, 2);
            }
        }
    }
    EXPECT_EQ(c.x[0], 8);
    EXPECT_EQ(record, "\"r3\",3");
    gis::close(layer);
}

TEST_F(MifReading, WithoutCoordinatesOnlyTheFirstVertexIsRead)
{
    giveMif(folder, "l", "Pline 3\n1 2\nx\ny\nRegion 1\n4\n5 6\nx\nx\nx\nPoint 8 9\n", 3);
    gis::OpenLayer& layer = gis::openFiles((folder.path() / "l.mif").string());
    gis::readHeader(layer);
    gis::LayerObject object;
    gis::Coordinates c;
    gis::readKind(layer, object);
    gis::readCoordinates(layer, object, c, 2, false); // three vertices, but none is stored past the first
    EXPECT_EQ(c.np, 3);
    EXPECT_EQ(c.x[0], 1);
    gis::readKind(layer, object);
    ASSERT_EQ(object.kind, gis::Kind::region);
    gis::readCoordinates(layer, object, c, 2, false);
    EXPECT_EQ(c.np, 5);
    EXPECT_EQ(object.parts[0], 4);
    EXPECT_EQ(c.x[0], 5);
    gis::readKind(layer, object);
    EXPECT_EQ(object.kind, gis::Kind::point);
    gis::close(layer);
}

TEST_F(MifReading, WithoutCoordinatesFurtherRingsPassOverTooManyLines)
{
    // Ring 1: one vertex and lines 2 to 4. Ring 2: np is 10, so lines 2 to 9 go although the ring has 4.
    std::string body = "Region 2\n4\n0 0\n1\n2\n3\n4\n";
    for (int i = 2; i <= 9; ++i) {
        body += "skipped\n";
    }
    giveMif(folder, "l", body + "Point 8 9\n", 2);
    gis::OpenLayer& layer = gis::openFiles((folder.path() / "l.mif").string());
    gis::readHeader(layer);
    gis::LayerObject object;
    gis::Coordinates c;
    gis::readKind(layer, object);
    gis::readCoordinates(layer, object, c, 2, false);
    EXPECT_EQ(c.np, 10);
    gis::readKind(layer, object);
    EXPECT_EQ(object.kind, gis::Kind::point);
    gis::close(layer);
}

// --- What cannot be read ---------------------------------------------------------------------------------------------

TEST_F(MifReading, NumbersThatCannotBeReadEndTheRun)
{
    const std::string message = "\n\nERROR 0308 - Reading .mif file.  Check file format is not corrupted.\n";
    for (const char* body :
         {"Point 1 x\n", "Points 3 4\n", "Line 1 2 3 z\n", "Pline x\n1 1\n", "Pline 3.0\n1 1\n", "Pline 2\n1 1\n1 b\n",
          "Pline Multiple 1\n x\n", "Region 1\n 4.5\n", "Region 1\n4\n1 1\n1 (\n", "LineString 5\n",
          "Pline 99999999999\n", "Pline -5\n", "Pline Multiple 2\n-1\n", "Point 1 1e999\n",
          "Region 1\n4\n0 0\n1 0\n1 1\n0 0\nCenter a b\n"}) {
        EXPECT_THAT(endOf(body), HasSubstr(message)) << body;
    }
}

TEST_F(MifReading, WhatIsMissingEndsTheRun)
{
    const std::string message = "\n\nERROR 0309 - Unexpected end of .mif file encountered.\n";
    for (const char* body : {"Point\n", "Point 1\n", "Point\n12.3\n", "MultiPoint 2\n", "Line\n", "Line 5.3 4.2 17.1\n",
                             "Pline\n3\n5.3 4.2\n17.1 12.9\n28.7 11.3\n", "Pline 2\n1 1\n", "Pline 2\n1 1\n2\n3 3\n",
                             "Pline Multiple 1\n", "Pline Multiple 1\n\n1 1\n", "Region 1\n", "Region 1\n5\n1 1\n",
                             "Region 2\n4\n0 0\n1 0\n1 1\n0 0\n", "Region 1\n4\n0 0\n1 0\n1 1\n0 0\nCenter\n"}) {
        EXPECT_THAT(endOf(body), HasSubstr(message)) << body;
    }
    EXPECT_THAT(endOf("Pline 900000000\n1 1\n2 2\n", 1, 1000, false), HasSubstr(message));
    EXPECT_THAT(endOf("Region 1\n 900000000\n1 1\n2 2\n", 1, 1000, false), HasSubstr(message));
}

// The memory of a process opens like a file and refuses to be read at its start.
TEST_F(MifReading, AReadThatTheSystemRefusesIsNoEndOfTheFile)
{
    const auto consoleOf = [&](const std::function<void(gis::mif::MifInput&)>& code) {
        return runInChild(folder,
                          [&] {
                              gis::mif::MifInput input;
                              OPENER(input.mifUnit, "I ", "/proc/self/mem");
                              code(input);
                          })
            .console;
    };
    const auto ending = [](const std::string& message) { return testing::EndsWith("\n\n" + message + "\n" + kExits); };
    EXPECT_THAT(consoleOf([](gis::mif::MifInput& input) {
                    gis::LayerObject object;
                    readKind(input, object);
                }),
                ending("ERROR 0321 - Reading .mif file object type."));
    EXPECT_THAT(consoleOf([](gis::mif::MifInput& input) {
                    gis::LayerObject object;
                    object.kind = gis::Kind::point;
                    gis::Coordinates c;
                    readCoordinates(input, object, c, 10, true);
                }),
                ending("ERROR 0308 - Reading .mif file.  Check file format is not corrupted."));
    EXPECT_THAT(consoleOf([](gis::mif::MifInput& input) { readHeader(input); }),
                ending("ERROR 0315 - Could not find start of attribute definitions in .mif file"));
}

TEST_F(MifReading, RegionsNeedFiveSlots)
{
    const std::string message = "\n\nERROR 0318 - Less than 5 points for Region object in mif file.\n";
    EXPECT_THAT(endOf("Region 1\n3\n1 2\n3 4\n1 2\n"), HasSubstr(message));
    EXPECT_THAT(endOf("Region 0\n"), HasSubstr(message));
    EXPECT_THAT(endOf("Region -7\n"), HasSubstr(message));
    EXPECT_THAT(endOf("Region 1\n0\n"), HasSubstr(message));
    EXPECT_THAT(endOf("Region 1\n-2147483648\n"), HasSubstr(message));
    EXPECT_THAT(endOf("Region 2\n-9\n20\n1 1\n"), HasSubstr(message));
    EXPECT_EQ(read("Region 1\n4\n0 0\n1 0\n1 1\n0 0\n", 1).size(), 1U);
}

TEST_F(MifReading, VerticesPastTheLimitEndTheRun)
{
    const auto message = [](const std::string& requested, const std::string& limit) {
        return "\n\nERROR 0310 - Exceeded number of allowable nodes in a single polyline or region.\n"
               "             Requested" +
               requested + "        Limit" + limit + "\n";
    };
    EXPECT_THAT(endOf("Pline 4\n1 1\n", 1, 3), HasSubstr(message("       4", "       3")));
    EXPECT_THAT(endOf("Pline 3\n1 1\n", 1, 3), HasSubstr("ERROR 0309"));
    EXPECT_THAT(endOf("Pline 2147483647\n1 1\n", 1, 1000000), HasSubstr(message("********", " 1000000")));
    EXPECT_THAT(endOf("Region 1\n4\n", 1, 4), HasSubstr(message("       5", "       4")));
    EXPECT_THAT(endOf("Region 2\n4\n0 0\n1 0\n1 1\n0 0\n2147483647\n", 1, 10),
                HasSubstr(message("********", "      10")));
    EXPECT_THAT(endOf("Region 2\n2147483646\n", 1, 10, false), HasSubstr(message("********", "********")));
}

TEST_F(MifReading, ARecordThatIsMissingEndsTheRun)
{
    EXPECT_THAT(endOf("Point 1 2\n", 0),
                HasSubstr("\n\nERROR 0254 - Failed to read object attribute data record for a POINT object in GIS "
                          "layer.\n"));
    EXPECT_THAT(endOf("Pline 2\n1 1\n2 2\nRegion 1\n1\n", 1), HasSubstr("for a REGION object in GIS layer.\n"));
}

TEST_F(MifReading, TheEndOfTheMidAloneDoesNotEndTheLayer)
{
    giveMif(folder, "l", "Pline 2\n1 1\n2 2\nPoint 3 4\n", 1);
    gis::OpenLayer& layer = gis::openFiles((folder.path() / "l.mif").string());
    gis::readHeader(layer);
    gis::LayerObject object;
    std::string record;
    ASSERT_TRUE(gis::readKind(layer, object));
    gis::readRecord(layer, object.name, record);
    EXPECT_FALSE(layer.end); // and the coordinates are skipped
    ASSERT_TRUE(gis::readKind(layer, object));
    EXPECT_EQ(object.kind, gis::Kind::point);
    EXPECT_TRUE(layer.end);
    gis::close(layer);
}

TEST_F(MifReading, MoreRecordsThanObjectsDoNoHarm)
{
    EXPECT_EQ(read("Point 1 2\nPoint 3 4\n", 5).size(), 2U);
}

TEST_F(MifReading, AnObjectWithoutKindEndsTheRun)
{
    giveMif(folder, "l", "Point 1 2\n");
    const ChildRun run = runInChild(folder, [] {
        gis::initialise();
        gis::OpenLayer& layer = gis::openFiles("l.mif");
        gis::readHeader(layer);
        gis::LayerObject object;
        gis::Coordinates c;
        object.name = "STRANGE";
        gis::readCoordinates(layer, object, c, 10);
    });
    EXPECT_THAT(run.console,
                HasSubstr("\n\nERROR 0253 - Failed to read coordinates for a STRANGE object in GIS layer.\n"));
}

TEST_F(MifReading, LinesAreCutAt1000Characters)
{
    giveMif(folder, "l", "Point " + std::string(990, ' ') + "12 34\n", 0);
    folder.give("l.mid", std::string(1005, 'a') + "\n");
    // "Point ", 990 blanks and the first four characters: "12 3".
    const ChildRun run = runInChild(folder, [] {
        gis::initialise();
        gis::OpenLayer& layer = gis::openFiles("l.mif");
        gis::readHeader(layer);
        gis::LayerObject object;
        gis::Coordinates c;
        std::string record;
        gis::readKind(layer, object);
        gis::readRecord(layer, object.name, record);
        gis::readCoordinates(layer, object, c, 10);
        say("x ", static_cast<int>(c.x[0]), " y ", static_cast<int>(c.y[0]), " record ", record.size());
    });
    EXPECT_THAT(run.console, HasSubstr("x 12 y 3 record 1000\n"));
}

// --- Small entry points ----------------------------------------------------------------------------------------------

TEST_F(MifReading, GoesBackToTheBeginning)
{
    giveMif(folder, "l", "Point 1 2\nPoint 3 4\n", 3);
    const ChildRun run = runInChild(folder, [] {
        gis::initialise();
        gis::OpenLayer& layer = gis::openFiles("l.mif");
        gis::readHeader(layer);
        gis::LayerObject object;
        gis::Coordinates c;
        std::string record;
        for (int round = 0; round < 2; ++round) {
            gis::readKind(layer, object);
            gis::readRecord(layer, object.name, record);
            gis::readCoordinates(layer, object, c, 10);
            say("x ", static_cast<int>(c.x[0]), " ", record);
            gis::rewind(layer);
            say("end ", layer.end ? 1 : 0, " records ", gis::recordCount(layer));
        }
        std::int32_t count = 0;
        const bool found = gis::goToColumns(layer, count);
        const gis::Column definition = gis::readColumn(layer);
        say("found ", found ? 1 : 0, " ", count, " ", definition.name, "/", definition.type);
    });
    EXPECT_THAT(run.console, HasSubstr("x 1 \"r1\",1\nRewinding GIS Layer 1...\nend 0 records 3\n"
                                       "x 1 \"r1\",1\nRewinding GIS Layer 1...\nend 0 records 3\n"
                                       "found 1 2 Name/Char(30)\n"));
}

TEST_F(MifReading, GoingBackSeesOnly100CharactersOfALine)
{
    const std::string far(100, ' ');
    folder.give("l.mif", far + "Columns\nColumns 1\n  A Float\n" + far + "Data\nPoint 1 2\n");
    folder.give("l.mid", "1\n");
    const ChildRun run = runInChild(folder, [] {
        gis::initialise();
        gis::OpenLayer& layer = gis::openFiles("l.mif");
        std::int32_t count = 0;
        say("found ", gis::goToColumns(layer, count) ? 1 : 0, " ", count);
        gis::rewind(layer);
    });
    EXPECT_THAT(run.console, HasSubstr("found 1 1\nRewinding GIS Layer 1...\n\nERROR 0313 - Could not find start of "
                                       "\"Data\" block in .mif file.\n"));
}

TEST_F(MifReading, AttributesThatAreNotFoundAreWarnedOf)
{
    folder.give("l.mid", "1\n");
    const auto consoleFor = [&](std::string_view text) {
        folder.give("l.mif", text);
        return runInChild(folder,
                          [] {
                              gis::initialise();
                              gis::OpenLayer& layer = gis::openFiles("l.mif");
                              std::int32_t count = 0;
                              say("found ", gis::goToColumns(layer, count) ? 1 : 0);
                          })
            .console;
    };
    EXPECT_THAT(consoleFor("Version 300\n"),
                HasSubstr("\n\nWARNING 0315 - Problems finding start of attribute definitions in .mif file\n"
                          "Press Enter to Continue\nfound 0\n"));
    EXPECT_THAT(consoleFor("Columns x\n"),
                HasSubstr("\n\nWARNING 0314 - Problems reading number of attributes in .mif file\n"
                          "Press Enter to Continue\nfound 0\n"));
}

} // namespace
} // namespace gridforge::test
