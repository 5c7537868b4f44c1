#include "plane/across_line.h"

#include "support/lattice.h"

#include <array>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

namespace gridforge::test {
namespace {

TEST(SamplesToSide, RoundsUpPastTheSearchDistance)
{
    const GridHeader h = headerOf(10, 10, 0, 0, 2.0F);
    EXPECT_EQ(samplesToSide(h, 7.0F, 0.5F), 2); // 1.75 + 1
    EXPECT_EQ(samplesToSide(h, 7.0F, 1.0F), 4); // 3.5 + 1
    EXPECT_EQ(samplesToSide(h, 8.0F, 0.5F), 3); // 2 + 1
    EXPECT_EQ(samplesToSide(h, -8.0F, 0.5F), -1);
    EXPECT_EQ(samplesToSide(h, 1e30F, 1.0F), std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(-samplesToSide(h, -1e30F, 1.0F), std::numeric_limits<std::int32_t>::max());
}

TEST(AcrossLine, StepsOneCellAlongTheAngle)
{
    const GridHeader h = headerOf(10, 10, 100, 200, 2.0F);
    const AcrossLine north = acrossLine(h, 105, 207, 90.0F);
    EXPECT_EQ(north.sampleX(3), 105);
    EXPECT_EQ(north.sampleY(3), 213);
    const AcrossLine slanted = acrossLine(h, 0, 0, 45.0F);
    EXPECT_EQ(slanted.sampleX(1), 2 * static_cast<double>(static_cast<float>(std::sqrt(0.5))));
}

TEST(SampleCell, RoundsToTheCellWhoseCornerIsNearest)
{
    const GridHeader h = headerOf(10, 10, 100, 200, 2.0F);
    const AcrossLine line = acrossLine(h, 105.1, 206.9, 0.0F); // (105.1 - 100) / 2 = 2.55, (206.9 - 200) / 2 = 3.45
    EXPECT_EQ(sampleCell(line, h, 0).column, 3);
    EXPECT_EQ(sampleCell(line, h, 0).row, 3);
    EXPECT_EQ(sampleCell(line, h, -2).column, 1);
    EXPECT_EQ(sampleCellX(h, 3), 105); // 100 + 6 - 1
    EXPECT_EQ(sampleCellY(h, 1), 201);
}

TEST(ForEachSample, GoesAlongTheLineWithinTheGrid)
{
    const GridHeader h = headerOf(3, 4, 0, 0, 1.0F);
    const AcrossLine line = acrossLine(h, 2, 2, 180.0F); // westwards from the cell in row 2, column 2
    std::vector<std::array<std::int32_t, 3>> seen;
    forEachSample(line, h, {-9, 9}, [&](std::int32_t k, const SampleCell& cell) {
        seen.push_back({k, cell.row, cell.column});
    });
    const std::vector<std::array<std::int32_t, 3>> expected{{-2, 2, 4}, {-1, 2, 3}, {0, 2, 2}, {1, 2, 1}};
    EXPECT_EQ(seen, expected);
}

} // namespace
} // namespace gridforge::test
