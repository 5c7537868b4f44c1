// The lines of a grid's header, one after the other.
#pragma once

#include "grid/grid.h"

#include <string>

namespace gridforge::grid {

// After more lines with keywords than this a header is none.
inline constexpr int kMaxKeywordLines = 100;

struct Placement {
    bool xGiven = false;
    bool yGiven = false;
    bool xIsCentre = false;
    bool yIsCentre = false;
};

enum class Keyword { none, read, unreadable };

// Takes the value of the first keyword, in their order, that stands anywhere in the line.
Keyword takeKeyword(const std::string& line, GridHeader& header, Placement& placement);

// After the last line: settles the corner. False where something is missing.
bool settle(GridHeader& header, const Placement& placement);

} // namespace gridforge::grid
