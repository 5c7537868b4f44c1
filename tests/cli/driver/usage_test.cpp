// The usage screen against its text, which lies beside this file, and the flags that it shows against those of the table.
// It shows a part of them, and a new flag need not stand on it.
#include "core/text.h"
#include "driver/flag_table.h"
#include "driver/operations.h"
#include "support/consoles.h"
#include "support/expect_run.h"
#include "support/paths.h"

#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>
#include <regex>
#include <sstream>

namespace gridforge::test {
namespace {

std::vector<std::string> usageLines()
{
    std::ifstream file(sourceFolder() + "/tests/cli/driver/usage.txt");
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) {
        lines.push_back(line);
    }
    return lines;
}

TEST(UsageCli, NoArgumentsShowTheWholeTextAndPause)
{
    const std::vector<std::string> usage = usageLines();
    ASSERT_EQ(usage.size(), 173U);
    ToolRun run("");
    run.give("a.asc", ascGrid({{1}}));
    expectRun(run, refused(usage));
}

TEST(UsageCli, BatchFlagAloneIsNoCallForHelp)
{
    expectRun({"-b"}, failed({"ERROR - No operational flag specified."}));
}

TEST(UsageCli, EmptyArgumentIsAnArgument)
{
    expectRun({""}, failed({"ERROR - No operational flag specified."}));
}

// --- The screen and the table ----------------------------------------------------------------------------------------

// A flag that the screen describes: the text in quotes at the start of a line.
struct ScreenFlag {
    std::string argument; // -resize
    bool glued = false;   // a value in angle brackets follows at once
    bool next = false;    // or after a blank
    std::size_t indent = 0;
    std::string line;
};

// Up to the examples.
std::vector<ScreenFlag> screenFlags()
{
    static const std::regex form(R"re(^( +)"(-\w+)(<.*>|( <.*>)|)"( <.*>)?.*$)re");
    std::vector<ScreenFlag> flags;
    for (const std::string& line : usageLines()) {
        std::smatch parts;
        if (std::regex_match(line, parts, form)) {
            const bool next = parts[4].length() > 0 || parts[5].length() > 0;
            flags.push_back({parts[2], parts[3].length() > 0 && !next, next, parts[1].str().size(), line});
        }
    }
    return flags;
}

bool isStatistic(const driver::FlagRow& row, const std::string& word)
{
    const std::string words(row.docs.valueName);
    return join('|', words, '|').find(join('|', word, '|')) != std::string::npos ||
           words.find(join('|', word, "<n>")) != std::string::npos;
}

// Asks for the operation, or is an option of it.
bool takenBy(const driver::FlagRow& row, std::string_view name)
{
    const auto operation = std::ranges::find(driver::operationTable(), name, &driver::OperationRow::name);
    return driver::operationOf(row) == name ||
           (operation != driver::operationTable().end() && driver::isOptionOf(row, *operation));
}

TEST(UsageScreen, NamesFlagsAsTheTableDoes)
{
    const std::vector<ScreenFlag> flags = screenFlags();
    EXPECT_EQ(flags.size(), 33U);
    for (const ScreenFlag& flag : flags) {
        const driver::FlagRow* const row = driver::findFlag(flag.argument);
        ASSERT_NE(row, nullptr) << flag.line;
        const std::string key(row->key);
        if (row->value == driver::FlagValue::statistic) {
            EXPECT_TRUE(isStatistic(*row, flag.argument.substr(1 + key.size()))) << flag.line;
            continue;
        }
        EXPECT_EQ(flag.argument, "-" + key);
        EXPECT_EQ(flag.glued, isGlued(*row)) << flag.line;
        // The grids of -remap stand without their names.
        EXPECT_EQ(flag.next, row->value == driver::FlagValue::next && key != "wl" && key != "dem") << flag.line;
    }
}

TEST(UsageScreen, DescribesOptionsUnderAnOperationThatTakesThem)
{
    static const std::regex named(R"(-(\w+))");
    std::string operation;
    std::size_t options = 0;
    for (const ScreenFlag& flag : screenFlags()) {
        const driver::FlagRow& row = *driver::findFlag(flag.argument);
        constexpr std::size_t kTopIndent = 5;
        if (flag.indent > kTopIndent) {
            EXPECT_TRUE(takenBy(row, operation)) << flag.line;
            ++options;
            continue;
        }
        operation = driver::operationOf(row);
        const std::string rest = flag.line.substr(flag.line.find('"', flag.indent + 1));
        if (row.kind == driver::FlagKind::operation || rest.find(" for ") == std::string::npos) {
            continue;
        }
        for (auto name = std::sregex_iterator(rest.begin(), rest.end(), named); name != std::sregex_iterator();
             ++name) {
            const driver::FlagRow* const asking = driver::findFlag(name->str());
            ASSERT_NE(asking, nullptr) << flag.line;
            EXPECT_TRUE(takenBy(row, driver::operationOf(*asking))) << flag.line;
            ++options;
        }
    }
    EXPECT_EQ(options, 5U + 3U + 2U + 2U); // of -remap, of -resize, those for -dif, and -src twice
}

TEST(UsageScreen, ShowsFlagsOfTheTableInItsExamples)
{
    std::size_t examples = 0;
    for (const std::string& line : usageLines()) {
        const std::size_t command = line.find("gridforge.exe ");
        if (command == std::string::npos) {
            continue;
        }
        ++examples;
        std::istringstream words(line.substr(command));
        for (std::string word; words >> word;) {
            EXPECT_TRUE(word[0] != '-' || driver::findFlag(word) != nullptr) << line;
        }
    }
    EXPECT_EQ(examples, 22U);
}

} // namespace
} // namespace gridforge::test
