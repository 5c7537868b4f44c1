// Operations on cells give the same bytes and say the same, whether their cells are computed ahead, by however many threads
// and in whatever pieces, or step by step.
#include "driver/operations.h"
#include "driver/scan.h"
#include "grid/cell_store.h"
#include "host/console.h"
#include "ops/conv.h"
#include "run/cells_ahead.h"

#include "support/both_ways.h"
#include "support/child_run.h"
#include "support/consoles.h"
#include "support/environment.h"
#include "support/grids.h"
#include "support/layer_files.h"
#include "support/operation_run.h"
#include "support/refusing_system.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <limits>
#include <ostream>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace gridforge::test {
namespace {

constexpr std::size_t kRows = 230; // more than two numbers of rows on the console
constexpr std::size_t kColumns = 37;

// Grids that differ in their nulls, with null, dry, equal and, in binary ones, odd cells.
Cells cellsOfGrid(std::uint32_t number, double null, bool binary)
{
    Cells cells(kRows, std::vector<double>(kColumns));
    std::uint32_t state = number;
    for (auto& row : cells) {
        for (double& cell : row) {
            state = state * 1664525U + 1013904223U;
            const std::uint32_t kind = (state >> 8U) % 16;
            cell = kind < 3 ? null : kind < 5 ? 0 : static_cast<double>((state >> 12U) % 4000) / 16 - 20;
        }
    }
    if (binary) {
        cells[7][number] = std::numeric_limits<double>::quiet_NaN();
        cells[99][number + 3] = std::numeric_limits<float>::max();
        cells[100][number + 3] = -0.0;
    }
    return cells;
}

struct Case {
    std::string name;
    std::string options;
    std::vector<double> nulls; // of the inputs, one for each
    GivenFiles others = {};
};

std::ostream& operator<<(std::ostream& out, const Case& one)
{
    return out << one.name;
}

const std::string kClasses = "Limit,Name\n-5,Low\n0,\"None, or so\"\n12.5,Some\n100,High\n";
// More than are compared one by one.
std::string manyClasses()
{
    std::string text = "Limit,Name\n";
    for (int i = 0; i < 24; ++i) {
        text += std::to_string(10 * i - 30) + ",Class" + std::to_string(i) + "\n";
    }
    return text;
}

const std::string kColours = "Value,Name,Red,Green,Blue\n-5,Low,0,255,0\n50,\"b, c\",255,128,0\n100,Top,9,9,9\n";

// A layer of regions, each given by the corners of its ring.
GivenFiles regions(const std::vector<std::string>& rings)
{
    std::string body;
    std::string records;
    for (const std::string& ring : rings) {
        const auto corners = std::ranges::count(ring, '\n');
        records += "r" + std::to_string(records.size() / 6 + 10) + ",1\n";
        body += "Region 1\n" + std::to_string(corners) + "\n" + ring;
    }
    return {{"r.mif", mifText(body)}, {"r.mid", records}};
}

std::string square(int west, int south, int side)
{
    const auto corner = [](int x, int y) { return std::to_string(x) + ".5 " + std::to_string(y) + ".5\n"; };
    return corner(west, south) + corner(west, south + side) + corner(west + side, south + side) +
           corner(west + side, south) + corner(west, south);
}

// A star with runs of cells in a row, one that reaches over the grid, one beside it, and another.
const std::vector<std::string> kRegions = {
    "3.5 10.5\n9.5 200.5\n13.5 60.5\n18.5 190.5\n22.5 70.5\n30.5 210.5\n29.5 20.5\n3.5 10.5\n",
    square(20, 180, 90),
    square(500, 500, 4),
    square(1, 1, 35),
};

// More than wait in files of their own.
std::vector<std::string> manyRegions()
{
    std::vector<std::string> rings = kRegions;
    for (int i = 0; i < 20; ++i) {
        rings.push_back(square(3 + i, 2 + 10 * i, 7));
    }
    return rings;
}

std::vector<Case> cases()
{
    return {
        {"Max", "-max", {-9999, -1, -9999}},
        {"MaxWithoutSource", "-max -src -decimal1", {-9999, -9999}},
        {"Min", "-min", {-9999, -1, -9999}},
        {"MinOfMany", "-min", std::vector<double>(70, -9999)}, // more than are open at a time
        {"MaxOfMany", "-max", std::vector<double>(70, -9999)},
        {"Difference", "-dif", {-9999, -1}},
        {"DifferenceOfActive", "-dif -change -nowetdry", {-9999, -9999}},
        {"Change", "-dif -change", {-9999, -9999}},
        {"Product", "-multiply", {-9999, -1}},
        {"Transform", "-trans_m2.5 -trans_c-1", {-9999}},
        {"Cutoff", "-cd12.5", {-9999}},
        {"Filter", "-cd12.5", {-9999, -1}},
        {"FloodExtent", "-fe", {-9999}},
        {"Fuzzy", "-fuzzy", {-9999, -9999, -1}},
        {"FuzzyOfMany", "-fuzzy", std::vector<double>(70, -9999)},
        {"Count", "-count", {-9999}},
        {"CountAboveCutoff", "-count -cd12.5", {-9999}},
        {"Convert", "-conv", {-9999}},
        {"ConvertSome", "-conv -decimal1", {-9999, -1}},
        {"Classify", "-classify c.csv", {-9999}, {{"c.csv", kClasses}}},
        {"ClassifyByColours", "-classify c.csv -RGB -grc -asc", {-9999}, {{"c.csv", kColours}}},
        {"Histogram", "-histogram c.csv", {-9999}, {{"c.csv", kClasses}}},
        {"HistogramOfManyBins", "-histogram c.csv", {-9999}, {{"c.csv", manyClasses()}}},
        {"ClassifyByManyClasses", "-classify c.csv", {-9999}, {{"c.csv", manyClasses()}}},
        {"Resize", "-resize5", {-9999}},
        {"ResizeToMaximum", "-resize7 -rm_max -asc", {-9999}},
        {"ResizeToMinimum", "-resize2 -rm_min -flt", {-1}},
        {"ResizeByOne", "-resize1", {-9999}},
        {"ResizeToOneCell", "-resize1000", {-9999}},
        {"Trim", "-trim r.mif", {-9999}, regions(kRegions)},
        {"TrimToBinary", "-trim r.mif -flt", {-1, -9999}, regions(kRegions)},
        {"TrimByOneRegion", "-trim r.mif -out t -flt", {-9999}, regions({kRegions[0]})},
        {"TrimByManyRegions", "-trim r.mif -flt", {-9999}, regions(manyRegions())},
        {"StatAll", "-statAll", {-9999, -9999, -9999}},
        {"StatMedian", "-statMedian", {-9999, -9999}},
        {"StatRanks", "-statRankAll -statFrac", {-9999, -9999, -9999}},
        {"StatMinimumAndMean", "-statMin -statMean", {-1, -1}},
    };
}

class BothWays : public testing::TestWithParam<Case> {
protected:
    // Compares with the way step by step; `output` is a format as an option, or nothing.
    void compare(const std::string& extension, const std::string& output)
    {
        const bool binary = extension == ".flt";
        give(binary);
        const std::string line = GetParam().options + names_ + output;
        expectBothWaysTheSame(given_, line, !binary);
    }

private:
    void give(bool binary)
    {
        given_ = GetParam().others;
        names_.clear();
        std::uint32_t number = 0;
        for (const double null : GetParam().nulls) {
            const std::string base = "g" + std::to_string(++number);
            const Cells cells = cellsOfGrid(number % 20, null, binary);
            names_ += ' ' + base + (binary ? ".flt" : ".asc");
            if (binary) {
                given_[base + ".hdr"] = hdr(cells, {.null = null});
                given_[base + ".flt"] = fltCells(cells);
            } else {
                given_[base + ".asc"] = ascGrid(cells, {.null = null});
            }
        }
    }

    GivenFiles given_;
    std::string names_;
};

TEST_P(BothWays, AreTheSameForBinaryGrids)
{
    compare(".flt", "");
}

TEST_P(BothWays, AreTheSameForTextGrids)
{
    compare(".asc", "");
}

// Those named here work on layers, points or NetCDF, and have other tests of their own.
TEST(BothWaysCases, AreOfAllOtherOperations)
{
    std::set<std::string_view> missing;
    for (const driver::OperationRow& operation : driver::operationTable()) {
        missing.insert(operation.name);
    }
    for (const Case& one : cases()) {
        std::istringstream rest(one.options);
        const std::vector<std::string> arguments{std::istream_iterator<std::string>(rest), {}};
        missing.erase(driver::selectOperation(driver::scanArguments(arguments))->name);
    }
    EXPECT_THAT(missing, testing::UnorderedElementsAre("nc", "cp", "lp", "brkline", "xs", "nbc", "na", "xyz", "damages",
                                                       "rf", "remap"));
}

INSTANTIATE_TEST_SUITE_P(Operations, BothWays, testing::ValuesIn(cases()),
                         [](const auto& one) { return one.param.name; });

// Inputs of both formats in turn: those of one format that follow each other are read together.
TEST(BothWaysMixed, AreTheSameForInputsOfBothFormats)
{
    GivenFiles given;
    std::string names;
    std::uint32_t number = 0;
    for (const bool binary : {false, true, true, false, true}) {
        const std::string base = "g" + std::to_string(++number);
        const Cells cells = cellsOfGrid(number, -9999, binary);
        names += ' ' + base + (binary ? ".flt" : ".asc");
        if (binary) {
            given[base + ".hdr"] = hdr(cells);
            given[base + ".flt"] = fltCells(cells);
        } else {
            given[base + ".asc"] = ascGrid(cells);
        }
    }
    for (const std::string options : {"-max", "-min", "-fuzzy", "-statAll", "-statMedian -statMean"}) {
        for (const std::string output : {"", " -flt", " -asc"}) {
            expectBothWaysTheSame(given, options + names + output, true);
        }
    }
}

// --- What sends a run step by step -----------------------------------------------------------------------------------

std::string asc(const std::string& rows, const std::string& corner = "0")
{
    return "ncols 3\nnrows 2\nxllcorner " + corner + "\nyllcorner 0\ncellsize 1\nNODATA_value -9999\n" + rows;
}

void expectWay(run::Way way, const GivenFiles& given, bool refusesReads = false)
{
    const std::size_t before = waysGone(way);
    const std::size_t ahead = waysGone(run::Way::ahead);
    const Outcome outcome = runOperationOn(given, "-max -src a.asc b.asc -out m.asc", refusesReads);
    EXPECT_EQ(waysGone(way), before + 1);
    EXPECT_EQ(waysGone(run::Way::ahead), ahead + (way == run::Way::ahead ? 1 : 0));
    EXPECT_EQ(outcome.files.at("m.asc").substr(outcome.files.at("m.asc").find("NODATA_value")),
              "NODATA_value -9999.0\r\n  7.000  8.000  9.000\r\n  4.000  5.000  6.000\r\n");
}

const std::string kOnes = asc("1 2 3\n4 5 6\n");
const std::string kSevens = asc("7 8 9\n1 1 1\n");

TEST(Ways, AheadWhereAllIsOrdinary)
{
    expectWay(run::Way::ahead, {{"a.asc", kOnes}, {"b.asc", kSevens}});
}

TEST(Ways, StepByStepForTextThatDoesNotHoldARowALine)
{
    expectWay(run::Way::oddText, {{"a.asc", kOnes}, {"b.asc", asc("7\n8 9\n1 1 1\n")}});
}

TEST(Ways, StepByStepForALatticeThatDiffers)
{
    const std::size_t before = waysGone(run::Way::otherLattice);
    run::InputFileList inputs;
    const ScratchFolder folder;
    folder.give("a.asc", kOnes);
    folder.give("b.asc", asc("7 8 9\n1 1 1\n", "0.02"));
    inputs.add((folder.path() / "a.asc").string());
    inputs.add((folder.path() / "b.asc").string());
    EXPECT_FALSE(lookAtInputs(inputs));
    EXPECT_EQ(waysGone(run::Way::otherLattice), before + 1);
}

TEST(Ways, StepByStepForAnInputThatIsOdd)
{
    const std::size_t before = waysGone(run::Way::oddInput);
    run::InputFileList inputs;
    inputs.add("missing.asc");
    EXPECT_FALSE(lookAtInputs(inputs));
    EXPECT_EQ(waysGone(run::Way::oddInput), before + 1);
}

TEST(Ways, StepByStepWhereCellsFindNoRoom)
{
    const Environment environment({{"GRIDFORGE_MEMORY", "1"}, {"GRIDFORGE_SCRATCH", "/nowhere"}});
    expectWay(run::Way::noRoom, {{"a.asc", kOnes}, {"b.asc", kSevens}});
}

TEST(Ways, StepByStepWhereACopyFindsNoRoom)
{
    const Environment environment({{"GRIDFORGE_MEMORY", "1"}, {"GRIDFORGE_SCRATCH", "/nowhere"}});
    const auto run = [](const ScratchFolder& folder, int good) {
        folder.give("a.asc", kOnes);
        return runInChild(folder, [good] {
            refuseOneUnnamedFileAfter(good);
            run::InputFileList inputs;
            inputs.add("a.asc");
            const std::size_t ahead = waysGone(run::Way::ahead);
            const std::size_t noRoom = waysGone(run::Way::noRoom);
            ops::runConv({}, inputs);
            say("ways: ", waysGone(run::Way::ahead) - ahead, ' ', waysGone(run::Way::noRoom) - noRoom);
        });
    };
    for (const int good : {0, 1}) { // files, of which the first has the cells until it gets the name of the grid
        const ScratchFolder folder;
        EXPECT_THAT(run(folder, good).console, testing::EndsWith(good == 0 ? "ways: 0 1\n" : "ways: 1 0\n"));
        EXPECT_EQ(folder.read("a.flt"), fltCells({{1, 2, 3}, {4, 5, 6}}));
    }
}

TEST(Ways, StepByStepWhereAResizeFindsNoRoom)
{
    const Cells cells = {{1, 2, 3, 4}, {5, 6, 7, 8}};
    const GivenFiles given = {{"a.asc", ascGrid(cells)}, {"b.hdr", hdr(cells)}, {"b.flt", fltCells(cells)}};
    // No room for the cells of a text, or for those of the output alone.
    for (const std::string line : {"-resize2 a.asc -out r.asc", "-resize2 b.flt -asc -out r.asc"}) {
        const Outcome ordinary = runOperationOn(given, line);
        const Environment environment({{"GRIDFORGE_MEMORY", "1"}, {"GRIDFORGE_SCRATCH", "/nowhere"}});
        const std::size_t noRoom = waysGone(run::Way::noRoom);
        const std::size_t ahead = waysGone(run::Way::ahead);
        const Outcome found = runOperationOn(given, line);
        EXPECT_EQ(waysGone(run::Way::noRoom), noRoom + 1) << line;
        EXPECT_EQ(waysGone(run::Way::ahead), ahead) << line;
        EXPECT_EQ(found, ordinary) << line;
        EXPECT_EQ(readWrittenAsc(found.files.at("r.asc")).cells, (Cells{{3.5, 5.5}})) << line;
    }
}

TEST(Ways, AheadInTheRoomOfOneTextAtATime)
{
    const Environment environment({{"GRIDFORGE_MEMORY", "48"}}); // for six cells of the output and six of an input
    const std::size_t files = grid::filesOfCells();
    expectWay(run::Way::ahead, {{"a.asc", kOnes}, {"b.asc", kSevens}});
    EXPECT_EQ(grid::filesOfCells(), files);
}

// The text needs a file of its own and one for its cells: those of the group before it are closed by then.
TEST(Ways, AheadWhereATextFollowsAsManyBinaryGridsAsFilesMayBeOpen)
{
    const ScratchFolder folder;
    run::InputFileList inputs;
    for (const std::string name : {"a", "b", "c"}) {
        folder.give(name + ".hdr", hdr({{1, 2, 3}, {4, 5, 6}}));
        folder.give(name + ".flt", fltCells({{1, 2, 3}, {4, 5, 6}}));
        inputs.add((folder.path() / (name + ".flt")).string());
    }
    folder.give("d.asc", kSevens);
    inputs.add((folder.path() / "d.asc").string());
    const auto looks = lookAtInputs(inputs);
    ASSERT_TRUE(looks);
    const Environment environment({{"GRIDFORGE_MEMORY", "1"}});
    const ChildRun run = runInChild(folder, [&looks] {
        limitOpenFiles(4); // that of the output's cells too
        const auto most =
            run::foldAhead(*looks, {".", false, 1}, [](const auto&, std::size_t input, auto cells, auto outputs) {
                for (std::size_t i = 0; i < cells.size(); ++i) {
                    const bool higher = input == 0 || cells[i] > outputs[0][i];
                    outputs[0][i] = higher ? cells[i] : outputs[0][i];
                }
            });
        const std::vector<float> wanted = {7, 8, 9, 4, 5, 6};
        std::vector<float> got(wanted.size());
        say("ahead: ", most && most->front().get(0, got) && got == wanted ? "right" : "wrong");
    });
    EXPECT_EQ(run.console, "ahead: right\n");
}

TEST(Ways, StepByStepWhereAReadIsRefused)
{
    const std::size_t before = waysGone(run::Way::readRefused);
    const std::string head = "ncols 2\nnrows 1\nxllcorner 0\nyllcorner 0\ncellsize 1\nbyteorder LSBFIRST\n";
    const GivenFiles given = {{"a.hdr", head}, {"a.flt", std::string(8, 'x')}};
    const Outcome outcome = runOperationOn(given, "-max -src a.flt -out m.flt", true);
    EXPECT_EQ(waysGone(run::Way::readRefused), before + 1);
    EXPECT_EQ(outcome.files.at("m.flt"), std::string(8, 'x'));
}

// Cells of a binary grid that wait for their text in the grid's own file find other room when this is about to go.
TEST(Ways, AheadWhereTheTextTakesThePlaceOfTheInput)
{
    const Cells cells = {{1, 2, 3}, {4, -5.5, 6}};
    const std::size_t ahead = waysGone(run::Way::ahead);
    const ScratchFolder folder;
    folder.give("a.hdr", hdr(cells));
    folder.give("a.flt", fltCells(cells));
    std::filesystem::create_hard_link(folder.path() / "a.flt", folder.path() / "a.asc");
    const Outcome outcome = runOperationIn(folder, "-conv a.flt");
    EXPECT_EQ(waysGone(run::Way::ahead), ahead + 1);
    EXPECT_EQ(readWrittenAsc(outcome.files.at("a.asc")).cells, cells);
}

// Those cells cannot be read again when their file has become the text.
TEST(Ways, ARefusedReadOfAnInputThatItsTextReplacesIsNeverLost)
{
    const Environment environment({{"GRIDFORGE_THREADS", "1"}});
    const Cells cells = {{1, 2, 3}, {4, -5.5, 6}};
    const auto run = [&cells](const ScratchFolder& folder, int good) {
        folder.give("a.hdr", hdr(cells));
        folder.give("a.flt", fltCells(cells));
        std::filesystem::create_hard_link(folder.path() / "a.flt", folder.path() / "a.asc");
        return runInChild(folder, [good] {
            run::InputFileList inputs;
            inputs.add("a.flt");
            refuseOneReadAfter(good);
            ops::runConv({}, inputs);
        });
    };
    int ended = 0;
    for (int good = 0; good < 8; ++good) {
        const ScratchFolder folder;
        if (run(folder, good).ended) {
            ++ended;
        } else {
            EXPECT_EQ(readWrittenAsc(folder.read("a.asc")).cells, cells) << good << " good reads";
        }
    }
    EXPECT_GT(ended, 0);
    EXPECT_LT(ended, 8);
}

// They need other room first, in memory or in a file.
TEST(Ways, AnInputThatItsTextReplacesAndThatFindsNoRoomEndsTheRun)
{
    const Cells cells = {{1, 2, 3}, {4, -5.5, 6}};
    const auto run = [&cells](const std::string& scratch) {
        const Environment environment({{"GRIDFORGE_MEMORY", "1"}, {"GRIDFORGE_SCRATCH", scratch}});
        const ScratchFolder folder;
        folder.give("a.hdr", hdr(cells));
        folder.give("a.flt", fltCells(cells));
        std::filesystem::create_hard_link(folder.path() / "a.flt", folder.path() / "a.asc");
        const ChildRun made = runInChild(folder, [] {
            run::InputFileList inputs;
            inputs.add("a.flt");
            refuseWritesAfter(0); // of cells that wait in a file
            ops::runConv({}, inputs);
        });
        EXPECT_TRUE(made.ended) << scratch;
        EXPECT_THAT(made.console, testing::EndsWith("ERROR - Could not allocate enough memory (RAM).\n" + kExits));
        EXPECT_EQ(folder.read("a.flt"), fltCells(cells)); // as nothing was written over it yet
    };
    run("/nowhere");
    run(".");
}

} // namespace
} // namespace gridforge::test
