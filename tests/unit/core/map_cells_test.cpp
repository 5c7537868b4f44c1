#include "core/map_cells.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

namespace gridforge::test {
namespace {

using testing::ElementsAre;

TEST(MapCells, AssignsEachCellByThatOfItsPlace)
{
    const std::vector<float> ones = {1, 2, 3};
    const std::vector<float> tens = {10, 20, 30};
    std::vector<float> output(3, 77.0F);
    mapCells(ones, output, [](float cell) { return cell + 0.5F; });
    EXPECT_THAT(output, ElementsAre(1.5F, 2.5F, 3.5F));
    mapCells(tens, ones, output, [](float ten, float one) { return ten - one; });
    EXPECT_THAT(output, ElementsAre(9, 18, 27));
}

TEST(UpdateCells, TakesWhatIsKeptFirst)
{
    const std::vector<float> ones = {1, 2, 3};
    std::vector<float> kept = {10, 20, 30};
    updateCells(kept, ones, [](float cell, float one) { return cell - one; });
    EXPECT_THAT(kept, ElementsAre(9, 18, 27));
    updateCells(kept, [](float cell) { return cell + 1; });
    EXPECT_THAT(kept, ElementsAre(10, 19, 28));
}

TEST(CountCells, CountsBeyondAStretch)
{
    const auto isOdd = [](float cell) { return cell == 1; };
    std::vector<float> cells;
    for (int i = 0; i < 200003; ++i) {
        cells.push_back(static_cast<float>(i % 2));
    }
    EXPECT_EQ(countCells(cells, isOdd), 100001);
    EXPECT_EQ(countCells({}, isOdd), 0);
}

} // namespace
} // namespace gridforge::test
