// The lines of a grid's header, one after the other.
#pragma once

#include "plane/grid_header.h"

#include <string>

namespace gridforge::grid {

// More lines with keywords than this are no header.
inline constexpr int kMaxKeywordLines = 100;

struct Placement {
    bool xGiven = false;
    bool yGiven = false;
    bool xIsCentre = false;
    bool yIsCentre = false;
};

enum class Keyword { none, read, unreadable };

// Reads the value of the first keyword, in the order of the table, that is anywhere in the line.
Keyword takeKeyword(const std::string& line, GridHeader& header, Placement& placement);

// Called after the last line: settles the corner. False if something is missing.
bool settle(GridHeader& header, const Placement& placement);

} // namespace gridforge::grid
