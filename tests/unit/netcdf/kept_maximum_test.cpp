#include "netcdf/kept_maximum.h"

#include "host/console.h"
#include "support/child_run.h"
#include "support/environment.h"
#include "support/refusing_system.h"
#include "support/scratch_folder.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <vector>

namespace gridforge {
namespace {

using testing::ElementsAre;

TEST(RaiseMaximum, KeepsTheHigherOfCellsAboveTheNullByAHundredth)
{
    std::vector<float> maximum = {-9999, -9999, 3, 3, 3};
    netcdf::raiseMaximum(std::vector<float>{-9999, -5, 2, 4, 3}, -9999, maximum);
    EXPECT_THAT(maximum, ElementsAre(-9999, -5, 3, 4, 3));

    std::vector<float> aroundZero(4);
    netcdf::raiseMaximum(std::vector<float>{0.01F, std::nextafter(0.01F, 1.0F), -1, 0.5F}, 0, aroundZero);
    EXPECT_THAT(aroundZero, ElementsAre(0, std::nextafter(0.01F, 1.0F), 0, 0.5F));
}

TEST(RaiseMaximum, WhereAHundredthIsLostInTheNullAnythingAboveItEnters)
{
    constexpr float kHuge = -3.0e8F;
    std::vector<float> maximum = {kHuge, kHuge};
    netcdf::raiseMaximum(std::vector<float>{kHuge, std::nextafter(kHuge, 0.0F)}, kHuge, maximum);
    EXPECT_THAT(maximum, ElementsAre(kHuge, std::nextafter(kHuge, 0.0F)));
}

TEST(RaiseMaximum, ACellThatIsNoNumberNeverEnters)
{
    std::vector<float> maximum = {-9999, 2};
    netcdf::raiseMaximum(std::vector<float>{std::nanf(""), std::nanf("")}, -9999, maximum);
    EXPECT_THAT(maximum, ElementsAre(-9999, 2));
}

TEST(RaiseMaximum, AgreesWithThePlainFormOnAnyBits)
{
    std::mt19937 random(5);
    const float nulls[] = {-9999, 0, 1.5F, -999.25F, std::numeric_limits<float>::lowest()};
    for (int round = 0; round < 200; ++round) {
        const float null = nulls[round % 5];
        std::vector<float> cells(1 + random() % 100);
        std::vector<float> maximum(cells.size());
        for (std::size_t i = 0; i < cells.size(); ++i) {
            cells[i] = random() % 2 == 0 ? std::bit_cast<float>(static_cast<std::uint32_t>(random()))
                                         : null + static_cast<float>(random() % 3) * 0.01F;
            maximum[i] = random() % 3 == 0 ? null : static_cast<float>(random() % 100);
        }
        std::vector<float> plain = maximum;
        const float above = null + 0.01F;
        for (std::size_t i = 0; i < cells.size(); ++i) {
            if (cells[i] > above && cells[i] > plain[i]) {
                plain[i] = cells[i];
            }
        }
        netcdf::raiseMaximum(cells, null, maximum);
        ASSERT_EQ(std::memcmp(maximum.data(), plain.data(), plain.size() * sizeof(float)), 0);
    }
}

GridHeader latticeOf(std::int32_t nrows, std::int32_t ncols)
{
    GridHeader lattice;
    lattice.nrows = nrows;
    lattice.ncols = ncols;
    lattice.null = -1;
    return lattice;
}

TEST(KeptMaximum, IsThatOfAllGridsWhereverItWaits)
{
    const test::ScratchFolder folder;
    for (const char* memory : {"1", "1000000"}) {
        for (const char* piece : {"1", "7", "1000"}) {
            const test::Environment environment(
                {{"GRIDFORGE_MEMORY", memory}, {"GRIDFORGE_PIECE", piece}, {"GRIDFORGE_THREADS", "3"}});
            netcdf::KeptMaximum maximum;
            ASSERT_TRUE(maximum.start(latticeOf(5, 20), folder.path().string()));
            std::vector<float> kept(100);
            ASSERT_TRUE(maximum.cells().get(0, kept));
            EXPECT_THAT(kept, testing::Each(-1));
            for (int grid = 0; grid < 3; ++grid) {
                std::vector<float> cells(100, -1);
                for (std::size_t i = 0; i < cells.size(); ++i) {
                    cells[i] = i % 4 == 3 ? -1 : static_cast<float>((i + static_cast<std::size_t>(grid)) % 3);
                }
                grid::CellStore laid;
                ASSERT_TRUE(laid.take(100, folder.path().string()));
                ASSERT_TRUE(laid.put(0, cells));
                ASSERT_TRUE(maximum.raise(laid));
            }
            ASSERT_TRUE(maximum.cells().get(0, kept));
            for (std::size_t i = 0; i < kept.size(); ++i) { // over three grids each cell that is not null is 0, 1 and 2
                EXPECT_EQ(kept[i], i % 4 == 3 ? -1 : 2) << i;
            }
        }
    }
}

TEST(KeptMaximum, CellsThatCannotBeReadBackAreReported)
{
    const test::Environment inFiles({{"GRIDFORGE_MEMORY", "1"}});
    const test::ScratchFolder folder;
    const test::ChildRun run = test::runInChild(folder, [] {
        netcdf::KeptMaximum maximum;
        EXPECT_TRUE(maximum.start(latticeOf(5, 20), "."));
        grid::CellStore laid;
        EXPECT_TRUE(laid.take(100, "."));
        EXPECT_TRUE(laid.put(0, std::vector<float>(100)));
        for (const int good : {0, 1, 2}) { // the kept cells, those of the grid
            test::refuseReadsAfter(good);
            say(maximum.raise(laid) ? "raised" : "not raised");
        }
    });
    EXPECT_EQ(run.console, "not raised\nnot raised\nraised\n");
}

TEST(KeptMaximum, RoomThatCannotBeHadIsReported)
{
    const test::Environment environment({{"GRIDFORGE_MEMORY", "1"}, {"GRIDFORGE_SCRATCH", "/nowhere"}});
    netcdf::KeptMaximum maximum;
    EXPECT_FALSE(maximum.start(latticeOf(5, 20), "."));
}

} // namespace
} // namespace gridforge
