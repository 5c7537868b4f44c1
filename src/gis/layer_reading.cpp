#include "core/numbers.h"
#include "core/text.h"
#include "gis/dbf_reader.h"
#include "gis/gis_messages.h"
#include "gis/layer_table.h"
#include "gis/mif_reader.h"
#include "gis/shp_reader.h"
#include "host/console.h"
#include "plane/geometry.h"

#include <algorithm>

namespace gridforge {

namespace {

// The rewinding routines see less of a line than the header reader.
constexpr std::size_t kShortLine = 100;
constexpr std::size_t kLongNameWidth = 256;

[[noreturn]] void unknownFormat(std::string_view routine)
{
    gisMisuse(join("[", routine, "]"));
}

} // namespace

void gisReadHeader(std::int32_t gisID)
{
    Layer& slot = requireLayer(gisID, "gisReadHeader");
    switch (slot.layerFormat) {
    case kLayerMif: mifReadHeader(slot.mifLayer); break;
    case kLayerShp: shpReadHeader(slot); break;
    default: unknownFormat("gisReadHeader");
    }
}

std::int32_t gisNumberAttributes(std::int32_t gisID)
{
    const Layer& slot = requireLayer(gisID, "gisNumberAttributes");
    switch (slot.layerFormat) {
    case kLayerMif: return slot.mifLayer.nAttributes;
    case kLayerShp: return slot.dbfTable[0].nFields;
    default: unknownFormat("gisNumberAttributes");
    }
}

std::int32_t gisNumberRecords(std::int32_t gisID)
{
    const Layer& slot = requireLayer(gisID, "gisNumberRecords");
    if (slot.layerFormat == kLayerShp) {
        return slot.dbfTable[0].nRecords;
    }
    if (slot.layerFormat != kLayerMif) {
        unknownFormat("gisNumberRecords");
    }
    seekTo(slot.mifLayer.midUnit, 0);
    std::int32_t count = 0;
    std::string line;
    while (readLine(slot.mifLayer.midUnit, line)) {
        ++count;
    }
    seekTo(slot.mifLayer.midUnit, 0);
    return count;
}

void gisGotoBeginningOfData(std::int32_t gisID)
{
    Layer& slot = requireLayer(gisID, "gisGotoBeginningOfData");
    gisSay(join("Rewinding GIS Layer ", gisID, "..."));
    slot.layerEnd = false;
    if (slot.layerFormat == kLayerMif) {
        if (slot.mifLayer.mifUnit > 0) {
            seekTo(slot.mifLayer.mifUnit, 0);
            mifFindData(slot.mifLayer.mifUnit, kShortLine);
        }
        seekTo(slot.mifLayer.midUnit, 0);
    } else if (slot.layerFormat == kLayerShp) {
        shpReadHeader(slot);
    } else {
        unknownFormat("gisGotoBeginningOfData");
    }
}

namespace {

MifLayer& requireMif(std::int32_t gisID, std::string_view routine)
{
    Layer& slot = requireLayer(gisID, routine);
    if (slot.layerFormat != kLayerMif || slot.mifLayer.mifUnit <= 0) {
        unknownFormat(routine);
    }
    return slot.mifLayer;
}

bool warnAttributes(std::string_view message)
{
    gisWarn(message);
    pause("Press Enter to Continue");
    return false;
}

} // namespace

bool gisGotoBeginningOfAttributes(std::int32_t gisID, std::int32_t& count)
{
    const MifLayer& mif = requireMif(gisID, "gisGotoBeginningOfAttributes");
    seekTo(mif.mifUnit, 0);
    std::string line;
    if (!mifFindColumns(mif.mifUnit, line, kShortLine)) {
        return warnAttributes("WARNING 0315 - Problems finding start of attribute definitions in .mif file");
    }
    std::string rest;
    FLAGEXISTSRET(line, "Columns", rest);
    if (!readFree(rest, count)) {
        return warnAttributes("WARNING 0314 - Problems reading number of attributes in .mif file");
    }
    return true;
}

GisOutputAttribute gisReadAttributeDefinition(std::int32_t gisID)
{
    const MifLayer& mif = requireMif(gisID, "gisReadAttributeDefinition");
    std::string line;
    if (!readLine(mif.mifUnit, line)) {
        gisFail("ERROR 0316 - Could not read attribute definitions in .mif file");
    }
    GisOutputAttribute definition;
    mifSplitDefinition(line, definition.name, definition.type, kLongNameWidth);
    return definition;
}

// --- Objects ---------------------------------------------------------------------------------------------------------

bool gisObjectType(std::int32_t gisID, GisO& gisO)
{
    Layer& slot = requireLayer(gisID, "gisObjectType");
    gisO.clear();
    bool found = false;
    if (slot.layerFormat == kLayerMif) {
        MifLayer& mif = slot.mifLayer;
        found = mifObjectType(mif.mifUnit, mif.line, mif.rest, gisO);
        slot.layerEnd = atEnd(mif.mifUnit);
    } else if (slot.layerFormat == kLayerShp) {
        found = shpObjectType(slot.shpFiles[0], gisO);
        slot.layerEnd = atEnd(slot.shpFiles[0].shpUnit);
    } else {
        unknownFormat("gisObjectType");
    }
    return found;
}

namespace {

// A .mid that ends first does not end a .mif: an object without a record must be reported.
bool mifEnds(const MifLayer& mif)
{
    return atEnd(mif.mifUnit > 0 ? mif.mifUnit : mif.midUnit);
}

// A null shape has no coordinates, so the .shp can end with its type.
bool shpEnds(const Layer& layer)
{
    const Unit shpUnit = layer.shpFiles[0].shpUnit;
    return atEnd(layer.dbfTable[0].dbfUnit) || (shpUnit > 0 && atEnd(shpUnit));
}

} // namespace

void gisReadRecord(std::int32_t gisID, const GisO& gisO, std::string& line, std::size_t width)
{
    Layer& slot = requireLayer(gisID, "gisReadRecord");
    line.clear();
    if (slot.layerFormat == kLayerMif) {
        if (!readLine(slot.mifLayer.midUnit, line, width)) {
            gisFail(join("ERROR 0254 - Failed to read object attribute data record for a ", gisO.name,
                         " object in GIS layer."));
        }
        slot.layerEnd = mifEnds(slot.mifLayer);
    } else if (slot.layerFormat == kLayerShp) {
        bool tableEnded = false;
        dbfReadRecord(slot.dbfTable[0], tableEnded, line, width);
        slot.layerEnd = tableEnded || shpEnds(slot);
    } else {
        unknownFormat("gisReadRecord");
    }
}

// --- What is derived from the coordinates ----------------------------------------------------------------------------

namespace {

float directionOf(const GisCoordinates& c, std::size_t from, std::size_t to)
{
    return static_cast<float>(atan2d(c.y[to] - c.y[from], c.x[to] - c.x[from]));
}

float segmentLength(const GisCoordinates& c, std::size_t to)
{
    return DISTANCE_8(c.x[to - 1], c.y[to - 1], c.x[to], c.y[to]);
}

void deriveLine(GisCoordinates& c)
{
    c.xc = (c.x[0] + c.x[1]) * 0.5;
    c.yc = (c.y[0] + c.y[1]) * 0.5;
    c.angle = directionOf(c, 0, 1);
    c.length = segmentLength(c, 1);
}

// The point at half of the length, in single precision; the direction is that of the segment that holds it.
void derivePolyline(GisCoordinates& c)
{
    const auto np = static_cast<std::size_t>(std::max(c.np, 0));
    for (std::size_t i = 1; i < np; ++i) {
        c.length += segmentLength(c, i);
    }
    const float half = c.length * 0.5F;
    float before = 0;
    std::size_t i = 1;
    while (i + 1 < np && before + segmentLength(c, i) < half) {
        before += segmentLength(c, i);
        ++i;
    }
    const float share = (half - before) / segmentLength(c, i);
    c.xc = c.x[i - 1] + static_cast<double>(share) * (c.x[i] - c.x[i - 1]);
    c.yc = c.y[i - 1] + static_cast<double>(share) * (c.y[i] - c.y[i - 1]);
    c.angle = directionOf(c, i - 1, i);
}

// np counts the closing vertex and the slot behind it, so a region of one ring gives the mean of its distinct vertices.
// With several rings their closing vertices and slots but the last ring's go into the mean; deliberate.
void deriveRegion(GisCoordinates& c)
{
    const std::int32_t count = c.np - 2;
    double sumX = 0;
    double sumY = 0;
    for (std::size_t i = 0; i < static_cast<std::size_t>(std::max(count, 0)); ++i) {
        sumX += c.x[i];
        sumY += c.y[i];
    }
    c.xc = sumX / count;
    c.yc = sumY / count;
}

void derive(const GisO& gisO, bool needCentre, GisCoordinates& c)
{
    if (gisO.point || gisO.multipoint) {
        c.xc = c.x[0];
        c.yc = c.y[0];
        c.x[1] = c.x[0];
        c.y[1] = c.y[0];
    } else if (gisO.line || gisO.rect || gisO.roundRect) {
        deriveLine(c);
    } else if (gisO.ellipse || gisO.arc) {
        c.np = 0;
    } else if (gisO.pline || gisO.plineMultiple) {
        derivePolyline(c);
    } else if (gisO.region && needCentre) {
        deriveRegion(c);
    }
}

} // namespace

void gisReadObject(std::int32_t gisID, GisO& gisO, GisCoordinates& coordinates, std::int32_t maxVertices,
                   bool readCoordinates)
{
    Layer& slot = requireLayer(gisID, "gisReadObject");
    coordinates.reserve(2);
    coordinates.angle = 0;
    coordinates.length = 0;
    bool needCentre = true;
    bool read = false;
    if (slot.layerFormat == kLayerMif) {
        MifLayer& mif = slot.mifLayer;
        read = mifReadObject(mif, gisO, coordinates, maxVertices, needCentre, readCoordinates);
        slot.layerEnd = atEnd(mif.mifUnit);
    } else if (slot.layerFormat == kLayerShp) {
        read = shpReadObject(slot.shpFiles[0], gisO, coordinates, maxVertices, readCoordinates);
        slot.layerEnd = atEnd(slot.shpFiles[0].shpUnit);
    } else {
        unknownFormat("gisReadObject");
    }
    if (!read) {
        gisFail(join("ERROR 0253 - Failed to read coordinates for a ", gisO.name, " object in GIS layer."));
    }
    if (readCoordinates) {
        derive(gisO, needCentre, coordinates);
    }
}

// --- Words of control files ------------------------------------------------------------------------------------------

namespace {

bool holdsEither(std::string_view text, std::string_view first, std::string_view second, std::string_view name)
{
    return FLAGEXISTS(text, join(first, name)) || FLAGEXISTS(text, join(second, name));
}

} // namespace

bool READGIS(std::string_view text, std::string_view name)
{
    return holdsEither(text, "Read MI ", "Read GIS ", name);
}

bool WRITEGIS(std::string_view text, std::string_view name)
{
    return holdsEither(text, "Write MI ", "Write GIS ", name);
}

bool READROWCOL(std::string_view text, std::string_view name)
{
    return holdsEither(text, "Read MID ", "Read RowCol ", name);
}

} // namespace gridforge
