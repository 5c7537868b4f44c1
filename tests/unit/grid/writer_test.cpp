#include "grid/writer.h"

#include "host/console.h"
#include "support/child_run.h"
#include "support/consoles.h"
#include "support/environment.h"
#include "support/grids.h"
#include "support/refusing_system.h"

#include <gtest/gtest.h>

namespace gridforge::test {
namespace {

GridHeader headerOf(std::int32_t nrows, std::int32_t ncols)
{
    GridHeader header;
    header.nrows = nrows;
    header.ncols = ncols;
    header.xll = 293000.5;
    header.yll = -12.25;
    header.cellsize = 2.0F;
    header.cellsize8 = 2.0;
    return header;
}

TEST(WriteGrid, KnowsTwoFormatsOnly)
{
    const ScratchFolder folder;
    const ChildRun run =
        runInChild(folder, [] { grid::writeGrid(static_cast<grid::Format>(3), "a", headerOf(1, 1), Grid(), ""); });
    EXPECT_TRUE(run.ended);
    EXPECT_EQ(run.console, "Should not be here [grid_format] - please contact SUPPORT_CONTACT.\n" + kExits);
}

TEST(WriteGrid, EndsTheRunWhereCellsThatWaitedCannotBeReadBack)
{
    const test::Environment inFiles({{"GRIDFORGE_MEMORY", "1"}});
    const ScratchFolder folder;
    const ChildRun run = runInChild(folder, [] {
        grid::CellStore waiting;
        EXPECT_TRUE(waiting.take(6, "."));
        EXPECT_TRUE(waiting.put(0, std::vector<float>(6)));
        const grid::CellStore& kept = waiting; // it does not become the file
        test::refuseReadsAfter(0);
        grid::writeGrid(grid::Format::flt, "a", headerOf(3, 2), grid::CellSource(kept, headerOf(3, 2)), "");
    });
    EXPECT_TRUE(run.ended);
    EXPECT_TRUE(run.console.ends_with("Writing FLT grid...\n"
                                      "ERROR - Could not allocate enough memory (RAM).\n" +
                                      kExits))
        << run.console;
}

// A system with an eye on how cells that wait in a file get the name of the grid.
struct NamedCells {
    static inline int opened = 0;
    static inline int closed = 0;
    static inline bool given = false;
    static inline bool refused = false;

    // From now on.
    static void watch(bool replacesOnlyClosedFiles, bool refuses)
    {
        static System watched;
        watched = nativeSystem();
        opened = 0;
        closed = 0;
        given = false;
        refused = refuses;
        watched.open = [](const std::string& name, OpenFor purpose) {
            ++opened;
            return nativeSystem().open(name, purpose);
        };
        watched.close = [](SystemFile file) {
            ++closed;
            return nativeSystem().close(file);
        };
        watched.giveName = [](SystemFile file, const std::string& name) {
            say("Files open besides the header: ", opened - closed - 1);
            given = !refused && nativeSystem().giveName(file, name);
            return given;
        };
        watched.replacesOnlyClosedFiles = watched.replacesOnlyClosedFiles || replacesOnlyClosedFiles;
        useSystem(watched);
    }
};

// Writes cells that wait in a file.
ChildRun writeWaiting(const ScratchFolder& folder, bool replacesOnlyClosedFiles, bool refuses)
{
    return runInChild(folder, [=] {
        NamedCells::watch(replacesOnlyClosedFiles, refuses);
        grid::CellStore waiting;
        EXPECT_TRUE(waiting.takeForFile(6, "."));
        EXPECT_TRUE(waiting.put(0, std::vector<float>{11, 12, 13, 21, 22, 23}));
        grid::writeGrid(grid::Format::flt, "a", headerOf(2, 3), grid::CellSource(waiting, headerOf(2, 3)), "");
        say(NamedCells::given ? "Named." : "Copied.");
    });
}

TEST(WriteGrid, CellsThatWaitInAFileBecomeTheFile)
{
    for (const bool closed : {false, true}) {
        const ScratchFolder folder;
        folder.give("a.flt", "something longer than the six cells of the grid");
        const ChildRun run = writeWaiting(folder, closed, false);
        EXPECT_TRUE(run.console.ends_with("Named.\n")) << run.console;
        EXPECT_EQ(folder.read("a.flt"), fltCells({{11, 12, 13}, {21, 22, 23}}));
    }
}

TEST(WriteGrid, TheFileIsClosedFirstWhereNoOpenOneIsReplaced)
{
    const ScratchFolder folder;
    const ChildRun run = writeWaiting(folder, true, false);
    EXPECT_NE(run.console.find("Files open besides the header: 0\n"), std::string::npos) << run.console;
}

TEST(WriteGrid, CellsThatDoNotBecomeTheFileAreCopied)
{
    for (const bool closed : {false, true}) {
        const ScratchFolder folder;
        const ChildRun run = writeWaiting(folder, closed, true);
        EXPECT_TRUE(run.console.ends_with("Copied.\n")) << run.console;
        EXPECT_EQ(folder.read("a.flt"), fltCells({{11, 12, 13}, {21, 22, 23}}));
        EXPECT_NE(folder.read("a.hdr").find("nrows"), std::string::npos);
    }
}

TEST(WriteGrid, FieldsAreAsWideAsTheLargestMagnitudeNeeds)
{
    const ScratchFolder folder;
    const auto widthWith = [&](float cell) {
        runInChild(folder, [cell] {
            Grid cells;
            ASSERT_TRUE(cells.allocate(1, 2));
            cells(1, 1) = cell;
            grid::writeGrid(grid::Format::asc, "a", headerOf(1, 2), cells, "");
        });
        const std::string text = folder.read("a.asc");
        const std::size_t last = text.rfind('\n', text.size() - 2);
        return (text.size() - last - 3) / 2;
    };
    EXPECT_EQ(widthWith(0.25F), 7U);       // `0.`, 3 decimals, sign and blank: 2 + 3 + 2
    EXPECT_EQ(widthWith(-9999.0F), 10U);   // `9999.`
    EXPECT_EQ(widthWith(9999.5F), 11U);    // rounds to `10000.`
    EXPECT_EQ(widthWith(123456.7F), 12U);  // `123457.`
    EXPECT_EQ(widthWith(-123456.7F), 12U); // the smallest counts by its magnitude
}

TEST(WriteGrid, NegativeDecimalsCountAsThree)
{
    const ScratchFolder folder;
    runInChild(folder, [] {
        Grid cells;
        ASSERT_TRUE(cells.allocate(1, 1));
        grid::writeGrid(grid::Format::asc, "a", headerOf(1, 1), cells, "", -1);
    });
    EXPECT_EQ(folder.read("a.asc"), "ncols 1\r\nnrows 1\r\nxllcorner 293000.5\r\nyllcorner -12.25\r\ncellsize 2.\r\n"
                                    "NODATA_value -9999.0\r\n  0.000\r\n");
}

TEST(WriteGrid, ARowLongerThanTheBufferIsOneLine)
{
    constexpr std::int32_t kColumns = 400'000; // 7 characters each: more than two buffers
    const ScratchFolder folder;
    runInChild(folder, [] {
        Grid cells;
        ASSERT_TRUE(cells.allocate(2, kColumns));
        for (std::int32_t column = 1; column <= kColumns; ++column) {
            cells(2, column) = static_cast<float>(column % 10);
            cells(1, column) = static_cast<float>(column % 7);
        }
        grid::writeGrid(grid::Format::asc, "a", headerOf(2, kColumns), cells, "");
    });
    std::string expected;
    for (const std::int32_t divisor : {10, 7}) {
        for (std::int32_t column = 1; column <= kColumns; ++column) {
            expected += "  " + std::to_string(column % divisor) + ".000";
        }
        expected += "\r\n";
    }
    const std::string text = folder.read("a.asc");
    EXPECT_TRUE(text.ends_with("-9999.0\r\n" + expected));
}

TEST(WriteGrid, TheProjectionIsOneLineBesideTheGrid)
{
    const ScratchFolder folder;
    folder.give("d/old.prj", "stays");
    const ChildRun run = runInChild(folder, [] {
        Grid cells;
        ASSERT_TRUE(cells.allocate(1, 1));
        grid::writeGrid(grid::Format::flt, "d\\a", headerOf(1, 1), cells, "PROJCS[\"x\"]  ");
        grid::writeGrid(grid::Format::flt, "d\\old", headerOf(1, 1), cells, "   ");
    });
    EXPECT_EQ(folder.read("d/a.prj"), "PROJCS[\"x\"]\r\n");
    EXPECT_EQ(folder.read("d/old.prj"), "stays");
    EXPECT_EQ(folder.read("d/a.flt"), std::string(4, '\0'));
}

} // namespace
} // namespace gridforge::test
