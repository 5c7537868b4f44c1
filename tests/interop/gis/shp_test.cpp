#include "gis/layer_reader.h"
#include "support/ogr_test.h"
#include "support/read_layer.h"
#include "support/write_layer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace gridforge::test {
namespace {

using testing::ElementsAre;

class ShpInterop : public OgrTest<> {};

TEST_F(ShpInterop, OgrReadsWhatIsWritten)
{
    gis::LayerWriter layer = newLayer(
        at("out.shp"), {.columns = {{"Name", "Char", 20}, {"Val", "Float"}, {"N", "Integer"}}, .families = "PLR"});
    // Rings turn clockwise outside and the other way in holes, as readers of the format expect it of their writer.
    writeObject(layer, gis::Kind::point, {1}, {{293000.125, 6178000.5}}, "\"a, b\",0.5,1");
    writeObject(layer, gis::Kind::line, {1}, {{1, 2}, {3, 4}}, "\"line\",1.5,2");
    writeObject(layer, gis::Kind::polyline, {1}, {{1, 2}, {3, 4}, {5, 7}}, "\"pline\",-2.5,3");
    writeObject(layer, gis::Kind::combinedPolyline, {1, 3}, {{1, 2}, {3, 4}, {6, 6}, {7, 9}}, "\"multi\",3.5,4");
    writeObject(layer, gis::Kind::region, {1}, {{0, 0}, {10, 6}, {10, 0}, {0, 0}}, "\"region\",4.5,5");
    writeObject(layer, gis::Kind::region, {1, 6},
                {{0, 0}, {0, 9}, {9, 9}, {9, 0}, {0, 0}, {1, 1}, {2, 1}, {2, 2}, {1, 1}}, "\"hole\",5.5,6");
    writeObject(layer, gis::Kind::none, {1}, {}, "\"none\",6.5,7");
    layer.close();

    const auto points = ogrFeatures(at("out_P.shp"));
    ASSERT_EQ(points.size(), 2U);
    EXPECT_EQ(points[0].kind, "POINT");
    EXPECT_THAT(points[0].numbers, ElementsAre(293000.125, 6178000.5));
    EXPECT_THAT(points[0].values, ElementsAre("a, b", "0.50000", "1"));
    EXPECT_EQ(points[1].kind, "");
    EXPECT_THAT(points[1].values, ElementsAre("none", "6.50000", "7"));

    const auto lines = ogrFeatures(at("out_L.shp"));
    ASSERT_EQ(lines.size(), 4U);
    EXPECT_EQ(lines[0].kind, "LINESTRING");
    EXPECT_THAT(lines[0].numbers, ElementsAre(1, 2, 3, 4));
    EXPECT_THAT(lines[1].numbers, ElementsAre(1, 2, 3, 4, 5, 7));
    EXPECT_THAT(lines[1].values, ElementsAre("pline", "-2.50000", "3"));
    EXPECT_EQ(lines[2].kind, "MULTILINESTRING");
    EXPECT_THAT(lines[2].numbers, ElementsAre(1, 2, 3, 4, 6, 6, 7, 9));

    const auto regions = ogrFeatures(at("out_R.shp"));
    ASSERT_EQ(regions.size(), 3U);
    EXPECT_EQ(regions[0].kind, "POLYGON");
    EXPECT_THAT(regions[0].numbers, ElementsAre(0, 0, 10, 6, 10, 0, 0, 0));
    EXPECT_EQ(regions[1].kind, "POLYGON");
    EXPECT_THAT(regions[1].numbers, ElementsAre(0, 0, 0, 9, 9, 9, 9, 0, 0, 0, 1, 1, 2, 1, 2, 2, 1, 1));
}

// OGR finds single records by the .shx, so that one is right too, and it accepts the layers without objects.
TEST_F(ShpInterop, OgrFindsRecordsByTheIndex)
{
    gis::LayerWriter layer = newLayer(at("out.shp"), {.columns = {{"N", "Integer"}}, .families = "PL"});
    for (int i = 1; i <= 50; ++i) {
        std::vector<Vertex> vertices(static_cast<std::size_t>(i) + 1, {i * 1.0, i * 2.0});
        writeObject(layer, gis::Kind::polyline, {1}, vertices, std::to_string(i));
    }
    layer.close();
    ASSERT_TRUE(ogrConvert("-f CSV -fid 36 -lco GEOMETRY=AS_WKT '" + at("one.csv") + "' '" + at("out_L.shp") + "'"));
    const std::string one = folder.read("one.csv");
    EXPECT_NE(one.find("(37 74,"), std::string::npos) << one;
    EXPECT_NE(one.find(",\"37\"\n"), std::string::npos) << one;
    EXPECT_TRUE(ogrFeatures(at("out_P.shp")).empty());
}

TEST_F(ShpInterop, PointsThatOgrWritesAreRead)
{
    ogrWrites("p.shp", "id,name,level,WKT\n"
                       "1,\"a, b\",2.5,POINT (293000.125 6178000.5)\n2,,-3,POINT (1 2)\n");
    const auto objects = readLayer(at("p.shp"));
    ASSERT_EQ(objects.size(), 2U);
    EXPECT_EQ(objects[0].kind, gis::Kind::point);
    EXPECT_THAT(objects[0].numbers, ElementsAre(293000.125, 6178000.5));
    EXPECT_EQ(objects[0].record.substr(objects[0].record.find('1'), 8), "1,\"a, b\"");
    EXPECT_THAT(objects[1].numbers, ElementsAre(1, 2));
}

TEST_F(ShpInterop, LinesThatOgrWritesAreRead)
{
    ogrWrites("l.shp", "id,name,level,WKT\n"
                       "1,x,1.5,\"LINESTRING (1 2,3.5 4.25)\"\n"
                       "2,y,1.5,\"LINESTRING (1 2,3 4,5 7,-8 9)\"\n");
    const auto objects = readLayer(at("l.shp"));
    ASSERT_EQ(objects.size(), 2U);
    EXPECT_EQ(objects[0].kind, gis::Kind::polyline);
    EXPECT_THAT(objects[0].numbers, ElementsAre(1, 2, 3.5, 4.25));
    EXPECT_THAT(objects[1].numbers, ElementsAre(1, 2, 3, 4, 5, 7, -8, 9));
}

TEST_F(ShpInterop, PolygonsThatOgrWritesAreRead)
{
    ogrWrites("r.shp", "id,name,level,WKT\n"
                       "1,x,1.5,\"POLYGON ((0 0,0 6,10 6,0 0),(5 4,6 5,5 5,5 4))\"\n"
                       "2,y,1.5,\"MULTIPOLYGON (((20 0,20 6,30 6,20 0)),((40 0,40 6,50 6,40 0)))\"\n");
    const auto objects = readLayer(at("r.shp"));
    ASSERT_EQ(objects.size(), 2U);
    EXPECT_EQ(objects[0].kind, gis::Kind::region);
    EXPECT_EQ(objects[0].rings, 2);
    EXPECT_THAT(objects[0].numbers, ElementsAre(0, 0, 0, 6, 10, 6, 0, 0, 5, 4, 6, 5, 5, 5, 5, 4));
    EXPECT_EQ(objects[1].rings, 2);
    EXPECT_THAT(objects[1].numbers, ElementsAre(20, 0, 20, 6, 30, 6, 20, 0, 40, 0, 40, 6, 50, 6, 40, 0));
}

} // namespace
} // namespace gridforge::test
