#include "support/ogr_test.h"
#include "support/read_layer.h"
#include "support/write_layer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace gridforge::test {
namespace {

using testing::ElementsAre;

class MifInterop : public OgrTest<> {};

TEST_F(MifInterop, OgrReadsWhatIsWritten)
{
    gis::LayerWriter layer =
        newLayer(at("out.mif"),
                 {.columns = {{"Name", "Char", 20}, {"Val", "Float"}, {"N", "Integer"}},
                  .projection = {"CoordSys NonEarth Units \"m\" Bounds (-1000000, -1000000) (1000000, 1000000)", ""}});
    gis::Feature point = featureOf(gis::Kind::point, {{1.5, -2.25}}, {}, "\"a, b\",0.5,1");
    point.style.first = "    Symbol (37,255,12)";
    layer.write(point);
    const auto write = [&](gis::Kind kind, const std::vector<std::int32_t>& parts, const std::vector<Vertex>& vertices,
                           const char* record) {
        gis::Feature feature = featureOf(kind, vertices, parts, record);
        feature.style.first = "    Pen (1,59,0)";
        layer.write(feature);
    };
    write(gis::Kind::line, {1}, {{1, 2}, {3, 4}}, "\"line\",1.5,2");
    write(gis::Kind::polyline, {1}, {{1, 2}, {3, 4}, {5, 7}}, "\"pline\",2.5,3");
    write(gis::Kind::combinedPolyline, {1, 3}, {{1, 2}, {3, 4}, {6, 6}, {7, 9}}, "\"multi\",3.5,4");
    write(gis::Kind::region, {1}, {{0, 0}, {10, 0}, {10, 6}, {0, 0}}, "\"region\",4.5,5");
    write(gis::Kind::region, {1, 6}, {{0, 0}, {9, 0}, {9, 9}, {0, 9}, {0, 0}, {1, 1}, {2, 1}, {2, 2}, {1, 1}},
          "\"hole\",5.5,6");
    write(gis::Kind::none, {1}, {}, "\"none\",6.5,7");
    layer.close();

    const auto features = ogrFeatures(at("out.mif"));
    ASSERT_EQ(features.size(), 7U);
    EXPECT_EQ(features[0].kind, "POINT");
    EXPECT_THAT(features[0].numbers, ElementsAre(1.5, -2.25));
    EXPECT_THAT(features[0].values, ElementsAre("a, b", "0.5", "1"));
    EXPECT_EQ(features[1].kind, "LINESTRING");
    EXPECT_THAT(features[1].numbers, ElementsAre(1, 2, 3, 4));
    EXPECT_EQ(features[2].kind, "LINESTRING");
    EXPECT_THAT(features[2].numbers, ElementsAre(1, 2, 3, 4, 5, 7));
    EXPECT_EQ(features[3].kind, "MULTILINESTRING");
    EXPECT_THAT(features[3].numbers, ElementsAre(1, 2, 3, 4, 6, 6, 7, 9));
    EXPECT_EQ(features[4].kind, "POLYGON");
    EXPECT_THAT(features[4].numbers, ElementsAre(0, 0, 10, 0, 10, 6, 0, 0));
    EXPECT_EQ(features[5].kind, "POLYGON");
    EXPECT_THAT(features[5].numbers, ElementsAre(0, 0, 9, 0, 9, 9, 0, 9, 0, 0, 1, 1, 2, 1, 2, 2, 1, 1));
    EXPECT_EQ(features[6].kind, "");
    EXPECT_THAT(features[6].values, ElementsAre("none", "6.5", "7"));
}

TEST_F(MifInterop, WhatOgrWritesIsRead)
{
    ogrWrites("out.mif", "id,WKT\n"
                         "1,POINT (293000.125 6178000.5)\n"
                         "2,\"LINESTRING (1 2,3.5 4.25)\"\n"
                         "3,\"LINESTRING (1 2,3 4,5 7,-8 9)\"\n"
                         "4,\"POLYGON ((0 0,10 0,10 6,0 0),(5 1,6 1,6 2,5 1))\"\n"
                         "5,\"MULTILINESTRING ((1 1,2 2),(3 3,4 4))\"\n");
    const auto objects = readLayer(at("out.mif"));
    ASSERT_EQ(objects.size(), 5U);
    EXPECT_EQ(objects[0].kind, gis::Kind::point);
    EXPECT_THAT(objects[0].numbers, ElementsAre(293000.125, 6178000.5));
    EXPECT_EQ(objects[1].kind, gis::Kind::line);
    EXPECT_THAT(objects[1].numbers, ElementsAre(1, 2, 3.5, 4.25));
    EXPECT_EQ(objects[2].kind, gis::Kind::polyline);
    EXPECT_THAT(objects[2].numbers, ElementsAre(1, 2, 3, 4, 5, 7, -8, 9));
    EXPECT_EQ(objects[3].kind, gis::Kind::region);
    EXPECT_EQ(objects[3].rings, 2);
    EXPECT_THAT(objects[3].numbers, ElementsAre(0, 0, 10, 0, 10, 6, 0, 0, 5, 1, 6, 1, 6, 2, 5, 1));
    EXPECT_EQ(objects[4].kind, gis::Kind::combinedPolyline);
    EXPECT_EQ(objects[4].sections, 2);
    EXPECT_THAT(objects[4].numbers, ElementsAre(1, 1, 2, 2)); // the first section
    EXPECT_EQ(objects[4].record, "5");
}

} // namespace
} // namespace gridforge::test
