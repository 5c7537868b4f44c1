#include "remap/cell_state.h"

#include <cmath>
#include <gtest/gtest.h>

namespace gridforge {
namespace {

TEST(StartState, IsTheNullAsAnInteger)
{
    EXPECT_EQ(remap::startState(-9999.0F), remap::CellState::untouched);
    EXPECT_EQ(remap::startState(0.9F), remap::CellState::untouched);
    EXPECT_EQ(remap::startState(1.0F), remap::CellState::wet);
    EXPECT_EQ(remap::startState(1.99F), remap::CellState::wet);
    EXPECT_EQ(remap::startState(2.0F), remap::CellState::untouched);
    EXPECT_EQ(remap::startState(-1.99F), remap::CellState::dry);
    EXPECT_EQ(remap::startState(std::nanf("")), remap::CellState::untouched);
}

} // namespace
} // namespace gridforge
