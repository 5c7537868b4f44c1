#include "grid/reader.h"

#include "grid/asc_rows.h"
#include "host/ends.h"
#include "host/messages.h"
#include "host/positions.h"

#include <bit>
#include <cassert>

namespace gridforge::grid {

namespace {

static_assert(std::endian::native == std::endian::little, "cells of .flt files go to memory as they are");

constexpr std::int32_t kReadProgressRows = 1000;

} // namespace

void failCells()
{
    report("ERROR 2334 - Reading Grid file data.  Check format and file is complete by viewing in GIS.");
    EXITS();
}

void failFetch(bool onlyRead)
{
    if (onlyRead) {
        failCells();
    }
    failMemory();
}

namespace {

// Calls `readRow` for each row, the north row first.
template <typename ReadRow>
void goThroughAscCells(Unit& unit, std::int32_t nrows, ReadRow readRow)
{
    sayOpen("Reading ASCII grid...");
    for (std::int32_t row = nrows; row >= 1; --row) {
        if (row % kReadProgressRows == 0) {
            progress(row);
        }
        if (!readRow(row)) {
            failCells();
        }
    }
    endLine();
    say("");
    CLOSER(unit);
}

template <typename ReadBytes>
void goThroughFltCells(std::string_view name, Unit& unit, ReadBytes read)
{
    CLOSER(unit);
    OPENER(unit, "BI", name);
    if (!read()) {
        failCells();
    }
    CLOSER(unit);
}

} // namespace

void readCells(OpenGrid grid, Grid& cells)
{
    if (grid.format == Format::flt) {
        goThroughFltCells(grid.name, grid.unit,
                          [&] { return readBytes(grid.unit, std::as_writable_bytes(cells.cells())); });
    } else {
        goThroughAscCells(grid.unit, cells.nrows(),
                          [&](std::int32_t row) { return readAscRow(grid.unit, cells.row(row)); });
    }
}

void passCells(OpenGrid grid)
{
    if (grid.format == Format::flt) {
        goThroughFltCells(grid.name, grid.unit, [] { return true; });
    } else {
        goThroughAscCells(grid.unit, grid.header.nrows, [](std::int32_t) { return true; });
    }
}

void readPassedCells(const GridLook& look, Grid& cells)
{
    assert(look.format == Format::flt);

    const SystemFile file = theSystem().open(look.file, OpenFor::reading);
    if (file == SystemFile::none || !readAllAt(file, look.cellsFrom, std::as_writable_bytes(cells.cells()))) {
        failCells();
    }
    theSystem().close(file);
}

} // namespace gridforge::grid
