// The coordinates of the objects of a .mif.
#include "gis/mif/reader.h"

#include "core/free_form.h"
#include "core/number_text.h"
#include "core/text.h"
#include "gis/gis_messages.h"

#include <algorithm>
#include <limits>

namespace gridforge::gis::mif {

namespace {

constexpr int kMessageColumns = 8;
constexpr std::int32_t kLeastRegionVertices = 5;

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

} // namespace gridforge::gis::mif
