// Settings of the environment change no result: those of threads, of waiting cells and of pieces. What is right is the run
// whose cells go step by step, as they do where a read by position is refused.
#include "support/consoles.h"
#include "support/grids.h"
#include "support/system_failures.h"
#include "support/tool_run.h"

#include <filesystem>
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

constexpr const char* kBadCells =
    "ERROR 2334 - Reading Grid file data.  Check format and file is complete by viewing in GIS.";

void giveSquare(ToolRun& run)
{
    run.give("by.mif",
             "Version 300\nDelimiter \",\"\nCoordSys NonEarth Units \"m\"\nColumns 1\n  Name Char(20)\nData\n\n"
             "Region 1\n  5\n5.5 5.5\n40.5 5.5\n40.5 20.5\n5.5 20.5\n5.5 5.5\n");
    run.give("by.mid", "\"by\"\n");
}

// Marks and buildings in the middle of the grids, a curve and classes.
void giveObjects(ToolRun& run, const std::string& extension)
{
    const std::string head = "Version 300\nDelimiter \",\"\nCoordSys NonEarth Units \"m\"\n";
    run.give("m.mif", head + "Columns 2\n  Obs Float\n  Mark Char(9)\nData\n\nPoint 12.5 9.5\nPoint 30.5 22.5\n");
    run.give("m.mid", "3,\"west\"\n5,\"east\"\n");
    run.give("h.mif",
             head + "Columns 4\n  Prop_Type Char(20)\n  Prop_ID Char(20)\n  FFL Float\n  Multiplier Float\nData\n\n"
                    "Point 12.5 9.5\nRegion 1\n  4\n20 8\n29 8\n25 19\n20 8\n");
    run.give("h.mid", "\"Home\",\"h1\",1,1\n\"Home\",\"h2\",2,1\n");
    run.give("curve.csv", "Depth,Damage\n0,10\n400,500\n");
    run.give("of_c" + extension + ".dmg",
             "Maximum Buildings == 9\nRead GIS Buildings == h.mif\nRead Curve Home == curve.csv\n"
             "Read Result % 1 == c" +
                 extension + "\nRegion Inspection Method == Avg\n");
    run.give("k.csv", "Limit,Name\n10,Low\n100,High\n");
}

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
        giveObjects(run, ".flt");
    };
    EXPECT_NE(compare("-classify k.csv -grc -asc a.flt", giveClasses).find("\nFinished.\n"), std::string::npos);
    EXPECT_NE(compare("-histogram k.csv a.flt", giveClasses).find("\nFinished.\n"), std::string::npos);
}

// --- Inputs that are out of the ordinary -----------------------------------------------------------------------------

// The third grid is the one that is spoilt.
const std::vector<std::string>& operations()
{
    static const std::vector<std::string> lines = {"-max a.EXT b.EXT c.EXT",
                                                   "-min a.EXT c.EXT",
                                                   "-statAll a.EXT b.EXT c.EXT",
                                                   "-dif a.EXT c.EXT",
                                                   "-multiply a.EXT c.EXT",
                                                   "-fuzzy a.EXT c.EXT",
                                                   "-count -cd40 c.EXT",
                                                   "-cd40 c.EXT",
                                                   "-conv c.EXT",
                                                   "-resize2 c.EXT",
                                                   "-trans_m2 c.EXT",
                                                   "-fe c.EXT",
                                                   "-trim by.mif c.EXT",
                                                   "-remap -wl c.EXT -dem a.EXT",
                                                   "-classify k.csv c.EXT",
                                                   "-histogram k.csv c.EXT",
                                                   "-cp m.mif c.EXT -cpsd9",
                                                   "-damages of_c.EXT.dmg"};
    return lines;
}

void compareEach(const std::vector<std::string>& lines, const std::string& message, const std::string& extension,
                 const Give& spoil)
{
    for (std::string line : lines) {
        for (std::size_t at = line.find(".EXT"); at != std::string::npos; at = line.find(".EXT")) {
            line.replace(at, 4, extension);
        }
        const std::string console = compare(line, [&](ToolRun& run) {
            giveGrids(run, extension);
            giveSquare(run);
            giveObjects(run, extension);
            spoil(run);
        });
        EXPECT_NE(console.find(message + "\n"), std::string::npos) << line << '\n' << console;
    }
}

TEST(ThreadsCli, ChangeNothingWhereAFileIsMissing)
{
    compareEach({"-max a.EXT d.EXT", "-dif a.EXT d.EXT", "-conv d.EXT"}, kFinished, ".flt", [](ToolRun& run) {
        run.give("d.flt", fltCells(someCells(2)));
        run.type("b.hdr");
    });
    compareEach(operations(), "CHECK 0008 - \"c.hdr\" cannot be found", ".flt",
                [](ToolRun& run) { std::filesystem::remove(run.folder() / "c.hdr"); });
}

TEST(ThreadsCli, ChangeNothingWhereAFileIsShortOrTooLong)
{
    const std::string cells = fltCells(someCells(2));
    compareEach(operations(), kBadCells, ".flt",
                [&](ToolRun& run) { run.give("c.flt", cells.substr(0, cells.size() - 1)); });
    compareEach(operations(), kFinished, ".flt", [&](ToolRun& run) { run.give("c.flt", cells + "more"); });
}

TEST(ThreadsCli, ChangeNothingWhereTheLastRowIsBad)
{
    std::string text = ascGrid(someCells(2));
    text.replace(text.size() - 2, 1, "x");
    compareEach(operations(), kBadCells, ".asc", [&](ToolRun& run) { run.give("c.asc", text); });
}

TEST(ThreadsCli, ChangeNothingWhereTheThirdLatticeDiffers)
{
    compareEach({"-max a.EXT b.EXT c.EXT", "-statAll a.EXT b.EXT c.EXT", "-dif a.EXT c.EXT", "-multiply a.EXT c.EXT",
                 "-fuzzy a.EXT b.EXT c.EXT"},
                "ERROR - x coordinates of input grids do not match. xll = 0. and 1.", ".asc",
                [](ToolRun& run) { run.give("c.asc", ascGrid(someCells(2), {.xll = 1})); });
}

TEST(ThreadsCli, ChangeNothingWhereTheOutputIsAnInput)
{
    const auto asTheyAre = [](ToolRun&) {};
    compareEach({"-max a.EXT b.EXT c.EXT -out b", "-statMax a.EXT b.EXT -out b", "-dif a.EXT b.EXT -out a",
                 "-cd40 a.EXT -out a", "-resize2 a.EXT -out a"},
                kFinished, ".flt", asTheyAre);
    compareEach({"-dif a.EXT b.EXT -out a", "-multiply a.EXT b.EXT -out b"}, kFinished, ".asc", asTheyAre);
}

} // namespace
} // namespace gridforge::test
