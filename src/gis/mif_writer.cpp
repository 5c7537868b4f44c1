#include "gis/mif_writer.h"

#include "core/numbers.h"
#include "core/product.h"
#include "core/text.h"
#include "gis/gis_messages.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>

namespace gridforge {

namespace {

constexpr int kFieldWidth = 16;
constexpr int kDecimals = 6;
constexpr int kTextDecimals = 3;
constexpr std::size_t kRoom = 256; // more than any line of fields

// realField in place: millions of coordinates pass here.
void putField(char*& out, double value, int decimals)
{
    std::array<char, std::size_t{2} * kFieldWidth> digits;
    const auto [end, error] =
        std::to_chars(digits.data(), digits.data() + digits.size(), value, std::chars_format::fixed, decimals);
    const auto length = static_cast<std::size_t>(end - digits.data());
    constexpr auto kWidth = static_cast<std::size_t>(kFieldWidth);
    if (error == std::errc() && length <= kWidth && std::isfinite(value)) {
        std::memset(out, ' ', kWidth - length);
        std::memcpy(out + kWidth - length, digits.data(), length);
    } else {
        const std::string field = realField(value, kFieldWidth, decimals);
        std::memcpy(out, field.data(), std::min(field.size(), kWidth));
    }
    out += kWidth;
}

// One line: `head`, then x and y of each vertex from number `first` to `last`.
void writeFields(Unit unit, std::string_view head, const GisOutputCoordinates& c, std::size_t first, std::size_t last,
                 int decimals = kDecimals)
{
    char* const start = writeRoom(unit, kRoom).data();
    char* out = std::copy(head.begin(), head.end(), start);
    for (std::size_t i = first - 1; i < last; ++i) {
        putField(out, c.x[i], decimals);
        putField(out, c.y[i], decimals);
    }
    *out++ = '\r';
    *out++ = '\n';
    wroteBytes(unit, static_cast<std::size_t>(out - start));
}

void writeVertices(Unit unit, const GisOutputCoordinates& c, std::int32_t first, std::int32_t last)
{
    for (std::int32_t i = first; i <= last; ++i) {
        writeFields(unit, "", c, static_cast<std::size_t>(i), static_cast<std::size_t>(i));
    }
}

void writeSections(Unit unit, const GisO& gisO, const GisOutputCoordinates& c)
{
    for (std::int32_t k = 1; k <= gisO.nr; ++k) {
        const std::int32_t first = gisO.ir[static_cast<std::size_t>(k - 1)];
        const std::int32_t last = k < gisO.nr ? gisO.ir[static_cast<std::size_t>(k)] - 1 : c.np;
        writeLine(unit, join(" ", last - first + 1));
        writeVertices(unit, c, first, last);
    }
}

void writeStyles(const MifLayer& mif)
{
    const std::string first = cut(mif.style1, kStyleWidth);
    const std::string second = cut(mif.style2, kStyleWidth);
    if (first.empty()) {
        return;
    }
    writeLine(mif.mifUnit, first);
    if (!second.empty()) {
        writeLine(mif.mifUnit, second);
    }
}

} // namespace

void mifWriteHeader(Unit unit, const GisOutputAttributes& attributes, std::string_view coordSysLine)
{
    writeLine(unit, "Version 300");
    writeLine(unit, "Charset \"WindowsLatin1\"");
    writeLine(unit, "Delimiter \",\"");
    writeLine(unit, cut(coordSysLine, kLineWidth));
    writeLine(unit, join("Columns ", attributes.count()));
    for (const GisOutputAttribute& column : attributes.columns) {
        const std::string length = column.length > 0 ? join("(", column.length, ")") : "";
        writeLine(unit, join("  ", trim(column.name), " ", trim(column.type), length));
    }
    writeLine(unit, "Data");
    writeLine(unit, "");
}

void mifWriteObject(const MifLayer& mif, const GisO& gisO, const GisOutputCoordinates& c, std::string_view dataLine)
{
    const Unit unit = mif.mifUnit;
    if (gisO.point) {
        writeFields(unit, "Point ", c, 1, 1);
    } else if (gisO.multipoint) {
        writeLine(unit, join("MultiPoint ", c.np));
        writeVertices(unit, c, 1, c.np);
    } else if (gisO.line) {
        writeFields(unit, "Line ", c, 1, 2);
    } else if (gisO.pline) {
        writeLine(unit, join("Pline ", c.np));
        writeVertices(unit, c, 1, c.np);
    } else if (gisO.plineMultiple) {
        writeLine(unit, join("Pline Multiple ", gisO.nr));
        writeSections(unit, gisO, c);
    } else if (gisO.region && gisO.nr <= 1) {
        writeLine(unit, "Region 1");
        writeLine(unit, join(" ", c.np));
        writeVertices(unit, c, 1, c.np);
    } else if (gisO.region) {
        writeLine(unit, join("Region ", gisO.nr));
        writeSections(unit, gisO, c);
    } else if (gisO.text) {
        writeLine(unit, "Text");
        writeLine(unit, cut(dataLine, kDataLineWidth));
        writeFields(unit, "    ", c, 2, 3, kTextDecimals);
    } else if (gisO.none) {
        writeLine(unit, "none");
        return;
    } else {
        gisFail(join("ERROR 0350 - Trying to write a MIF object that is not yet supported.  Please contact ",
                     kSupportContact, "."));
    }
    writeStyles(mif);
}

} // namespace gridforge
