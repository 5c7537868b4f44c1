#include "gis/layer_table.h"
#include "gis/shp/dbf_reader.h"
#include "gis/shp/dbf_writer.h"
#include "host/console.h"
#include "support/child_run.h"
#include "support/shp_bytes.h"

#include <algorithm>
#include <ctime>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <vector>

namespace gridforge::test {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

using gis::Column;
using gis::shp::dbfdataline;
using gis::shp::dbfReadHeader;
using gis::shp::dbfReadRecord;
using gis::shp::DbfTable;
using gis::shp::dbfWriteEoF;
using gis::shp::dbfWriteHeader;
using gis::shp::i1u;
using gis::shp::i2u;

std::string ending(const std::string& message)
{
    return "\n" + message + "\n\nPress Enter to Close\n";
}

// --- Reading ---------------------------------------------------------------------------------------------------------

// What a run says behind the header's lines that reads all of a table and shows its lines in brackets.
ChildRun readTable(const std::string& bytes, std::size_t width = gis::kRecordWidth)
{
    const ScratchFolder folder;
    folder.give("t.dbf", bytes);
    return runInChild(folder, [&] {
        gis::initialise();
        DbfTable dbf;
        OPENER(dbf.dbfUnit, "BI", "t.dbf");
        dbfReadHeader(dbf);
        say("--");
        std::string line;
        for (bool end = false; !end;) {
            dbfReadRecord(dbf, end, line, width);
            say("[", line, "]", end ? " end" : "");
            end = end || atEnd(dbf.dbfUnit);
        }
    });
}

std::string linesOf(const std::string& bytes, std::size_t width = gis::kRecordWidth)
{
    const ChildRun run = readTable(bytes, width);
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.errors, "");
    return run.console.substr(run.console.find("--\n") + 3);
}

const std::vector<DbfColumn> kColumns = {{"NAME", 'C', 4}, {"N", 'N', 5}, {"L", 'L', 1}};
const std::string kEnd = "\x1A";

TEST(DbfReading, TellsTheFields)
{
    EXPECT_THAT(readTable(dbfHeader(7, {{"my.Name_1", 'C', 255}, {"", 'N', 1}, {"ABCDEFGHIJK", 'c', 10}})).console,
                HasSubstr("DBF file contains 7 records.\n"
                          "3 DBF Fields (Name [#/Type/Length]): myName_1 [1/C/255]  X [2/N/1]  ABCDEFGHIJK [3/c/10]  "
                          "\n--\n"));
}

TEST(DbfReading, GivesRecordsAsCommaSeparatedLines)
{
    EXPECT_EQ(linesOf(dbfHeader(2, kColumns) + " ab    1.5T" + "  a,b12345F" + kEnd),
              "[\"ab\",  1.5,T]\n[\" a,b\",12345,F]\n[] end\n");
    // Without the byte that ends the table the last record ends the layer.
    EXPECT_EQ(linesOf(dbfHeader(1, kColumns) + " ab    1.5T"), "[\"ab\",  1.5,T]\n");
}

TEST(DbfReading, TakesAZeroByteForABlankMark)
{
    EXPECT_EQ(linesOf(dbfHeader(1, {{"N", 'N', 2}}) + std::string("\0", 1) + "12" + kEnd), "[12]\n[] end\n");
}

// The text with a zero byte for each "@".
std::string zeros(std::string text)
{
    std::ranges::replace(text, '@', '\0');
    return text;
}

TEST(DbfReading, FieldNamesEndAtTheirFirstZeroByte)
{
    EXPECT_THAT(
        readTable(dbfHeader(0, {{zeros("AB@CDEFGHIJ"), 'C', 2}, {zeros("@LEFT"), 'N', 3}, {zeros("_N@@"), 'N', 4}}))
            .console,
        HasSubstr("3 DBF Fields (Name [#/Type/Length]): AB [1/C/2]  X [2/N/3]  _N [3/N/4]  \n"));
}

TEST(DbfReading, ZeroBytesInValuesCountAsBlanks)
{
    const std::vector<DbfColumn> columns = {{"C", 'C', 4}, {"N", 'N', 4}, {"L", 'L', 1}, {"F", 'F', 3}};
    EXPECT_EQ(linesOf(dbfHeader(5, columns) +
                      zeros(" ab@@ 1.5T2@@" // padded with zeros
                            " a@b@@1@@@@7@" // inside and in front
                            " @@@@@@@@@@@@"
                            "@@a b@@ 4F*@@" // the mark too; a number that did not fit
                            "*@@@@@@@@@@@@" // deleted
                            " @@@@ @*1@@*@") +
                      kEnd),
              "[\"ab\", 1.5,T,2]\n[\"a b\", 1,, 7]\n[\"\",,,]\n[\" a b\",   4,F,0]\n[\"\",  *1,, *]\n[] end\n");
}

TEST(DbfReading, TakesAsterisksForZero)
{
    EXPECT_EQ(linesOf(dbfHeader(1, {{"N", 'N', 3}, {"F", 'F', 3}, {"C", 'c', 3}}) + " ***" + "* 1" + "***" + kEnd),
              "[0,0,\"***\"]\n[] end\n");
}

TEST(DbfReading, BlankValuesAreEmpty)
{
    EXPECT_EQ(linesOf(dbfHeader(1, {{"C", 'C', 3}, {"N", 'N', 3}, {"M", 'N', 2}}) + "         " + kEnd),
              "[\"\",,]\n[] end\n");
}

TEST(DbfReading, DoublesQuotesInsideTexts)
{
    const std::vector<DbfColumn> columns = {{"C", 'C', 4}, {"N", 'N', 3}, {"D", 'c', 2}};
    EXPECT_EQ(linesOf(dbfHeader(3, columns) + R"( a"b  1")" + R"(" )" + R"( "",  2 it)" + R"( 5' " 3 ' )" + kEnd),
              R"(["a""b", 1","""")"
              "]\n"
              R"([""""",", 2,"it")"
              "]\n"
              R"(["5' """, 3,"'")"
              "]\n[] end\n");
    // Cut between the two of a pair as well.
    EXPECT_EQ(linesOf(dbfHeader(1, columns) + R"( a"b  1.  )" + kEnd, 3), "[\"a\"]\n[] end\n");
}

TEST(DbfReading, PassesOverDeletedRecords)
{
    const std::string header = dbfHeader(2, {{"N", 'N', 1}});
    EXPECT_EQ(linesOf(header + "*1" + "*2" + " 3" + "*4" + " 5" + "*6" + kEnd), "[3]\n[5]\n[] end\n");
}

TEST(DbfReading, LongLinesAreCut)
{
    const std::vector<DbfColumn> columns = {{"A", 'C', 4}, {"B", 'C', 4}};
    EXPECT_EQ(linesOf(dbfHeader(1, columns) + " abcdefgh" + kEnd, 13), "[\"abcd\",\"efgh\"]\n[] end\n");
    EXPECT_EQ(linesOf(dbfHeader(1, columns) + " abcdefgh" + kEnd, 9), "[\"abcd\",\"e]\n[] end\n");
    EXPECT_EQ(linesOf(dbfHeader(1, columns) + " abcdefgh" + kEnd, 3), "[\"ab]\n[] end\n");

    // 128 fields of 255 characters.
    std::vector<DbfColumn> many;
    for (int i = 0; i < 128; ++i) {
        many.push_back({"F" + std::to_string(i), 'C', 255});
    }
    const std::string line = linesOf(dbfHeader(1, many) + " " + std::string(128 * 255, 'x') + kEnd);
    EXPECT_EQ(line.find(']'), 1001U);
    EXPECT_EQ(line.substr(0, 261), "[\"" + std::string(255, 'x') + "\",\"x");
}

TEST(DbfReading, WarnsOfTooFewRecords)
{
    EXPECT_EQ(linesOf(dbfHeader(5, {{"N", 'N', 1}}) + " 3" + kEnd),
              "[3]\n\nWARNING 0405 - Insufficient number of records found in .dbf file.\n"
              "               Found 1, expecting 5.\n[] end\n");
}

TEST(DbfReading, RefusesMarksThatAreNone)
{
    EXPECT_EQ(linesOf(dbfHeader(5, {{"N", 'N', 1}}) + " 3X4"),
              "[3]\n" + ending("ERROR 0406 - Unrecognised record identifier found in .dbf file.\n"
                               "Character = X [88]\n"
                               "Data line thus far ="));
    EXPECT_THAT(linesOf(dbfHeader(5, {{"N", 'N', 1}}) + "\xE4" + "4"), HasSubstr("Character = \xE4 [228]\n"));
}

TEST(DbfReading, RefusesHeadersThatAreNone)
{
    EXPECT_THAT(readTable(dbfHeader(5, {})).console,
                EndsWith(ending("ERROR 0319 - No attributes specified in .dbf file.")));
    EXPECT_THAT(readTable(dbfHeader(5, {{"N", 'N', 1}, {"M", 'N', 0}})).console,
                EndsWith(ending("ERROR 0402 - dbf field length of 0 is outside allowable range of 1 to 255.")));
    EXPECT_THAT(readTable(dbfHeader(5, std::vector<DbfColumn>(128, {"N", 'N', 1})) + " ").console, HasSubstr("--\n"));
    EXPECT_THAT(readTable(dbfHeader(5, std::vector<DbfColumn>(129, {"N", 'N', 1}))).console,
                EndsWith(ending("ERROR 0401 - Exceeded maximum number of dbf Fields.")));
    // The name of field 129 is enough for that, as the fields are refused one by one.
    EXPECT_THAT(
        readTable(dbfHeader(5, std::vector<DbfColumn>(129, {"N", 'N', 1})).substr(0, 32 + 128 * 32 + 11)).console,
        EndsWith(ending("ERROR 0401 - Exceeded maximum number of dbf Fields.")));
}

TEST(DbfReading, EndsTheRunWhereverTheFileIsCut)
{
    const std::string header = dbfHeader(2, kColumns);
    for (std::size_t size = 0; size < header.size(); size += 3) {
        EXPECT_THAT(readTable(header.substr(0, size)).console,
                    EndsWith(ending("ERROR 0404 - End of .dbf file encountered whilst reading header.")))
            << size;
    }
    const std::string ended = ending("ERROR 0408 - End of .dbf file encountered whilst reading record.");
    const std::string records = " ab    1.5T*ab    1.5T";
    for (std::size_t size = 0; size < records.size(); ++size) {
        const std::string want = size < 11 ? ended : size == 11 ? "" : ended;
        EXPECT_EQ(linesOf(header + records.substr(0, size)), (size < 11 ? "" : "[\"ab\",  1.5,T]\n") + want) << size;
    }
    // A deleted record at the very end leaves none to give.
    EXPECT_EQ(linesOf(header + records), "[\"ab\",  1.5,T]\n" + ended);
}

// The memory of a process opens like a file and refuses to be read at its start.
TEST(DbfReading, EndsTheRunOnAReadThatTheSystemRefuses)
{
    const ScratchFolder folder;
    const auto consoleOf = [&](const std::function<void(DbfTable&)>& code) {
        return runInChild(folder,
                          [&] {
                              DbfTable dbf;
                              OPENER(dbf.dbfUnit, "BI", "/proc/self/mem");
                              code(dbf);
                          })
            .console;
    };
    EXPECT_THAT(consoleOf([](DbfTable& dbf) { dbfReadHeader(dbf); }),
                EndsWith(ending("ERROR 0403 - Reading .dbf file header.")));
    EXPECT_THAT(consoleOf([](DbfTable& dbf) {
                    bool end = false;
                    std::string line;
                    dbfReadRecord(dbf, end, line, 100);
                }),
                EndsWith(ending("ERROR 0407 - Reading .dbf record.")));
}

// --- Writing ---------------------------------------------------------------------------------------------------------

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
                EndsWith(ending("Should not be here [dbfdataline] - please contact SUPPORT_CONTACT.\n\"abc,1")));
}

TEST(DbfWriting, RefusesFieldsThatAreNone)
{
    EXPECT_THAT(tableOf({}, {}), EndsWith(ending("ERROR 0319 - No attributes specified when writing .dbf file.")));
    EXPECT_THAT(tableOf(std::vector<Column>(129, {"A", "Integer"}), {}),
                EndsWith(ending("ERROR 0411 - Exceeded maximum number of dbf Fields trying to write dbf file.")));
    EXPECT_EQ(tableOf(std::vector<Column>(128, {"A", "Integer"}), {}).size(), 32U + 128 * 32 + 1 + 1);
    EXPECT_THAT(tableOf({{"A", "Integer"}, {"B", "Date"}}, {}),
                EndsWith(ending("Should not be here [Unrecognised DBF field] - please contact SUPPORT_CONTACT.")));
    EXPECT_THAT(tableOf({{"A", "Char", 65535}}, {}),
                EndsWith(ending("Should not be here [dbfTotLen>32767] - please contact SUPPORT_CONTACT.")));
    EXPECT_THAT(tableOf(std::vector<Column>(100, {"A", "Char", 2147483647}), {}),
                EndsWith(ending("Should not be here [dbfTotLen>32767] - please contact SUPPORT_CONTACT.")));
    for (const int length : {0, 256, 65534}) {
        EXPECT_THAT(tableOf({{"A", "Char", length}}, {}),
                    EndsWith(ending("ERROR 0412 - dbf field length of " + std::to_string(length) +
                                    " is outside allowable range of 1 to 255 when writing dbf file.")));
    }
    EXPECT_THAT(tableOf({{"A", "Char", -5}}, {}),
                EndsWith(ending("Should not be here [i2u: i4 outside range] - please contact SUPPORT_CONTACT.")));
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
    EXPECT_THAT(run.console,
                EndsWith("count 2147483647\n" + ending("ERROR 0419 - Exceeded dbf limit of 2,147,483,647 records.  "
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
        return ending("Should not be here [" + place + " outside range] - please contact SUPPORT_CONTACT.");
    };
    EXPECT_EQ(wordsOf([] { i1u(-1); }), message("i1u: i4"));
    EXPECT_EQ(wordsOf([] { i1u(256); }), message("i1u: i4"));
    EXPECT_EQ(wordsOf([] { i2u(-1); }), message("i2u: i4"));
    EXPECT_EQ(wordsOf([] { i2u(65536); }), message("i2u: i4"));
}

} // namespace
} // namespace gridforge::test
