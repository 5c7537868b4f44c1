#include "grid/writer.h"

#include "core/number_text.h"
#include "core/text.h"
#include "grid/asc_write.h"
#include "grid/reader.h"
#include "host/ends.h"
#include "host/units.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace gridforge::grid {

namespace {

void writeHeaderLines(Unit unit, const GridHeader& header)
{
    writeLine(unit, join("ncols ", AINTEGER(header.ncols)));
    writeLine(unit, join("nrows ", AINTEGER(header.nrows)));
    writeLine(unit, join("xllcorner ", AREAL8(header.xll)));
    writeLine(unit, join("yllcorner ", AREAL8(header.yll)));
    writeLine(unit, join("cellsize ", AREAL8(header.cellsize8)));
    writeLine(unit, join("NODATA_value ", AREALD(header.null, 1)));
}

void writeAscCells(Unit unit, const CellSource& cells, std::int32_t decimals)
{
    const std::int32_t width = ascFieldWidth(cells, decimals);
    sayOpen("Writing ASC grid...");
    writeAscRows(unit, cells, width, decimals);
    endLine();
    say("Finished writing ASC grid.");
}

// If possible, makes the file in which the cells wait the file of the grid.
bool becomeGridFile(Unit unit, const CellSource& cells)
{
    CellStore* const store = cells.store();
    return store != nullptr && store->isInFile() && !store->isOnlyRead() &&
           replaceFile(unit, [&](const std::string& name) { return store->becomeFile(name); });
}

void copyCells(Unit unit, const CellSource& cells)
{
    constexpr std::size_t kPiece = std::size_t{1} << 18;
    reserveBytes(unit, static_cast<std::int64_t>(cells.size() * sizeof(float)));
    const std::size_t piece = cells.isInFile() ? kPiece : cells.size();
    std::vector<float> room(cells.isInFile() ? kPiece : 0);
    for (std::size_t first = 0; first < cells.size(); first += piece) {
        const auto got = cells.get(first, std::min(piece, cells.size() - first), room);
        if (!got) {
            failFetch(cells.isOnlyRead());
        }
        writeBytes(unit, std::as_bytes(*got));
    }
}

void writeFltCells(std::string_view name, const CellSource& cells)
{
    Unit unit = 0;
    OPENER(unit, "BO", name);
    say("Writing FLT grid...");
    if (!becomeGridFile(unit, cells)) {
        copyCells(unit, cells);
    }
    say("Finished writing FLT grid.");
    CLOSER(unit);
}

// Text that ends within its last value would be read as another value, so an .asc does not look whole until it is.
void writeAsc(std::string_view base, const GridHeader& header, const CellSource& cells, std::int32_t decimals)
{
    Unit unit = 0;
    OPENER(unit, "O ", join(base, ".asc"));
    markUnfinished(unit);
    writeHeaderLines(unit, header);
    writeAscCells(unit, cells, decimals);
    markFinished(unit);
    CLOSER(unit);
}

// The header looks whole only after its cells are: with cells of an earlier file, or half of them, readers would take it for
// that of another grid. Half of the bytes, for instance, pass for cells of half the size.
void writeFlt(std::string_view base, const GridHeader& header, const CellSource& cells)
{
    Unit unit = 0;
    OPENER(unit, "O ", join(base, ".hdr"));
    markUnfinished(unit);
    writeHeaderLines(unit, header);
    writeLine(unit, "byteorder LSBFIRST");
    FileStream headerFile = closeUnfinished(unit);
    writeFltCells(join(base, ".flt"), cells);
    finishLater(std::move(headerFile));
}

void writeProjection(std::string_view base, std::string_view projectionText)
{
    if (trimRight(projectionText).empty()) {
        return;
    }
    Unit unit = 0;
    OPENER(unit, "O ", join(base, ".prj"));
    writeLine(unit, trimRight(projectionText));
    CLOSER(unit);
}

} // namespace

std::vector<std::string> gridOutputFiles(Format format, std::string_view base)
{
    if (format == Format::asc) {
        return {join(base, ".asc")};
    }
    return {join(base, ".hdr"), join(base, ".flt")};
}

void writeGrid(Format format, std::string_view base, const GridHeader& header, const CellSource& cells,
               std::string_view projectionText, std::int32_t decimals)
{
    if (format != Format::asc && format != Format::flt) {
        shouldNotBeHere("grid_format");
    }
    if (format == Format::asc && decimals > kMaxDecimals) {
        fail("ERROR - Number of decimal places exceeds maximum: ", kMaxDecimals);
    }
    if (format == Format::asc) {
        writeAsc(base, header, cells, decimals < 0 ? kDefaultDecimals : decimals);
    } else {
        writeFlt(base, header, cells);
    }
    writeProjection(base, projectionText);
}

} // namespace gridforge::grid
