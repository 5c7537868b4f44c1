#include "network/records.h"

#include <gtest/gtest.h>

namespace gridforge {
namespace {

TEST(ExtentOf, IsTheBoxAroundTheVerticesAndAPointWithoutThem)
{
    const Box box = network::extentOf({3, 1, 2}, {5, 9, 7});
    EXPECT_EQ(box.xmin, 1);
    EXPECT_EQ(box.ymin, 5);
    EXPECT_EQ(box.xmax, 3);
    EXPECT_EQ(box.ymax, 9);
    const Box none = network::extentOf({}, {});
    EXPECT_EQ(none.xmin, 0);
    EXPECT_EQ(none.ymin, 0);
    EXPECT_EQ(none.xmax, 0);
    EXPECT_EQ(none.ymax, 0);
}

} // namespace
} // namespace gridforge
