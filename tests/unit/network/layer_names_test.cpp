#include "network/layer_names.h"

#include <gtest/gtest.h>

namespace gridforge {
namespace {

TEST(NwkLayerName, TakesThePlaceOfTheHead)
{
    EXPECT_EQ(network::nwkLayerName("1d_branches_a.mif"), "1d_nwk_a.mif");
    EXPECT_EQ(network::nwkLayerName("1d_br_a.shp"), "1d_nwk_a.shp");
    EXPECT_EQ(network::nwkLayerName("1d_br.mif"), "1d_nwk.mif");
    EXPECT_EQ(network::nwkLayerName("in\\gis/1d_branchesX.SHP"), "in\\gis/1d_nwkX.SHP");
    // The longer head is tried first.
    EXPECT_EQ(network::nwkLayerName("1d_branch.mif"), "1d_nwkanch.mif");
}

TEST(NwkLayerName, StandsBeforeOtherNamesWithoutTheirExtension)
{
    EXPECT_EQ(network::nwkLayerName("reach.mif"), "1d_nwkreach");
    EXPECT_EQ(network::nwkLayerName("in/1D_br_a.mif"), "in/1d_nwk1D_br_a");
}

TEST(XsLayerName, KnowsThreeHeads)
{
    EXPECT_EQ(network::xsLayerName("1d_xs_a.mif"), "1d_xs_a.mif");
    EXPECT_EQ(network::xsLayerName("1d_tab_a.mif"), "1d_xs_a.mif");
    EXPECT_EQ(network::xsLayerName("g/1d_cut_a.shp"), "g/1d_xs_a.shp");
    EXPECT_EQ(network::xsLayerName("my 1d_xs.mif"), "1d_xsmy 1d_xs");
}

} // namespace
} // namespace gridforge
