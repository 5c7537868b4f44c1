// The manual page that the build makes.
#include "core/text.h"
#include "driver/flag_table.h"
#include "driver/operations.h"
#include "support/consoles.h"
#include "support/paths.h"
#include "support/tool_run.h"

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <regex>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace gridforge::test {
namespace {

using testing::HasSubstr;
using testing::Not;

const std::string kPage = manualFolder() + "/gridforge.1";
const std::string kGroff = "/usr/bin/groff";

// The page as a terminal shows it, without bold and italics, on lines that hold each paragraph whole.
std::string rendered()
{
    ToolRun run(std::vector<std::string>{"-man", "-Tascii", "-ww", "-rLL=1000n", "-rHY=0", "-P-cbou", kPage});
    run.program(kGroff);
    run.start();
    EXPECT_EQ(run.status(), 0);
    EXPECT_EQ(run.error(), "") << "warnings of groff";
    return run.console();
}

// The paragraph of a flag: what stands indented under its heading, or behind it on its line.
std::string paragraphOf(const std::string& page, const std::string& heading)
{
    std::size_t at = page.find("\n       " + heading);
    while (at != std::string::npos) {
        const char next = page[at + 8 + heading.size()];
        if (next == '\n' || next == ' ') {
            const std::size_t end = page.find("\n\n", at + 1);
            return page.substr(at, end - at);
        }
        at = page.find("\n       " + heading, at + 1);
    }
    return {};
}

// As the page shows the flag over its paragraph.
std::string headingOf(const driver::FlagRow& row)
{
    const std::string value(row.docs.valueName);
    const bool joined = isGlued(row) || row.value == driver::FlagValue::statistic || value.empty();
    return join('-', row.key, joined ? "" : " ", value);
}

class ManualPage : public testing::Test {
protected:
    void SetUp() override
    {
        if (!std::filesystem::exists(kGroff)) {
            GTEST_SKIP() << "no groff here";
        }
    }
};

TEST_F(ManualPage, RendersWithoutWarnings)
{
    const std::string page = rendered();
    for (const std::string_view heading : {"NAME", "SYNOPSIS", "DESCRIPTION", "OPERATIONS", "OPTIONS",
                                           "INPUTS AND OUTPUTS", "EXIT STATUS", "EXAMPLES", "SEE ALSO"}) {
        EXPECT_THAT(page, HasSubstr(join("\n", heading, "\n")));
    }
    EXPECT_THAT(page, HasSubstr("gridforge - batch raster tool for two-dimensional flood models"));
}

TEST_F(ManualPage, TellsEveryFlagWithItsValueAndDefault)
{
    const std::string page = rendered();
    for (const driver::FlagRow& row : driver::flagTable()) {
        const std::string heading = headingOf(row);
        const std::string paragraph = paragraphOf(page, heading);
        EXPECT_THAT(paragraph, HasSubstr(std::string(row.docs.description.substr(1)) + ".")) << heading;
        const std::string nothing = row.value == driver::FlagValue::none ? "off" : "none";
        EXPECT_THAT(
            paragraph,
            HasSubstr("Default: " + (row.docs.defaultText.empty() ? nothing : std::string(row.docs.defaultText)) + "."))
            << heading;
        EXPECT_EQ(paragraph.find("Value: ") != std::string::npos, row.value != driver::FlagValue::none) << heading;
    }
}

TEST_F(ManualPage, TellsWhatAValueIs)
{
    const std::vector<std::pair<std::string, std::string>> oneOfEachKind = {
        {"-cd<value>", "a number"},
        {"-resize<factor>", "a whole number"},
        {"-mat <grid>", "a grid"},
        {"-cp <layer>", "a layer"},
        {"-classify <classes.csv>", "a table"},
        {"-nbc <file.nbc>", "a control file"},
        {"-nc_part<0|1>", "one of 0, 1"},
        {"-out <name>", "a name"},
    };
    const std::string page = rendered();
    for (const auto& [flag, value] : oneOfEachKind) {
        std::string heading; // the page shows values by italics in place of brackets
        std::ranges::copy_if(flag, std::back_inserter(heading), [](char c) { return c != '<' && c != '>'; });
        EXPECT_THAT(paragraphOf(page, heading), HasSubstr("Value: " + value + ".")) << flag;
    }
}

// The lines about an operation, under the flags that ask for it.
std::string filesOf(const std::string& page, const std::string& flags)
{
    const std::size_t section = page.find("\nINPUTS AND OUTPUTS\n");
    return section == std::string::npos ? "" : paragraphOf(page.substr(section), flags) + '\n';
}

TEST_F(ManualPage, TellsTheInputsOfEachOperation)
{
    const std::string page = rendered();
    EXPECT_THAT(filesOf(page, "-conv"), HasSubstr("Inputs: 1 to 2000 grids.\n"));
    EXPECT_THAT(filesOf(page, "-dif"), HasSubstr("Inputs: 2 grids. A name after them is that of the output.\n"));
    EXPECT_THAT(filesOf(page, "-multiply"),
                HasSubstr("Inputs: 2 grids. A name after them is that of the output, if a file has it already.\n"));
    EXPECT_THAT(filesOf(page, "-xyz"), HasSubstr("Inputs: 1 table. Others are ignored.\n"));
    EXPECT_THAT(filesOf(page, "-nbc"), HasSubstr("Inputs: none.\n"));
    EXPECT_THAT(filesOf(page, "-remap"), HasSubstr("Inputs: up to 1999 grids.\n"));
}

TEST_F(ManualPage, TellsTheOutputsOfEachOperation)
{
    const std::string page = rendered();
    EXPECT_THAT(
        filesOf(page, "-max, -min"),
        HasSubstr("\n              Grid: {first}(maxmax)_src; after -out {out}_src. Only with -max. Not with -src.\n"));
    EXPECT_THAT(filesOf(page, "-dif"), HasSubstr("Not with -change, -nowetdry."));
    EXPECT_THAT(filesOf(page, "-remap"), HasSubstr("\n              Grid: {levels}_remap_h.\n"));
    EXPECT_THAT(filesOf(page, "-na"),
                HasSubstr("\n              Table: {table} (of each region, by its first attribute).\n"));
    EXPECT_THAT(filesOf(page, "-nc"), HasSubstr("\n              NetCDF file: {first}.nc; after -out {out}.nc.\n"));
    for (const driver::OperationRow& operation : driver::operationTable()) {
        std::string flags;
        for (const driver::FlagRow& row : driver::flagTable()) {
            flags += driver::operationOf(row) == operation.name ? join(flags.empty() ? "-" : ", -", row.key) : "";
        }
        const std::string files = filesOf(page, flags);
        const std::size_t inputs = files.find("Inputs: ");
        ASSERT_NE(inputs, std::string::npos) << flags;
        EXPECT_EQ(std::ranges::count(files.substr(inputs), '\n'), 1 + std::ranges::ssize(operation.docs.outputs))
            << flags;
        for (const driver::OutputRow& output : operation.docs.outputs) {
            EXPECT_THAT(files, HasSubstr(join(": ", output.name))) << flags;
            EXPECT_THAT(files, HasSubstr(join(output.outName.empty() ? "" : " -out ", output.outName))) << flags;
            EXPECT_THAT(files, HasSubstr(std::string(output.note))) << flags;
        }
    }
}

// What scripts are told to look for is what runs end with.
TEST_F(ManualPage, NamesTheLastLineOfAGoodRun)
{
    ToolRun good("-b -conv a.asc");
    good.give("a.asc", ascGrid({{1}}));
    good.start();
    ASSERT_FALSE(good.consoleLines().empty());
    const std::string page = rendered();
    EXPECT_THAT(page,
                HasSubstr(join("The last line of a run that reached its end is ", good.consoleLines().back(), ";")));
    EXPECT_THAT(page, HasSubstr(join("grep -qxF ", good.consoleLines().back(), " ||")));

    ToolRun missing("-b -cp none.mif a.asc");
    missing.give("a.asc", ascGrid({{1}}));
    missing.start();
    EXPECT_THAT(missing.console(), HasSubstr("\nCHECK 0008 - "));
    ToolRun elsewhere("-b -conv a.asc -out none/b");
    elsewhere.give("a.asc", ascGrid({{1}}));
    elsewhere.start();
    EXPECT_THAT(elsewhere.console(), HasSubstr("\nCan't open: "));
    for (const ToolRun* run : {&missing, &elsewhere}) {
        EXPECT_THAT(run->console(), Not(HasSubstr("ERROR")));
        EXPECT_THAT(run->console(), Not(HasSubstr(kFinished)));
    }
    EXPECT_THAT(page, HasSubstr("CHECK 0008"));
    EXPECT_THAT(page, HasSubstr("Can't open"));
}

TEST_F(ManualPage, KeepsOperationsApartFromOptions)
{
    const std::string page = rendered();
    const std::size_t options = page.find("\nOPTIONS\n");
    for (const driver::FlagRow& row : driver::flagTable()) {
        const std::string paragraph = paragraphOf(page, headingOf(row));
        ASSERT_FALSE(paragraph.empty()) << row.key;
        EXPECT_EQ(page.find(paragraph) < options, row.kind == driver::FlagKind::operation) << row.key;
    }
}

std::string contentOf(const std::filesystem::path& name)
{
    std::ifstream file(name);
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST(ManualVariables, AreThoseThatTheToolReads)
{
    static const std::regex read(R"re(environment(Text|Number)\("(\w+)"\))re");
    std::set<std::string> variables;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(sourceFolder() + "/src")) {
        if (!entry.is_regular_file()) {
            continue;
        }
        const std::string code = contentOf(entry.path());
        for (auto at = std::sregex_iterator(code.begin(), code.end(), read); at != std::sregex_iterator(); ++at) {
            variables.insert((*at)[2].str());
        }
    }
    EXPECT_THAT(variables, testing::Contains("GRIDFORGE_THREADS"));
    const auto namedIn = [](const std::string& text, const std::regex& form) {
        std::set<std::string> names;
        for (auto at = std::sregex_iterator(text.begin(), text.end(), form); at != std::sregex_iterator(); ++at) {
            names.insert((*at)[1].str());
        }
        return names;
    };
    EXPECT_EQ(namedIn(contentOf(kPage), std::regex("\n\\.B (GRIDFORGE_\\w+)\n")), variables);
    EXPECT_EQ(
        namedIn(contentOf(sourceFolder() + "/docs/operations/README.md"), std::regex(R"(\n\| `(GRIDFORGE_\w+)`)")),
        variables);
}

} // namespace
} // namespace gridforge::test
