#include "grid/cell_store.h"

#include "host/positions.h"
#include "host/system.h"
#include "support/environment.h"
#include "support/grids.h"
#include "support/scratch_folder.h"

#include <array>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <utility>
#include <vector>

namespace gridforge {
namespace {

namespace fs = std::filesystem;

using test::Environment;
using test::ScratchFolder;
using testing::ElementsAre;

std::vector<float> stored(const grid::CellStore& store, std::size_t first, std::size_t count)
{
    std::vector<float> cells(count);
    EXPECT_TRUE(store.get(first, cells));
    return cells;
}

void putAndGet(grid::CellStore& store)
{
    ASSERT_EQ(store.size(), 5U);
    ASSERT_TRUE(store.put(0, std::vector<float>{1, 2, 3}));
    ASSERT_TRUE(store.put(3, std::vector<float>{4, 5}));
    EXPECT_THAT(stored(store, 0, 5), ElementsAre(1, 2, 3, 4, 5));
    EXPECT_THAT(stored(store, 2, 2), ElementsAre(3, 4));
}

TEST(CellStore, HoldsCellsInMemory)
{
    grid::CellStore store;
    ASSERT_TRUE(store.take(5, "."));
    EXPECT_FALSE(store.isInFile());
    putAndGet(store);
    EXPECT_THAT(store.inMemory(), ElementsAre(1, 2, 3, 4, 5));
}

TEST(CellStore, HoldsWhatMemoryMayNotHoldInAFileWithoutAName)
{
    const ScratchFolder folder;
    const Environment environment({{"GRIDFORGE_MEMORY", "19"}, {"GRIDFORGE_SCRATCH", folder.path().string()}});
    const std::size_t before = grid::filesOfCells();
    grid::CellStore store;
    ASSERT_TRUE(store.take(5, "/nowhere"));
    EXPECT_TRUE(store.isInFile());
    EXPECT_EQ(grid::filesOfCells(), before + 1);
    putAndGet(store);
    EXPECT_TRUE(fs::is_empty(folder.path()));
}

TEST(CellStore, TakesTheExtremesOfAnotherWithItsCells)
{
    grid::CellStore store;
    ASSERT_TRUE(store.take(2, "."));
    ASSERT_TRUE(store.put(0, std::vector<float>{3, 4}));
    store.noteExtremes({.smallest = 3, .largest = 4, .any = true});
    grid::CellStore other;
    ASSERT_TRUE(other.take(2, "."));
    other.noteExtremes({.smallest = 7, .largest = 8, .any = true});
    other = std::move(store);
    EXPECT_THAT(stored(other, 0, 2), ElementsAre(3, 4));
    ASSERT_TRUE(other.extremes());
    EXPECT_EQ(other.extremes()->smallest, 3);
    EXPECT_EQ(other.extremes()->largest, 4);
}

TEST(CellStore, LeavesMemoryForAFile)
{
    const ScratchFolder folder;
    grid::CellStore store;
    ASSERT_TRUE(store.take(5, folder.path().string()));
    ASSERT_TRUE(store.takeForFile(5, folder.path().string()));
    EXPECT_TRUE(store.isInFile());
    EXPECT_TRUE(store.inMemory().empty());
    putAndGet(store);
}

TEST(CellStore, CountsTheMemoryOfAllStores)
{
    const ScratchFolder folder;
    const Environment environment({{"GRIDFORGE_MEMORY", "39"}});
    grid::CellStore first;
    ASSERT_TRUE(first.take(5, folder.path().string()));
    EXPECT_FALSE(first.isInFile());
    grid::CellStore second;
    ASSERT_TRUE(second.take(5, folder.path().string()));
    EXPECT_TRUE(second.isInFile());
    first.release();
    grid::CellStore third;
    ASSERT_TRUE(third.take(5, folder.path().string()));
    EXPECT_FALSE(third.isInFile());
}

TEST(CellStore, TakesAnotherFolderWhereOneIsMissingButForTheOneGiven)
{
    const Environment little({{"GRIDFORGE_MEMORY", "1"}});
    grid::CellStore store;
    EXPECT_TRUE(store.take(5, "/nowhere"));
    const Environment nowhere({{"GRIDFORGE_SCRATCH", "/nowhere"}});
    EXPECT_FALSE(store.take(5, "."));
    EXPECT_EQ(store.size(), 0U);
}

TEST(CellStore, HasNoRoomOnADiskThatHasNone)
{
    System full = nativeSystem();
    full.setAside = [](SystemFile, std::int64_t) { return false; };
    useSystem(full);
    const Environment little({{"GRIDFORGE_MEMORY", "1"}});
    grid::CellStore store;
    EXPECT_FALSE(store.take(5, "."));
    EXPECT_EQ(store.size(), 0U);
    EXPECT_FALSE(store.isInFile());
    useSystem(nativeSystem());
}

TEST(CellStore, ReadsTheCellsOfAGridWhereTheyAre)
{
    const ScratchFolder folder;
    folder.give("a.flt", test::fltCells({{1, 2, 3}, {4, 5, 6}}));
    grid::CellStore store;
    EXPECT_FALSE(store.open((folder.path() / "b.flt").string(), 6));
    ASSERT_TRUE(store.open((folder.path() / "a.flt").string(), 6));
    std::vector<float> room(6);
    EXPECT_THAT(store.get(1, 4, room).value(), testing::ElementsAre(2, 3, 4, 5));
    EXPECT_FALSE(store.get(4, 4, room)); // past the end
    EXPECT_FALSE(store.put(0, room));
    EXPECT_EQ(store.becomeFile((folder.path() / "c.flt").string()), SystemFile::none);
    store.release();
    EXPECT_EQ(test::readWhole(folder.path() / "a.flt").size(), 24U);
}

TEST(CellStore, ReadsTheRowsOfAGridFromTheSouth)
{
    const ScratchFolder folder;
    folder.give("a.flt", test::fltCells({{41, 42, 43}, {31, 32, 33}, {21, 22, 23}, {11, 12, 13}}));
    const std::vector<float> turned = {11, 12, 13, 21, 22, 23, 31, 32, 33, 41, 42, 43};
    grid::CellStore store;
    ASSERT_TRUE(store.openFromSouth((folder.path() / "a.flt").string(), 12, 3));
    for (std::size_t first = 0; first < turned.size(); ++first) {
        for (std::size_t count = 1; first + count <= turned.size(); ++count) {
            const auto from = turned.begin() + static_cast<std::ptrdiff_t>(first);
            EXPECT_THAT(stored(store, first, count),
                        testing::ElementsAreArray(from, from + static_cast<std::ptrdiff_t>(count)));
        }
    }
    ASSERT_TRUE(store.open((folder.path() / "a.flt").string(), 12)); // and again as they stand
    EXPECT_THAT(stored(store, 2, 2), ElementsAre(43, 31));
}

class CellsForAFile : public testing::Test {
protected:
    CellsForAFile()
    {
        EXPECT_TRUE(store_.takeForFile(2, folder_.path().string()));
        EXPECT_TRUE(store_.put(0, std::vector<float>{1, 2}));
    }

    std::string name() const { return (folder_.path() / "a.flt").string(); }
    bool become()
    {
        const SystemFile file = store_.becomeFile(name());
        return file != SystemFile::none && theSystem().close(file);
    }
    // The store is as it was.
    void expectKept() const { EXPECT_THAT(stored(store_, 0, 2), ElementsAre(1, 2)); }

    ScratchFolder folder_;
    grid::CellStore store_;
    std::string bytes_ = {0, 0, '\x80', '\x3f', 0, 0, 0, '\x40'};
};

TEST_F(CellsForAFile, BecomeANewFile)
{
    EXPECT_TRUE(become());
    EXPECT_EQ(folder_.read("a.flt"), bytes_);
    EXPECT_EQ(store_.size(), 0U);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder_.path()), {}), 1);
}

TEST_F(CellsForAFile, BecomeAnOldOneWithItsRights)
{
    folder_.give("a.flt", "something longer than the cells");
    fs::permissions(name(), fs::perms{0640});
    const fs::perms rights = fs::status(name()).permissions();
    EXPECT_TRUE(become());
    EXPECT_EQ(folder_.read("a.flt"), bytes_);
    EXPECT_EQ(fs::status(name()).permissions(), rights);
}

TEST_F(CellsForAFile, AreCopiedWhereTheNameLeadsElsewhereOrIsNotTheOnlyOne)
{
    folder_.give("b.flt", "b");
    fs::create_symlink("b.flt", name());
    EXPECT_FALSE(become());
    fs::remove(name());
    fs::create_hard_link(folder_.path() / "b.flt", name());
    EXPECT_FALSE(become());
    expectKept();
    EXPECT_EQ(folder_.read("b.flt"), "b");
}

TEST_F(CellsForAFile, AreCopiedFromMemory)
{
    grid::CellStore store;
    ASSERT_TRUE(store.take(2, folder_.path().string()));
    EXPECT_EQ(store.becomeFile(name()), SystemFile::none);
    EXPECT_FALSE(folder_.has("a.flt"));
}

} // namespace
} // namespace gridforge
