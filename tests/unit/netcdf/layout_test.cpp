#include "netcdf/layout.h"

#include "host/console.h"
#include "support/child_run.h"
#include "support/environment.h"
#include "support/refusing_system.h"
#include "support/scratch_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

namespace gridforge {
namespace {

using test::Environment;
using testing::ElementsAre;

GridHeader latticeOf(std::int32_t nrows, std::int32_t ncols)
{
    GridHeader lattice;
    lattice.nrows = nrows;
    lattice.ncols = ncols;
    return lattice;
}

// The cells count from 0 in the order of the grid's file.
bool countCells(std::size_t first, std::span<float> cells)
{
    for (float& cell : cells) {
        cell = static_cast<float>(first++);
    }
    return true;
}

std::vector<float> laidCells(netcdf::Layout layout, const GridHeader& lattice, const std::string& folder, bool& inFile)
{
    grid::CellStore laid;
    EXPECT_TRUE(laid.take(lattice.cells(), folder));
    EXPECT_TRUE(netcdf::layCells(countCells, layout, lattice, laid));
    std::vector<float> cells(lattice.cells());
    EXPECT_TRUE(laid.get(0, cells));
    inFile = laid.isInFile();
    return cells;
}

std::vector<float> plainlyLaid(netcdf::Layout layout, const GridHeader& lattice)
{
    std::vector<float> cells;
    const auto cell = [&](std::int32_t row, std::int32_t column) { // from the south and the west, both from 1
        cells.push_back(static_cast<float>((lattice.nrows - row) * lattice.ncols + column - 1));
    };
    if (layout == netcdf::Layout::rows) {
        for (std::int32_t row = 1; row <= lattice.nrows; ++row) {
            for (std::int32_t column = 1; column <= lattice.ncols; ++column) {
                cell(row, column);
            }
        }
    } else {
        for (std::int32_t column = 1; column <= lattice.ncols; ++column) {
            for (std::int32_t row = 1; row <= lattice.nrows; ++row) {
                cell(row, column);
            }
        }
    }
    return cells;
}

TEST(LayCells, TheOrderIsThatOfTheFileWhateverThePiecesAndThreads)
{
    const test::ScratchFolder folder;
    const std::pair<std::int32_t, std::int32_t> sizes[] = {{1, 1}, {1, 90}, {90, 1}, {37, 53}, {64, 48}, {130, 70}};
    for (const char* memory : {"1", "1000000"}) {
        for (const char* piece : {"1", "100", "1000", "100000"}) {
            for (const char* threads : {"1", "3"}) {
                const Environment environment(
                    {{"GRIDFORGE_MEMORY", memory}, {"GRIDFORGE_PIECE", piece}, {"GRIDFORGE_THREADS", threads}});
                for (const auto& [nrows, ncols] : sizes) {
                    for (const netcdf::Layout layout : {netcdf::Layout::rows, netcdf::Layout::block}) {
                        const GridHeader lattice = latticeOf(nrows, ncols);
                        bool inFile = false;
                        ASSERT_EQ(laidCells(layout, lattice, folder.path().string(), inFile),
                                  plainlyLaid(layout, lattice))
                            << nrows << " by " << ncols << ", pieces of " << piece;
                        EXPECT_EQ(inFile, memory == std::string("1"));
                    }
                }
            }
        }
    }
}

TEST(LayCells, AReadThatIsRefusedIsReported)
{
    const Environment environment({{"GRIDFORGE_PIECE", "10"}});
    const GridHeader lattice = latticeOf(20, 20);
    grid::CellStore laid;
    ASSERT_TRUE(laid.take(lattice.cells(), "."));
    const grid::GetCells refusesLate = [](std::size_t first, std::span<float> cells) {
        return first < 370 && countCells(first, cells);
    };
    EXPECT_FALSE(netcdf::layCells(refusesLate, netcdf::Layout::rows, lattice, laid));
    EXPECT_FALSE(netcdf::layCells(refusesLate, netcdf::Layout::block, lattice, laid));
}

TEST(LayCells, AWriteThatIsRefusedIsReported)
{
    const Environment environment({{"GRIDFORGE_PIECE", "10"}, {"GRIDFORGE_MEMORY", "1"}});
    const test::ScratchFolder folder;
    const test::ChildRun run = test::runInChild(folder, [] {
        const GridHeader lattice = latticeOf(20, 20);
        for (const netcdf::Layout layout : {netcdf::Layout::rows, netcdf::Layout::block}) {
            grid::CellStore laid;
            EXPECT_TRUE(laid.take(lattice.cells(), "."));
            test::refuseWritesAfter(15);
            say(netcdf::layCells(countCells, layout, lattice, laid) ? "laid" : "not laid");
            useSystem(nativeSystem());
        }
    });
    EXPECT_EQ(run.console, "not laid\nnot laid\n");
}

TEST(CellsOf, LeavesCellsInMemoryWhereTheyAreAndFetchesOthers)
{
    const test::ScratchFolder folder;
    std::vector<float> room(2);
    grid::CellStore inMemory;
    ASSERT_TRUE(inMemory.take(4, folder.path().string()));
    ASSERT_TRUE(inMemory.put(0, std::vector<float>{1, 2, 3, 4}));
    const auto cells = netcdf::cellsOf(inMemory, 1, room);
    ASSERT_TRUE(cells);
    EXPECT_THAT(*cells, ElementsAre(2, 3));
    EXPECT_NE(cells->data(), room.data());

    const Environment environment({{"GRIDFORGE_MEMORY", "1"}});
    grid::CellStore inFile;
    ASSERT_TRUE(inFile.take(4, folder.path().string()));
    ASSERT_TRUE(inFile.put(0, std::vector<float>{5, 6, 7, 8}));
    const auto fetched = netcdf::cellsOf(inFile, 2, room);
    ASSERT_TRUE(fetched);
    EXPECT_THAT(*fetched, ElementsAre(7, 8));
    EXPECT_EQ(fetched->data(), room.data());
}

} // namespace
} // namespace gridforge
