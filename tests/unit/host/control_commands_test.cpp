#include "host/control_commands.h"

#include "support/child_run.h"
#include "support/consoles.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <string_view>

namespace gridforge::test {
namespace {

const std::string kOpened = "Trying to open file a.dmg...OK.\nOpened File Unit:1001\n";

struct Heard {
    std::int32_t limit = 7;
};

void sayLine(const ControlLine& line, Heard& /*heard*/)
{
    say("<", line.command, "> <", line.value, "> <", line.text, ">");
}

constexpr auto kCommands = std::to_array<ControlCommand<Heard>>({
    {"Set Limit", [](const ControlLine& line, Heard& heard) { readValue(line, "No limit:", heard.limit); }},
    {"Set", sayLine},
    {"Read", [](const ControlLine& line, Heard&) { say("reads ", line.value); }},
});

// The console after the opening of a control file of these bytes, with the limit that it sets.
std::string consoleOf(std::string_view bytes, const ControlDialect& dialect)
{
    const ScratchFolder folder;
    folder.give("a.dmg", bytes);
    const ChildRun run = runInChild(folder, [&] {
        Unit unit = 0;
        OPENER(unit, "I ", "a.dmg");
        Heard heard;
        runCommands(unit, dialect, kCommands, heard);
        say("limit ", heard.limit);
    });
    EXPECT_EQ(run.console.substr(0, kOpened.size()), kOpened);
    return run.console.substr(std::min(kOpened.size(), run.console.size()));
}

TEST(RunCommands, GivesTheLineToTheFirstRowWhoseWordsStandInTheCommand)
{
    EXPECT_EQ(consoleOf("! a file\n"
                        "Please set Limit == 3 ! low\n"
                        "\tREAD it ==  a b.mif  \n"
                        "  Set a == b == c\n"
                        "Set alone\n",
                        {}),
              "reads a b.mif\n"
              "<Set a > <b == c> <Set a == b == c>\n"
              "<Set alone> <> <Set alone>\n"
              "limit 3\n");
}

TEST(RunCommands, IgnoresOtherCommandsWithoutAMessageForThem)
{
    EXPECT_EQ(consoleOf("Write == Set\n == 5\n", {}), "limit 7\n");
    EXPECT_EQ(consoleOf(" == 5\n", {.unknown = "Unknown: "}), "limit 7\n");
}

TEST(RunCommands, EndsTheRunOverOtherCommandsWithAMessageForThem)
{
    EXPECT_EQ(consoleOf("Read == a\nWrite == b\nRead == c\n", {.unknown = "Unknown: "}),
              "reads a\nUnknown: Write == b\n" + kExits);
    EXPECT_EQ(consoleOf("Read == a\n == 5\n", {.blankCommands = true, .unknown = "Unknown: "}),
              "reads a\nUnknown: == 5\n" + kExits);
}

TEST(RunCommands, AValueThatIsNoNumberEndsTheRunWithItsLine)
{
    EXPECT_EQ(consoleOf("Set Limit == many\n", {}), "No limit:\nSet Limit == many\n" + kExits);
    EXPECT_EQ(consoleOf("Set Limit ==\n", {}), "No limit:\nSet Limit ==\n" + kExits);
}

TEST(FromColumn, IsTheCommandFromTheColumnOnAndBlankPastItsEnd)
{
    ControlLine line;
    line.command = "Read it";
    EXPECT_EQ(fromColumn(line, 1), "Read it");
    EXPECT_EQ(fromColumn(line, 6), "it");
    EXPECT_EQ(fromColumn(line, 8), "");
    EXPECT_EQ(fromColumn(line, 80), "");
}

} // namespace
} // namespace gridforge::test
