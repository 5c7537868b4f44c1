// The access to layers under its plain names: each names a layer by its ID and is one step of reading it.
#include "core/text.h"
#include "exports/boundary.h"
#include "gis/gis_messages.h"
#include "gis/layer_reader.h"
#include "gis/layer_table.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <gridforge/gridforge.h>
#include <span>
#include <string>
#include <string_view>

namespace gis = gridforge::gis;

using gis::Kind;
using gridforge::exports::answer;
using gridforge::exports::content;
using gridforge::exports::put;

static_assert(GRIDFORGE_MAX_PARTS == gis::kMaxParts);
static_assert(sizeof(gisAttribute::type) == gis::kColumnTypeWidth);

namespace {

// The open layer of an ID, or the end of the run with the routine's name.
gis::OpenLayer& layerOf(std::int32_t gisID, std::string_view routine)
{
    if (gisID < 1 || gisID > gis::kMaxLayers) {
        gis::gisMisuse(gridforge::join(routine, "[gisID=0]"));
    }
    gis::OpenLayer* const layer = gis::inputLayer(gisID);
    if (layer == nullptr) {
        gis::gisMisuse(gridforge::join("[", routine, "]"));
    }
    return *layer;
}

struct KindFlag {
    Kind inside;
    std::int32_t gisO::*outside;
};
constexpr std::array<KindFlag, 12> kKindFlags = {{{Kind::none, &gisO::none},
                                                  {Kind::text, &gisO::text},
                                                  {Kind::ellipse, &gisO::ellipse},
                                                  {Kind::arc, &gisO::arc},
                                                  {Kind::point, &gisO::point},
                                                  {Kind::multipoint, &gisO::multipoint},
                                                  {Kind::line, &gisO::line},
                                                  {Kind::rectangle, &gisO::rect},
                                                  {Kind::roundedRectangle, &gisO::roundRect},
                                                  {Kind::polyline, &gisO::pline},
                                                  {Kind::combinedPolyline, &gisO::plineMultiple},
                                                  {Kind::region, &gisO::region}}};

Kind kindOf(const gisO& object)
{
    const auto* const found =
        std::ranges::find_if(kKindFlags, [&](const KindFlag& flag) { return object.*flag.outside != 0; });
    return found == kKindFlags.end() ? Kind::unknown : found->inside;
}

gis::LayerObject taken(const gisO& object)
{
    gis::LayerObject result;
    result.kind = kindOf(object);
    result.centre = object.center != 0;
    result.haveCoordinates = object.haveCoordinates != 0;
    result.sections = object.nSections;
    result.rings = object.nr;
    result.parts.assign(std::begin(object.ir), std::end(object.ir));
    result.name = content(object.name, sizeof object.name);
    return result;
}

// No object has more parts than the record holds: readers refuse those.
void put(const gis::LayerObject& object, gisO& result)
{
    for (const KindFlag& flag : kKindFlags) {
        result.*flag.outside = static_cast<std::int32_t>(object.kind == flag.inside);
    }
    result.center = static_cast<std::int32_t>(object.centre);
    result.haveCoordinates = static_cast<std::int32_t>(object.haveCoordinates);
    result.nSections = object.sections;
    result.nr = object.rings;
    std::copy_n(object.parts.begin(), std::min(object.parts.size(), std::size(result.ir)), std::begin(result.ir));
    gridforge::exports::put(object.name, result.name, sizeof result.name);
}

bool holdsEither(std::string_view text, std::string_view first, std::string_view second, std::string_view name)
{
    return gridforge::FLAGEXISTS(text, gridforge::join(first, name)) ||
           gridforge::FLAGEXISTS(text, gridforge::join(second, name));
}

} // namespace

extern "C" {

void gisReadHeader(std::int32_t gisID)
{
    answer([&] { gis::readHeader(layerOf(gisID, "gisReadHeader")); });
}

std::int32_t gisNumberAttributes(std::int32_t gisID)
{
    return answer([&] { return gis::columnCount(layerOf(gisID, "gisNumberAttributes")); });
}

std::int32_t gisNumberRecords(std::int32_t gisID)
{
    return answer([&] { return gis::recordCount(layerOf(gisID, "gisNumberRecords")); });
}

void gisGotoBeginningOfData(std::int32_t gisID)
{
    answer([&] { gis::rewind(layerOf(gisID, "gisGotoBeginningOfData")); });
}

std::int32_t gisGotoBeginningOfAttributes(std::int32_t gisID, std::int32_t* count)
{
    return answer([&] {
        return static_cast<std::int32_t>(gis::goToColumns(layerOf(gisID, "gisGotoBeginningOfAttributes"), *count));
    });
}

void gisReadAttributeDefinition(std::int32_t gisID, gisAttribute* definition)
{
    answer([&] {
        const gis::Column read = gis::readColumn(layerOf(gisID, "gisReadAttributeDefinition"));
        put(read.name, definition->name, sizeof definition->name);
        put(read.type, definition->type, sizeof definition->type);
    });
}

std::int32_t gisObjectType(std::int32_t gisID, gisO* object)
{
    return answer([&] {
        gis::LayerObject read = taken(*object);
        const bool found = gis::readKind(layerOf(gisID, "gisObjectType"), read);
        put(read, *object);
        return static_cast<std::int32_t>(found);
    });
}

void gisReadRecord(std::int32_t gisID, const gisO* object, char* line, std::size_t lineLength)
{
    answer([&] {
        std::string record;
        gis::readRecord(layerOf(gisID, "gisReadRecord"), content(object->name, sizeof object->name), record,
                        lineLength);
        put(record, line, lineLength);
    });
}

void gisReadObject(std::int32_t gisID, gisO* object, double* x, double* y, std::int32_t maxVertices, std::int32_t* np,
                   double* xc, double* yc, float* angle, float* length, std::int32_t readCoordinates)
{
    answer([&] {
        constexpr std::int32_t kUntouched = -1;
        constexpr std::int32_t kLeast = 2;
        gis::LayerObject read = taken(*object);
        gis::Coordinates c;
        c.np = kUntouched;
        std::copy_n(x, kLeast, c.x.begin());
        std::copy_n(y, kLeast, c.y.begin());
        c.xc = *xc;
        c.yc = *yc;
        gis::readCoordinates(layerOf(gisID, "gisReadObject"), read, c, maxVertices, readCoordinates != 0);

        put(read, *object);
        const auto slots = static_cast<std::size_t>(std::clamp(c.np, kLeast, std::max(maxVertices, kLeast)));
        std::copy_n(c.x.begin(), std::min(slots, c.x.size()), x);
        std::copy_n(c.y.begin(), std::min(slots, c.y.size()), y);
        if (c.np != kUntouched) {
            *np = c.np;
        }
        *xc = c.xc;
        *yc = c.yc;
        *angle = c.angle;
        *length = c.length;
    });
}

std::int32_t READGIS(const char* text, std::size_t textLength, const char* name, std::size_t nameLength)
{
    return answer([&] {
        return static_cast<std::int32_t>(
            holdsEither(content(text, textLength), "Read MI ", "Read GIS ", content(name, nameLength)));
    });
}

std::int32_t WRITEGIS(const char* text, std::size_t textLength, const char* name, std::size_t nameLength)
{
    return answer([&] {
        return static_cast<std::int32_t>(
            holdsEither(content(text, textLength), "Write MI ", "Write GIS ", content(name, nameLength)));
    });
}

std::int32_t READROWCOL(const char* text, std::size_t textLength, const char* name, std::size_t nameLength)
{
    return answer([&] {
        return static_cast<std::int32_t>(
            holdsEither(content(text, textLength), "Read MID ", "Read RowCol ", content(name, nameLength)));
    });
}
}
