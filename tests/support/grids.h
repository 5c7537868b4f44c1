// Grids for tests, made and read back by a few lines that share nothing with the tool.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace gridforge::test {

// Cells as a file holds them: the north row first.
using Cells = std::vector<std::vector<double>>;

constexpr double kNull = -9999;

// Nine rows of nine cells that tell their place: cell (row, column) from the south-west is 10 row + column.
Cells rowColumnCells();

struct GridOptions {
    double xll = 0;
    double yll = 0;
    double cellsize = 1;
    double null = kNull;
    std::string lineEnd = "\n";
};

// The text of an .asc file, values in their shortest form.
std::string ascGrid(const Cells& cells, const GridOptions& options = {});

// The bytes of a .flt file, little-endian.
std::string fltCells(const Cells& cells);
// The text of its .hdr file, closed by the byteorder line.
std::string hdr(std::int64_t ncols, std::int64_t nrows, const GridOptions& options = {});
std::string hdr(const Cells& cells, const GridOptions& options = {});

// <base>.flt and <base>.hdr, into a folder or a run.
template <typename Folder>
void giveFlt(Folder& folder, const std::string& base, const Cells& cells, const GridOptions& options = {})
{
    folder.give(base + ".hdr", hdr(cells, options));
    folder.give(base + ".flt", fltCells(cells));
}

// A grid as read back from a file. Values of an .asc are those of its text, those of a .flt single precision.
struct WrittenGrid {
    std::int64_t ncols = 0;
    std::int64_t nrows = 0;
    double xll = 0;
    double yll = 0;
    double cellsize = 0;
    double null = 0;
    Cells cells;
};

// Strict readers of the files of the tool's own writer: anything that is not as it writes is a test failure.
WrittenGrid readWrittenAsc(std::string_view text);
WrittenGrid readWrittenFlt(std::string_view header, std::string_view bytes);

// Both grids as a table, for failure messages.
std::string showCells(const Cells& cells);

} // namespace gridforge::test
