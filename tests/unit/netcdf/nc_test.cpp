#include "netcdf/nc.h"

#include "support/child_run.h"
#include "support/memory_limit.h"

#include <bit>
#include <cmath>
#include <cstring>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <vector>

namespace gridforge {
namespace {

using testing::ElementsAre;

Grid gridOf(std::int32_t nrows, std::int32_t ncols)
{
    Grid grid;
    EXPECT_TRUE(grid.allocate(nrows, ncols));
    for (std::int32_t row = 1; row <= nrows; ++row) {
        for (std::int32_t column = 1; column <= ncols; ++column) {
            grid(row, column) = static_cast<float>(row * 1000 + column);
        }
    }
    return grid;
}

TEST(CellsByRows, TheSouthRowComesFirst)
{
    const Grid grid = gridOf(3, 2);
    std::vector<float> band(4);
    netcdf::cellsByRows(grid, 1, band);
    EXPECT_THAT(band, ElementsAre(1001, 1002, 2001, 2002));
    netcdf::cellsByRows(grid, 2, band);
    EXPECT_THAT(band, ElementsAre(2001, 2002, 3001, 3002));
    netcdf::cellsByRows(grid, 3, std::span(band).first(2));
    EXPECT_THAT(band, ElementsAre(3001, 3002, 3001, 3002));
}

TEST(CellsByColumns, TheWestColumnComesFirstFromTheSouth)
{
    const Grid grid = gridOf(3, 2);
    std::vector<float> band(6);
    netcdf::cellsByColumns(grid, 0, band);
    EXPECT_THAT(band, ElementsAre(1001, 2001, 3001, 1002, 2002, 3002));
    netcdf::cellsByColumns(grid, 2, std::span(band).first(2)); // the end of one column and the start of the next
    EXPECT_THAT(std::vector(band.begin(), band.begin() + 2), ElementsAre(3001, 1002));
    netcdf::cellsByColumns(grid, 1, std::span(band).first(1)); // within a column
    EXPECT_EQ(band[0], 2001);
}

TEST(CellsByColumns, AgreesWithThePlainOrderForBandsOfAnySize)
{
    std::mt19937 random(3);
    for (int round = 0; round < 300; ++round) {
        const auto nrows = static_cast<std::int32_t>(1 + random() % 40);
        const auto ncols = static_cast<std::int32_t>(1 + random() % 60);
        const Grid grid = gridOf(nrows, ncols);
        std::vector<float> plain;
        for (std::int32_t column = 1; column <= ncols; ++column) {
            for (std::int32_t row = 1; row <= nrows; ++row) {
                plain.push_back(grid(row, column));
            }
        }
        const std::size_t bandSize = 1 + random() % plain.size();
        std::vector<float> all(plain.size(), -1);
        for (std::size_t first = 0; first < all.size(); first += bandSize) {
            const std::size_t count = std::min(bandSize, all.size() - first);
            netcdf::cellsByColumns(grid, first, std::span(all).subspan(first, count));
        }
        ASSERT_EQ(all, plain) << nrows << " by " << ncols << ", bands of " << bandSize;
    }
}

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

TEST(RunNc, AMaximumThatNoMemoryHoldsEndsTheRun)
{
    if (!test::canLimitMemory()) {
        GTEST_SKIP() << "the sanitizer has taken its memory already";
    }
    const test::ScratchFolder folder;
    folder.give("a.flt", "");
    folder.give("a.hdr", "ncols 4000\nnrows 5000\nxllcorner 0\nyllcorner 0\ncellsize 1\nbyteorder LSBFIRST\n");
    const test::ChildRun run = test::runInChild(folder, [] {
        run::RunSettings settings;
        settings.nc = true;
        run::InputFileList inputs;
        inputs.add("a.flt");
        test::limitMemory(120); // enough for a grid of 80 MB and the library, not for another
        netcdf::runNc(settings, inputs);
    });
    EXPECT_TRUE(run.ended);
    EXPECT_THAT(run.console, testing::EndsWith("Allocating 80000Kb memory for external grid...\n"
                                               "ERROR - Could not allocate enough memory (RAM).\n"
                                               "\nPress Enter to Close\n"));
}

} // namespace
} // namespace gridforge
