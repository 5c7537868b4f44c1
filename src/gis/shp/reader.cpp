#include "gis/shp/reader.h"

#include "core/names.h"
#include "core/number_text.h"
#include "core/product.h"
#include "core/text.h"
#include "gis/gis_messages.h"
#include "gis/projection.h"
#include "gis/shp/byte_order.h"
#include "gis/shp/codes.h"
#include "gis/shp/dbf_reader.h"
#include "host/console.h"
#include "host/ends.h"
#include "host/file_system.h"

#include <algorithm>
#include <array>
#include <span>

namespace gridforge::gis::shp {

namespace {

constexpr std::size_t kBoxBytes = 32;
constexpr std::size_t kReadVertices = 512;
constexpr int kMessageColumns = 8;

std::string_view shapeName(std::int32_t type)
{
    switch (type) {
    case 0: return "Null Shape";
    case 1: return "Point";
    case 3: return "Polyline";
    case 5: return "Polygon";
    case 8: return "MultiPoint";
    case 11: return "PointZ";
    case 13: return "PolyLineZ";
    case 15: return "PolygonZ";
    case 18: return "MultiPointZ";
    case 21: return "PointM";
    case 23: return "PolyLineM";
    case 25: return "PolygonM";
    case 28: return "MultiPointM";
    case 31: return "MultiPatch";
    default: return "Unknown";
    }
}

// The two messages of a read that fails: the system refused it, or the file ended.
struct ReadMessages {
    std::string_view refused;
    std::string_view ended;
};
constexpr ReadMessages kHeaderMessages = {"ERROR 0427 - Reading .shp file header.",
                                          "ERROR 0428 - End of .shp file encountered whilst reading header."};
constexpr ReadMessages kTypeMessages = {"ERROR 0424 - Reading .shp file object type.",
                                        "ERROR 0425 - End of .shp file encountered whilst reading object type."};
constexpr ReadMessages kCoordinateMessages = {
    "ERROR 0429 - Reading .shp file object coordinates.",
    "ERROR 0430 - End of .shp file encountered whilst reading object coordinates."};

void need(Unit unit, std::span<std::byte> bytes, const ReadMessages& messages)
{
    if (!readBytes(unit, bytes)) {
        gisFail(readFailed(unit) ? messages.refused : messages.ended);
    }
}

std::int32_t needInteger(Unit unit, const ReadMessages& messages)
{
    std::array<std::byte, sizeof(std::int32_t)> bytes;
    need(unit, bytes, messages);
    return fromBytes<std::int32_t>(bytes.data());
}

void needBox(Unit unit, const ReadMessages& messages)
{
    std::array<std::byte, kBoxBytes> bytes;
    need(unit, bytes, messages);
}

// Reads the next `count` integers into the start of `ir`, which has room for them.
void needParts(Unit unit, std::int32_t count, std::vector<std::int32_t>& ir, const ReadMessages& messages)
{
    for (std::int32_t k = 0; k < count; ++k) {
        ir[static_cast<std::size_t>(k)] = needInteger(unit, messages);
    }
}

void roomForParts(LayerObject& object, std::int32_t count)
{
    object.parts.resize(std::max(object.parts.size(), static_cast<std::size_t>(count)));
}

void requireNotNegative(const ShpSource& shp, std::string_view what, std::int32_t count)
{
    if (count < 0) {
        fail("ERROR - Number of ", what, " is below 0 in .shp file: ", unitName(shp.shpUnit), "  Number: ", count);
    }
}

// The part from start to end of an object's points.
void requirePart(const ShpSource& shp, std::int64_t start, std::int64_t end, std::int64_t points)
{
    if (start < 0 || end < start || end > points) {
        fail("ERROR - Parts of an object do not rise within its points in .shp file: ", unitName(shp.shpUnit),
             "  Points: ", points);
    }
}

void requireRoom(std::int64_t np, std::int32_t maxVertices)
{
    if (np > maxVertices) {
        gisFail("ERROR 0310 - Exceeded number of allowable nodes in a single .shp polyline or region.",
                join("             Requested", integerField(np, kMessageColumns), "        Limit",
                     integerField(maxVertices, kMessageColumns)));
    }
}

// --- Vertices --------------------------------------------------------------------------------------------------------

// Reads `count` vertices piece by piece and calls `take` with each one's number from 0, x and y.
template <typename Take>
void needVertices(Unit unit, std::int64_t count, const Take& take)
{
    std::array<std::byte, kReadVertices * kVertexBytes> bytes;
    for (std::int64_t done = 0; done < count;) {
        const std::int64_t now = std::min(count - done, static_cast<std::int64_t>(kReadVertices));
        const auto piece = std::span(bytes).first(static_cast<std::size_t>(now) * kVertexBytes);
        need(unit, piece, kCoordinateMessages);
        for (std::int64_t i = 0; i < now; ++i) {
            const std::byte* const at = piece.data() + static_cast<std::size_t>(i) * kVertexBytes;
            take(static_cast<std::size_t>(done + i), fromBytes<double>(at), fromBytes<double>(at + sizeof(double)));
        }
        done += now;
    }
}

void readVertices(Unit unit, std::size_t offset, std::int64_t count, Coordinates& c)
{
    needVertices(unit, count, [&](std::size_t i, double x, double y) {
        c.x[offset + i] = x;
        c.y[offset + i] = y;
    });
}

void dropVertices(Unit unit, std::int64_t count)
{
    needVertices(unit, count, [](std::size_t, double, double) {});
}

void readPoint(Unit unit, Coordinates& c)
{
    c.np = 1;
    c.reserve(1);
    readVertices(unit, 0, 1, c);
}

void readPart(ShpSource& shp, LayerObject& object, Coordinates& c, std::int32_t maxVertices, bool wanted)
{
    if (object.rings >= object.sections) {
        fail("ERROR - More parts read than a polyline has in .shp file: ", unitName(shp.shpUnit),
             "  Parts: ", object.sections);
    }
    const auto part = static_cast<std::size_t>(object.rings);
    ++object.rings;
    requirePart(shp, object.parts[part], object.parts[part + 1],
                object.parts[static_cast<std::size_t>(object.sections)]);
    c.np = object.parts[part + 1] - object.parts[part];
    if (!wanted) {
        dropVertices(shp.shpUnit, c.np);
        return;
    }
    requireRoom(c.np, maxVertices);
    c.reserve(c.np);
    readVertices(shp.shpUnit, 0, c.np, c);
}

// Makes ring ends of the part starts of the file, and fills the slot after each ring with its second vertex. A ring of
// fewer than two vertices has no second one, and its slot stays as it was.
void readRings(const ShpSource& shp, LayerObject& object, std::int32_t points, Coordinates& c)
{
    const auto rings = static_cast<std::size_t>(object.rings);
    object.parts[rings] = points;
    for (std::size_t k = 0; k < rings; ++k) {
        requirePart(shp, object.parts[k], object.parts[k + 1], points);
    }
    c.reserve(object.rings + points + 1);
    c.np = 0;
    for (std::size_t k = 0; k < rings; ++k) {
        const std::int32_t count = object.parts[k + 1] - object.parts[k];
        const auto offset = static_cast<std::size_t>(c.np);
        readVertices(shp.shpUnit, offset, count, c);
        c.np += count + 1;
        const auto slot = static_cast<std::size_t>(c.np - 1);
        c.x[slot] = c.x[offset + 1];
        c.y[slot] = c.y[offset + 1];
        object.parts[k] = c.np - 1;
    }
}

void readRegion(const ShpSource& shp, LayerObject& object, Coordinates& c, std::int32_t maxVertices, bool wanted)
{
    c.np = needInteger(shp.shpUnit, kCoordinateMessages);
    requireNotNegative(shp, "points of a region", c.np);
    roomForParts(object, object.rings + 1);
    needParts(shp.shpUnit, object.rings, object.parts, kCoordinateMessages);
    if (!wanted) {
        dropVertices(shp.shpUnit, c.np);
        return;
    }
    requireRoom(std::int64_t{object.rings} + c.np, maxVertices);
    readRings(shp, object, c.np, c);
}

// --- Heads of records ------------------------------------------------------------------------------------------------

// A polyline without parts has no kind.
Kind kindOfPolyline(std::int32_t parts)
{
    if (parts == 1) {
        return Kind::polyline;
    }
    return parts > 1 ? Kind::combinedPolyline : Kind::unknown;
}

void readPolylineHead(const ShpSource& shp, LayerObject& object)
{
    needBox(shp.shpUnit, kTypeMessages);
    object.sections = needInteger(shp.shpUnit, kTypeMessages);
    object.kind = kindOfPolyline(object.sections);
    if (object.sections >= kMaxParts) {
        gisFail("ERROR 0421 - Exceeded maximum number of parts in a .shp polyline.  Limit is 10000");
    }
    requireNotNegative(shp, "parts of a polyline", object.sections);
    const std::int32_t points = needInteger(shp.shpUnit, kTypeMessages);
    roomForParts(object, object.sections + 1);
    needParts(shp.shpUnit, object.sections, object.parts, kTypeMessages);
    object.parts[static_cast<std::size_t>(object.sections)] = points;
}

void readPolygonHead(const ShpSource& shp, LayerObject& object)
{
    object.kind = Kind::region;
    needBox(shp.shpUnit, kTypeMessages);
    object.rings = needInteger(shp.shpUnit, kTypeMessages);
    if (object.rings >= kMaxParts) {
        gisFail("ERROR 0422 - Exceeded maximum number of regions within a .shp region.  Limit is 10000");
    }
    requireNotNegative(shp, "rings of a region", object.rings);
}

void readMultipointHead(const ShpSource& shp, LayerObject& object)
{
    object.kind = Kind::multipoint;
    needBox(shp.shpUnit, kTypeMessages);
    object.sections = needInteger(shp.shpUnit, kTypeMessages);
}

} // namespace

// --- Headers ---------------------------------------------------------------------------------------------------------

namespace {

struct FileHeader {
    std::int32_t code = 0;   // big-endian in the file, as is the length
    std::int32_t length = 0; // in 16-bit words
    std::int32_t version = 0;
    std::int32_t type = 0;
};

// Rewinds and reads the 100 bytes of the header. A short or unreadable file ends the run.
FileHeader readFileHeader(Unit unit)
{
    std::array<std::byte, kShpHeaderBytes> bytes;
    seekTo(unit, 0);
    need(unit, bytes, kHeaderMessages);
    return {fromBytes<std::int32_t, std::endian::big>(bytes.data()),
            fromBytes<std::int32_t, std::endian::big>(&bytes[24]), fromBytes<std::int32_t>(&bytes[28]),
            fromBytes<std::int32_t>(&bytes[32])};
}

} // namespace

ShpInput open(std::string_view fileName)
{
    ShpInput input;
    OPENER(input.shp.shpUnit, "BI", fileName);
    OPENER(input.shp.shpUnitBE, "BE", fileName);
    OPENER(input.dbf.dbfUnit, "BI", FILENAMEPATH(fileName) + ".dbf");
    return input;
}

void readHeader(ShpInput& input)
{
    ShpSource& shp = input.shp;
    if (shp.shpUnitBE > 0) {
        const FileHeader header = readFileHeader(shp.shpUnitBE);
        say("Shapefile Code: ", header.code, "  Length: ", header.length);
    }
    const FileHeader header = readFileHeader(shp.shpUnit);
    say("Shapefile Version: ", header.version, "  Type: ", header.type);
    CLOSER(shp.shpUnitBE);
    dbfReadHeader(input.dbf);
    input.dbf.currentRecord = 0;
}

std::int32_t columnCount(const ShpInput& input)
{
    return input.dbf.nFields;
}

std::vector<Column> columnsOf(const ShpInput& input)
{
    const DbfTable& dbf = input.dbf;
    std::vector<Column> result;
    for (std::size_t i = 0; i < static_cast<std::size_t>(dbf.nFields); ++i) {
        if (dbf.fieldType[i] == 'N' || dbf.fieldType[i] == 'F') {
            result.push_back({dbf.fieldName[i], "Float", 0});
        } else {
            result.push_back({dbf.fieldName[i], "Char", dbf.fieldLength[i]});
        }
    }
    return result;
}

// --- Objects ---------------------------------------------------------------------------------------------------------

bool readKind(ShpInput& input, LayerObject& object)
{
    ShpSource& shp = input.shp;
    std::array<std::byte, 2 * sizeof(std::int32_t)>
        head; // record number and length, which a reader in order does not need
    need(shp.shpUnit, head, kTypeMessages);
    shp.recordShapeType = needInteger(shp.shpUnit, kTypeMessages);
    object.rings = 0;
    switch (shp.recordShapeType) {
    case kNull: object.kind = Kind::none; break;
    case kPoint: object.kind = Kind::point; break;
    case kPolyline: readPolylineHead(shp, object); break;
    case kPolygon: readPolygonHead(shp, object); break;
    case kMultiPoint: readMultipointHead(shp, object); break;
    default:
        gisFail(join("ERROR 0423 - Unsupported .shp object type ", shapeName(shp.recordShapeType), " [",
                     shp.recordShapeType, "]"));
    }
    object.name = shapeName(shp.recordShapeType);
    return true;
}

bool atObjectsEnd(const ShpInput& input)
{
    return atEnd(input.shp.shpUnit);
}

bool readRecord(ShpInput& input, std::string_view /*name*/, std::string& line, std::size_t width)
{
    bool tableEnded = false;
    dbfReadRecord(input.dbf, tableEnded, line, width);
    // A null shape has no coordinates, so the .shp can end with its type.
    return tableEnded || atEnd(input.dbf.dbfUnit) || atObjectsEnd(input);
}

Centre readCoordinates(ShpInput& input, LayerObject& object, Coordinates& coordinates, std::int32_t maxVertices,
                       bool wanted)
{
    ShpSource& shp = input.shp;
    object.haveCoordinates = false;
    switch (shp.recordShapeType) {
    case kNull: break;
    case kPoint:
    case kMultiPoint:
        readPoint(shp.shpUnit, coordinates);
        break; // of several points the first, on purpose: results rely on it
    case kPolyline: readPart(shp, object, coordinates, maxVertices, wanted); break;
    case kPolygon: readRegion(shp, object, coordinates, maxVertices, wanted); break;
    default: gisFail(join("Should not be here [shpReadObject].  Please contact ", kSupportContact, "."));
    }
    object.haveCoordinates = true;
    return Centre::computed;
}

void closeFiles(ShpInput& input)
{
    CLOSER(input.shp.shpUnit);
    CLOSER(input.shp.shpUnitBE);
    CLOSER(input.dbf.dbfUnit);
}

// --- For callers outside ---------------------------------------------------------------------------------------------

std::int32_t recordCount(const ShpInput& input)
{
    return input.dbf.nRecords;
}

void rewind(ShpInput& input)
{
    readHeader(input);
}

bool goToColumns(ShpInput& /*input*/, std::int32_t& /*count*/)
{
    gisMisuse("[gisGotoBeginningOfAttributes]");
}

Column readColumn(ShpInput& /*input*/)
{
    gisMisuse("[gisReadAttributeDefinition]");
}

// --- Projection ------------------------------------------------------------------------------------------------------

void takeProjection(std::string_view fileName, std::string& projection)
{
    const std::string prjName = FILENAMEPATH(fileName) + ".prj";
    if (!inputExists(prjName)) {
        fail("ERROR - Projection file does not exist in folder: ", prjName);
    }
    Unit unit = 0;
    const bool found = findProjectionLine(prjName, "PROJCS", "shp Projection: ", projection, unit);
    CLOSER(unit);
    if (!found) {
        fail("ERROR - Unable to find PROJCS line in ", prjName);
    }
}

} // namespace gridforge::gis::shp
