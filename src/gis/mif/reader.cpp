#include "gis/mif/reader.h"

#include "core/numbers.h"
#include "core/text.h"
#include "gis/gis_messages.h"
#include "gis/mif/base_name.h"
#include "gis/mif/keywords.h"
#include "gis/projection.h"
#include "host/console.h"
#include "host/ends.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <limits>

namespace gridforge::gis::mif {

namespace {

constexpr std::size_t kKeywordWidth = 16;
constexpr std::size_t kCountColumn = 7; // from 0, after "Columns"
constexpr int kMessageColumns = 8;
constexpr std::int32_t kLeastRegionVertices = 5;

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

} // namespace

// --- Header ----------------------------------------------------------------------------------------------------------

namespace {

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

MifInput open(std::string_view fileName)
{
    const std::string base = baseOf(fileName);
    MifInput input;
    OPENER(input.mifUnit, "I ", base + ".mif");
    OPENER(input.midUnit, "I ", base + ".mid");
    return input;
}

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

// --- Object type -----------------------------------------------------------------------------------------------------

namespace {

// The first characters of `text` in upper case, with blanks for tabs.
std::string_view upperHead(std::string_view text, std::array<char, kKeywordWidth>& head)
{
    const std::size_t count = std::min(text.size(), head.size());
    for (std::size_t i = 0; i < count; ++i) {
        const char c = text[i];
        if (c >= 'a' && c <= 'z') {
            head[i] = static_cast<char>(c - 'a' + 'A');
        } else {
            head[i] = c == '\t' ? ' ' : c;
        }
    }
    return {head.data(), count};
}

void readCounts(std::string_view line, std::string_view rest, LayerObject& object)
{
    if (object.kind == Kind::combinedPolyline || object.kind == Kind::multipoint) {
        readFree(rest, object.sections);
    } else if (object.kind == Kind::region) {
        readFree(rest, object.rings);
        if (object.rings > kMaxParts) {
            gisFail("ERROR 0304 - Exceeded maximum number of polygons in region below of 10000", line);
        }
    }
}

void needObjectLine(MifInput& input)
{
    if (!readLine(input.mifUnit, input.line)) {
        gisFail("ERROR 0321 - Reading .mif file object type."); // there was a line, so the read was refused
    }
}

// Looks for an object in the line of the .mif; `tail` becomes the text after its keyword.
bool isObject(std::string_view line, std::string_view& tail, LayerObject& object)
{
    std::array<char, kKeywordWidth> head{};
    tail = line.substr(std::min(line.find_first_not_of(" \t"), line.size()));
    const std::string_view word = upperHead(tail, head);
    const auto* const match = std::ranges::find_if(
        kKeywords, [&](const ObjectKeyword& candidate) { return word.starts_with(candidate.word); });
    // Set for every line: a Center line counts only if it is the last one.
    object.centre = word.starts_with(kCentreKeyword);
    if (match != kKeywords.end()) {
        object.kind = match->kind;
        object.name = match->word;
        tail.remove_prefix(match->word.size());
        readCounts(line, tail, object);
        return true;
    }
    if (word.starts_with(kUnsupportedKeyword)) {
        gisFail("ERROR 0303 - MIF \"Collection\" objects not supported.  Delete or disaggregate object.");
    }
    if (object.centre) {
        object.name = kCentreKeyword;
        tail.remove_prefix(kCentreKeyword.size());
    }
    return false;
}

} // namespace

bool readKind(MifInput& input, LayerObject& object)
{
    bool found = false;
    std::string_view tail;
    while (!found && !atEnd(input.mifUnit)) {
        needObjectLine(input);
        found = isObject(input.line, tail, object);
    }
    input.rest = tail;
    std::ranges::replace(input.rest, '\t', ' ');
    return found;
}

bool atObjectsEnd(const MifInput& input)
{
    return atEnd(input.mifUnit);
}

bool readRecord(MifInput& input, std::string_view name, std::string& line, std::size_t width)
{
    if (!readLine(input.midUnit, line, width)) {
        gisFail(join("ERROR 0254 - Failed to read object attribute data record for a ", name, " object in GIS layer."));
    }
    return atObjectsEnd(
        input); // a .mid that ends early does not end the .mif: an object without a record must be reported
}

// --- Object coordinates ----------------------------------------------------------------------------------------------

namespace {

[[noreturn]] void failRead()
{
    gisFail("ERROR 0308 - Reading .mif file.  Check file format is not corrupted.");
}

[[noreturn]] void failEnd()
{
    gisFail("ERROR 0309 - Unexpected end of .mif file encountered.");
}

// Reads the next value, which must not be missing; an empty one leaves the target.
template <typename Number>
void need(FreeForm& values, Number& target)
{
    const FreeValue got = values.next(target);
    if (got == FreeValue::end) {
        failEnd();
    }
    if (got == FreeValue::failure) {
        failRead();
    }
}

void needVertex(std::string_view text, double& x, double& y)
{
    FreeForm values(text);
    need(values, x);
    need(values, y);
}

void needLine(MifInput& input)
{
    if (!readLine(input.mifUnit, input.line)) {
        readFailed(input.mifUnit) ? failRead() : failEnd();
    }
}

void needCount(std::string_view text, std::int32_t& count)
{
    FreeForm values(text);
    need(values, count);
}

void skipLines(MifInput& input, std::int64_t count)
{
    for (std::int64_t i = 0; i < count; ++i) {
        needLine(input);
    }
}

void requireRoom(std::int64_t np, std::int32_t maxVertices)
{
    if (np > maxVertices) {
        gisFail("ERROR 0310 - Exceeded number of allowable nodes in a single polyline or region.",
                join("             Requested", integerField(np, kMessageColumns), "        Limit",
                     integerField(maxVertices, kMessageColumns)));
    }
}

// Reads the vertices from number `first` to `last`, one on each line.
void readVertices(MifInput& input, Coordinates& c, std::int32_t first, std::int32_t last)
{
    for (std::int32_t i = first; i <= last; ++i) {
        needLine(input);
        const auto slot = static_cast<std::size_t>(i - 1);
        needVertex(input.line, c.x[slot], c.y[slot]);
    }
}

void readPolyline(MifInput& input, Coordinates& c, std::int32_t maxVertices, bool wanted)
{
    if (c.np < 0) {
        failRead();
    }
    if (wanted) {
        requireRoom(c.np, maxVertices);
        c.reserve(c.np);
        readVertices(input, c, 1, c.np);
    } else {
        readVertices(input, c, 1, 1);
        skipLines(input, std::int64_t{c.np} - 1);
    }
}

// A ring as read: its vertices, and after them the slot that repeats the second one.
void readRing(MifInput& input, Coordinates& c, std::int32_t start)
{
    c.reserve(c.np + 1);
    readVertices(input, c, start, c.np - 1);
    const auto slot = static_cast<std::size_t>(c.np - 1);
    c.x[slot] = c.x[static_cast<std::size_t>(start)];
    c.y[slot] = c.y[static_cast<std::size_t>(start)];
}

[[noreturn]] void failFewVertices()
{
    gisFail("ERROR 0318 - Less than 5 points for Region object in mif file.");
}

void readRings(MifInput& input, LayerObject& object, Coordinates& c, std::int32_t maxVertices, bool wanted)
{
    object.parts.resize(std::max(object.parts.size(), static_cast<std::size_t>(std::max(object.rings, 1))));
    c.np = 0;
    std::int32_t start = 1;
    std::int32_t count = 0;
    for (std::int32_t k = 0; k < object.rings; ++k) {
        needLine(input);
        needCount(input.line, count);
        if (count < 0) {
            failFewVertices();
        }
        const std::int64_t np = std::int64_t{c.np} + count + 1;
        requireRoom(np, wanted ? maxVertices : std::numeric_limits<std::int32_t>::max() - 1);
        c.np = static_cast<std::int32_t>(np);
        if (wanted) {
            readRing(input, c, start);
            start = c.np + 1;
        } else {
            if (k == 0) {
                readVertices(input, c, 1, 1);
                start = 2;
            }
            // The start stays 2, so further rings skip too many lines; no caller reads regions this way.
            skipLines(input, std::int64_t{c.np} - start);
        }
        object.parts[static_cast<std::size_t>(k)] = c.np - 1;
    }
    if (c.np < kLeastRegionVertices) {
        failFewVertices();
    }
}

// The search for the region's centre goes on to the next object, and the line of that one undoes the centre. So only the
// last region of a file gets the centre that the file gives, all others the computed one. On purpose: results rely on it.
Centre lookForCentre(MifInput& input, Coordinates& c)
{
    input.next.clear();
    readKind(input, input.next);
    if (!input.next.centre) {
        stepBack(input.mifUnit);
        return Centre::computed;
    }
    needVertex(input.rest, c.xc, c.yc);
    return Centre::given;
}

void readPoint(MifInput& input, Kind kind, Coordinates& c)
{
    if (kind == Kind::multipoint || trimLeft(input.rest).empty()) {
        needLine(input);
        input.rest = input.line;
    }
    c.np = 1;
    needVertex(input.rest, c.x[0], c.y[0]);
}

void readEnds(const MifInput& input, Coordinates& c)
{
    c.np = 2;
    FreeForm values(input.rest);
    for (double* target : {&c.x[0], &c.y[0], &c.x[1], &c.y[1]}) {
        need(values, *target);
    }
}

} // namespace

Centre readCoordinates(MifInput& input, LayerObject& object, Coordinates& c, std::int32_t maxVertices, bool wanted)
{
    object.haveCoordinates = false;
    Centre centre = Centre::computed;
    switch (object.kind) {
    case Kind::none:
    case Kind::text: return centre;
    case Kind::ellipse:
    case Kind::arc: c.np = 0; return centre;
    case Kind::point:
    case Kind::multipoint: readPoint(input, object.kind, c); break;
    case Kind::line:
    case Kind::rectangle:
    case Kind::roundedRectangle: readEnds(input, c); break;
    case Kind::polyline:
        needCount(input.rest, c.np);
        readPolyline(input, c, maxVertices, wanted);
        break;
    case Kind::combinedPolyline:
        needLine(input);
        needCount(input.line, c.np);
        readPolyline(input, c, maxVertices, wanted);
        break;
    case Kind::region:
        readRings(input, object, c, maxVertices, wanted);
        centre = lookForCentre(input, c);
        break;
    case Kind::unknown:
        gisFail(join("ERROR 0253 - Failed to read coordinates for a ", object.name, " object in GIS layer."));
    }
    object.haveCoordinates = true;
    return centre;
}

void closeFiles(MifInput& input)
{
    CLOSER(input.mifUnit);
    CLOSER(input.midUnit);
}

// --- For callers outside ---------------------------------------------------------------------------------------------

std::int32_t recordCount(MifInput& input)
{
    seekTo(input.midUnit, 0);
    std::int32_t count = 0;
    std::string line;
    while (readLine(input.midUnit, line)) {
        ++count;
    }
    seekTo(input.midUnit, 0);
    return count;
}

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
