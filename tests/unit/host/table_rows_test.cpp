#include "host/table_rows.h"

#include "support/child_run.h"
#include "support/consoles.h"

#include <algorithm>
#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <string_view>

namespace gridforge::test {
namespace {

constexpr TableForm kForm{.unreadable = "Unreadable:", .mostRows = 2, .tooMany = "Too many."};

std::string opened(const std::string& name)
{
    return "Trying to open file " + name + "...OK.\nOpened File Unit:1001\n";
}

// The console after the opening of the table, of which a row "bad" cannot be read.
std::string consoleOf(const ScratchFolder& folder, const std::string& name, const TableForm& form)
{
    const ChildRun run = runInChild(folder, [&] {
        Unit unit = 0;
        OPENER(unit, "I ", name);
        say("heading <", readHeading(unit, form), ">");
        const std::int64_t rows = readRows(unit, form, [](const std::string& line) {
            say("row <", line, ">");
            return line != "bad";
        });
        say("rows ", rows);
    });
    EXPECT_EQ(run.console.substr(0, opened(name).size()), opened(name));
    return run.console.substr(std::min(opened(name).size(), run.console.size()));
}

std::string consoleOf(std::string_view bytes, const TableForm& form = kForm)
{
    const ScratchFolder folder;
    folder.give("a.csv", bytes);
    return consoleOf(folder, "a.csv", form);
}

TEST(TableRows, AreTheLinesBelowTheHeading)
{
    EXPECT_EQ(consoleOf("a,b\r\n1,2\n\n"), "heading <a,b>\nrow <1,2>\nrow <>\nrows 2\n");
    EXPECT_EQ(consoleOf("a,b"), "heading <a,b>\nrows 0\n");
    EXPECT_EQ(consoleOf(""), "heading <>\nrows 0\n");
}

TEST(TableRows, OneThatCannotBeReadEndsTheRunWithItsLine)
{
    EXPECT_EQ(consoleOf("a\nbad\ngood\n"), "heading <a>\nrow <bad>\nUnreadable:\nbad\n" + kExits);
}

TEST(TableRows, OneTooManyEndsTheRunBeforeItIsLookedAt)
{
    const std::string before = "heading <a>\nrow <1>\nrow <2>\nToo many.\n";
    EXPECT_EQ(consoleOf("a\n1\n2\n3\n"), before + kExits);
    EXPECT_EQ(consoleOf("a\n1\n2\n3\n",
                        {.unreadable = "Unreadable:", .mostRows = 2, .tooMany = "Too many.", .tooManyAdvice = "Cut."}),
              before + "Cut.\n" + kExits);
}

// The memory of a process opens like a file and refuses to be read at its start.
TEST(TableRows, ARefusedReadOfTheHeadingEndsTheRunThereOrAtTheFirstRow)
{
    const ScratchFolder folder;
    EXPECT_EQ(consoleOf(folder, "/proc/self/mem", kForm), "Unreadable:\n\n" + kExits);
    TableForm passes = kForm;
    passes.unreadHeading = UnreadHeading::isPassed;
    EXPECT_EQ(consoleOf(folder, "/proc/self/mem", passes), "heading <>\nUnreadable:\n\n" + kExits);
}

} // namespace
} // namespace gridforge::test
