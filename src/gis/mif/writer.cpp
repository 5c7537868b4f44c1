#include "gis/mif/writer.h"

#include "core/fixed_digits.h"
#include "core/number_text.h"
#include "core/product.h"
#include "core/text.h"
#include "gis/gis_messages.h"
#include "gis/mif/base_name.h"
#include "gis/mif/keywords.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

namespace gridforge::gis::mif {

namespace {

constexpr int kFieldWidth = 16;
constexpr int kDecimals = 6;
constexpr int kTextDecimals = 3;
constexpr std::size_t kStyleWidth = 256;
constexpr std::size_t kRoom = 256; // more than any line of fields

// realField in place, because layers have millions of coordinates.
void putField(char*& out, double value, int decimals)
{
    FixedRoom room;
    const std::string_view digits = fixedDigits(value, decimals, room);
    constexpr auto kWidth = static_cast<std::size_t>(kFieldWidth);
    if (!digits.empty() && digits.size() <= kWidth) {
        std::memset(out, ' ', kWidth - digits.size());
        std::memcpy(out + kWidth - digits.size(), digits.data(), digits.size());
    } else {
        const std::string field = realField(value, kFieldWidth, decimals);
        std::memcpy(out, field.data(), std::min(field.size(), kWidth));
    }
    out += kWidth;
}

// Writes one line: `head`, then x and y of each vertex from number `first` to `last`.
void writeFields(Unit unit, std::string_view head, const Feature& f, std::int32_t first, std::int32_t last,
                 int decimals = kDecimals)
{
    char* const start = writeRoom(unit, kRoom).data();
    char* out = std::copy(head.begin(), head.end(), start);
    for (auto i = static_cast<std::size_t>(first - 1); i < static_cast<std::size_t>(last); ++i) {
        putField(out, f.x[i], decimals);
        putField(out, f.y[i], decimals);
    }
    *out++ = '\r';
    *out++ = '\n';
    wroteBytes(unit, static_cast<std::size_t>(out - start));
}

void writeVertices(Unit unit, const Feature& f, std::int32_t first, std::int32_t last)
{
    for (std::int32_t i = first; i <= last; ++i) {
        writeFields(unit, "", f, i, i);
    }
}

void writeSections(Unit unit, const Feature& f)
{
    for (std::int32_t k = 1; k <= f.partCount(); ++k) {
        const std::int32_t first = f.partStart(k);
        const std::int32_t last = k < f.partCount() ? f.partStart(k + 1) - 1 : f.vertexCount();
        writeLine(unit, join(" ", last - first + 1));
        writeVertices(unit, f, first, last);
    }
}

void writeStyle(Unit unit, const Style& style)
{
    const std::string first = cut(style.first, kStyleWidth);
    if (first.empty()) {
        return;
    }
    writeLine(unit, first);
    if (const std::string second = cut(style.second, kStyleWidth); !second.empty()) {
        writeLine(unit, second);
    }
}

void requireVertices(const Feature& feature, std::int32_t least)
{
    if (feature.vertexCount() < least) {
        gisMisuse("[gisWriteObject]");
    }
}

void writeHeader(Unit unit, const LayerSpec& spec)
{
    writeLine(unit, "Version 300");
    writeLine(unit, "Charset \"WindowsLatin1\"");
    writeLine(unit, "Delimiter \",\"");
    writeLine(unit, cut(spec.projection.mif, kLineWidth));
    writeLine(unit, join("Columns ", spec.columns.size()));
    for (const Column& column : spec.columns) {
        const std::string length = column.length > 0 ? join("(", column.length, ")") : "";
        writeLine(unit, join("  ", trim(cut(column.name, kColumnNameWidth)), " ",
                             trim(cut(column.type, kColumnTypeWidth)), length));
    }
    writeLine(unit, "Data");
    writeLine(unit, "");
}

void failObject(Unit)
{
    gisFail("ERROR 0439 - Writing .mif file object coordinates.");
}

// One routine for each kind of object, because a handler of failed writes gets only the unit.
template <Kind kind>
void failRecord(Unit)
{
    gisFail(
        join("ERROR 0254 - Failed to write attribute data record for a ", keywordOf(kind), " object in GIS layer."));
}

template <std::size_t... kinds>
consteval std::array<WriteFailure, sizeof...(kinds)> recordFailures(std::index_sequence<kinds...>)
{
    return {failRecord<static_cast<Kind>(kinds)>...};
}
constexpr std::array kRecordFailures =
    recordFailures(std::make_index_sequence<static_cast<std::size_t>(Kind::text) + 1>());

} // namespace

MifOutput create(std::string_view fileName, const LayerSpec& spec)
{
    const std::string base = baseOf(fileName);
    MifOutput output;
    OPENER(output.mifUnit, "O ", base + ".mif");
    OPENER(output.midUnit, "O ", base + ".mid");
    writeHeader(output.mifUnit, spec);
    return output;
}

void writeObject(const MifOutput& output, const Feature& f)
{
    const Unit unit = output.mifUnit;
    onWriteFailure(unit, failObject);
    switch (f.kind) {
    case Kind::point:
        requireVertices(f, 1);
        writeFields(unit, "Point ", f, 1, 1);
        break;
    case Kind::multipoint:
        writeLine(unit, join("MultiPoint ", f.vertexCount()));
        writeVertices(unit, f, 1, f.vertexCount());
        break;
    case Kind::line:
        requireVertices(f, 2);
        writeFields(unit, "Line ", f, 1, 2);
        break;
    case Kind::polyline:
        writeLine(unit, join("Pline ", f.vertexCount()));
        writeVertices(unit, f, 1, f.vertexCount());
        break;
    case Kind::combinedPolyline:
        writeLine(unit, join("Pline Multiple ", f.partCount()));
        writeSections(unit, f);
        break;
    case Kind::region:
        writeLine(unit, join("Region ", f.partCount()));
        writeSections(unit, f);
        break;
    case Kind::text:
        requireVertices(f, 3);
        writeLine(unit, "Text");
        writeLine(unit, cut(f.record, kRecordWidth));
        writeFields(unit, "    ", f, 2, 3, kTextDecimals);
        break;
    case Kind::none: writeLine(unit, "none"); return;
    default:
        gisFail(join("ERROR 0350 - Trying to write a MIF object that is not yet supported.  Please contact ",
                     kSupportContact, "."));
    }
    writeStyle(unit, f.style);
}

void writeRecord(const MifOutput& output, const Feature& feature)
{
    onWriteFailure(output.midUnit, kRecordFailures[static_cast<std::size_t>(feature.kind)]);
    writeLine(output.midUnit, trimRight(std::string_view(feature.record).substr(0, kRecordWidth)));
}

void closeFiles(MifOutput& output)
{
    CLOSER(output.mifUnit);
    CLOSER(output.midUnit);
}

} // namespace gridforge::gis::mif
