// Reads a text grid, header and cells, or, after a zero byte, the .hdr and cells of a binary one.
#include "fuzz_run.h"
#include "grid/header.h"
#include "grid/reader.h"

#include <utility>

namespace {

void readGrid(const std::string& name)
{
    using namespace gridforge;
    constexpr std::size_t kMostCells = 1 << 20;
    try {
        fuzz::prepare();
        grid::OpenGrid grid = grid::openGrid(name);
        const GridHeader& header = grid.header;
        Grid cells;
        if (header.cells() <= kMostCells && cells.allocate(header.nrows, header.ncols)) {
            readCells(std::move(grid), cells);
        }
    } catch (const fuzz::EndOfRun&) {
    }
    closeAllUnits();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace gridforge::fuzz;
    const auto [text, binary] = split({reinterpret_cast<const char*>(data), size}, std::string_view("\0", 1));
    give("g.asc", text);
    readGrid("g.asc");
    give("g.hdr", text);
    give("g.flt", binary);
    readGrid("g.flt");
    return 0;
}
