#include "gis/shp/dbf_writer.h"

#include "host/console.h"
#include "support/child_run.h"
#include "support/consoles.h"
#include "support/shp_bytes.h"

#include <ctime>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <vector>

namespace gridforge::test {
namespace {

using testing::EndsWith;

using gis::Column;
using gis::shp::dbfdataline;
using gis::shp::DbfTable;
using gis::shp::dbfWriteEoF;
using gis::shp::dbfWriteHeader;
using gis::shp::i1u;
using gis::shp::i2u;

// Writes a table with these columns and lines; the bytes, or what the console says where the run ends.
std::string tableOf(const std::vector<Column>& columns, const std::vector<std::string>& lines)
{
    const ScratchFolder folder;
    const ChildRun run = runInChild(folder, [&] {
        DbfTable dbf;
        OPENER(dbf.dbfUnit, "BO", "t.dbf");
        dbfWriteHeader(columns, dbf);
        for (const std::string& line : lines) {
            dbfdataline(dbf, line);
        }
        dbfWriteEoF(dbf);
    });
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.errors, "");
    return run.ended ? run.console : folder.read("t.dbf");
}

std::string word(int value)
{
    return little(value).substr(0, 2);
}

std::string fieldBytes(std::string name, char type, int length, int decimals)
{
    name.resize(11);
    return name + type + little(0) + static_cast<char>(length) + static_cast<char>(decimals) + std::string(14, '\0');
}

TEST(DbfWriting, HasItsBytes)
{
    const std::time_t before = std::time(nullptr);
    const std::string bytes = tableOf({{"Name", "Char", 5},
                                       {"  Flag.it", "logical"},
                                       {"A_rather_long_name", "Float"},
                                       {"Count", " Integer"},
                                       {"dec", "Decimal(9,2)", 9},
                                       {"..", "Character(3)", 3}},
                                      {"ab,T,1.5,7,2.25,xyz", "\"c d\" F -0.001 12 3 \"\""});
    const std::time_t after = std::time(nullptr);
    const std::string fields = fieldBytes("Name", 'C', 5, 0) + fieldBytes("Flagit", 'C', 1, 0) +
                               fieldBytes("A_rather_l", 'N', 16, 5) + fieldBytes("Count", 'N', 8, 0) +
                               fieldBytes("dec", 'N', 9, 0) + fieldBytes("X", 'C', 3, 0);
    EXPECT_EQ(bytes.substr(4), little(2) + word(32 * 6 + 33) + word(42 + 1) + std::string(20, '\0') + fields + "\r" +
                                   " ab   T             1.5       7     2.25xyz" +
                                   " c d  F          -0.001      12        3   " + "\x1A");
    EXPECT_EQ(bytes[0], 3);
    const auto isDateOf = [&bytes](std::time_t time) {
        const std::tm* date = std::localtime(&time);
        return bytes[1] == static_cast<char>(date->tm_year) && bytes[2] == static_cast<char>(date->tm_mon + 1) &&
               bytes[3] == static_cast<char>(date->tm_mday);
    };
    EXPECT_TRUE(isDateOf(before) || isDateOf(after));
}

// The records of a table, behind its header and without the byte that ends it.
std::string recordsOf(const std::vector<Column>& columns, const std::vector<std::string>& lines)
{
    const std::string bytes = tableOf(columns, lines);
    const std::size_t header = 32 + 32 * columns.size() + 1;
    return bytes.size() <= header ? bytes : bytes.substr(header, bytes.size() - header - 1);
}

const std::vector<Column> kTwo = {{"A", "Char", 3}, {"B", "Decimal", 4}};

TEST(DbfWriting, CutsValuesToTheirFields)
{
    EXPECT_EQ(recordsOf(kTwo, {"abcdef,123456"}), " abc1234");
    EXPECT_EQ(recordsOf(kTwo, {"\"  abc\",\"   12\""}), "   a   1");
}

TEST(DbfWriting, AFieldWithoutAValueKeepsTheOneBefore)
{
    EXPECT_EQ(recordsOf(kTwo, {"abc,1", ",2", "x", "", "y,,"}), " abc   1 abc   2 x     2 x     2 y     2");
    // At first there is nothing to keep.
    EXPECT_EQ(recordsOf(kTwo, {"", ",5"}), std::string(15, ' ') + "5");
}

TEST(DbfWriting, TheValuesKeptAreThoseOfAllTables)
{
    const ScratchFolder folder;
    const ChildRun run = runInChild(folder, [] {
        const std::vector<Column> columns = {{"A", "Char", 3}};
        DbfTable first;
        DbfTable second;
        OPENER(first.dbfUnit, "BO", "a.dbf");
        OPENER(second.dbfUnit, "BO", "b.dbf");
        dbfWriteHeader(columns, first);
        dbfWriteHeader(columns, second);
        dbfdataline(first, "abc");
        dbfdataline(second, "");
        dbfWriteEoF(first);
        dbfWriteEoF(second);
    });
    EXPECT_EQ(folder.read("b.dbf").substr(65), " abc\x1A");
}

TEST(DbfWriting, LongLinesAreCut)
{
    const std::vector<Column> columns = {
        {"A", "Char", 255}, {"B", "Char", 255}, {"C", "Char", 255}, {"D", "Char", 255}, {"E", "Char", 3}};
    std::string line;
    for (int i = 0; i < 4; ++i) {
        line += std::string(255, static_cast<char>('a' + i)) + ",";
    }
    line += "end";
    // Four values of 255 and their commas are 1024 characters.
    EXPECT_EQ(recordsOf(columns, {line}).substr(1 + 3 * 255),
              std::string(1000 - 768, 'd') + std::string(255 - 232 + 3, ' '));
}

TEST(DbfWriting, RefusesALineThatDoesNotEndItsQuotes)
{
    EXPECT_THAT(tableOf(kTwo, {"\"abc,1"}),
                EndsWith(errorEndText("Should not be here [dbfdataline] - please contact SUPPORT_CONTACT.\n\"abc,1")));
}

TEST(DbfWriting, RefusesFieldsThatAreNone)
{
    EXPECT_THAT(tableOf({}, {}),
                EndsWith(errorEndText("ERROR 0319 - No attributes specified when writing .dbf file.")));
    EXPECT_THAT(tableOf(std::vector<Column>(129, {"A", "Integer"}), {}),
                EndsWith(errorEndText("ERROR 0411 - Exceeded maximum number of dbf Fields trying to write dbf file.")));
    EXPECT_EQ(tableOf(std::vector<Column>(128, {"A", "Integer"}), {}).size(), 32U + 128 * 32 + 1 + 1);
    EXPECT_THAT(
        tableOf({{"A", "Integer"}, {"B", "Date"}}, {}),
        EndsWith(errorEndText("Should not be here [Unrecognised DBF field] - please contact SUPPORT_CONTACT.")));
    EXPECT_THAT(tableOf({{"A", "Char", 65535}}, {}),
                EndsWith(errorEndText("Should not be here [dbfTotLen>32767] - please contact SUPPORT_CONTACT.")));
    EXPECT_THAT(tableOf(std::vector<Column>(100, {"A", "Char", 2147483647}), {}),
                EndsWith(errorEndText("Should not be here [dbfTotLen>32767] - please contact SUPPORT_CONTACT.")));
    for (const int length : {0, 256, 65534}) {
        EXPECT_THAT(tableOf({{"A", "Char", length}}, {}),
                    EndsWith(errorEndText("ERROR 0412 - dbf field length of " + std::to_string(length) +
                                          " is outside allowable range of 1 to 255 when writing dbf file.")));
    }
    EXPECT_THAT(tableOf({{"A", "Char", -5}}, {}),
                EndsWith(errorEndText("Should not be here [i2u: i4 outside range] - please contact SUPPORT_CONTACT.")));
}

TEST(DbfWriting, RefusesMoreRecordsThanTheHeaderCanCount)
{
    const ScratchFolder folder;
    const ChildRun run = runInChild(folder, [] {
        const std::vector<Column> columns = {{"A", "Char", 3}};
        DbfTable dbf;
        OPENER(dbf.dbfUnit, "BO", "t.dbf");
        dbfWriteHeader(columns, dbf);
        dbf.currentRecord = 2147483646;
        dbfdataline(dbf, "abc");
        say("count ", dbf.currentRecord);
        dbfdataline(dbf, "abc");
    });
    EXPECT_THAT(run.console, EndsWith("count 2147483647\n" +
                                      errorEndText("ERROR 0419 - Exceeded dbf limit of 2,147,483,647 records.  "
                                                   "Please contact SUPPORT_CONTACT.")));
}

TEST(UnsignedWords, KeepTheirBits)
{
    EXPECT_EQ(i1u(0), 0);
    EXPECT_EQ(i1u(127), 127);
    EXPECT_EQ(i1u(128), -128);
    EXPECT_EQ(i1u(255), -1);
    EXPECT_EQ(i2u(32767), 32767);
    EXPECT_EQ(i2u(32768), -32768);
    EXPECT_EQ(i2u(65535), -1);
}

TEST(UnsignedWords, RefuseWhatTheyCannotHold)
{
    const ScratchFolder folder;
    const auto wordsOf = [&](const std::function<void()>& code) { return runInChild(folder, code).console; };
    const auto message = [](const std::string& place) {
        return errorEndText("Should not be here [" + place + " outside range] - please contact SUPPORT_CONTACT.");
    };
    EXPECT_EQ(wordsOf([] { i1u(-1); }), message("i1u: i4"));
    EXPECT_EQ(wordsOf([] { i1u(256); }), message("i1u: i4"));
    EXPECT_EQ(wordsOf([] { i2u(-1); }), message("i2u: i4"));
    EXPECT_EQ(wordsOf([] { i2u(65536); }), message("i2u: i4"));
}

} // namespace
} // namespace gridforge::test
