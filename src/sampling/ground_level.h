// The ground elevation at a vertex of a breakline: of one cell, of four, across the line or in a circle.
#pragma once

#include "plane/across_line.h"
#include "plane/cell_array.h"
#include "plane/inside_runs.h"
#include "sampling/search_polygon.h"

#include <cstdint>
#include <string_view>

namespace gridforge::sampling {

// What a vertex gets that the grid says nothing about.
inline constexpr float kNoGround = 99999.0F;

// What is taken of several cells.
enum class LevelRule { mean, highest, lowest };

// By the words Max and Min anywhere in the options, case ignored; Max wins.
LevelRule levelRule(std::string_view options);

struct GroundLevel {
    float value = 0;
    std::int64_t count = 0; // cells with a value that were searched
    double x = 0;           // the place of the highest or lowest cell
    double y = 0;
    bool outside = false; // beyond the grid, the value is kNoGround
};

// The value of the cell of the point, null too.
GroundLevel levelOfCell(const GridHeader& header, const Grid& cells, double x, double y);
// Of the four cells from the point's own to its north-east neighbour; null where all are.
GroundLevel levelOfFourCells(const GridHeader& header, const Grid& cells, double x, double y, LevelRule rule);
// Of the samples of the range; outside where none has a value.
GroundLevel levelAcross(const AcrossLine& line, const GridHeader& header, const Grid& cells, const SampleRange& range,
                        LevelRule rule);
// Of the cells whose centres lie inside the polygon; outside where its window is not within the grid, null where no cell
// has a value. `walk` is memory that may be used again.
GroundLevel levelInCircle(const SearchPolygon& polygon, const CellWindow& window, const GridHeader& header,
                          const Grid& cells, LevelRule rule, InsideWalk& walk);

} // namespace gridforge::sampling
