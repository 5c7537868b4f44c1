#include "host/control_lines.h"

#include "core/text.h"
#include "host/ends.h"
#include "support/child_run.h"
#include "support/consoles.h"

#include <algorithm>
#include <functional>
#include <gtest/gtest.h>
#include <string>

namespace gridforge::test {
namespace {

const std::string kOpened = "Trying to open file a.dmg...OK.\nOpened File Unit:1001\n";

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

TEST(FindReal, GivesNothingWhereTheRunWouldEnd)
{
    EXPECT_EQ(findReal("1, 2.5d1 ,x", "", "key", 2, 9.0F), 25.0F);
    EXPECT_EQ(findReal("1,,x", "", "key", 2, 9.5F), 9.5F);
    EXPECT_EQ(findReal("1,2,x", "", "key", 3, 9.5F), std::nullopt);
    const auto byKey = [](const std::string& line) { return findReal(line, LOWERCASE(line), "key", 1, 9.5F); };
    EXPECT_EQ(byKey(lineWithKey("= 1")), 1.0F);
    EXPECT_EQ(byKey(lineWithKey("1")), std::nullopt); // no "="
}

} // namespace
} // namespace gridforge::test
