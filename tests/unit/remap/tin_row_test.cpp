#include "remap/tin_row.h"

#include "support/odd_cells.h"

#include <gtest/gtest.h>
#include <vector>

namespace gridforge {
namespace {

constexpr float kNull = -9999.0F;

TEST(DepthsWhereWet, ANotANumberThatIsComputedHasTheBitsOfTheQuietOne)
{
    const std::vector<remap::CellState> states(test::kVectorsAndRest, remap::CellState::wet);
    std::vector<float> levels(states.size(), test::kInfinity);
    std::vector<float> ground = levels;
    remap::depthsWhereWet(states, kNull, levels, ground);
    EXPECT_TRUE(test::allQuietNaN(ground));
}

} // namespace
} // namespace gridforge
