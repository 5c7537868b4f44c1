// Small inputs of the remap tests, and what all their consoles begin with.
#pragma once

#include "support/tool_run.h"

#include <string>
#include <vector>

namespace gridforge::test {

// Coarse cells of 2 with a level of x + 10 y at their centres 1, 3 and 5.
inline Cells planeLevels()
{
    return {{51, 53, 55}, {31, 33, 35}, {11, 13, 15}};
}

// Fine cells of 1 under them.
inline Cells flatGround(double ground)
{
    return Cells(6, std::vector<double>(6, ground));
}

// The plane at the fine centres; those in the outer half of the outer coarse cells stay null.
inline Cells planeOnFineCells(double above = 0)
{
    Cells cells = flatGround(kNull);
    for (int line = 1; line <= 4; ++line) {
        for (int column = 1; column <= 4; ++column) {
            const double x = column + 0.5;
            const double y = 5 - line + 0.5;
            cells[static_cast<std::size_t>(line)][static_cast<std::size_t>(column)] = x + 10 * y + above;
        }
    }
    return cells;
}

inline std::string coarseGrid(const Cells& cells)
{
    return ascGrid(cells, {.cellsize = 2});
}

inline void givePlane(ToolRun& run, double ground = 0)
{
    run.give("wl.asc", coarseGrid(planeLevels()));
    run.give("dem.asc", ascGrid(flatGround(ground)));
}

} // namespace gridforge::test
