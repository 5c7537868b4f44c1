#include "support/consoles.h"
#include "support/tool_run.h"

namespace gridforge::test {
namespace {

// Digits: row, column, from the south-west.
const Cells kThree = {{31, 32, 33}, {21, 22, 23}, {11, 12, 13}};

TEST(ResizeCli, AveragesTilesFromTheSouthWest)
{
    ToolRun run("-resize2 a.asc");
    run.give("a.asc", ascGrid(kThree, {.xll = 100, .yll = 200.5, .lineEnd = "\n"}));
    run.start();
    EXPECT_EQ(run.status(), 0);
    EXPECT_EQ(run.error(), "");
    EXPECT_CONSOLE(run, joined({startOf({"a.asc"}),
                                {"Resizing grid.", "Loading grid data..."},
                                headerOf("a.asc", "3 rows by 3 columns"),
                                {"Allocating 0Kb memory for storing input grid..."},
                                ascCells(),
                                {"Current grid size =     1.0000", "Resize factor     =          2",
                                 "New cell size (c) =     2.0000", "Allocating 0Kb memory for storing output grid...",
                                 "Processing Output Row:", kFormatOfInputs, "Writing resized grid to: a_resize2"},
                                writtenAsc("a_resize2"),
                                normalEnd()}));
    EXPECT_GRID(run, "a_resize2.asc", {{(31 + 32) / 2.0, 33}, {(11 + 12 + 21 + 22) / 4.0, (13 + 23) / 2.0}});
    const WrittenGrid grid = run.grid("a_resize2.asc");
    EXPECT_EQ(grid.xll, 100);
    EXPECT_EQ(grid.yll, 200.5);
    EXPECT_EQ(grid.cellsize, 2);
    EXPECT_EQ(grid.null, kNull);
    EXPECT_NO_OTHER_FILES(run);
}

TEST(ResizeCli, TheLastMethodFlagStands)
{
    const std::vector<std::pair<const char*, Cells>> cases = {
        {"-resize2 -rm_min a.asc", {{31, 33}, {11, 13}}},
        {"-resize2 -rm_max a.asc", {{32, 33}, {22, 23}}},
        {"-resize2 -rm_max -rm_min a.asc", {{31, 33}, {11, 13}}},
        {"-resize2 -rm_min -rm_max -rm_avg a.asc", {{31.5, 33}, {16.5, 18}}},
    };
    for (const auto& [arguments, expected] : cases) {
        ToolRun run(arguments);
        run.give("a.asc", ascGrid(kThree));
        run.start();
        EXPECT_GRID(run, "a_resize2.asc", expected);
    }
}

TEST(ResizeCli, TenByTenInThreesGivesFourByFour)
{
    Cells ten(10, std::vector<double>(10));
    for (int line = 0; line < 10; ++line) {
        for (int column = 0; column < 10; ++column) {
            ten[static_cast<std::size_t>(line)][static_cast<std::size_t>(column)] = (10 - line) * 100 + column + 1;
        }
    }
    ToolRun run("-resize3 -rm_min a.asc");
    run.give("a.asc", ascGrid(ten));
    run.start();
    EXPECT_GRID(run, "a_resize3.asc",
                {{1001, 1004, 1007, 1010}, {701, 704, 707, 710}, {401, 404, 407, 410}, {101, 104, 107, 110}});
}

TEST(ResizeCli, FactorOneReproducesTheGrid)
{
    for (const char* arguments : {"-resize1 a.asc", "-resize1 -rm_max a.asc", "-resize1 -rm_min a.asc"}) {
        ToolRun run(arguments);
        run.give("a.asc", ascGrid({{0.1, kNull}, {-5, 7.25}}));
        run.start();
        EXPECT_GRID(run, "a_resize1.asc", {{0.1, kNull}, {-5, 7.25}});
    }
}

TEST(ResizeCli, AFactorLargerThanTheGridGivesOneCell)
{
    ToolRun run("-resize2147483647 a.asc");
    run.give("a.asc", ascGrid({{1, 2, 3}, {kNull, 5, 6}}));
    run.start();
    EXPECT_TRUE(run.says("Resize factor     = 2147483647"));
    EXPECT_TRUE(run.says("New cell size (c) = **********")); // 2147483648.0000
    EXPECT_GRID(run, "a_resize2147483647.asc", {{3.4}});     // (1 + 2 + 3 + 5 + 6) / 5
    EXPECT_EQ(run.grid("a_resize2147483647.asc").cellsize, 2147483648.0);
}

TEST(ResizeCli, AMinimumAboveItsStartIsNull)
{
    ToolRun run("-resize2 -rm_min a.asc");
    run.give("a.asc", ascGrid({{100001, 200000, 99999, 100000}}));
    run.start();
    EXPECT_GRID(run, "a_resize2.asc", {{kNull, 99999}});
}

TEST(ResizeCli, APositiveNullStandsAsMaximum)
{
    ToolRun run("-resize2 -rm_max a.asc");
    run.give("a.asc", ascGrid({{5, 6}}, {.null = 99, .lineEnd = "\n"}));
    run.start();
    EXPECT_GRID(run, "a_resize2.asc", {{99}});
}

TEST(ResizeCli, TheNewCellSizeIsASingle)
{
    ToolRun run("-resize3 a.asc");
    run.give("a.asc", ascGrid({{1}}, {.cellsize = 0.1, .lineEnd = "\n"}));
    run.start();
    EXPECT_TRUE(run.says("Current grid size =     0.1000"));
    EXPECT_TRUE(run.says("New cell size (c) =     0.3000"));
    // 0.1 as a single is 0.100000001490116; three times that rounds to the single 0.300000011920929.
    EXPECT_EQ(run.grid("a_resize3.asc").cellsize, 0.3000000119);
}

TEST(ResizeCli, OutAndFormatAreTaken)
{
    ToolRun run("-resize2 a.asc -out r -flt");
    run.give("a.asc", ascGrid({{1, 2}}));
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"Processing Output Row:", "Using output file name specified with -out switch: \"r\"",
                               "Using output format .flt as specified.", "Writing resized grid to: r"});
    EXPECT_GRID(run, "r.flt", {{1.5}});
    EXPECT_TRUE(run.has("r.hdr"));
    EXPECT_NO_OTHER_FILES(run);
}

TEST(ResizeCli, ShowsEachHundredthOutputRow)
{
    ToolRun run("-resize2 a.asc");
    run.give("a.asc", ascGrid(Cells(401, {1})));
    run.start();
    EXPECT_TRUE(run.says("Processing Output Row:     100     200"));
    EXPECT_GRID(run, "a_resize2.asc", Cells(201, {1}));
}

TEST(ResizeCli, RefusesMoreThanOneGridBeforeTheFactor)
{
    ToolRun run("-resize0 a.asc b.asc");
    run.give("a.asc", ascGrid({{1}}));
    run.give("b.asc", ascGrid({{1}}));
    run.start();
    EXPECT_CONSOLE_HOLDS(run, joined({{"Resizing grid."},
                                      errorEnd("ERROR - More than one grid file specified with the resize option.")}));
    EXPECT_NO_OTHER_FILES(run);
}

TEST(ResizeCli, RefusesAFactorBelowOne)
{
    for (const char* arguments : {"-resize0 a.asc", "-resize-2 a.asc"}) {
        ToolRun run(arguments);
        run.give("a.asc", ascGrid({{1}}));
        run.start();
        EXPECT_CONSOLE(
            run,
            joined({startOf({"a.asc"}), {"Resizing grid."}, errorEnd("ERROR - Resize factor must be 1 or more.")}));
        EXPECT_NO_OTHER_FILES(run);
    }
}

TEST(ResizeCli, AGridTooLargeForMemoryEndsTheRun)
{
    ToolRun run("-resize2 a.flt");
    run.give("a.flt", "");
    run.give("a.hdr", hdr(2147483647, 1800000000));
    run.start();
    // 2147483647 x 1800000000 x 4, of which 32 bits are 1389934592.
    EXPECT_CONSOLE_HOLDS(run, joined({{"Allocating 1389934Kb memory for storing input grid..."},
                                      errorEnd("ERROR - Could not allocate enough memory (RAM).")}));
    EXPECT_NO_OTHER_FILES(run);
}

} // namespace
} // namespace gridforge::test
