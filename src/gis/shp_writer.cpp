#include "gis/shp_writer.h"

#include "core/product.h"
#include "core/text.h"
#include "gis/byte_order.h"
#include "gis/dbf_writer.h"
#include "gis/gis_messages.h"
#include "host/ends.h"

#include <algorithm>
#include <array>
#include <bit>
#include <limits>

namespace gridforge {

namespace {

constexpr std::size_t kHeaderBytes = 100;
constexpr std::size_t kLengthAt = 24;
constexpr std::size_t kBoxAt = 36;
constexpr std::size_t kVertexBytes = 16;
constexpr std::size_t kVerticesAtOnce = 4096;
constexpr std::int32_t kFileCode = 9994;
constexpr std::int32_t kVersion = 1000;
constexpr std::int32_t kHeaderWords = 50; // lengths are in 16-bit words
constexpr std::int32_t kRecordHeadWords = 4;
// What the box of a layer starts from: 9e29 in single precision.
constexpr double kNoBox = 9.000000135427196e+29;

constexpr std::int32_t kNull = 0;
constexpr std::int32_t kPoint = 1;
constexpr std::int32_t kPolyline = 3;
constexpr std::int32_t kPolygon = 5;
constexpr std::int32_t kMultiPoint = 8;

void failHeader(Unit)
{
    gisFail("ERROR 0437 - Writing .shp file header.");
}

void failObject(Unit)
{
    gisFail("ERROR 0439 - Writing .shp file object coordinates.");
}

void failRewrite(Unit)
{
    gisFail("ERROR 0413 - Rewriting .dbf file header with final information.");
}

// Sends what has been written to the file, so that a failure is told as that of the step that wrote it.
void settle(Unit unit)
{
    seekTo(unit, position(unit));
}

// --- Boxes -----------------------------------------------------------------------------------------------------------

struct Box {
    double xmin = std::numeric_limits<double>::max();
    double ymin = std::numeric_limits<double>::max();
    double xmax = std::numeric_limits<double>::lowest();
    double ymax = std::numeric_limits<double>::lowest();
};

std::size_t vertexCount(const GisOutputCoordinates& c)
{
    return static_cast<std::size_t>(std::max(c.np, 0));
}

Box boxOf(const GisOutputCoordinates& c)
{
    Box box;
    for (std::size_t i = 0; i < vertexCount(c); ++i) {
        box.xmin = std::min(box.xmin, c.x[i]);
        box.ymin = std::min(box.ymin, c.y[i]);
        box.xmax = std::max(box.xmax, c.x[i]);
        box.ymax = std::max(box.ymax, c.y[i]);
    }
    return box;
}

void takeIn(const Box& box, ShpFile& shp)
{
    shp.xmin = std::min(shp.xmin, box.xmin);
    shp.ymin = std::min(shp.ymin, box.ymin);
    shp.xmax = std::max(shp.xmax, box.xmax);
    shp.ymax = std::max(shp.ymax, box.ymax);
}

char* putBox(char* at, const Box& box)
{
    at = putBytes(at, box.xmin);
    at = putBytes(at, box.ymin);
    at = putBytes(at, box.xmax);
    return putBytes(at, box.ymax);
}

Box boxOf(const ShpFile& shp)
{
    return {shp.xmin, shp.ymin, shp.xmax, shp.ymax};
}

// --- Objects ---------------------------------------------------------------------------------------------------------

bool isLine(const GisO& gisO)
{
    return gisO.line || gisO.pline || gisO.plineMultiple;
}

std::int32_t shapeTypeOf(const GisO& gisO)
{
    if (gisO.point) {
        return kPoint;
    }
    if (gisO.multipoint) {
        return kMultiPoint;
    }
    if (isLine(gisO)) {
        return kPolyline;
    }
    if (gisO.region) {
        return kPolygon;
    }
    if (gisO.none) {
        return kNull;
    }
    gisFail(join("ERROR 0350 - Trying to write a SHP object that is not yet supported.  Please contact ",
                 kSupportContact, "."));
}

std::int64_t contentWords(std::int32_t shapeType, const GisO& gisO, std::int64_t np)
{
    switch (shapeType) {
    case kPoint: return 10;
    case kMultiPoint: return 8 * np + 20;
    case kPolyline:
    case kPolygon: return 2 * std::int64_t{gisO.nr} + 22 + 8 * np;
    default: return 2;
    }
}

void writeVertices(Unit unit, const GisOutputCoordinates& c)
{
    const std::size_t np = vertexCount(c);
    for (std::size_t i = 0; i < np;) {
        const std::size_t end = std::min(np, i + kVerticesAtOnce);
        const std::size_t bytes = (end - i) * kVertexBytes;
        char* at = writeRoom(unit, bytes).data();
        for (; i < end; ++i) {
            at = putBytes(at, c.x[i]);
            at = putBytes(at, c.y[i]);
        }
        wroteBytes(unit, bytes);
    }
}

template <typename Number>
void writeNumber(Unit unit, Number value)
{
    char* const at = writeRoom(unit, sizeof value).data();
    putBytes(at, value);
    wroteBytes(unit, sizeof value);
}

void writeObjectBox(const Box& box, ShpFile& shp)
{
    std::array<char, sizeof(Box)> bytes;
    putBox(bytes.data(), box);
    writeText(shp.shpUnit, {bytes.data(), bytes.size()});
    takeIn(box, shp);
}

// A point without a vertex stands at 0.
void writePoint(const GisOutputCoordinates& c, ShpFile& shp)
{
    const double x = c.x.empty() ? 0.0 : c.x[0];
    const double y = c.y.empty() ? 0.0 : c.y[0];
    writeNumber(shp.shpUnit, x);
    writeNumber(shp.shpUnit, y);
    takeIn({x, y, x, y}, shp);
}

void writeBody(std::int32_t shapeType, const GisO& gisO, ShpFile& shp, const GisOutputCoordinates& c)
{
    switch (shapeType) {
    case kPoint: writePoint(c, shp); break;
    case kMultiPoint:
        writeObjectBox(boxOf(c), shp);
        writeNumber(shp.shpUnit, c.np);
        writeVertices(shp.shpUnit, c);
        break;
    case kPolyline:
    case kPolygon:
        writeObjectBox(boxOf(c), shp);
        writeNumber(shp.shpUnit, gisO.nr);
        writeNumber(shp.shpUnit, c.np);
        for (std::size_t k = 0; k < static_cast<std::size_t>(gisO.nr); ++k) {
            writeNumber(shp.shpUnit, gisO.ir[k] - 1);
        }
        writeVertices(shp.shpUnit, c);
        break;
    default: break;
    }
}

// Two big-endian words, as records of both files begin.
void writePair(Unit unit, std::int32_t first, std::int32_t second)
{
    char* at = writeRoom(unit, 2 * sizeof first).data();
    at = putBytes<std::endian::big>(at, first);
    putBytes<std::endian::big>(at, second);
    wroteBytes(unit, 2 * sizeof first);
}

// Offsets and lengths have 32 bits, and count 16-bit words.
void requireRoom(const ShpFile& shp, std::int64_t words)
{
    if (std::int64_t{shp.shxOffset} + kRecordHeadWords + words > std::numeric_limits<std::int32_t>::max()) {
        fail("ERROR - Size of .shp file exceeds maximum of 2147483647 words of 16 bits: ", unitName(shp.shpUnit));
    }
}

// --- The ends of the files -------------------------------------------------------------------------------------------

// Completes the header of a file: its length in words, and the box.
void rewriteHeader(Unit unit, std::int32_t words, const ShpFile& shp)
{
    settle(unit);
    onWriteFailure(unit, failRewrite);
    std::array<char, sizeof(Box)> bytes;
    putBytes<std::endian::big>(bytes.data(), words);
    seekTo(unit, kLengthAt);
    writeText(unit, {bytes.data(), sizeof words});
    putBox(bytes.data(), boxOf(shp));
    seekTo(unit, kBoxAt);
    writeText(unit, {bytes.data(), bytes.size()});
}

void writeEoF(ShpFile& shp, DbfTable& dbf)
{
    if (dbf.dbfUnit > 0) {
        dbfWriteEoF(dbf);
    }
    if (shp.nRecords <= 0) {
        return; // the files keep their first headers, and are closed with the layer
    }
    if (shp.shpUnit > 0) {
        rewriteHeader(shp.shpUnit, shp.fileLength, shp);
        CLOSER(shp.shpUnit);
        CLOSER(shp.shpUnitBE);
    }
    if (shp.shxUnitBE > 0) {
        rewriteHeader(shp.shxUnitBE, kRecordHeadWords * shp.nRecords + kHeaderWords, shp);
        CLOSER(shp.shxUnitBE);
    }
}

} // namespace

// --- Headers ---------------------------------------------------------------------------------------------------------

// The little-endian unit writes the .shp, the big-endian one the .shx, where the other is closed early. What an older file
// holds beyond the header goes at once.
void shpWriteFileHeader(ShpFile& shp, Unit unitLE, Unit unitBE)
{
    if (unitLE <= 0 || unitBE <= 0) {
        gisMisuse("[shpnotopen]");
    }
    shp.fileCode = kFileCode;
    shp.fileLength = kHeaderWords;
    shp.version = kVersion;
    std::array<char, kHeaderBytes> header = {};
    putBytes<std::endian::big>(header.data(), shp.fileCode);
    char* at = putBytes<std::endian::big>(&header[kLengthAt], shp.fileLength);
    at = putBytes(at, shp.version);
    at = putBytes(at, shp.shapeType);
    putBox(at, boxOf(shp));

    const Unit unit = unitLE == shp.shxUnit ? unitBE : unitLE;
    onWriteFailure(unit, failHeader);
    seekTo(unit, 0);
    writeText(unit, {header.data(), header.size()});
    truncateHere(unit);
}

void shpWriteHeader(Layer& layer, const GisOutputAttributes& attributes, std::string_view prjLine)
{
    for (std::size_t i = 0; i < layer.shpFiles.size(); ++i) {
        ShpFile& shp = layer.shpFiles[i];
        if (shp.shpUnit <= 0) {
            continue;
        }
        if (shp.prjUnit > 0) {
            writeLine(shp.prjUnit, trimRight(prjLine));
            CLOSER(shp.prjUnit);
        }
        shpWriteFileHeader(shp, shp.shpUnit, shp.shpUnitBE);
        shpWriteFileHeader(shp, shp.shxUnit, shp.shxUnitBE);
        CLOSER(shp.shxUnit);
        shp.xmin = shp.ymin = kNoBox;
        shp.xmax = shp.ymax = -kNoBox;
        shp.shxOffset = kHeaderWords;
        dbfWriteHeader(attributes, layer.dbfTable[i]);
        layer.dbfTable[i].currentRecord = 0;
    }
}

// --- Objects and records ---------------------------------------------------------------------------------------------

std::size_t shpRoute(const Layer& layer, const GisO& gisO, std::string_view place, std::array<std::size_t, 3>& index)
{
    if (gisO.point || gisO.multipoint || gisO.text) {
        index[0] = 0;
    } else if (isLine(gisO)) {
        index[0] = 1;
    } else if (gisO.region) {
        index[0] = 2;
    } else if (gisO.none) {
        std::size_t count = 0;
        for (std::size_t i = 0; i < layer.shpFiles.size(); ++i) {
            if (layer.shpFiles[i].shpUnit > 0) {
                index[count++] = i;
            }
        }
        return count;
    } else {
        gisFail(join("Should not be here ", place, ".  Please contact ", kSupportContact, "."));
    }
    if (layer.shpFiles[index[0]].shpUnit <= 0) {
        gisMisuse("[shpnotopen]"); // the layer was not opened for this kind
    }
    return 1;
}

void shpWriteLayerObject(Layer& layer, GisO& gisO, const GisOutputCoordinates& coordinates)
{
    std::array<std::size_t, 3> index = {};
    const std::size_t count = shpRoute(layer, gisO, "[gisWriteObject-shp]", index);
    if (gisO.text) {
        gisO.text = false;
        gisO.point = true;
    }
    for (std::size_t i = 0; i < count; ++i) {
        shpWriteObject(gisO, layer.shpFiles[index[i]], coordinates);
    }
}

void shpWriteObject(GisO& gisO, ShpFile& shp, const GisOutputCoordinates& coordinates)
{
    gisO.haveCoordinates = false;
    onWriteFailure(shp.shpUnit, failObject);
    onWriteFailure(shp.shxUnitBE, failObject);
    ++shp.nRecords;
    const std::int32_t shapeType = shapeTypeOf(gisO);
    const std::int64_t words = contentWords(shapeType, gisO, coordinates.np);
    requireRoom(shp, words);
    const auto content = static_cast<std::int32_t>(words);
    writePair(shp.shpUnit, shp.nRecords, content);
    writeNumber(shp.shpUnit, shapeType);
    writePair(shp.shxUnitBE, shp.shxOffset, content);
    shp.shxOffset += kRecordHeadWords + content;
    shp.fileLength += kRecordHeadWords + content;
    writeBody(shapeType, gisO, shp, coordinates);
    gisO.haveCoordinates = true;
}

void shpWriteLayerRecord(Layer& layer, const GisO& gisO, std::string_view line, bool large)
{
    std::array<std::size_t, 3> index = {};
    const std::size_t count = shpRoute(layer, gisO, "[gisWriteRecord-dbf]", index);
    for (std::size_t i = 0; i < count; ++i) {
        DbfTable& dbf = layer.dbfTable[index[i]];
        if (large) {
            dbfdatalinelarge(dbf, line);
        } else {
            dbfdataline(dbf, line);
        }
    }
}

void shpWriteEoF(Layer& layer)
{
    for (std::size_t i = 0; i < layer.shpFiles.size(); ++i) {
        writeEoF(layer.shpFiles[i], layer.dbfTable[i]);
    }
}

} // namespace gridforge
