#include "support/sampled_region.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace gridforge::test {
namespace {

using testing::ElementsAre;

TEST(SampledRegion, TakesTheVerticesAsReadAndTheirBounds)
{
    gis::Coordinates read = ringOf({3, 7, 5}, {4, 5, 9});
    read.reserve(20); // what lies behind the vertices does not count
    read.x[7] = 1e6;
    const SampledRegion region = run::sampledRegion(read);
    EXPECT_THAT(region.x, ElementsAre(3, 7, 5, 3, 7));
    EXPECT_THAT(region.y, ElementsAre(4, 5, 9, 4, 5));
    EXPECT_EQ(region.box.xmin, 3);
    EXPECT_EQ(region.box.xmax, 7);
    EXPECT_EQ(region.box.ymin, 4);
    EXPECT_EQ(region.box.ymax, 9);
}

TEST(SampledRegion, BoundsStartFromWhereTheyAreTold)
{
    const SampledRegion region = run::sampledRegion(ringOf({30, 70, 50}, {-40, -50, -90}), 20);
    EXPECT_EQ(region.box.xmin, 20);
    EXPECT_EQ(region.box.xmax, 70);
    EXPECT_EQ(region.box.ymin, -90);
    EXPECT_EQ(region.box.ymax, -20);
}

} // namespace
} // namespace gridforge::test
