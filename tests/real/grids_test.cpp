// Conversion and extremes on real grids, checked by a second reading of the files in a few lines.
#include "support/paths.h"
#include "support/tool_run.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <sstream>

namespace gridforge::test {
namespace {

const std::filesystem::path kData = dataFolder();

#define SKIP_WITHOUT_REAL_DATA()                                                                                       \
    if (!std::filesystem::is_directory(kData)) {                                                                       \
        GTEST_SKIP() << "no real data in " << kData << " (set GRIDFORGE_DATA_DIR)";                                    \
    }

std::string realFile(const std::string& name)
{
    std::ifstream in(kData / name, std::ios::binary);
    if (!in) {
        ADD_FAILURE() << "cannot read " << kData / name;
    }
    return {std::istreambuf_iterator<char>(in), {}};
}

// Six header lines in the usual order, then the cells, free in form; single precision, rounded once.
WrittenGrid plainAsc(const std::string& text)
{
    WrittenGrid grid;
    std::istringstream in(text);
    std::string key;
    in >> key >> grid.ncols >> key >> grid.nrows >> key >> grid.xll >> key >> grid.yll >> key >> grid.cellsize >> key >>
        grid.null;
    for (std::int64_t row = 0; row < grid.nrows; ++row) {
        auto& cells = grid.cells.emplace_back();
        for (std::int64_t column = 0; column < grid.ncols; ++column) {
            in >> key;
            cells.push_back(std::strtof(key.c_str(), nullptr));
        }
    }
    EXPECT_FALSE(in.fail());
    return grid;
}

Cells littleEndian(const std::string& bytes, std::size_t rows, std::size_t columns)
{
    EXPECT_EQ(bytes.size(), 4 * rows * columns);
    Cells cells(rows, std::vector<double>(columns));
    std::size_t at = 0;
    for (auto& row : cells) {
        for (double& cell : row) {
            std::uint32_t bits = 0;
            for (std::size_t k = 0; k < 4; ++k) {
                bits |= static_cast<std::uint32_t>(static_cast<unsigned char>(bytes.at(at++))) << (8 * k);
            }
            cell = std::bit_cast<float>(bits);
        }
    }
    return cells;
}

// The largest difference between two grids of one size.
double largestDifference(const Cells& a, const Cells& b)
{
    double largest = 0;
    EXPECT_EQ(a.size(), b.size());
    for (std::size_t row = 0; row < std::min(a.size(), b.size()); ++row) {
        EXPECT_EQ(a[row].size(), b[row].size());
        for (std::size_t i = 0; i < std::min(a[row].size(), b[row].size()); ++i) {
            largest = std::max(largest, std::abs(a[row][i] - b[row][i]));
        }
    }
    return largest;
}

class RealTextGrid : public testing::TestWithParam<const char*> {};

TEST_P(RealTextGrid, ConvertsToTheSameCells)
{
    SKIP_WITHOUT_REAL_DATA();
    ToolRun run("-b -conv a.asc");
    const std::string text = realFile(GetParam());
    run.give("a.asc", text);
    run.start();
    const WrittenGrid expected = plainAsc(text);
    const WrittenGrid found = run.grid("a.flt");
    ASSERT_GT(expected.ncols, 0);
    EXPECT_EQ(found.ncols, expected.ncols);
    EXPECT_EQ(found.nrows, expected.nrows);
    EXPECT_TRUE(found.cells == expected.cells);
    EXPECT_NEAR(found.xll, expected.xll, 1e-3);
    EXPECT_NEAR(found.yll, expected.yll, 1e-3);
    // Single precision, written with nine or ten decimals or fewer where it is large.
    EXPECT_NEAR(found.cellsize, static_cast<float>(expected.cellsize), 1e-7 * expected.cellsize);
    EXPECT_EQ(found.null, expected.null);
    EXPECT_NO_OTHER_FILES(run);
}

INSTANTIATE_TEST_SUITE_P(Real, RealTextGrid,
                         testing::Values("merewether/dem.asc", "merewether/level_large.asc",
                                         "merewether/level_large_coarse.asc", "bayou/dem.asc", "bayou/level_1pct.asc",
                                         "delta/dem.asc", "formats/nodata_int.asc"));

// One cell a line: a row may go on over several lines, as free-form reading has it.
TEST(RealGrids, OneCellALine)
{
    SKIP_WITHOUT_REAL_DATA();
    ToolRun run("-b -conv a.asc");
    const std::string text = realFile("formats/pixel_per_line.asc");
    run.give("a.asc", text);
    run.start();
    EXPECT_TRUE(run.grid("a.flt").cells == plainAsc(text).cells);
    EXPECT_EQ(run.grid("a.flt").cellsize, 50);
}

// The binary form of the delta has more digits than its text, which has three decimals.
TEST(RealGrids, TheDeltaIsWrittenToTheNearestThirdDecimal)
{
    SKIP_WITHOUT_REAL_DATA();
    ToolRun run("-b -conv dem_bin.flt");
    const std::string cells = realFile("delta/dem_bin.flt");
    run.give("dem_bin.flt", cells);
    run.give("dem_bin.hdr", realFile("delta/dem_bin.hdr"));
    run.start();
    const WrittenGrid found = run.grid("dem_bin.asc");
    EXPECT_EQ(found.ncols, 391);
    EXPECT_EQ(found.nrows, 341);
    // A double holds the 32-bit cells and their distance to three decimals with room to spare.
    EXPECT_LE(largestDifference(found.cells, littleEndian(cells, 341, 391)), 0.0005 + 1e-12);
}

// The cells of this file are stored most significant byte first and its header says so; they are taken the other way
// round all the same.
TEST(RealGrids, TheByteOrderLineIsNotLookedAt)
{
    SKIP_WITHOUT_REAL_DATA();
    ToolRun run("-b -max a.flt -src -out b -flt");
    const std::string cells = realFile("formats/ehdr11.flt");
    run.give("a.flt", cells);
    run.give("a.hdr", "ncols 321\nnrows 2\ncellsize 2500\nxllcorner 0\nyllcorner 0\nbyteorder msbfirst\n");
    run.start();
    // What is not above the null of -9999 never enters a maximum.
    Cells expected = littleEndian(cells, 2, 321);
    for (auto& row : expected) {
        for (double& cell : row) {
            cell = cell > kNull ? cell : kNull;
        }
    }
    EXPECT_GRID(run, "b.flt", expected);
}

// In its own header `nbits` stands before the corner, and a line without a keyword ends the header.
TEST(RealGrids, AHeaderWithAStrangeLineAmongTheKeywordsIsRefused)
{
    SKIP_WITHOUT_REAL_DATA();
    ToolRun run("-b -conv ehdr11.flt");
    run.give("ehdr11.flt", realFile("formats/ehdr11.flt"));
    run.give("ehdr11.hdr", realFile("formats/ehdr11.hdr"));
    run.start();
    EXPECT_NE(run.console().find("ERROR 2333 - Insufficient header information in external grid file."),
              std::string::npos)
        << run.console();
    EXPECT_NO_OTHER_FILES(run);
}

void extremesOf(const std::string& flag, const std::vector<std::string>& names)
{
    std::vector<std::string> words{"-b", flag};
    for (std::size_t i = 0; i < names.size(); ++i) {
        words.push_back("in" + std::to_string(i + 1) + ".asc");
    }
    words.insert(words.end(), {"-out", "top.flt"});
    ToolRun run(words);
    std::vector<Cells> grids;
    for (std::size_t i = 0; i < names.size(); ++i) {
        const std::string text = realFile(names[i]);
        run.give(words[i + 2], text);
        grids.push_back(plainAsc(text).cells);
    }
    run.start();

    const double sign = flag == "-max" ? 1 : -1;
    Cells values = grids[0];
    Cells sources = grids[0];
    for (std::size_t row = 0; row < values.size(); ++row) {
        for (std::size_t i = 0; i < values[row].size(); ++i) {
            values[row][i] = sources[row][i] = kNull;
            for (std::size_t k = 0; k < grids.size(); ++k) {
                const double cell = grids[k][row][i];
                if (cell != kNull && (sources[row][i] == kNull || sign * cell > sign * values[row][i])) {
                    values[row][i] = cell;
                    sources[row][i] = static_cast<double>(k + 1);
                }
            }
        }
    }
    EXPECT_TRUE(run.grid("top.flt").cells == values) << run.command();
    EXPECT_TRUE(run.grid("top_src.flt").cells == sources) << run.command();
    EXPECT_TRUE(run.has("top_src_legend.csv"));
    EXPECT_NO_OTHER_FILES(run);
}

TEST(RealGrids, ExtremesOfFloodLevels)
{
    SKIP_WITHOUT_REAL_DATA();
    const std::vector<std::string> bayou{"bayou/level_10pct.asc", "bayou/level_2pct.asc", "bayou/level_1pct.asc",
                                         "bayou/level_0p2pct.asc"};
    extremesOf("-max", bayou);
    extremesOf("-min", bayou);
    const std::vector<std::string> street{"merewether/level_large.asc", "merewether/level_small.asc",
                                          "merewether/level_medium.asc"};
    extremesOf("-max", street);
    extremesOf("-min", street);
}

TEST(RealGrids, GridsOfDifferentPlacesAreRefused)
{
    SKIP_WITHOUT_REAL_DATA();
    ToolRun run("-b -max a.asc b.asc");
    run.give("a.asc", realFile("merewether/dem.asc"));
    run.give("b.asc", realFile("bayou/dem.asc"));
    run.start();
    EXPECT_TRUE(run.says("ERROR - number of rows for input grids do not match. Rows = 416 and 347"));
    EXPECT_TRUE(run.says("ERROR - number of columns for input grids do not match. Columns = 321 and 494"));
    EXPECT_TRUE(run.says("ERROR - dimensions of grids do not match (see above for details)."));
    EXPECT_NO_OTHER_FILES(run);
}

} // namespace
} // namespace gridforge::test
