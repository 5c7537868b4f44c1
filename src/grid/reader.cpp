#include "grid/reader.h"

#include "grid/asc_rows.h"
#include "host/ends.h"
#include "host/messages.h"

#include <bit>

namespace gridforge {

namespace {

static_assert(std::endian::native == std::endian::little, "cells of .flt files go to memory as they are");

constexpr std::int32_t kProgressRows = 1000;

[[noreturn]] void failCells()
{
    report("ERROR 2334 - Reading Grid file data.  Check format and file is complete by viewing in GIS.");
    EXITS();
}

void readAscCells(Unit& unit, Grid& cells)
{
    sayOpen("Reading ASCII grid...");
    for (std::int32_t row = cells.nrows(); row >= 1; --row) {
        if (row % kProgressRows == 0) {
            progress(row);
        }
        if (!readAscRow(unit, cells.row(row))) {
            failCells();
        }
    }
    endLine();
    say("");
    CLOSER(unit);
}

void readFltCells(std::string_view name, Unit& unit, Grid& cells)
{
    CLOSER(unit);
    OPENER(unit, "BI", name);
    if (!readBytes(unit, std::as_writable_bytes(cells.cells()))) {
        failCells();
    }
    CLOSER(unit);
}

} // namespace

void readCells(OpenGrid grid, Grid& cells)
{
    if (grid.format == kFormatFlt) {
        readFltCells(grid.name, grid.unit, cells);
    } else {
        readAscCells(grid.unit, cells);
    }
}

} // namespace gridforge
