#include "gis/shp/dbf_writer.h"

#include "core/free_form.h"
#include "core/product.h"
#include "core/text.h"
#include "gis/gis_messages.h"
#include "gis/shp/byte_order.h"
#include "gis/shp/codes.h"
#include "gis/shp/write_steps.h"
#include "host/system.h"

#include <algorithm>
#include <array>

namespace gridforge::gis::shp {

namespace {

constexpr std::int32_t kFieldBytes = 32;
constexpr std::size_t kNameBytes = 10; // and a zero byte
constexpr std::size_t kRecordCountAt = 4;
constexpr std::int64_t kMostRecordBytes = 65534;
constexpr std::int32_t kMostFieldLength = 255;
constexpr std::size_t kValueWidth = 256;

void failDbfHeader(Unit)
{
    gisFail("ERROR 0413 - Writing .dbf file header.");
}

void failRecord(Unit)
{
    gisFail("ERROR 0417 - Writing .dbf record.");
}

// --- Fields ----------------------------------------------------------------------------------------------------------

struct DbfField {
    std::string_view prefix; // of the attribute's type
    char type;
    std::int32_t length; // 0: the attribute's own
    std::int32_t decimals;
};
constexpr std::array<DbfField, 5> kFields = {{
    {"CHAR", 'C', 0, 0},
    {"LOGICAL", 'C', 1, 0},
    {"FLOAT", 'N', 16, 5},
    {"INTEGER", 'N', 8, 0},
    {"DECIMAL", 'N', 0, 0},
}};

const DbfField& fieldFor(std::string_view attributeType)
{
    const std::string type = TRIMF(UPPERCASE(attributeType));
    const auto* const found = std::find_if(kFields.begin(), kFields.end(),
                                           [&](const DbfField& field) { return type.starts_with(field.prefix); });
    if (found == kFields.end()) {
        gisMisuse("[Unrecognised DBF field]");
    }
    return *found;
}

void mapFields(std::span<const Column> columns, DbfTable& dbf)
{
    dbf.nFields = static_cast<std::int32_t>(columns.size());
    if (dbf.nFields > kMaxDbfFields) {
        gisFail("ERROR 0411 - Exceeded maximum number of dbf Fields trying to write dbf file.");
    }
    if (dbf.nFields <= 0) {
        gisFail("ERROR 0319 - No attributes specified when writing .dbf file.");
    }
    std::int64_t total = 0;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const Column& column = columns[i];
        const DbfField& field = fieldFor(cut(column.type, kColumnTypeWidth));
        dbf.fieldName[i] = cut(CLEANATTRIBUTENAME(TRIMF(cut(column.name, kColumnNameWidth))), kNameBytes);
        dbf.fieldType[i] = field.type;
        dbf.fieldLength[i] = field.length > 0 ? field.length : column.length;
        dbf.fieldDecimals[i] = field.decimals;
        total += dbf.fieldLength[i];
    }
    // The message names another limit than the real one, on purpose: users know it so.
    if (total > kMostRecordBytes) {
        gisMisuse("[dbfTotLen>32767]");
    }
    dbf.recordLength = static_cast<std::int32_t>(std::max(total, std::int64_t{INT32_MIN}));
}

// --- Header ----------------------------------------------------------------------------------------------------------

void writeHead(const DbfTable& dbf)
{
    std::array<char, kDbfHeaderBytes> head = {};
    constexpr int kFirstYear = 1900;
    const CalendarDate date = theSystem().today();
    char* at = putBytes(head.data(), std::int8_t{3});
    at = putBytes(at, i1u(date.year - kFirstYear));
    at = putBytes(at, i1u(date.month));
    at = putBytes(at, i1u(date.day));
    at = putBytes(at, dbf.nRecords);
    at = putBytes(at, i2u(kFieldBytes * dbf.nFields + kDbfHeaderBytes + 1));
    putBytes(at, i2u(dbf.recordLength + 1));
    writeText(dbf.dbfUnit, {head.data(), head.size()});
}

void writeField(const DbfTable& dbf, std::size_t i)
{
    const std::int32_t length = dbf.fieldLength[i];
    if (length < 1 || length > kMostFieldLength) {
        gisFail(join("ERROR 0412 - dbf field length of ", length,
                     " is outside allowable range of 1 to 255 when writing dbf file."));
    }
    std::array<char, kFieldBytes> field = {};
    std::copy(dbf.fieldName[i].begin(), dbf.fieldName[i].end(), field.begin());
    char* at = putBytes(field.data() + kNameBytes + 1, dbf.fieldType[i]);
    at = putBytes(at, std::int32_t{0});
    at = putBytes(at, i1u(length));
    putBytes(at, i1u(dbf.fieldDecimals[i]));
    writeText(dbf.dbfUnit, {field.data(), field.size()});
}

// --- Records ---------------------------------------------------------------------------------------------------------

// One store for all layers of a run: a field without a value gets the text that the field of its number got last, on
// purpose: outputs rely on it.
std::array<std::string, kMaxDbfFields>& fieldValues()
{
    static std::array<std::string, kMaxDbfFields> values;
    return values;
}

void splitLine(const DbfTable& dbf, std::string_view line)
{
    FreeForm values(line);
    for (std::size_t i = 0; i < static_cast<std::size_t>(dbf.nFields); ++i) {
        switch (values.nextText(fieldValues()[i], kValueWidth)) {
        case FreeValue::value:
        case FreeValue::empty: break;
        case FreeValue::end: return;
        case FreeValue::failure:
            gisFail(join("Should not be here [dbfdataline] - please contact ", kSupportContact, "."), line);
        }
    }
}

// Appends the field's value: text left-justified, numbers right-justified.
void putValue(std::string_view value, std::size_t length, bool isText, char* field)
{
    value = trimRight(value.substr(0, length));
    std::fill_n(field, length, ' ');
    std::copy(value.begin(), value.end(), isText ? field : field + (length - value.size()));
}

} // namespace

void dbfWriteHeader(std::span<const Column> columns, DbfTable& dbf)
{
    onWriteFailure(dbf.dbfUnit, failDbfHeader);
    seekTo(dbf.dbfUnit, 0);
    dbf.nRecords = 0;
    dbf.currentRecord = 0;
    mapFields(columns, dbf);
    writeHead(dbf);
    for (std::size_t i = 0; i < static_cast<std::size_t>(dbf.nFields); ++i) {
        writeField(dbf, i);
    }
    writeText(dbf.dbfUnit, {&kEndOfFields, 1});
    settle(dbf.dbfUnit);
}

void dbfdataline(DbfTable& dbf, std::string_view line)
{
    onWriteFailure(dbf.dbfUnit, failRecord);
    if (dbf.currentRecord == INT32_MAX) {
        gisFail(
            join("ERROR 0419 - Exceeded dbf limit of 2,147,483,647 records.  Please contact ", kSupportContact, "."));
    }
    ++dbf.currentRecord;
    splitLine(dbf, line.substr(0, kRecordWidth));
    const std::size_t bytes = 1 + static_cast<std::size_t>(dbf.recordLength);
    char* at = writeRoom(dbf.dbfUnit, bytes).data();
    *at++ = ' ';
    for (std::size_t i = 0; i < static_cast<std::size_t>(dbf.nFields); ++i) {
        const auto length = static_cast<std::size_t>(dbf.fieldLength[i]);
        putValue(fieldValues()[i], length, dbf.fieldType[i] == 'C', at);
        at += length;
    }
    wroteBytes(dbf.dbfUnit, bytes);
}

void dbfWriteEoF(DbfTable& dbf)
{
    settle(dbf.dbfUnit);
    onWriteFailure(dbf.dbfUnit, failRewrite);
    writeText(dbf.dbfUnit, {&kEndOfTable, 1});
    seekTo(dbf.dbfUnit, kRecordCountAt);
    std::array<char, sizeof(std::int32_t)> count;
    putBytes(count.data(), dbf.currentRecord);
    writeText(dbf.dbfUnit, {count.data(), count.size()});
    CLOSER(dbf.dbfUnit);
}

// --- Unsigned values -------------------------------------------------------------------------------------------------

std::int8_t i1u(std::int32_t value)
{
    if (value < 0 || value > UINT8_MAX) {
        gisMisuse("[i1u: i4 outside range]");
    }
    return static_cast<std::int8_t>(value);
}

std::int16_t i2u(std::int32_t value)
{
    if (value < 0 || value > UINT16_MAX) {
        gisMisuse("[i2u: i4 outside range]");
    }
    return static_cast<std::int16_t>(value);
}

} // namespace gridforge::gis::shp
