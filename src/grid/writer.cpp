#include "grid/writer.h"

#include "core/numbers.h"
#include "core/text.h"
#include "grid/asc_format.h"
#include "host/ends.h"
#include "host/units.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace gridforge {

namespace {

constexpr std::int32_t kProgressRows = 1000;

void writeHeaderLines(Unit unit, const GridHeader& header)
{
    writeLine(unit, join("ncols ", AINTEGER(header.ncols)));
    writeLine(unit, join("nrows ", AINTEGER(header.nrows)));
    writeLine(unit, join("xllcorner ", AREAL8(header.xll)));
    writeLine(unit, join("yllcorner ", AREAL8(header.yll)));
    writeLine(unit, join("cellsize ", AREAL8(header.cellsize8)));
    writeLine(unit, join("NODATA_value ", AREALD(header.null, 1)));
}

// One width for all cells of the file: room for the largest magnitude, the decimals, the sign and a blank.
int fieldWidth(const Grid& cells, std::int32_t decimals)
{
    const Extremes extremes = findExtremes(cells.cells());
    const float magnitude = std::max(extremes.largest, std::fabs(extremes.smallest));
    return decimals + static_cast<int>(AREALD(magnitude, 0).size()) + 2;
}

// Formats straight into the write buffer, in pieces where a row is longer than that.
void writeAscRow(Unit unit, std::span<const float> row, int width, std::int32_t decimals)
{
    const auto fieldBytes = static_cast<std::size_t>(width);
    const std::size_t piece = kWriteRoom / fieldBytes;
    while (!row.empty()) {
        const std::size_t count = std::min(piece, row.size());
        const std::size_t bytes = count * fieldBytes;
        formatAscRow(row.first(count), width, decimals, writeRoom(unit, bytes).data());
        wroteBytes(unit, bytes);
        row = row.subspan(count);
    }
    writeText(unit, "\r\n");
}

void writeAscCells(Unit unit, const Grid& cells, std::int32_t decimals)
{
    const int width = fieldWidth(cells, decimals);
    sayOpen("Writing ASC grid...");
    for (std::int32_t row = cells.nrows(); row >= 1; --row) {
        if (row % kProgressRows == 0) {
            progress(row);
        }
        writeAscRow(unit, cells.row(row), width, decimals);
    }
    endLine();
    say("Finished writing ASC grid.");
}

void writeFltCells(std::string_view name, const Grid& cells)
{
    Unit unit = 0;
    OPENER(unit, "BO", name);
    say("Writing FLT grid...");
    const auto bytes = std::as_bytes(cells.cells());
    reserveBytes(unit, static_cast<std::int64_t>(bytes.size()));
    writeBytes(unit, bytes);
    say("Finished writing FLT grid.");
    CLOSER(unit);
}

// Text that ends within its last value is read as another value, so an .asc looks whole no sooner than it is.
void writeAsc(std::string_view base, const GridHeader& header, const Grid& cells, std::int32_t decimals)
{
    Unit unit = 0;
    OPENER(unit, "O ", join(base, ".asc"));
    markUnfinished(unit);
    writeHeaderLines(unit, header);
    writeAscCells(unit, cells, decimals);
    markFinished(unit);
    CLOSER(unit);
}

// No header stands before cells that are not its own, of an earlier file or not all there: readers that find half of the
// bytes take them for cells of half the size.
void writeFlt(std::string_view base, const GridHeader& header, const Grid& cells)
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

std::vector<std::string> gridOutputFiles(std::int32_t format, std::string_view base)
{
    if (format == kFormatAsc) {
        return {join(base, ".asc")};
    }
    return {join(base, ".hdr"), join(base, ".flt")};
}

void writeGrid(std::int32_t format, std::string_view base, const GridHeader& header, const Grid& cells,
               std::string_view projectionText, std::int32_t decimals)
{
    if (format != kFormatAsc && format != kFormatFlt) {
        shouldNotBeHere("grid_format");
    }
    if (format == kFormatAsc && decimals > kMaxDecimals) {
        fail("ERROR - Number of decimal places exceeds maximum: ", kMaxDecimals);
    }
    if (format == kFormatAsc) {
        writeAsc(base, header, cells, decimals < 0 ? kDefaultDecimals : decimals);
    } else {
        writeFlt(base, header, cells);
    }
    writeProjection(base, projectionText);
}

// --- Comparison of geometry ------------------------------------------------------------------------------------------

namespace {

bool isApart(double first, double second, double tolerance)
{
    return std::fabs(first - second) > tolerance;
}

} // namespace

void compareGridDimensions(const GridHeader& first, const GridHeader& second, double tolerance)
{
    bool match = true;
    const auto report = [&match](std::string_view message, const std::string& a, const std::string& b) {
        match = false;
        say(message, a, " and ", b);
    };
    if (first.nrows != second.nrows) {
        report("ERROR - number of rows for input grids do not match. Rows = ", AINTEGER(first.nrows),
               AINTEGER(second.nrows));
    }
    if (first.ncols != second.ncols) {
        report("ERROR - number of columns for input grids do not match. Columns = ", AINTEGER(first.ncols),
               AINTEGER(second.ncols));
    }
    if (isApart(first.xll, second.xll, tolerance)) {
        report("ERROR - x coordinates of input grids do not match. xll = ", AREAL8(first.xll), AREAL8(second.xll));
    }
    if (isApart(first.yll, second.yll, tolerance)) {
        report("ERROR - y coordinates of input grids do not match. yll = ", AREAL8(first.yll), AREAL8(second.yll));
    }
    if (isApart(first.cellsize8, second.cellsize8, tolerance)) {
        report("ERROR - cell size of input grids do not match. cell sizes = ", AREAL8(first.cellsize8),
               AREAL8(second.cellsize8));
    }
    if (!match) {
        fail("ERROR - dimensions of grids do not match (see above for details).");
    }
}

} // namespace gridforge
