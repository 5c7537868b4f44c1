// Settings of the environment change no result: those of threads, of waiting cells and of pieces. What is right is the run
// whose cells go step by step, as they do where a read by position is refused.
#include "support/consoles.h"
#include "support/grids.h"
#include "support/system_failures.h"
#include "support/tool_run.h"

#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace gridforge::test {
namespace {

using Settings = std::vector<std::pair<std::string, std::string>>;

struct Left {
    std::string console;
    std::map<std::string, std::string> files;
};

Cells someCells(int seed)
{
    Cells cells(31, std::vector<double>(47));
    for (std::size_t row = 0; row < cells.size(); ++row) {
        for (std::size_t column = 0; column < cells[row].size(); ++column) {
            const auto place = static_cast<int>(row * 47 + column) * seed;
            cells[row][column] = place % 5 == 0 ? kNull : static_cast<double>(place % 3001) / 8;
        }
    }
    return cells;
}

void giveGrids(ToolRun& run, const std::string& extension)
{
    for (int i = 1; i <= 3; ++i) {
        const Cells cells = someCells(i * 7);
        const std::string base = std::string(1, static_cast<char>('a' + i - 1));
        if (extension == ".asc") {
            run.give(base + ".asc", ascGrid(cells));
        } else {
            run.give(base + ".hdr", hdr(cells));
            run.give(base + ".flt", fltCells(cells));
        }
    }
}

using Give = std::function<void(ToolRun&)>;

Left runWith(const std::string& arguments, const Give& give, const Settings& settings, const std::string& mission = "")
{
    ToolRun run(("-b " + arguments).c_str());
    give(run);
    for (const auto& [name, value] : settings) {
        run.environment(name, value);
    }
    if (!mission.empty()) {
        askSystem(run, mission);
    }
    run.start();
    EXPECT_EQ(run.status(), 0);
    return {run.console(), run.files()};
}

const std::vector<Settings>& settingsToTry()
{
    static const std::vector<Settings> settings = {
        {},
        {{"GRIDFORGE_THREADS", "1"}},
        {{"GRIDFORGE_THREADS", "2"}, {"GRIDFORGE_PIECE", "777"}},
        {{"GRIDFORGE_THREADS", "7"}, {"GRIDFORGE_PIECE", "13"}},
        {{"GRIDFORGE_THREADS", "7"}, {"GRIDFORGE_PIECE", "400"}, {"GRIDFORGE_MEMORY", "1"}},
        {{"GRIDFORGE_MEMORY", "1"}, {"GRIDFORGE_SCRATCH", "/nowhere"}},
        {{"GRIDFORGE_THREADS", "many"}, {"GRIDFORGE_MEMORY", "-1"}, {"GRIDFORGE_PIECE", "0"}},
    };
    return settings;
}

// Returns the console, the same of all.
std::string compare(const std::string& arguments, const Give& give)
{
    constexpr int kIoError = 5;
    const Left plain =
        runWith(arguments, give, {{"GRIDFORGE_THREADS", "1"}}, "fail pread 1 " + std::to_string(kIoError));
    for (const Settings& settings : settingsToTry()) {
        const Left left = runWith(arguments, give, settings);
        std::string shown = arguments;
        for (const auto& [name, value] : settings) {
            shown.append(", ").append(name).append("=").append(value);
        }
        EXPECT_EQ(left.console, plain.console) << shown;
        EXPECT_TRUE(left.files == plain.files) << shown;
    }
    return plain.console;
}

void compareAll(const std::string& arguments, const std::string& extension)
{
    const std::string console = compare(arguments, [&extension](ToolRun& run) { giveGrids(run, extension); });
    EXPECT_NE(console.find("\nFinished.\n"), std::string::npos) << console;
}

TEST(ThreadsCli, ChangeNoExtremesOfTextGrids)
{
    compareAll("-max a.asc b.asc c.asc", ".asc");
    compareAll("-min -flt a.asc b.asc c.asc", ".asc");
}

TEST(ThreadsCli, ChangeNoExtremesOfBinaryGrids)
{
    compareAll("-min a.flt b.flt c.flt", ".flt");
    compareAll("-max -asc a.flt b.flt c.flt", ".flt");
}

TEST(ThreadsCli, ChangeNothingInWhatIsMadeOfAGridOrTwo)
{
    compareAll("-dif a.asc b.asc", ".asc");
    compareAll("-cd40 a.flt b.flt", ".flt");
    compareAll("-trans_m0.1 -trans_c2 a.flt", ".flt");
    compareAll("-multiply a.asc c.asc", ".asc");
    compareAll("-fe a.flt", ".flt");
    compareAll("-count -cd40 a.flt", ".flt");
    compareAll("-fuzzy a.flt b.flt c.flt", ".flt");
}

TEST(ThreadsCli, ChangeNothingInConversionsTablesAndStatistics)
{
    compareAll("-conv a.asc b.asc", ".asc");
    compareAll("-conv a.flt b.flt", ".flt");
    compareAll("-statAll -statRank2 a.flt b.flt c.flt", ".flt");
    const Give giveClasses = [](ToolRun& run) {
        giveGrids(run, ".flt");
        run.give("c.csv", "Limit,Name\n10,Low\n100,High\n");
    };
    EXPECT_NE(compare("-classify c.csv -grc -asc a.flt", giveClasses).find("\nFinished.\n"), std::string::npos);
    EXPECT_NE(compare("-histogram c.csv a.flt", giveClasses).find("\nFinished.\n"), std::string::npos);
}

// --- Inputs that are out of the ordinary -----------------------------------------------------------------------------

void compareMaximum(const std::string& line, const std::string& arguments, const std::string& extension,
                    const Give& spoil)
{
    const std::string console = compare(arguments, [&](ToolRun& run) {
        giveGrids(run, extension);
        spoil(run);
    });
    EXPECT_NE(console.find(line + "\n"), std::string::npos) << console;
}

TEST(ThreadsCli, ChangeNothingWhereAFileIsMissing)
{
    compareMaximum(kFinished, "-max a.flt d.flt", ".flt", [](ToolRun& run) {
        run.give("d.flt", fltCells(someCells(2)));
        run.type("b.hdr");
    });
    compareMaximum("CHECK 0008 - \"d.hdr\" cannot be found", "-max a.flt d.flt", ".flt",
                   [](ToolRun& run) { run.give("d.flt", fltCells(someCells(2))); });
}

TEST(ThreadsCli, ChangeNothingWhereAFileIsShortOrTooLong)
{
    const std::string cells = fltCells(someCells(2));
    compareMaximum("ERROR 2334 - Reading Grid file data.  Check format and file is complete by viewing in GIS.",
                   "-max a.flt b.flt c.flt", ".flt",
                   [&](ToolRun& run) { run.give("c.flt", cells.substr(0, cells.size() - 1)); });
    compareMaximum(kFinished, "-max a.flt b.flt c.flt", ".flt",
                   [&](ToolRun& run) { run.give("b.flt", cells + "more"); });
}

TEST(ThreadsCli, ChangeNothingWhereTheLastRowIsBad)
{
    std::string text = ascGrid(someCells(2));
    text.replace(text.size() - 2, 1, "x");
    compareMaximum("ERROR 2334 - Reading Grid file data.  Check format and file is complete by viewing in GIS.",
                   "-max a.asc b.asc c.asc", ".asc", [&](ToolRun& run) { run.give("c.asc", text); });
}

TEST(ThreadsCli, ChangeNothingWhereTheThirdLatticeDiffers)
{
    compareMaximum("ERROR - x coordinates of input grids do not match. xll = 0. and 1.", "-max a.asc b.asc c.asc",
                   ".asc", [](ToolRun& run) { run.give("c.asc", ascGrid(someCells(2), {.xll = 1})); });
}

TEST(ThreadsCli, ChangeNothingWhereTheOutputIsAnInput)
{
    compareMaximum(kFinished, "-max a.flt b.flt c.flt -out b", ".flt", [](ToolRun&) {});
    compareMaximum(kFinished, "-dif a.asc b.asc -out a", ".asc", [](ToolRun&) {});
}

} // namespace
} // namespace gridforge::test
