#include "host/control_lines.h"

#include "core/text.h"
#include "host/ends.h"
#include "support/child_run.h"

#include <algorithm>
#include <functional>
#include <gtest/gtest.h>
#include <string>

namespace gridforge {
namespace {

using test::ChildRun;
using test::runInChild;
using test::ScratchFolder;

const std::string kOpened = "Trying to open file a.dmg...OK.\nOpened File Unit:1001\n";
const std::string kExits = "\nPress Enter to Close\n";

// The console behind the opening of "a.dmg", which holds `bytes`, while `code` reads it.
std::string consoleOfReading(std::string_view bytes, const std::function<void(Unit)>& code)
{
    const ScratchFolder folder;
    folder.give("a.dmg", bytes);
    const ChildRun run = runInChild(folder, [&] {
        Unit unit = 0;
        OPENER(unit, "I ", "a.dmg");
        code(unit);
    });
    EXPECT_EQ(run.console.substr(0, kOpened.size()), kOpened);
    return run.console.substr(std::min(kOpened.size(), run.console.size()));
}

void sayAllLines(Unit unit)
{
    while (!atEnd(unit)) {
        std::string text = "stale";
        const bool content = READLINE(unit, text);
        say(content ? "content <" : "nothing <", text, ">");
    }
}

// --- READLINE --------------------------------------------------------------------------------------------------------

TEST(Readline, CutsCommentsTabsAndBlanks)
{
    EXPECT_EQ(consoleOfReading("  Read \tGIS == a.mif ! a layer\r\n"
                               "Quoted == \"a#b\"\n"
                               "no comment",
                               sayAllLines),
              "content <Read GIS == a.mif>\ncontent <Quoted == \"a>\ncontent <no comment>\n");
}

TEST(Readline, AnswersFalseForALineOfCommentAndReadsOn)
{
    EXPECT_EQ(consoleOfReading("! only a comment\n\t# behind a tab\n\n   \n\t\nlast\n", sayAllLines),
              "nothing <>\nnothing <>\nnothing <>\nnothing <>\nnothing <>\ncontent <last>\n");
}

TEST(Readline, CutsAtTheWidthAndGoesOnWithTheNextLine)
{
    EXPECT_EQ(consoleOfReading("abcdef\nghi\n",
                               [](Unit unit) {
                                   std::string text;
                                   READLINE(unit, text, 4);
                                   say(text);
                                   READLINE(unit, text, 4);
                                   say(text);
                               }),
              "abcd\nghi\n");
}

TEST(Readline, EndsTheRunBehindTheLastLine)
{
    EXPECT_EQ(consoleOfReading("one\n",
                               [](Unit unit) {
                                   std::string text;
                                   READLINE(unit, text);
                                   READLINE(unit, text);
                                   say("read on");
                               }),
              "\nERROR 0202 - End-of-file encountered reading text line from file unit number 1001\n" + kExits);
}

TEST(Readline, EndsTheRunOnAFailedRead)
{
    // The memory of a process opens like a file and refuses to be read at its start.
    const ScratchFolder folder;
    const ChildRun run = runInChild(folder, [] {
        Unit unit = 0;
        OPENER(unit, "I ", "/proc/self/mem");
        std::string text;
        READLINE(unit, text);
        say("read on");
    });
    EXPECT_EQ(run.console, "Trying to open file /proc/self/mem...OK.\nOpened File Unit:1001\n"
                           "\nERROR 0201 - Reading text line from file unit number 1001\n" +
                               kExits);
}

// --- CHECKLINE -------------------------------------------------------------------------------------------------------

struct Split {
    bool command;
    std::string left;
    std::string right;
    bool operator==(const Split&) const = default;
};

void PrintTo(const Split& split, std::ostream* out)
{
    *out << split.command << " <" << split.left << "> <" << split.right << ">";
}

Split splitOf(std::string_view line, std::string_view key = "*",
              std::string_view separator = "==", std::int32_t splitColumn = 0)
{
    Split split{false, "stale", "stale"};
    split.command = CHECKLINE(line, key, separator, splitColumn, split.right, split.left);
    return split;
}

TEST(Checkline, LeavesBothSidesUntrimmedAndTheirCase)
{
    EXPECT_EQ(splitOf("Read GIS X == file.mif"), (Split{true, "Read GIS X ", " file.mif"}));
    EXPECT_EQ(splitOf("a==b==c"), (Split{true, "a", "b==c"}));
    EXPECT_EQ(splitOf("a==="), (Split{true, "a", "="}));
}

TEST(Checkline, WithoutSeparatorAllIsLeft)
{
    EXPECT_EQ(splitOf("Read GIS X = file.mif"), (Split{true, "Read GIS X = file.mif", ""}));
    EXPECT_EQ(splitOf(""), (Split{true, "", ""}));
}

TEST(Checkline, ABlankCommandBeforeASeparatorIsNone)
{
    EXPECT_EQ(splitOf("== value"), (Split{false, "", " value"}));
    EXPECT_EQ(splitOf("  == value"), (Split{false, "  ", " value"}));
}

TEST(Checkline, SplitsAtTheColumnWhereTheSeparatorIsMissing)
{
    EXPECT_EQ(splitOf("abcdef", "*", "==", 4), (Split{true, "abcd", "ef"}));
    EXPECT_EQ(splitOf("abc", "*", "==", 4), (Split{true, "abc", ""}));
    EXPECT_EQ(splitOf("a==cdef", "*", "==", 4), (Split{true, "a", "cdef"}));
    EXPECT_EQ(splitOf("    ef", "*", "==", 4), (Split{false, "    ", "ef"}));
}

TEST(Checkline, ABlankSeparatorSplitsAtTheColumnAlone)
{
    EXPECT_EQ(splitOf("a==cdef", "*", " ", 2), (Split{true, "a=", "=cdef"}));
    EXPECT_EQ(splitOf("a == b", "*", "", 0), (Split{true, "", "a == b"}));
}

TEST(Checkline, WantsTheKeyOnTheLeft)
{
    EXPECT_TRUE(splitOf("Spread GIS == b", "read").command);
    EXPECT_FALSE(splitOf("GIS == Read", "read").command);
    EXPECT_TRUE(splitOf("read", "READ ").command);
    // Split all the same.
    EXPECT_EQ(splitOf("a == b", "read"), (Split{false, "a ", " b"}));
}

TEST(Checkline, MaySplitALineIntoItself)
{
    std::string line = "Read Grid == a much longer value than any short text holds";
    std::string value;
    EXPECT_TRUE(CHECKLINE(line, "*", "==", 0, value, line));
    EXPECT_EQ(line, "Read Grid ");
    EXPECT_EQ(value, " a much longer value than any short text holds");
}

// --- Fields of tables ------------------------------------------------------------------------------------------------

TEST(Csvcolumn, FindsTheFirstFieldOfThatName)
{
    EXPECT_EQ(CSVCOLUMN("Id, \"Depth\" ,Loss,depth", "DEPTH", -1), 2);
    EXPECT_EQ(CSVCOLUMN("Id,Depth,Loss", "Loss", -1), 3);
    EXPECT_EQ(CSVCOLUMN("Id,Depth,Loss", "Id", -1), 1);
}

TEST(Csvcolumn, GivesTheFallbackAtTheEnd)
{
    EXPECT_EQ(CSVCOLUMN("Id,Depth", "Los", 7), 7);
    EXPECT_EQ(CSVCOLUMN("", "Loss", 0), 0);
    EXPECT_EQ(CSVCOLUMN("Id,", "", 9), 2) << "the empty field behind the last comma is a field";
}

TEST(Csvcolumn, HonoursNoQuotes)
{
    EXPECT_EQ(CSVCOLUMN("\"a,b\",c", "b", 9), 2);
    EXPECT_EQ(CSVCOLUMN("\"a,b\",c", "c", 9), 3);
}

TEST(Csvvalue, ReadsTheFieldOfAColumn)
{
    float value = -1;
    EXPECT_TRUE(CSVVALUE("1, 2.5 ,3e2", 1, value));
    EXPECT_EQ(value, 1.0F);
    EXPECT_TRUE(CSVVALUE("1, 2.5 ,3e2", 2, value));
    EXPECT_EQ(value, 2.5F);
    EXPECT_TRUE(CSVVALUE("1, 2.5 ,3e2", 3, value));
    EXPECT_EQ(value, 300.0F) << "no implied decimals";
}

TEST(Csvvalue, WithoutAValueGivesZeroAndFalse)
{
    for (const auto& [text, column] : std::initializer_list<std::pair<const char*, int>>{
             {"1,2", 3}, {"1,,3", 2}, {"1, ,3", 2}, {"1,2,", 3}, {"1,x,3", 2}, {"1,2 m,3", 2}, {"", 1}, {"1,2", 0}}) {
        float value = -1;
        EXPECT_FALSE(CSVVALUE(text, column, value)) << text;
        EXPECT_EQ(value, 0.0F) << text;
    }
}

// --- Values by key or column -----------------------------------------------------------------------------------------

std::string valueOf(const std::string& line, std::string_view key, std::int32_t column)
{
    return EXTRACTSTRING(line, LOWERCASE(line), key, column);
}

TEST(Extractstring, TakesTheColumnOutsideQuotesWithoutQuotes)
{
    const std::string line = R"( one ,"two, or 'so'" , , four)";
    EXPECT_EQ(valueOf(line, "Key", 1), "one");
    EXPECT_EQ(valueOf(line, "Key", 2), "two, or so");
    EXPECT_EQ(valueOf(line, "Key", 3), "");
    EXPECT_EQ(valueOf(line, "Key", 4), "four");
    EXPECT_EQ(valueOf(line, "Key", 5), "");
}

TEST(Extractstring, IsBlankForColumnZeroOfALineOfUsualWidth)
{
    const std::string line = "key = 5," + std::string(992, 'x');
    ASSERT_EQ(line.size(), 1000U);
    EXPECT_EQ(valueOf(line, "key", 0), "");
    EXPECT_EQ(valueOf(line, "key", -1), "");
}

TEST(Extractstring, PassesOverTheKeyInALineOfUsualWidth)
{
    EXPECT_EQ(valueOf("key = 5, 6", "key", 2), "6");
    EXPECT_EQ(valueOf("key = 5, 6", "key", 1), "key = 5");
}

// The one kind of line that holds a key: its blanks are as wide as the work space.
std::string lineWithKey(std::string_view rest)
{
    std::string line = "first, Key";
    line.resize(7 + kWorkWidth, ' ');
    return line += rest;
}

TEST(Extractstring, FindsAKeyThatFillsTheWorkSpace)
{
    const std::string line = lineWithKey("= \"a, b\" c , d");
    EXPECT_EQ(valueOf(line, "KEY", 1), "a, b c");
    EXPECT_EQ(EXTRACTSTRINGREM(line, LOWERCASE(line), "KEY", 1), "a, b c , d");
    EXPECT_EQ(valueOf(line, "other", 1), "first");
}

TEST(Extractstringrem, TakesTheColumnLikeTheOther)
{
    EXPECT_EQ(EXTRACTSTRINGREM("a,b,c", "a,b,c", "key", 2), "b");
}

TEST(Extractstring, EndsTheRunWhereTheKeyHasNoEqualSign)
{
    const ScratchFolder folder;
    const ChildRun run = runInChild(folder, [] { valueOf(lineWithKey(", 5"), "Key ", 1); });
    EXPECT_EQ(run.console, "\nERROR 0203 - No \"=\" sign found after keyword \"Key\".\n" + kExits);
    EXPECT_TRUE(run.ended);
    EXPECT_EQ(run.status, 0);
}

TEST(Extractinteger, ReadsTheColumnOrGivesTheFallback)
{
    EXPECT_EQ(EXTRACTINTEGER("1, '-22' ,3 m", "", "key", 2, 9), -22);
    EXPECT_EQ(EXTRACTINTEGER("1, '-22' ,3 m", "", "key", 3, 9), 3);
    EXPECT_EQ(EXTRACTINTEGER("1, ,3", "", "key", 2, 9), 9);
    EXPECT_EQ(EXTRACTINTEGER("1,2,3", "", "key", 4, 9), 9);
    EXPECT_EQ(EXTRACTINTEGER("1,2,3", "", "key", 0, 9), 9);
}

TEST(Extractinteger, EndsTheRunOnWhatIsNoInteger)
{
    const ScratchFolder folder;
    const ChildRun run = runInChild(folder, [] { EXTRACTINTEGER("1,2.5", "", "Rank", 2, 9); });
    EXPECT_EQ(run.console,
              " Could not convert \"2.5\" in column   2 to an integer value for the Rank field.\n" + kExits);
    EXPECT_TRUE(run.ended);
}

TEST(Extractreal, ReadsTheColumnOrGivesTheFallback)
{
    EXPECT_EQ(EXTRACTREAL("1, 2.5d1 ,x", "", "key", 2, 9.0F), 25.0F);
    EXPECT_EQ(EXTRACTREAL("1,,x", "", "key", 2, 9.5F), 9.5F);
}

TEST(Extractreal, EndsTheRunOnWhatIsNoReal)
{
    const ScratchFolder folder;
    const ChildRun run = runInChild(folder, [] {
        const std::string line = std::string(11, ',') + "high";
        EXTRACTREAL(line, line, "Floor", 12, 9.0F);
    });
    EXPECT_EQ(run.console, " Could not convert \"high\" in column  12 to a real value for the Floor field.\n" + kExits);
    EXPECT_TRUE(run.ended);
}

} // namespace
} // namespace gridforge
