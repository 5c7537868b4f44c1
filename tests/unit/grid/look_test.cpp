#include "grid/look.h"

#include "support/scratch_folder.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>

namespace gridforge {
namespace {

using test::ScratchFolder;

const std::string kHead = "ncols 3\nnrows 2\nxllcenter 10\nyllcorner 20\ncellsize 5\nNODATA_value -1\n";

std::optional<grid::GridLook> look(const ScratchFolder& folder, const std::string& name)
{
    return grid::lookAtGrid((folder.path() / name).string());
}

TEST(LookAtGrid, SeesTheLatticeAndWhereTheCellsAre)
{
    const ScratchFolder folder;
    folder.give("a.asc", kHead + "1 2 3\n4 5 6\n");
    const auto asc = look(folder, "a.asc");
    ASSERT_TRUE(asc);
    EXPECT_EQ(asc->format, grid::Format::asc);
    EXPECT_EQ(asc->header.ncols, 3);
    EXPECT_EQ(asc->header.nrows, 2);
    EXPECT_EQ(asc->header.xll, 5);
    EXPECT_EQ(asc->header.yll, 20);
    EXPECT_EQ(asc->header.null, -1);
    EXPECT_EQ(asc->cellsFrom, static_cast<std::int64_t>(kHead.size()));
    EXPECT_EQ(asc->size, static_cast<std::int64_t>(kHead.size() + 12));

    folder.give("b.hdr", kHead + "byteorder LSBFIRST\n");
    folder.give("b.flt", std::string(24, 'x'));
    const auto flt = look(folder, "b.flt");
    ASSERT_TRUE(flt);
    EXPECT_EQ(flt->format, grid::Format::flt);
    EXPECT_EQ(flt->cellsFrom, 0);
    EXPECT_EQ(flt->size, 24);
}

TEST(LookAtGrid, SeesNothingWhereAnythingIsOdd)
{
    const ScratchFolder folder;
    EXPECT_FALSE(look(folder, "missing.asc"));
    folder.give("head.asc", "ncols 3\nnrows 2\n1 2 3\n");
    EXPECT_FALSE(look(folder, "head.asc"));
    folder.give("word.asc", "ncols three\n");
    EXPECT_FALSE(look(folder, "word.asc"));
    folder.give("end.asc", kHead);
    EXPECT_FALSE(look(folder, "end.asc"));
    folder.give("short.hdr", kHead + "byteorder LSBFIRST\n");
    folder.give("short.flt", std::string(23, 'x'));
    EXPECT_FALSE(look(folder, "short.flt"));
    folder.give("short.asc", kHead + "1 2 3\n4 5\n");
    EXPECT_FALSE(look(folder, "short.asc"));
    // (2^31 - 1)^2 cells of 4 bytes are 2^64 less 2^34 and 4 more.
    folder.give("vast.hdr",
                "ncols 2147483647\nnrows 2147483647\nxllcorner 0\nyllcorner 0\ncellsize 5\nbyteorder LSBFIRST\n");
    folder.give("vast.flt", std::string(24, 'x'));
    EXPECT_FALSE(look(folder, "vast.flt"));
    folder.give("alone.flt", std::string(24, 'x'));
    EXPECT_FALSE(look(folder, "alone.flt"));
    std::filesystem::create_directory(folder.path() / "folder.asc");
    EXPECT_FALSE(look(folder, "folder.asc"));
}

} // namespace
} // namespace gridforge
