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

void readAscCells(GridHeader& header, Grid& cells)
{
    sayOpen("Reading ASCII grid...");
    for (std::int32_t row = cells.nrows(); row >= 1; --row) {
        if (row % kProgressRows == 0) {
            progress(row);
        }
        if (!readAscRow(header.unit, cells.row(row))) {
            failCells();
        }
    }
    endLine();
    say("");
    CLOSER(header.unit);
}

void readFltCells(std::string_view name, GridHeader& header, Grid& cells)
{
    CLOSER(header.unit);
    OPENER(header.unit, "BI", name);
    if (!readBytes(header.unit, std::as_writable_bytes(cells.cells()))) {
        failCells();
    }
    CLOSER(header.unit);
}

} // namespace

void readGridCells(std::string_view name, GridHeader& header, Grid& cells)
{
    if (header.format == kFormatFlt) {
        readFltCells(name, header, cells);
    } else {
        readAscCells(header, cells);
    }
}

} // namespace gridforge
