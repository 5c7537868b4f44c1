// The head of a .mif: its columns, and its projection.
#include "gis/mif/reader.h"

#include "core/free_form.h"
#include "core/text.h"
#include "gis/gis_messages.h"
#include "gis/projection.h"
#include "host/console.h"
#include "host/ends.h"

#include <algorithm>
#include <iterator>

namespace gridforge::gis::mif {

namespace {

constexpr std::size_t kCountColumn = 7; // from 0, after "Columns"

// A tab counts as a blank.
std::string blankedTabs(std::string_view text)
{
    std::string blanked(text);
    std::ranges::replace(blanked, '\t', ' ');
    return blanked;
}

// Skips lines up to and including the one that holds `word`; false at the end of the file.
bool findLine(Unit unit, std::string_view word, std::string& line, std::size_t width)
{
    while (readLine(unit, line, width)) {
        if (FLAGEXISTS(line, word)) {
            return true;
        }
    }
    return false;
}

// The rewinding routines look at less of a line than the reader of the header.
constexpr std::size_t kShortLine = 100;
constexpr std::size_t kLongNameWidth = 256;

// Skips lines up to and including the one that holds "Data". A file without it ends the run.
void findData(Unit unit, std::size_t width)
{
    std::string line;
    if (!findLine(unit, "Data", line, width)) {
        gisFail("ERROR 0313 - Could not find start of \"Data\" block in .mif file.");
    }
}

void needDefinition(Unit unit, std::string& line)
{
    if (!readLine(unit, line)) {
        gisFail("ERROR 0316 - Could not read attribute definitions in .mif file");
    }
}

void readDefinitions(MifInput& input, std::int32_t count)
{
    std::string line;
    input.definitions.clear();
    for (std::int32_t i = 0; i < count; ++i) {
        needDefinition(input.mifUnit, line);
        input.definitions.push_back(splitDefinition(line, kColumnNameWidth));
    }
}

void sayDefinitions(const MifInput& input)
{
    std::string text = join(input.definitions.size(), " MIF Fields: Name [#/Type]: ");
    std::size_t number = 0;
    for (const Column& definition : input.definitions) {
        text += join(definition.name, " [", ++number, "/", definition.type, "]  ");
    }
    say(text);
}

// The number in brackets of a type such as Char(20); 0 if it is missing.
std::int32_t bracketedWidth(std::string_view type)
{
    const std::size_t open = type.find('(');
    std::int32_t width = 0;
    if (open == std::string_view::npos || !readFree(type.substr(open + 1, type.find(')', open) - open - 1), width)) {
        return 0;
    }
    return width;
}

Column outputColumn(const Column& definition)
{
    const std::string& type = definition.type;
    if (FLAGEXISTS(type, "Float")) {
        return {definition.name, "Float", 0};
    }
    return {definition.name, std::string(trim(type.substr(0, type.find('(')))), bracketedWidth(type)};
}

} // namespace

Column splitDefinition(std::string_view line, std::size_t nameWidth)
{
    const std::string blanked = blankedTabs(line);
    const std::string_view definition = trimLeft(blanked);
    const std::size_t blank = std::min(definition.find(' '), definition.size());
    return {cut(definition.substr(0, blank), nameWidth), cut(trimLeft(definition.substr(blank)), kColumnTypeWidth)};
}

void readHeader(MifInput& input)
{
    seekTo(input.mifUnit, 0);
    std::string line;
    if (!findLine(input.mifUnit, "Columns", line, kLineWidth)) {
        gisFail("ERROR 0315 - Could not find start of attribute definitions in .mif file");
    }
    std::int32_t count = 0;
    if (!readFree(std::string_view(line).substr(std::min(kCountColumn, line.size())), count)) {
        gisFail("ERROR 0314 - Could not read number of attributes in .mif file");
    }
    if (count <= 0) {
        gisFail("ERROR 0319 - No attributes specified in .mif file.");
    }
    if (count > kMaxColumns) {
        gisFail(join("ERROR - Number of attributes in .mif file exceeds maximum: ", kMaxColumns));
    }
    readDefinitions(input, count);
    sayDefinitions(input);
    findData(input.mifUnit, kLineWidth);
}

std::int32_t columnCount(const MifInput& input)
{
    return static_cast<std::int32_t>(input.definitions.size());
}

std::vector<Column> columnsOf(const MifInput& input)
{
    std::vector<Column> result;
    std::ranges::transform(input.definitions, std::back_inserter(result), outputColumn);
    return result;
}

// --- For callers outside ---------------------------------------------------------------------------------------------

void rewind(MifInput& input)
{
    seekTo(input.mifUnit, 0);
    findData(input.mifUnit, kShortLine);
    seekTo(input.midUnit, 0);
}

namespace {

bool warnColumns(std::string_view message)
{
    gisWarn(message);
    pause("Press Enter to Continue");
    return false;
}

} // namespace

bool goToColumns(MifInput& input, std::int32_t& count)
{
    seekTo(input.mifUnit, 0);
    std::string line;
    if (!findLine(input.mifUnit, "Columns", line, kShortLine)) {
        return warnColumns("WARNING 0315 - Problems finding start of attribute definitions in .mif file");
    }
    std::string rest;
    FLAGEXISTSRET(line, "Columns", rest);
    if (!readFree(rest, count)) {
        return warnColumns("WARNING 0314 - Problems reading number of attributes in .mif file");
    }
    return true;
}

Column readColumn(MifInput& input)
{
    std::string line;
    needDefinition(input.mifUnit, line);
    return splitDefinition(line, kLongNameWidth);
}

// --- Projection ------------------------------------------------------------------------------------------------------

void takeProjection(std::string_view fileName, std::string& projection)
{
    Unit unit = 0;
    if (!findProjectionLine(std::string(fileName), "CoordSys", "mif Projection: ", projection, unit)) {
        fail("ERROR - Unable to find CoordSys line in ", fileName);
    }
    CLOSER(unit);
}

} // namespace gridforge::gis::mif
