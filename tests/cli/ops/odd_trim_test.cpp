// A whole run of -trim on grids that hold every odd number: what a cut keeps, it keeps bit by bit.
#include "support/layer_files.h"
#include "support/odd_grids.h"
#include "support/plain_region.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace gridforge::test {
namespace {

constexpr float kNullOfGrid = -9999;
constexpr double kXll = 100.25; // cells of 1
constexpr double kYll = -7.5;

// x1, y1, x2, y2 ..., closed; no corner of a cell is near an edge.
using Ring = std::vector<double>;

// Cells whose not-a-numbers have several bits.
Values cellsOfGrid()
{
    Values cells = oddGrid(kNullOfGrid, 4);
    bool other = false;
    for (float& cell : cells) {
        if (cell != cell) {
            cell = other ? kOddNaN : cell;
            other = !other;
        }
    }
    return cells;
}

std::string region(const Ring& ring)
{
    std::string text = "Region  1\n  " + std::to_string(ring.size() / 2) + "\n";
    for (std::size_t i = 0; i < ring.size(); i += 2) {
        text += std::to_string(ring[i]) + " " + std::to_string(ring[i + 1]) + "\n";
    }
    return text + "    Pen (1,2,0)\n    Brush (1,0,16777215)\n";
}

struct Window {
    int first;
    int last;
};

// From the cell of the lowest to that of the highest coordinate of the ring, within the grid.
Window windowOf(const Ring& ring, std::size_t axis, double origin, std::size_t cells)
{
    double lowest = ring[axis];
    double highest = ring[axis];
    for (std::size_t i = axis; i < ring.size(); i += 2) {
        lowest = std::min(lowest, ring[i]);
        highest = std::max(highest, ring[i]);
    }
    return {std::max(1, static_cast<int>(std::trunc(lowest - origin))),
            std::min(static_cast<int>(cells), static_cast<int>(std::trunc(highest - origin + 1.0)))};
}

// Cells of which the north-east corner lies inside; the north row first.
Values cutOf(const Ring& ring)
{
    const Values cells = cellsOfGrid();
    const Window columns = windowOf(ring, 0, kXll, kOddColumns);
    const Window rows = windowOf(ring, 1, kYll, kOddRows);
    Values cut;
    for (int row = rows.last; row >= rows.first; --row) {
        for (int column = columns.first; column <= columns.last; ++column) {
            const Verdict corner = verdict(ring, kXll + column, kYll + row);
            EXPECT_FALSE(corner.near) << column << " " << row;
            const std::size_t line = kOddRows - static_cast<std::size_t>(row);
            cut.push_back(corner.inside ? cells[line * kOddColumns + static_cast<std::size_t>(column - 1)]
                                        : kNullOfGrid);
        }
    }
    return cut;
}

TEST(OddTrim, KeepsTheBitsOfTheCellsInside)
{
    const std::vector<Ring> rings = {
        {103.3, -3.3, 148.5, 1.7, 131.0, 30.1, 126.3, 9.2, 109.9, 22.2, 103.3, -3.3}, // with a notch
        {140.5, 5.1, 170.6, 5.1, 170.6, 28.7, 140.5, 28.7, 140.5, 5.1}};              // in part outside
    ToolRun run("-b -trim l.mif a.flt -flt");
    run.give("a.flt", bytesOf(cellsOfGrid()));
    run.give("a.hdr", hdr(kOddColumns, kOddRows, {.xll = kXll, .yll = kYll, .null = static_cast<double>(kNullOfGrid)}));
    run.give("l.mif", mifText(region(rings[0]) + region(rings[1])));
    run.give("l.mid", "\"r1\",1\n\"r2\",2\n");
    run.start();
    EXPECT_TRUE(run.reachedEnd()) << run.console();
    EXPECT_TRUE(run.says("WARNING - Part of region extends outside of grid, region name: r2")) << run.console();
    for (std::size_t i = 0; i < rings.size(); ++i) {
        const std::string base = "r" + std::to_string(i + 1) + "_a";
        const Window columns = windowOf(rings[i], 0, kXll, kOddColumns);
        const Window rows = windowOf(rings[i], 1, kYll, kOddRows);
        EXPECT_EQ(run.grid(base + ".flt").ncols, columns.last - columns.first + 1);
        EXPECT_EQ(run.grid(base + ".flt").nrows, rows.last - rows.first + 1);
        EXPECT_EQ(run.grid(base + ".flt").xll, kXll + columns.first - 1);
        EXPECT_EQ(run.grid(base + ".flt").yll, kYll + rows.first - 1);
        EXPECT_EQ(run.read(base + ".flt"), bytesOf(cutOf(rings[i]))) << base; // not-a-numbers too
    }
}

} // namespace
} // namespace gridforge::test
