#include "ops/trim_cells.h"

#include "plane/cell_array.h"
#include "plane/geometry.h"
#include "support/lattice.h"
#include "support/sampled_region.h"

#include <algorithm>
#include <array>
#include <gtest/gtest.h>
#include <random>
#include <utility>

namespace gridforge::test {
namespace {

// The plain twin of the kernel: each cell by itself.
void copyInsidePlainly(const SampledRegion& region, const GridHeader& header, const Grid& cells, const CellWindow& w,
                       Grid& output)
{
    const auto np = static_cast<std::int32_t>(region.x.size());
    const std::array<std::int32_t, 1> ir = {np - 1};
    for (std::int32_t row = w.firstRow; row <= w.lastRow; ++row) {
        for (std::int32_t column = w.firstColumn; column <= w.lastColumn; ++column) {
            const double x = header.xll + static_cast<double>(static_cast<float>(column)) * header.cellsize8;
            const double y = header.yll + static_cast<double>(static_cast<float>(row)) * header.cellsize8;
            if (INSIDE_POLYGON_8(x, y, region.x, region.y, np, region.box.xmin, ir, 1)) {
                output(row - w.firstRow + 1, column - w.firstColumn + 1) = cells(row, column);
            }
        }
    }
}

TEST(CopyInside, GivesTheCellsOfThePlainLoop)
{
    std::mt19937 random(11);
    const auto upTo = [&](int n) { return static_cast<double>(random() % static_cast<unsigned>(n)); };
    for (int round = 0; round < 400; ++round) {
        const bool large = round % 2 == 0;
        const GridHeader header =
            headerOf(30, 40, large ? 293000.25 : 0, large ? 6178000.5 : 0, round % 3 == 0 ? 0.7F : 1.0F);
        Grid cells;
        ASSERT_TRUE(cells.allocate(header.nrows, header.ncols));
        for (float& cell : cells.cells()) {
            cell = static_cast<float>(upTo(1000));
        }
        std::vector<double> x;
        std::vector<double> y;
        for (int k = 0; k < 3 + round % 12; ++k) { // steps of a half meet corners, edges and each other
            x.push_back(header.xll + upTo(50) * 0.5);
            y.push_back(header.yll + upTo(40) * 0.5);
        }
        const SampledRegion region = regionOf(x, y);
        const CellWindow w = withinGrid(regionWindow(region, header), header);
        Grid fast;
        Grid plain;
        ASSERT_TRUE(fast.allocate(w.lastRow - w.firstRow + 1, w.lastColumn - w.firstColumn + 1));
        ASSERT_TRUE(plain.allocate(w.lastRow - w.firstRow + 1, w.lastColumn - w.firstColumn + 1));
        std::ranges::fill(plain.cells(), header.null);
        const auto copy = [&](std::size_t first, std::span<float> target) {
            std::ranges::copy(std::as_const(cells).cells().subspan(first, target.size()), target.begin());
        };
        ops::copyInside(region, header, w, fast.cells(), copy);
        copyInsidePlainly(region, header, cells, w, plain);
        ASSERT_TRUE(std::ranges::equal(fast.cells(), plain.cells())) << round;
    }
}

} // namespace
} // namespace gridforge::test
