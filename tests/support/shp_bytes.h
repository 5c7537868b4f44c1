// The bytes of Shapefiles and .dbf tables, put together by hand.
#pragma once

#include "support/scratch_folder.h"

#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace gridforge::test {

inline std::string little(std::int32_t value)
{
    const auto bits = static_cast<std::uint32_t>(value);
    std::string bytes;
    for (unsigned shift = 0; shift < 32; shift += 8) {
        bytes += static_cast<char>((bits >> shift) & 0xFFU);
    }
    return bytes;
}

inline std::string big(std::int32_t value)
{
    const std::string bytes = little(value);
    return {bytes.rbegin(), bytes.rend()};
}

// Doubles, little-endian.
inline std::string reals(const std::vector<double>& values)
{
    std::string bytes;
    for (const double value : values) {
        std::uint64_t bits = 0;
        std::memcpy(&bits, &value, sizeof bits);
        bytes += little(static_cast<std::int32_t>(static_cast<std::uint32_t>(bits)));
        bytes += little(static_cast<std::int32_t>(static_cast<std::uint32_t>(bits >> 32U)));
    }
    return bytes;
}

// A .shp of the type with these records, each from its shape type on; the box is of no use to a reader.
inline std::string shpBytes(std::int32_t type, const std::vector<std::string>& records)
{
    std::string body;
    std::int32_t number = 0;
    for (const std::string& record : records) {
        body += big(++number) + big(static_cast<std::int32_t>(record.size() / 2)) + record;
    }
    return big(9994) + std::string(20, '\0') + big(static_cast<std::int32_t>((100 + body.size()) / 2)) + little(1000) +
           little(type) + std::string(64, '\0') + body;
}

inline std::string pointRecord(double x, double y)
{
    return little(1) + reals({x, y});
}

// A polyline (3) or polygon (5) of these part starts and coordinates.
inline std::string partsRecord(std::int32_t type, const std::vector<std::int32_t>& starts,
                               const std::vector<double>& coordinates)
{
    std::string record = little(type) + reals({0, 0, 0, 0}) + little(static_cast<std::int32_t>(starts.size())) +
                         little(static_cast<std::int32_t>(coordinates.size() / 2));
    for (const std::int32_t start : starts) {
        record += little(start);
    }
    return record + reals(coordinates);
}

struct DbfColumn {
    std::string name;
    char type;
    int length;
};

inline std::string dbfHeader(std::int32_t records, const std::vector<DbfColumn>& columns)
{
    std::string bytes = "\x03\x78\x01\x01" + little(records) + std::string(24, '\0');
    for (const DbfColumn& column : columns) {
        std::string field = column.name;
        field.resize(11);
        field += column.type;
        field += little(0);
        field += static_cast<char>(column.length);
        field.resize(32);
        bytes += field;
    }
    return bytes + '\r';
}

// A .dbf of these columns and records, each as wide as the columns together.
inline std::string dbfBytes(const std::vector<DbfColumn>& columns, const std::vector<std::string>& records)
{
    std::string bytes = dbfHeader(static_cast<std::int32_t>(records.size()), columns);
    for (const std::string& record : records) {
        bytes += ' ' + record; // not deleted
    }
    return bytes + '\x1A';
}

// The columns of a written .dbf as "NAME C 7" and, after them, its records as they stand, the deletion byte first.
inline std::vector<std::string> tableOf(const std::string& bytes)
{
    std::vector<std::string> table;
    std::size_t at = 32;
    std::size_t width = 1;
    for (; at < bytes.size() && bytes[at] != '\r'; at += 32) {
        const auto length = static_cast<unsigned char>(bytes[at + 16]);
        const std::string name = bytes.substr(at, 11);
        table.push_back(name.substr(0, name.find('\0')) + " " + bytes[at + 11] + " " + std::to_string(length));
        width += length;
    }
    for (++at; at + width < bytes.size(); at += width) {
        table.push_back(bytes.substr(at, width));
    }
    return table;
}

// The records of a Shapefile and of its table.
struct ShapefileRecords {
    std::vector<std::string> objects;
    std::vector<DbfColumn> columns;
    std::vector<std::string> values;
    std::string projection = "PROJCS[\"Test\"]\n";
};

// <base>.shp of the type, <base>.dbf and <base>.prj, into a folder or a run.
template <typename Folder>
void giveShapefile(Folder& folder, const std::string& base, std::int32_t type, const ShapefileRecords& records)
{
    folder.give(base + ".shp", shpBytes(type, records.objects));
    folder.give(base + ".dbf", dbfBytes(records.columns, records.values));
    folder.give(base + ".prj", records.projection);
}

// <name>.shp of these records and <name>.dbf with the column NAME of three characters: "r1 ", "r2 " and so on.
inline void giveShp(const ScratchFolder& folder, const std::string& name, std::int32_t type,
                    const std::vector<std::string>& records)
{
    folder.give(name + ".shp", shpBytes(type, records));
    std::vector<std::string> names;
    for (std::size_t i = 1; i <= records.size(); ++i) {
        names.push_back(("r" + std::to_string(i) + "  ").substr(0, 3));
    }
    folder.give(name + ".dbf", dbfBytes({{"NAME", 'C', 3}}, names));
}

} // namespace gridforge::test
