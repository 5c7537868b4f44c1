#include "gis/mif_reader.h"

#include "core/numbers.h"
#include "core/text.h"
#include "gis/gis_messages.h"
#include "host/console.h"
#include "host/file_system.h"

#include <algorithm>
#include <limits>

namespace gridforge {

namespace {

constexpr std::size_t kKeywordWidth = 16;
constexpr std::size_t kCountColumn = 7; // from 0, behind "Columns"
constexpr int kMessageColumns = 8;
constexpr std::int32_t kLeastRegionVertices = 5;

// A tab counts as a blank.
std::string blankedTabs(std::string_view text)
{
    std::string blanked(text);
    std::ranges::replace(blanked, '\t', ' ');
    return blanked;
}

// Unread lines up to and with the one that holds `word`; false at the end of the file.
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

bool mifFindColumns(Unit unit, std::string& line, std::size_t width)
{
    return findLine(unit, "Columns", line, width);
}

void mifFindData(Unit unit, std::size_t width)
{
    std::string line;
    if (!findLine(unit, "Data", line, width)) {
        gisFail("ERROR 0313 - Could not find start of \"Data\" block in .mif file.");
    }
}

void mifSplitDefinition(std::string_view line, std::string& name, std::string& type, std::size_t nameWidth)
{
    const std::string blanked = blankedTabs(line);
    const std::string_view definition = trimLeft(blanked);
    const std::size_t blank = std::min(definition.find(' '), definition.size());
    name = cut(definition.substr(0, blank), nameWidth);
    type = cut(trimLeft(definition.substr(blank)), kAttributeTypeWidth);
}

namespace {

void readDefinitions(MifLayer& mif)
{
    std::string line;
    mif.attributeName.assign(static_cast<std::size_t>(mif.nAttributes), {});
    mif.attributeType.assign(static_cast<std::size_t>(mif.nAttributes), {});
    for (std::size_t i = 0; i < mif.attributeName.size(); ++i) {
        if (!readLine(mif.mifUnit, line)) {
            gisFail("ERROR 0316 - Could not read attribute definitions in .mif file");
        }
        mifSplitDefinition(line, mif.attributeName[i], mif.attributeType[i], kAttributeNameWidth);
    }
}

void sayDefinitions(const MifLayer& mif)
{
    std::string text = join(mif.nAttributes, " MIF Fields: Name [#/Type]: ");
    for (std::size_t i = 0; i < mif.attributeName.size(); ++i) {
        text += join(mif.attributeName[i], " [", i + 1, "/", mif.attributeType[i], "]  ");
    }
    gisSay(text);
}

} // namespace

void mifReadHeader(MifLayer& mif)
{
    mif.nAttributes = 0;
    if (mif.mifUnit <= 0) {
        return;
    }
    seekTo(mif.mifUnit, 0);
    std::string line;
    if (!mifFindColumns(mif.mifUnit, line, kLineWidth)) {
        gisFail("ERROR 0315 - Could not find start of attribute definitions in .mif file");
    }
    if (!readFree(std::string_view(line).substr(std::min(kCountColumn, line.size())), mif.nAttributes)) {
        gisFail("ERROR 0314 - Could not read number of attributes in .mif file");
    }
    if (mif.nAttributes <= 0) {
        gisFail("ERROR 0319 - No attributes specified in .mif file.");
    }
    if (mif.nAttributes > kMaxAttributes) {
        gisFail(join("ERROR - Number of attributes in .mif file exceeds maximum: ", kMaxAttributes));
    }
    readDefinitions(mif);
    sayDefinitions(mif);
    mifFindData(mif.mifUnit, kLineWidth);
}

// --- Object type -----------------------------------------------------------------------------------------------------

namespace {

struct ObjectKeyword {
    std::string_view keyword;
    bool GisO::*flag; // none: the keyword ends the run
};

// In the order in which they are tried.
constexpr std::array<ObjectKeyword, 13> kObjectKeywords = {{
    {"POINT", &GisO::point},
    {"PLINE MULTIPLE", &GisO::plineMultiple},
    {"PLINE", &GisO::pline},
    {"LINE", &GisO::line},
    {"REGION", &GisO::region},
    {"MULTIPOINT", &GisO::multipoint},
    {"NONE", &GisO::none},
    {"RECT", &GisO::rect},
    {"ROUNDRECT", &GisO::roundRect},
    {"TEXT", &GisO::text},
    {"ARC", &GisO::arc},
    {"ELLIPSE", &GisO::ellipse},
    {"COLLECTION", nullptr},
}};

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

void readCounts(std::string_view line, std::string_view rest, GisO& gisO)
{
    if (gisO.plineMultiple || gisO.multipoint) {
        readFree(rest, gisO.nSections);
    } else if (gisO.region) {
        readFree(rest, gisO.nr);
        if (gisO.nr > kMaxParts) {
            gisFail("ERROR 0304 - Exceeded maximum number of polygons in region below of 10000", line);
        }
    }
}

} // namespace

bool mifKeyword(std::string_view word, std::string_view keyword)
{
    return word.starts_with(keyword);
}

std::string_view mifObjectKeyword(const GisO& gisO)
{
    const auto* const found = std::ranges::find_if(kObjectKeywords, [&](const ObjectKeyword& candidate) {
        return candidate.flag != nullptr && gisO.*candidate.flag;
    });
    return found == kObjectKeywords.end() ? std::string_view(gisO.name) : found->keyword;
}

bool mifObjectType(Unit unit, std::string& line, std::string& rest, GisO& gisO)
{
    bool found = false;
    std::array<char, kKeywordWidth> head{};
    std::string_view tail;
    while (!found && !atEnd(unit)) {
        if (!readLine(unit, line)) {
            gisFail(readFailed(unit) ? "ERROR 0321 - Reading .mif file object type."
                                     : "ERROR 0322 - End of .mif file encountered whilst reading object type.");
        }
        const std::string_view text = line;
        tail = text.substr(std::min(text.find_first_not_of(" \t"), text.size()));
        const std::string_view word = upperHead(tail, head);
        const auto* const match =
            std::find_if(kObjectKeywords.begin(), kObjectKeywords.end(),
                         [&](const ObjectKeyword& candidate) { return mifKeyword(word, candidate.keyword); });
        // Set by every line: of a Center line only that is known which no further line follows.
        gisO.center = mifKeyword(word, "CENTER");
        if (match != kObjectKeywords.end()) {
            if (match->flag == nullptr) {
                gisFail("ERROR 0303 - MIF \"Collection\" objects not supported.  Delete or disaggregate object.");
            }
            found = true;
            gisO.*match->flag = true;
            gisO.name = match->keyword;
            tail.remove_prefix(match->keyword.size());
            readCounts(line, tail, gisO);
        } else if (gisO.center) {
            gisO.name = "CENTER";
            tail.remove_prefix(gisO.name.size());
        }
    }
    rest = blankedTabs(tail);
    return found;
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

// The next value, which must be there; an empty one leaves the target.
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

void needLine(MifLayer& mif)
{
    if (!readLine(mif.mifUnit, mif.line)) {
        readFailed(mif.mifUnit) ? failRead() : failEnd();
    }
}

void needCount(std::string_view text, std::int32_t& count)
{
    FreeForm values(text);
    need(values, count);
}

void skipLines(MifLayer& mif, std::int64_t count)
{
    for (std::int64_t i = 0; i < count; ++i) {
        needLine(mif);
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

// Vertices from number `first` to `last`, one a line.
void readVertices(MifLayer& mif, GisCoordinates& c, std::int32_t first, std::int32_t last)
{
    for (std::int32_t i = first; i <= last; ++i) {
        needLine(mif);
        const auto slot = static_cast<std::size_t>(i - 1);
        needVertex(mif.line, c.x[slot], c.y[slot]);
    }
}

void readPolyline(MifLayer& mif, GisCoordinates& c, std::int32_t maxVertices, bool readCoordinates)
{
    if (c.np < 0) {
        failRead();
    }
    if (readCoordinates) {
        requireRoom(c.np, maxVertices);
        c.reserve(c.np);
        readVertices(mif, c, 1, c.np);
    } else {
        readVertices(mif, c, 1, 1);
        skipLines(mif, std::int64_t{c.np} - 1);
    }
}

// A ring as read: its vertices, and behind them the slot that repeats the second one.
void readRing(MifLayer& mif, GisCoordinates& c, std::int32_t start)
{
    c.reserve(c.np + 1);
    readVertices(mif, c, start, c.np - 1);
    const auto slot = static_cast<std::size_t>(c.np - 1);
    c.x[slot] = c.x[static_cast<std::size_t>(start)];
    c.y[slot] = c.y[static_cast<std::size_t>(start)];
}

[[noreturn]] void failFewVertices()
{
    gisFail("ERROR 0318 - Less than 5 points for Region object in mif file.");
}

void readRings(MifLayer& mif, GisO& gisO, GisCoordinates& c, std::int32_t maxVertices, bool readCoordinates)
{
    gisO.ir.resize(std::max(gisO.ir.size(), static_cast<std::size_t>(std::max(gisO.nr, 1))));
    c.np = 0;
    std::int32_t start = 1;
    std::int32_t count = 0;
    for (std::int32_t k = 0; k < gisO.nr; ++k) {
        needLine(mif);
        needCount(mif.line, count);
        if (count < 0) {
            failFewVertices();
        }
        const std::int64_t np = std::int64_t{c.np} + count + 1;
        requireRoom(np, readCoordinates ? maxVertices : std::numeric_limits<std::int32_t>::max() - 1);
        c.np = static_cast<std::int32_t>(np);
        if (readCoordinates) {
            readRing(mif, c, start);
            start = c.np + 1;
        } else {
            if (k == 0) {
                readVertices(mif, c, 1, 1);
                start = 2;
            }
            // The start stays 2, so that further rings pass over too many lines; no caller reads regions this way.
            skipLines(mif, std::int64_t{c.np} - start);
        }
        gisO.ir[static_cast<std::size_t>(k)] = c.np - 1;
    }
    if (c.np < kLeastRegionVertices) {
        failFewVertices();
    }
}

// The scan for the region's centre runs on to the next object, whose line takes the centre back: so only the last
// region of a file gets the centre that the file gives, all others the computed one. Deliberate; results depend on it.
void lookForCentre(MifLayer& mif, GisCoordinates& c, bool& needCentre)
{
    GisO next;
    mifObjectType(mif.mifUnit, mif.line, mif.rest, next);
    if (next.center) {
        needVertex(mif.rest, c.xc, c.yc);
        needCentre = false;
    } else {
        stepBack(mif.mifUnit);
    }
}

} // namespace

bool mifReadObject(MifLayer& mif, GisO& gisO, GisCoordinates& c, std::int32_t maxVertices, bool& needCentre,
                   bool readCoordinates)
{
    gisO.haveCoordinates = false;
    if (gisO.none || gisO.text) {
        return true;
    }
    if (gisO.ellipse || gisO.arc) {
        c.np = 0;
        return true;
    }
    if (gisO.point || gisO.multipoint) {
        if (gisO.multipoint || trimLeft(mif.rest).empty()) {
            needLine(mif);
            mif.rest = mif.line;
        }
        c.np = 1;
        needVertex(mif.rest, c.x[0], c.y[0]);
    } else if (gisO.line || gisO.rect || gisO.roundRect) {
        c.np = 2;
        FreeForm values(mif.rest);
        for (double* target : {&c.x[0], &c.y[0], &c.x[1], &c.y[1]}) {
            need(values, *target);
        }
    } else if (gisO.pline) {
        needCount(mif.rest, c.np);
        readPolyline(mif, c, maxVertices, readCoordinates);
    } else if (gisO.plineMultiple) {
        needLine(mif);
        needCount(mif.line, c.np);
        readPolyline(mif, c, maxVertices, readCoordinates);
    } else if (gisO.region) {
        readRings(mif, gisO, c, maxVertices, readCoordinates);
        lookForCentre(mif, c, needCentre);
    } else {
        return false;
    }
    gisO.haveCoordinates = true;
    return true;
}

// --- Lines of other .mif files ---------------------------------------------------------------------------------------

void mifCopyHeader(Unit unitIn, Unit unitOut)
{
    gisSay(join("Copying header info from file unit ", unitIn, " to ", unitOut, "..."));
    seekTo(unitIn, 0);
    std::string line;
    while (!atEnd(unitIn)) {
        if (!readLine(unitIn, line)) {
            gisFail("ERROR 0301 - Reading data (mifCopyHeader)");
        }
        if (FLAGEXISTS(line, "Columns")) {
            return;
        }
        writeLine(unitOut, line);
    }
    gisFail("ERROR 0302 - End of File encountered (mifCopyHeader)");
}

std::string mifReadCoordSysLine(std::string_view fileName)
{
    std::string unprojected = "CoordSys NonEarth Units \"m\" Bounds(-9999999, -9999999) (9999999, 9999999)";
    const std::string name = TRIMF(fileName);
    if (!inputExists(name)) {
        gisWarn(join("WARNING 0307 - No MapInfo Projection or mif header file ", name, " found."),
                "               Non-Earth Coordinates will be used.  [mifReadCoordSysLine]");
        pause("Press Enter to Continue");
        return unprojected;
    }
    Unit unit = 0;
    OPENER(unit, "I ", name);
    std::string line;
    const bool found = findLine(unit, "CoordSys", line, kLineWidth);
    CLOSER(unit);
    if (!found) {
        gisWarn("WARNING 0312 - Problems finding CoordSys line in .mif file");
        pause("Press Enter to Continue");
        return unprojected;
    }
    return line;
}

std::string mifFindCoordSysLine(Unit unit)
{
    std::string line;
    if (!findLine(unit, "CoordSys", line, kLineWidth)) {
        gisWarn("WARNING 0306 - Problems finding CoordSys line in .mif file.");
        return {};
    }
    return line;
}

} // namespace gridforge
