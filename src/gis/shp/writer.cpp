#include "gis/shp/writer.h"

#include "core/names.h"
#include "core/product.h"
#include "core/text.h"
#include "gis/gis_messages.h"
#include "gis/shp/byte_order.h"
#include "gis/shp/codes.h"
#include "gis/shp/dbf_writer.h"
#include "gis/shp/write_steps.h"
#include "host/ends.h"

#include <algorithm>
#include <array>
#include <bit>
#include <limits>

namespace gridforge::gis::shp {

namespace {

constexpr std::size_t kLengthAt = 24;
constexpr std::size_t kBoxAt = 36;
constexpr std::size_t kWrittenVertices = 4096;
constexpr std::int32_t kFileCode = 9994;
constexpr std::int32_t kVersion = 1000;
constexpr std::int32_t kHeaderWords = 50; // lengths are in 16-bit words
constexpr std::int32_t kRecordHeadWords = 4;
// The box of a layer starts from this: 9e29 in single precision.
constexpr double kNoBox = 9.000000135427196e+29;

void failShpHeader(Unit)
{
    gisFail("ERROR 0437 - Writing .shp file header.");
}

void failObject(Unit)
{
    gisFail("ERROR 0439 - Writing .shp file object coordinates.");
}

// --- Boxes -----------------------------------------------------------------------------------------------------------

Box boxOf(const Feature& f)
{
    return boxAround(f.x, f.y, std::numeric_limits<double>::max());
}

char* putBox(char* at, const Box& box)
{
    at = putBytes(at, box.xmin);
    at = putBytes(at, box.ymin);
    at = putBytes(at, box.xmax);
    return putBytes(at, box.ymax);
}

// --- Objects ---------------------------------------------------------------------------------------------------------

std::int32_t shapeTypeOf(Kind kind)
{
    switch (kind) {
    case Kind::text:
    case Kind::point: return kPoint;
    case Kind::multipoint: return kMultiPoint;
    case Kind::line:
    case Kind::polyline:
    case Kind::combinedPolyline: return kPolyline;
    case Kind::region: return kPolygon;
    case Kind::none: return kNull;
    default:
        gisFail(join("ERROR 0350 - Trying to write a SHP object that is not yet supported.  Please contact ",
                     kSupportContact, "."));
    }
}

std::int64_t contentWords(std::int32_t shapeType, const Feature& f)
{
    const std::int64_t np = f.vertexCount();
    switch (shapeType) {
    case kPoint: return 10;
    case kMultiPoint: return 8 * np + 20;
    case kPolyline:
    case kPolygon: return 2 * std::int64_t{f.partCount()} + 22 + 8 * np;
    default: return 2;
    }
}

void writeVertices(Unit unit, const Feature& f)
{
    const std::size_t np = f.x.size();
    for (std::size_t i = 0; i < np;) {
        const std::size_t end = std::min(np, i + kWrittenVertices);
        const std::size_t bytes = (end - i) * kVertexBytes;
        char* at = writeRoom(unit, bytes).data();
        for (; i < end; ++i) {
            at = putBytes(at, f.x[i]);
            at = putBytes(at, f.y[i]);
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

void writeObjectBox(const Box& box, ShpTarget& shp)
{
    std::array<char, sizeof(Box)> bytes;
    putBox(bytes.data(), box);
    writeText(shp.shpUnit, {bytes.data(), bytes.size()});
    takeIn(box, shp.box);
}

// A point without a vertex is at 0.
void writePoint(const Feature& f, ShpTarget& shp)
{
    const double x = f.x.empty() ? 0.0 : f.x[0];
    const double y = f.y.empty() ? 0.0 : f.y[0];
    writeNumber(shp.shpUnit, x);
    writeNumber(shp.shpUnit, y);
    takeIn({x, y, x, y}, shp.box);
}

void writeBody(std::int32_t shapeType, const Feature& f, ShpTarget& shp)
{
    switch (shapeType) {
    case kPoint: writePoint(f, shp); break;
    case kMultiPoint:
        writeObjectBox(boxOf(f), shp);
        writeNumber(shp.shpUnit, f.vertexCount());
        writeVertices(shp.shpUnit, f);
        break;
    case kPolyline:
    case kPolygon:
        writeObjectBox(boxOf(f), shp);
        writeNumber(shp.shpUnit, f.partCount());
        writeNumber(shp.shpUnit, f.vertexCount());
        for (std::int32_t part = 1; part <= f.partCount(); ++part) {
            writeNumber(shp.shpUnit, f.partStart(part) - 1);
        }
        writeVertices(shp.shpUnit, f);
        break;
    default: break;
    }
}

// Writes the two big-endian words that begin a record of either file.
void writePair(Unit unit, std::int32_t first, std::int32_t second)
{
    char* at = writeRoom(unit, 2 * sizeof first).data();
    at = putBytes<std::endian::big>(at, first);
    putBytes<std::endian::big>(at, second);
    wroteBytes(unit, 2 * sizeof first);
}

// Offsets and lengths have 32 bits, and count 16-bit words.
void requireRoom(const ShpTarget& shp, std::int64_t words)
{
    if (std::int64_t{shp.shxOffset} + kRecordHeadWords + words > std::numeric_limits<std::int32_t>::max()) {
        fail("ERROR - Size of .shp file exceeds maximum of 2147483647 words of 16 bits: ", unitName(shp.shpUnit));
    }
}

// --- The ends of the files -------------------------------------------------------------------------------------------

// Completes the header of a file: its length in words, and the box.
void rewriteHeader(Unit unit, std::int32_t words, const ShpTarget& shp)
{
    settle(unit);
    onWriteFailure(unit, failRewrite);
    std::array<char, sizeof(Box)> bytes;
    putBytes<std::endian::big>(bytes.data(), words);
    seekTo(unit, kLengthAt);
    writeText(unit, {bytes.data(), sizeof words});
    putBox(bytes.data(), shp.box);
    seekTo(unit, kBoxAt);
    writeText(unit, {bytes.data(), bytes.size()});
}

void complete(OutputSet& set)
{
    ShpTarget& shp = set.shp;
    DbfTable& dbf = set.dbf;
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

void closeAll(OutputSet& set)
{
    CLOSER(set.shp.shpUnit);
    CLOSER(set.shp.shpUnitBE);
    CLOSER(set.shp.shxUnit);
    CLOSER(set.shp.shxUnitBE);
    CLOSER(set.shp.prjUnit);
    CLOSER(set.dbf.dbfUnit);
}

// --- Creation --------------------------------------------------------------------------------------------------------

// The set that a letter of the families stands for, and its type.
struct ShapeFamily {
    char letter;
    std::size_t index;
    std::int32_t shapeType;
};
constexpr std::array<ShapeFamily, 3> kShapeFamilies = {{{'P', 0, kPoint}, {'L', 1, kPolyline}, {'R', 2, kPolygon}}};

const ShapeFamily& shapeFamily(char letter)
{
    for (const ShapeFamily& family : kShapeFamilies) {
        if (letter == family.letter || letter == family.letter - 'A' + 'a') {
            return family;
        }
    }
    gisMisuse("[OpenshpFileType]");
}

// The files of a set, without their extensions.
std::string setBase(std::string_view fileName, char letter)
{
    return join(FILENAMEPATH(fileName), "_", letter);
}

// All sets are checked before the first one is opened: opening an input for output would empty its .prj and .dbf.
void requireNoInputSet(std::string_view fileName, std::string_view families)
{
    for (const char letter : families) {
        for (const std::string_view extension : {".shp", ".shx", ".prj", ".dbf"}) {
            if (isOpenAsInput(join(setBase(fileName, letter), extension))) {
                fail("ERROR - Output layer is also an input layer: ", fileName);
            }
        }
    }
}

void openSet(const std::string& base, OutputSet& set)
{
    OPENER(set.shp.shpUnit, "SB", base + ".shp");
    OPENER(set.shp.shpUnitBE, "SE", base + ".shp");
    OPENER(set.shp.shxUnit, "SB", base + ".shx");
    OPENER(set.shp.shxUnitBE, "SE", base + ".shx");
    OPENER(set.shp.prjUnit, "O ", base + ".prj");
    OPENER(set.dbf.dbfUnit, "BO", base + ".dbf");
}

void writeHeaders(OutputSet& set, const LayerSpec& spec)
{
    ShpTarget& shp = set.shp;
    writeLine(shp.prjUnit, trimRight(spec.projection.shp));
    CLOSER(shp.prjUnit);
    writeFileHeader(shp, shp.shpUnit, shp.shpUnitBE);
    writeFileHeader(shp, shp.shxUnit, shp.shxUnitBE);
    CLOSER(shp.shxUnit);
    shp.box = emptyBox(kNoBox);
    shp.shxOffset = kHeaderWords;
    dbfWriteHeader(spec.columns, set.dbf);
}

// --- The sets of an object -------------------------------------------------------------------------------------------

// Calls `work` with each set for objects of this kind. A kind without a set ends the run; the message names `place`.
template <typename Work>
void forEachSetOf(ShpOutput& output, Kind kind, std::string_view place, const Work& work)
{
    const auto one = [&](std::size_t index) {
        if (output.sets[index].shp.shpUnit <= 0) {
            gisMisuse("[shpnotopen]"); // the layer was not created for this kind
        }
        work(output.sets[index]);
    };
    switch (kind) {
    case Kind::point:
    case Kind::multipoint:
    case Kind::text: one(0); break;
    case Kind::line:
    case Kind::polyline:
    case Kind::combinedPolyline: one(1); break;
    case Kind::region: one(2); break;
    case Kind::none:
        for (OutputSet& set : output.sets) {
            if (set.shp.shpUnit > 0) {
                work(set);
            }
        }
        break;
    default: gisFail(join("Should not be here ", place, ".  Please contact ", kSupportContact, "."));
    }
}

} // namespace

// --- Headers ---------------------------------------------------------------------------------------------------------

// The little-endian unit writes the .shp, and the big-endian one the .shx, whose other unit is closed early. Cuts off what
// an older file holds after the header.
void writeFileHeader(ShpTarget& shp, Unit unitLE, Unit unitBE)
{
    if (unitLE <= 0 || unitBE <= 0) {
        gisMisuse("[shpnotopen]");
    }
    shp.fileLength = kHeaderWords;
    std::array<char, kShpHeaderBytes> header = {};
    putBytes<std::endian::big>(header.data(), kFileCode);
    char* at = putBytes<std::endian::big>(&header[kLengthAt], shp.fileLength);
    at = putBytes(at, kVersion);
    at = putBytes(at, shp.shapeType);
    putBox(at, shp.box);

    const Unit unit = unitLE == shp.shxUnit ? unitBE : unitLE;
    onWriteFailure(unit, failShpHeader);
    seekTo(unit, 0);
    writeText(unit, {header.data(), header.size()});
    truncateHere(unit);
}

ShpOutput create(std::string_view fileName, const LayerSpec& spec)
{
    requireNoInputSet(fileName, spec.families);
    ShpOutput output;
    for (const char letter : spec.families) {
        const ShapeFamily& family = shapeFamily(letter);
        output.sets[family.index].shp.shapeType = family.shapeType;
        openSet(setBase(fileName, letter), output.sets[family.index]);
    }
    for (OutputSet& set : output.sets) {
        if (set.shp.shpUnit > 0) {
            writeHeaders(set, spec);
        }
    }
    return output;
}

// --- Objects and records ---------------------------------------------------------------------------------------------

void writeObject(ShpOutput& output, const Feature& feature)
{
    forEachSetOf(output, feature.kind, "[gisWriteObject-shp]", [&](OutputSet& set) { writeObject(set, feature); });
}

void writeObject(OutputSet& set, const Feature& feature)
{
    ShpTarget& shp = set.shp;
    onWriteFailure(shp.shpUnit, failObject);
    onWriteFailure(shp.shxUnitBE, failObject);
    ++shp.nRecords;
    const std::int32_t shapeType = shapeTypeOf(feature.kind);
    const std::int64_t words = contentWords(shapeType, feature);
    requireRoom(shp, words);
    const auto content = static_cast<std::int32_t>(words);
    writePair(shp.shpUnit, shp.nRecords, content);
    writeNumber(shp.shpUnit, shapeType);
    writePair(shp.shxUnitBE, shp.shxOffset, content);
    shp.shxOffset += kRecordHeadWords + content;
    shp.fileLength += kRecordHeadWords + content;
    writeBody(shapeType, feature, shp);
}

void writeRecord(ShpOutput& output, const Feature& feature)
{
    forEachSetOf(output, feature.kind, "[gisWriteRecord-dbf]",
                 [&](OutputSet& set) { dbfdataline(set.dbf, feature.record); });
}

void closeFiles(ShpOutput& output)
{
    for (OutputSet& set : output.sets) {
        complete(set);
    }
    for (OutputSet& set : output.sets) {
        closeAll(set);
    }
}

} // namespace gridforge::gis::shp
