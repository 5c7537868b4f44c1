#include "gis/shp/dbf_reader.h"

#include "core/text.h"
#include "gis/gis_messages.h"
#include "gis/shp/byte_order.h"
#include "gis/shp/codes.h"
#include "host/console.h"

#include <algorithm>
#include <array>
#include <span>

namespace gridforge::gis::shp {

namespace {

constexpr std::size_t kRestOfName = 10;
constexpr std::size_t kRestOfField = 15; // includes the decimals, which a reader of text does not need

void need(const DbfTable& dbf, std::span<std::byte> bytes, std::string_view refused, std::string_view ended)
{
    if (!readBytes(dbf.dbfUnit, bytes)) {
        gisFail(readFailed(dbf.dbfUnit) ? refused : ended);
    }
}

void needHeader(const DbfTable& dbf, std::span<std::byte> bytes)
{
    need(dbf, bytes, "ERROR 0403 - Reading .dbf file header.",
         "ERROR 0404 - End of .dbf file encountered whilst reading header.");
}

[[noreturn]] void failRecord(const DbfTable& dbf)
{
    gisFail(readFailed(dbf.dbfUnit) ? "ERROR 0407 - Reading .dbf record."
                                    : "ERROR 0408 - End of .dbf file encountered whilst reading record.");
}

// --- Header ----------------------------------------------------------------------------------------------------------

void readField(DbfTable& dbf, std::byte first)
{
    std::array<std::byte, 1 + kRestOfName> name = {first};
    needHeader(dbf, std::span(name).subspan(1));
    if (dbf.nFields >= kMaxDbfFields) {
        gisFail("ERROR 0401 - Exceeded maximum number of dbf Fields.");
    }
    const auto field = static_cast<std::size_t>(dbf.nFields);
    ++dbf.nFields;
    const std::string_view text(reinterpret_cast<const char*>(name.data()), name.size());
    dbf.fieldName[field] = cut(CLEANATTRIBUTENAME(text.substr(0, text.find('\0'))), kDbfNameWidth);

    std::array<std::byte, 6> typeAndLength; // and an unused address between them
    needHeader(dbf, typeAndLength);
    dbf.fieldType[field] = static_cast<char>(typeAndLength[0]);
    const auto length = std::to_integer<std::int32_t>(typeAndLength[5]);
    if (length < 1) {
        gisFail(join("ERROR 0402 - dbf field length of ", length, " is outside allowable range of 1 to 255."));
    }
    dbf.fieldLength[field] = length;
    dbf.recordLength += length;

    std::array<std::byte, kRestOfField> rest;
    needHeader(dbf, rest);
}

void sayFields(const DbfTable& dbf)
{
    std::string line = join(dbf.nFields, " DBF Fields (Name [#/Type/Length]): ");
    for (std::size_t i = 0; i < static_cast<std::size_t>(dbf.nFields); ++i) {
        line += join(dbf.fieldName[i], " [", i + 1, "/", dbf.fieldType[i], "/", dbf.fieldLength[i], "]  ");
    }
    say(line);
}

// --- Records ---------------------------------------------------------------------------------------------------------

// The next `count` bytes, valid until the next read. A record is far shorter than the unit's buffer.
std::string_view needRecordBytes(const DbfTable& dbf, std::size_t count)
{
    std::string_view bytes = readyBytes(dbf.dbfUnit);
    while (bytes.size() < count) {
        const std::size_t before = bytes.size();
        bytes = moreBytes(dbf.dbfUnit);
        if (bytes.size() == before) {
            failRecord(dbf);
        }
    }
    takeBytes(dbf.dbfUnit, count);
    return bytes.substr(0, count);
}

void append(std::string& line, std::string_view part, std::size_t width)
{
    line += part.substr(0, width - line.size());
    if (line.size() == width) {
        line.resize(trimRight(line).size());
    }
}

// The record with its zero bytes replaced by blanks, because some programs pad values with them. `copy` holds the result if
// there are any.
std::string_view withoutZeros(std::string_view record, std::string& copy)
{
    if (record.find('\0') == std::string_view::npos) {
        return record;
    }
    copy = record;
    std::ranges::replace(copy, '\0', ' ');
    return copy;
}

void readValues(DbfTable& dbf, std::string& line, std::size_t width)
{
    ++dbf.currentRecord;
    std::string copy;
    std::string_view record = withoutZeros(needRecordBytes(dbf, static_cast<std::size_t>(dbf.recordLength)), copy);
    for (std::size_t i = 0; i < static_cast<std::size_t>(dbf.nFields); ++i) {
        const auto length = static_cast<std::size_t>(dbf.fieldLength[i]);
        const std::string_view value = record.substr(0, length);
        record.remove_prefix(length);
        if (dbf.fieldType[i] == 'C' || dbf.fieldType[i] == 'c') {
            append(line, "\"", width);
            append(line, DOUBLEQUOTE(trimRight(value)), width);
            append(line, "\"", width);
        } else {
            // Asterisks stand for a number that did not fit its field.
            append(line, value.front() == '*' ? "0" : trimRight(value), width);
        }
        if (i + 1 < static_cast<std::size_t>(dbf.nFields)) {
            append(line, ",", width);
        }
    }
}

void endTable(const DbfTable& dbf)
{
    if (dbf.currentRecord != dbf.nRecords) {
        gisWarn("WARNING 0405 - Insufficient number of records found in .dbf file.",
                join("               Found ", dbf.currentRecord, ", expecting ", dbf.nRecords, "."));
    }
}

} // namespace

void dbfReadHeader(DbfTable& dbf)
{
    seekTo(dbf.dbfUnit, 0);
    std::array<std::byte, kDbfHeaderBytes> head;
    needHeader(dbf, head);
    dbf.nRecords = fromBytes<std::int32_t>(&head[4]);
    say("DBF file contains ", dbf.nRecords, " records.");
    dbf.nFields = 0;
    dbf.recordLength = 0;
    for (;;) {
        std::array<std::byte, 1> first;
        needHeader(dbf, first);
        if (std::to_integer<unsigned char>(first[0]) == kEndOfFields) {
            break;
        }
        readField(dbf, first[0]);
    }
    if (dbf.nFields == 0) {
        gisFail("ERROR 0319 - No attributes specified in .dbf file.");
    }
    sayFields(dbf);
}

void dbfReadRecord(DbfTable& dbf, bool& endOfData, std::string& line, std::size_t width)
{
    line.clear();
    endOfData = false;
    for (;;) {
        const char mark = needRecordBytes(dbf, 1).front();
        const auto code = static_cast<unsigned char>(mark);
        if (mark == '*') { // a deleted record
            needRecordBytes(dbf, static_cast<std::size_t>(dbf.recordLength));
        } else if (mark == '\0' || mark == ' ') {
            readValues(dbf, line, width);
            return;
        } else if (code == kEndOfTable) {
            endTable(dbf);
            endOfData = true;
            return;
        } else {
            gisFail("ERROR 0406 - Unrecognised record identifier found in .dbf file.",
                    join("Character = ", mark, " [", std::int32_t{code}, "]"), join("Data line thus far = ", line));
        }
    }
}

} // namespace gridforge::gis::shp
