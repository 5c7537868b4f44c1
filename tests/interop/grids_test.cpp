// GDAL reads the grids that the tool writes, and the tool reads those that GDAL writes.
#include "support/gdal.h"
#include "support/paths.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace gridforge::test {
namespace {

constexpr const char* kProjcs =
    R"(PROJCS["Made_Zone",GEOGCS["GCS_GDA_1994",DATUM["D_GDA_1994",SPHEROID["GRS_1980",6378137.0,298.257222101]],)"
    R"(PRIMEM["Greenwich",0.0],UNIT["Degree",0.0174532925199433]],PROJECTION["Transverse_Mercator"],)"
    R"(PARAMETER["False_Easting",500000.0],PARAMETER["False_Northing",10000000.0],)"
    R"(PARAMETER["Central_Meridian",153.0],PARAMETER["Scale_Factor",0.9996],)"
    R"(PARAMETER["Latitude_Of_Origin",0.0],UNIT["Meter",1.0]])";

const Cells kCells{{31, 32.5, kNull}, {-21.25, 0, 23}, {11, 12, 1300.75}, {kNull, 2, 3}};

class GridsWithGdal : public testing::Test {
protected:
    void SetUp() override
    {
        if (!hasGdal()) {
            GTEST_SKIP() << "no Python with GDAL (Debian: python3-gdal)";
        }
    }
};

TEST_F(GridsWithGdal, ReadsOurText)
{
    ToolRun run("-b -conv a.flt");
    run.give("a.flt", fltCells(kCells));
    run.give("a.hdr", hdr(kCells, {.xll = 293000.5, .yll = 6178000, .cellsize = 2.5}));
    run.give("a.prj", std::string(kProjcs) + "\r\n");
    run.start();
    const GdalGrid found = readByGdal(run, "a.asc");
    EXPECT_EQ(found.cells, kCells);
    EXPECT_EQ(found.xll, 293000.5);
    EXPECT_EQ(found.yll, 6178000);
    EXPECT_EQ(found.cellsize, 2.5);
    EXPECT_EQ(found.null, kNull);
    EXPECT_EQ(found.projection, "Made_Zone");
}

TEST_F(GridsWithGdal, ReadsOurBinary)
{
    ToolRun run("-b -conv a.asc");
    run.give("a.asc", ascGrid(kCells, {.xll = -17.25, .yll = 40, .cellsize = 0.5, .null = -9999}));
    run.give("a.prj", std::string(kProjcs) + "\n");
    run.start();
    const GdalGrid found = readByGdal(run, "a.flt");
    EXPECT_EQ(found.cells, kCells);
    EXPECT_EQ(found.xll, -17.25);
    EXPECT_EQ(found.yll, 40);
    EXPECT_EQ(found.cellsize, 0.5);
    EXPECT_EQ(found.null, kNull);
    EXPECT_EQ(found.projection, "Made_Zone");
}

TEST_F(GridsWithGdal, ReadsOneCell)
{
    ToolRun run("-b -conv a.asc");
    run.give("a.asc", ascGrid({{7.5}}));
    run.start();
    EXPECT_EQ(readByGdal(run, "a.flt").cells, (Cells{{7.5}}));
}

TEST_F(GridsWithGdal, ItsTextIsRead)
{
    ToolRun run("-b -conv a.asc");
    writeByGdal(run, "AAIGrid", "a.asc", kCells, {.xll = 293000.5, .yll = 6178000, .cellsize = 2.5});
    run.start();
    EXPECT_GRID(run, "a.flt", kCells);
    const WrittenGrid found = run.grid("a.flt");
    EXPECT_EQ(found.xll, 293000.5);
    EXPECT_EQ(found.yll, 6178000);
    EXPECT_EQ(found.cellsize, 2.5);
    EXPECT_EQ(found.null, kNull);
}

TEST_F(GridsWithGdal, ItsTextWithLongNumbersIsReadToTheLastBit)
{
    // Thirds and a million and a bit need all the digits that single precision has.
    const Cells cells{{1.0 / 3, 1000000.0625}, {-2e-7, 123456.789}};
    ToolRun run("-b -conv a.asc");
    writeByGdal(run, "AAIGrid", "a.asc", cells);
    const GdalGrid asItReadsItself = readByGdal(run, "a.asc");
    run.start();
    EXPECT_GRID(run, "a.flt", asItReadsItself.cells);
}

TEST_F(GridsWithGdal, ItsBinaryCellsAreReadUnderOurHeader)
{
    ToolRun run("-b -conv a.flt");
    writeByGdal(run, "EHdr", "a.flt", kCells);
    run.give("a.hdr", hdr(kCells));
    run.start();
    EXPECT_GRID(run, "a.asc", kCells);
}

// Its header has the upper left cell and no corner, and begins with a line that is no keyword of ours.
TEST_F(GridsWithGdal, ItsBinaryHeaderIsRefused)
{
    ToolRun run("-b -conv a.flt");
    writeByGdal(run, "EHdr", "a.flt", kCells);
    run.start();
    EXPECT_NE(run.console().find("ERROR 2333 - Insufficient header information in external grid file."),
              std::string::npos)
        << run.console();
    EXPECT_FALSE(run.has("a.asc"));
}

TEST_F(GridsWithGdal, ReadsTheMaximumOfTheSampleStorms)
{
    ToolRun run("-b -max depth_1pct_1h.asc depth_1pct_6h.asc depth_1pct_24h.asc -out top -flt");
    ToolRun maker({"--columns", "61", "--rows", "47", "--detail", "60", "--only", "depth", "--out", run.folder()});
    maker.program(catchmentMakerPath());
    maker.start();
    ASSERT_EQ(maker.status(), 0) << maker.error();
    run.start();

    const Cells storms[] = {readByGdal(run, "depth_1pct_1h.asc").cells, readByGdal(run, "depth_1pct_6h.asc").cells,
                            readByGdal(run, "depth_1pct_24h.asc").cells};
    Cells highest = storms[0];
    Cells source = storms[0];
    int times[4] = {};
    for (std::size_t row = 0; row < highest.size(); ++row) {
        for (std::size_t column = 0; column < highest[row].size(); ++column) {
            double best = kNull;
            double from = kNull;
            for (int storm = 0; storm < 3; ++storm) {
                if (storms[storm][row][column] > best) {
                    best = storms[storm][row][column];
                    from = storm + 1;
                }
            }
            highest[row][column] = best;
            source[row][column] = from;
            ++times[from == kNull ? 0 : static_cast<int>(from)];
        }
    }
    EXPECT_GT(*std::min_element(std::begin(times), std::end(times)), 0) << "each storm is to be the worst somewhere";
    const GdalGrid found = readByGdal(run, "top.flt");
    EXPECT_EQ(found.cells, highest);
    EXPECT_EQ(found.projection, "GDA94_MGA_zone_56");
    EXPECT_EQ(readByGdal(run, "top_src.flt").cells, source);
    EXPECT_EQ(run.read("top_src_legend.csv"), "\"Value in Grid\",\"Source Grid File\"\r\n1,depth_1pct_1h.asc\r\n"
                                              "2,depth_1pct_6h.asc\r\n3,depth_1pct_24h.asc\r\n");
}

} // namespace
} // namespace gridforge::test
