#include "gis/shp/dbf_reader.h"

#include "gis/layer_reader.h"
#include "gis/layer_table.h"
#include "host/console.h"
#include "support/child_run.h"
#include "support/consoles.h"
#include "support/shp_bytes.h"

#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <vector>

namespace gridforge::test {
namespace {

using testing::EndsWith;
using testing::HasSubstr;

using gis::shp::dbfReadHeader;
using gis::shp::dbfReadRecord;
using gis::shp::DbfTable;

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
    const std::string line = linesOf(dbfHeader(1, many) + " " + std::string(std::size_t{128} * 255, 'x') + kEnd);
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
              "[3]\n" + errorEndText("ERROR 0406 - Unrecognised record identifier found in .dbf file.\n"
                                     "Character = X [88]\n"
                                     "Data line thus far ="));
    EXPECT_THAT(linesOf(dbfHeader(5, {{"N", 'N', 1}}) + "\xE4" + "4"), HasSubstr("Character = \xE4 [228]\n"));
}

TEST(DbfReading, RefusesHeadersThatAreNone)
{
    EXPECT_THAT(readTable(dbfHeader(5, {})).console,
                EndsWith(errorEndText("ERROR 0319 - No attributes specified in .dbf file.")));
    EXPECT_THAT(readTable(dbfHeader(5, {{"N", 'N', 1}, {"M", 'N', 0}})).console,
                EndsWith(errorEndText("ERROR 0402 - dbf field length of 0 is outside allowable range of 1 to 255.")));
    EXPECT_THAT(readTable(dbfHeader(5, std::vector<DbfColumn>(128, {"N", 'N', 1})) + " ").console, HasSubstr("--\n"));
    EXPECT_THAT(readTable(dbfHeader(5, std::vector<DbfColumn>(129, {"N", 'N', 1}))).console,
                EndsWith(errorEndText("ERROR 0401 - Exceeded maximum number of dbf Fields.")));
    // The name of field 129 is enough for that, as the fields are refused one by one.
    EXPECT_THAT(
        readTable(dbfHeader(5, std::vector<DbfColumn>(129, {"N", 'N', 1})).substr(0, 32 + 128 * 32 + 11)).console,
        EndsWith(errorEndText("ERROR 0401 - Exceeded maximum number of dbf Fields.")));
}

TEST(DbfReading, EndsTheRunWhereverTheFileIsCut)
{
    const std::string header = dbfHeader(2, kColumns);
    for (std::size_t size = 0; size < header.size(); size += 3) {
        EXPECT_THAT(readTable(header.substr(0, size)).console,
                    EndsWith(errorEndText("ERROR 0404 - End of .dbf file encountered whilst reading header.")))
            << size;
    }
    const std::string ended = errorEndText("ERROR 0408 - End of .dbf file encountered whilst reading record.");
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
                EndsWith(errorEndText("ERROR 0403 - Reading .dbf file header.")));
    EXPECT_THAT(consoleOf([](DbfTable& dbf) {
                    bool end = false;
                    std::string line;
                    dbfReadRecord(dbf, end, line, 100);
                }),
                EndsWith(errorEndText("ERROR 0407 - Reading .dbf record.")));
}

} // namespace
} // namespace gridforge::test
