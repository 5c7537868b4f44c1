#include "ops/count_cells.h"

#include "support/odd_cells.h"

#include <cmath>
#include <gtest/gtest.h>

namespace gridforge::test {
namespace {

constexpr float kNullA = -9999.0F;

TEST(CountActive, CountsWhatIsNotNull)
{
    EXPECT_EQ(ops::countActive(std::vector<float>{0.0F, kNullA, -1.0F, kNaN}, kNullA), 3);
    EXPECT_EQ(ops::countActive(std::vector<float>{kNullA}, kNullA), 0);
    EXPECT_EQ(ops::countActive({}, kNullA), 0);
}

TEST(CountAbove, ACellOfExactlyTheCutoffDoesNotCount)
{
    EXPECT_EQ(ops::countAbove(std::vector<float>{0.1F, std::nextafter(0.1F, 1.0F), kNullA, 5.0F, kNaN}, kNullA, 0.1F),
              2);
}

TEST(CountAbove, ANullAboveTheCutoffDoesNotCount)
{
    EXPECT_EQ(ops::countAbove(std::vector<float>{100.0F, 50.0F}, 100.0F, 10.0F), 1);
    EXPECT_EQ(ops::countAbove(std::vector<float>{kNullA, 50.0F}, kNullA, -20000.0F), 1);
}

TEST(Count, AgreesWithThePlainLoopsBeyondAStretch)
{
    const std::vector<float> cells = oddCells(200003, kNullA, 41);
    std::int64_t active = 0;
    std::int64_t above = 0;
    for (const float cell : cells) {
        if (cell != kNullA) {
            ++active;
            if (cell > 1.0F) {
                ++above;
            }
        }
    }
    EXPECT_EQ(ops::countActive(cells, kNullA), active);
    EXPECT_EQ(ops::countAbove(cells, kNullA, 1.0F), above);
}

} // namespace
} // namespace gridforge::test
