#include "gis/layer_name.h"

#include <gtest/gtest.h>

namespace gridforge::test {
namespace {

TEST(LayerName, KnowsTheExtensionsOfLayers)
{
    EXPECT_TRUE(gis::hasLayerExtension("a.mif"));
    EXPECT_TRUE(gis::hasLayerExtension("a.b\\c.SHP"));
    EXPECT_FALSE(gis::hasLayerExtension("a.mid"));
    EXPECT_FALSE(gis::hasLayerExtension("mif"));
    EXPECT_TRUE(gis::hasMifExtension("a.Mif"));
    EXPECT_FALSE(gis::hasMifExtension("a.shp"));
}

TEST(LayerName, TheStemOfAShapefileIsWithoutItsFamily)
{
    EXPECT_EQ(gis::layerStem("in/a_L.shp", "L"), "in/a");
    EXPECT_EQ(gis::layerStem("in/a_P.shp", "L"), "in/a_P");
    EXPECT_EQ(gis::layerStem("in/a_L.mif", "L"), "in/a_L");
}

} // namespace
} // namespace gridforge::test
