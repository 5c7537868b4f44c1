#include "core/dates.h"

#include <gtest/gtest.h>

namespace gridforge {
namespace {

TEST(Numberofdays, CountsYearsOf365Days)
{
    EXPECT_EQ(NUMBEROFDAYS("20000101"), 1);
    EXPECT_EQ(NUMBEROFDAYS("20000201"), 28 + 1);
    EXPECT_EQ(NUMBEROFDAYS("20010315"), 365 + 59 + 15);
    EXPECT_EQ(NUMBEROFDAYS("20231231 and more"), 23 * 365 + 334 + 31);
    EXPECT_EQ(NUMBEROFDAYS("19991231"), -365 + 334 + 31);
}

TEST(Numberofdays, HoldsFebruaryAt28)
{
    EXPECT_EQ(NUMBEROFDAYS("20040229"), 4 * 365 + 28 + 28);
    EXPECT_EQ(NUMBEROFDAYS("20040227"), 4 * 365 + 28 + 27);
    EXPECT_EQ(NUMBEROFDAYS("20040329"), 4 * 365 + 59 + 29);
}

TEST(Numberofdays, IsMinusOneWhereItCannotBeRead)
{
    for (const char* const date : {"", "2000", "200001", "2000xx01", "abcd0101", "200001x1", "20000001", "20001301"}) {
        EXPECT_EQ(NUMBEROFDAYS(date), -1) << date;
    }
}

} // namespace
} // namespace gridforge
