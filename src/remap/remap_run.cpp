#include "remap/remap_run.h"

#include "core/names.h"
#include "core/text.h"
#include "grid/writer.h"
#include "host/ends.h"

#include <algorithm>

namespace gridforge::remap {

namespace {

void writeOutput(const RemapRun& run, const std::string& base, const GridHeader& header, const grid::CellSource& cells)
{
    run::requireNoInput(run.format, base, run.stillToRead);
    grid::writeGrid(run.format, base, header, cells, run.projectionText, run.decimals);
}

} // namespace

void writeFine(const RemapRun& run, std::string_view source, std::string_view suffix, const grid::CellSource& cells)
{
    GridHeader header = run.terrain;
    header.null = run.null();
    writeOutput(run, join(FILENAMEPATH(source), suffix), header, cells);
}

void writeCoarse(const RemapRun& run, std::string_view source, std::string_view suffix, const Grid& cells)
{
    writeOutput(run, join(FILENAMEPATH(source), suffix), run.coarse, cells);
}

void startCellStates(RemapRun& run)
{
    if (!run.cellState.allocate(run.terrain.nrows, run.terrain.ncols)) {
        failMemory();
    }
    if (const CellState start = startState(run.null()); start != CellState::untouched) {
        std::ranges::fill(run.cellState.cells(), start);
    }
}

} // namespace gridforge::remap
