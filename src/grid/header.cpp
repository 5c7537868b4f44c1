#include "grid/header.h"

#include "core/names.h"
#include "core/number_text.h"
#include "core/text.h"
#include "grid/header_keywords.h"
#include "host/ends.h"
#include "host/file_system.h"
#include "host/messages.h"

namespace gridforge::grid {

namespace {

// Looks for the .prj in the current folder only, unlike for the .hdr, on purpose: users know it so.
std::string readProjection(std::string_view gridName)
{
    const std::string name = FILENAME(gridName) + ".prj";
    if (!inputExists(name)) {
        return {};
    }
    Unit unit = 0;
    OPENER(unit, "I ", name);
    say("Using ", name, " for setting projection.");
    std::string projection;
    std::string line;
    std::string lastLine;
    while (projection.empty() && readLine(unit, line)) {
        lastLine = line;
        if (FLAGEXISTS(line, "PROJCS")) {
            projection = line;
        }
    }
    if (readFailed(unit)) {
        say("ERROR - Reading projection file information.");
        fail("Line = ", lastLine);
    }
    if (projection.empty()) {
        say("WARNING - Unable to find PROJCS line in ", name);
    } else {
        say("shp Projection: ", projection);
    }
    CLOSER(unit);
    return projection;
}

[[noreturn]] void failHeader(std::string_view line)
{
    report("ERROR 2334 - Reading Grid file header information.");
    fail("Line = ", line);
}

void readKeywords(Unit unit, GridHeader& header, Placement& placement)
{
    std::string line;
    std::string lastLine;
    for (int keywordLines = 0;; ++keywordLines) {
        if (!readLine(unit, line)) {
            failHeader(lastLine);
        }
        lastLine = line;
        const Keyword keyword = takeKeyword(line, header, placement);
        if (keyword == Keyword::unreadable) {
            failHeader(line);
        }
        if (keyword == Keyword::none) {
            stepBack(unit);
            if (keywordLines > kMaxKeywordLines) {
                report("ERROR 2332 - Failed to find header information in external grid file.  Check format of file.");
                EXITS();
            }
            return;
        }
    }
}

} // namespace

bool isBinary(std::string_view name)
{
    return FILEEXT(name) == ".flt";
}

std::vector<std::string> gridInputFiles(std::string_view name)
{
    if (isBinary(name)) {
        return {join(FILEFOLDERPATH(name), FILENAME(name), ".hdr"), std::string(name)};
    }
    return {std::string(name)};
}

OpenGrid openGrid(std::string_view name)
{
    OpenGrid grid;
    grid.name = name;
    grid.projectionText = readProjection(name);
    grid.format = isBinary(name) ? Format::flt : Format::asc;
    OPENER(grid.unit, "I ", gridInputFiles(name).front());

    GridHeader& header = grid.header;
    Placement placement;
    readKeywords(grid.unit, header, placement);
    if (!settle(header, placement)) {
        report("ERROR 2333 - Insufficient header information in external grid file.  Check format of file.");
        EXITS();
    }
    say("External Grid Info: ", AINTEGER(header.nrows), " rows by ", AINTEGER(header.ncols), " columns with ",
        AREAL(header.cellsize), " cell size.");
    return grid;
}

} // namespace gridforge::grid
