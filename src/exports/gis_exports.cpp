// The access to layers under its plain names.
#include "exports/boundary.h"
#include "gis/layers.h"
#include "gis/records.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <gridforge/gridforge.h>
#include <span>
#include <string>

using gridforge::answer;
using gridforge::content;
using gridforge::GisCoordinates;
using gridforge::GisO;
using gridforge::put;

static_assert(GRIDFORGE_MAX_PARTS == gridforge::kMaxParts);
static_assert(sizeof(gisO::name) == gridforge::kObjectNameWidth);
static_assert(sizeof(gisAttribute::type) == gridforge::kAttributeTypeWidth);

namespace {

struct Kind {
    bool GisO::*inside;
    std::int32_t gisO::*outside;
};
constexpr std::array<Kind, 14> kKinds = {{{&GisO::none, &gisO::none},
                                          {&GisO::point, &gisO::point},
                                          {&GisO::line, &gisO::line},
                                          {&GisO::pline, &gisO::pline},
                                          {&GisO::plineMultiple, &gisO::plineMultiple},
                                          {&GisO::region, &gisO::region},
                                          {&GisO::ellipse, &gisO::ellipse},
                                          {&GisO::rect, &gisO::rect},
                                          {&GisO::roundRect, &gisO::roundRect},
                                          {&GisO::arc, &gisO::arc},
                                          {&GisO::center, &gisO::center},
                                          {&GisO::text, &gisO::text},
                                          {&GisO::multipoint, &gisO::multipoint},
                                          {&GisO::haveCoordinates, &gisO::haveCoordinates}}};

GisO taken(const gisO& object)
{
    GisO result;
    for (const Kind& kind : kKinds) {
        result.*kind.inside = object.*kind.outside != 0;
    }
    result.nSections = object.nSections;
    result.nr = object.nr;
    result.ir.assign(std::begin(object.ir), std::end(object.ir));
    result.name = content(object.name, sizeof object.name);
    return result;
}

// No object has more parts than the record holds: readers refuse those.
void put(const GisO& object, gisO& result)
{
    for (const Kind& kind : kKinds) {
        result.*kind.outside = static_cast<std::int32_t>(object.*kind.inside);
    }
    result.nSections = object.nSections;
    result.nr = object.nr;
    std::copy_n(object.ir.begin(), std::min(object.ir.size(), std::size(result.ir)), std::begin(result.ir));
    gridforge::put(object.name, result.name, sizeof result.name);
}

} // namespace

extern "C" {

void gisReadHeader(std::int32_t gisID)
{
    answer([&] { gridforge::gisReadHeader(gisID); });
}

std::int32_t gisNumberAttributes(std::int32_t gisID)
{
    return answer([&] { return gridforge::gisNumberAttributes(gisID); });
}

std::int32_t gisNumberRecords(std::int32_t gisID)
{
    return answer([&] { return gridforge::gisNumberRecords(gisID); });
}

void gisGotoBeginningOfData(std::int32_t gisID)
{
    answer([&] { gridforge::gisGotoBeginningOfData(gisID); });
}

std::int32_t gisGotoBeginningOfAttributes(std::int32_t gisID, std::int32_t* count)
{
    return answer([&] { return static_cast<std::int32_t>(gridforge::gisGotoBeginningOfAttributes(gisID, *count)); });
}

void gisReadAttributeDefinition(std::int32_t gisID, gisAttribute* definition)
{
    answer([&] {
        const gridforge::GisOutputAttribute read = gridforge::gisReadAttributeDefinition(gisID);
        put(read.name, definition->name, sizeof definition->name);
        put(read.type, definition->type, sizeof definition->type);
    });
}

std::int32_t gisObjectType(std::int32_t gisID, gisO* object)
{
    return answer([&] {
        GisO read = taken(*object);
        const bool found = gridforge::gisObjectType(gisID, read);
        put(read, *object);
        return static_cast<std::int32_t>(found);
    });
}

void gisReadRecord(std::int32_t gisID, const gisO* object, char* line, std::size_t lineLength)
{
    answer([&] {
        std::string record;
        gridforge::gisReadRecord(gisID, taken(*object), record, lineLength);
        put(record, line, lineLength);
    });
}

void gisReadObject(std::int32_t gisID, gisO* object, double* x, double* y, std::int32_t maxVertices, std::int32_t* np,
                   double* xc, double* yc, float* angle, float* length, std::int32_t readCoordinates)
{
    answer([&] {
        constexpr std::int32_t kUntouched = -1;
        constexpr std::int32_t kLeast = 2;
        GisO read = taken(*object);
        GisCoordinates c;
        c.np = kUntouched;
        std::copy_n(x, kLeast, c.x.begin());
        std::copy_n(y, kLeast, c.y.begin());
        c.xc = *xc;
        c.yc = *yc;
        gridforge::gisReadObject(gisID, read, c, maxVertices, readCoordinates != 0);

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
        return static_cast<std::int32_t>(gridforge::READGIS(content(text, textLength), content(name, nameLength)));
    });
}

std::int32_t WRITEGIS(const char* text, std::size_t textLength, const char* name, std::size_t nameLength)
{
    return answer([&] {
        return static_cast<std::int32_t>(gridforge::WRITEGIS(content(text, textLength), content(name, nameLength)));
    });
}

std::int32_t READROWCOL(const char* text, std::size_t textLength, const char* name, std::size_t nameLength)
{
    return answer([&] {
        return static_cast<std::int32_t>(gridforge::READROWCOL(content(text, textLength), content(name, nameLength)));
    });
}
}
