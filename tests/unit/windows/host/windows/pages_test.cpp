// Where the memory of large arrays comes from.
#include "core/huge_array.h"
#include "host/system.h"
#include "support/environment.h"
#include "support/scratch_folder.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <vector>
#include <windows.h>

namespace gridforge::test {
namespace {

constexpr std::size_t kLarge = std::size_t{8} << 20;
constexpr std::size_t kMoreThanBuffers = std::size_t{72} << 20;

// True for a file, false for memory.
bool isOfAFile(const HugeArray<char>& array)
{
    MEMORY_BASIC_INFORMATION about = {};
    EXPECT_NE(VirtualQuery(&array[0], &about, sizeof about), 0U);
    return about.Type == MEM_MAPPED;
}

std::vector<std::uintmax_t> sizesIn(const ScratchFolder& folder)
{
    std::vector<std::uintmax_t> sizes;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
        sizes.push_back(entry.file_size());
    }
    return sizes;
}

TEST(NativePages, AreInMemoryWhereThereIsRoom)
{
    HugeArray<char> array;
    ASSERT_TRUE(array.allocate(kLarge));
    EXPECT_FALSE(isOfAFile(array));
    EXPECT_TRUE(std::ranges::all_of(array.all(), [](char byte) { return byte == 0; }));
}

TEST(NativePages, AreOfAFileWhereTheMemoryIsUsedUp)
{
    const ScratchFolder folder;
    const Environment environment({{"GRIDFORGE_MEMORY", "1"}, {"GRIDFORGE_SCRATCH", folder.path().string()}});
    HugeArray<char> array;
    ASSERT_TRUE(array.allocate(kMoreThanBuffers));
    EXPECT_TRUE(isOfAFile(array));
    EXPECT_EQ(sizesIn(folder), std::vector<std::uintmax_t>{kMoreThanBuffers});
    EXPECT_TRUE(std::ranges::all_of(array.all(), [](char byte) { return byte == 0; }));
    array[0] = 'a';
    array[kMoreThanBuffers - 1] = 'z';

    HugeArray<char> small;
    ASSERT_TRUE(small.allocate(kLarge));
    EXPECT_TRUE(isOfAFile(small)); // nothing is left for it either
    EXPECT_EQ(array[0], 'a');
    EXPECT_EQ(array[kMoreThanBuffers - 1], 'z');
    array.release();
    ASSERT_TRUE(small.allocate(kLarge));
    EXPECT_FALSE(isOfAFile(small));
    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

TEST(NativePages, AreInMemoryAfterAllWhereNoFileCanHoldThem)
{
    const Environment environment({{"GRIDFORGE_MEMORY", "1"}, {"GRIDFORGE_SCRATCH", "/nowhere"}});
    HugeArray<char> array;
    ASSERT_TRUE(array.allocate(kMoreThanBuffers));
    EXPECT_FALSE(isOfAFile(array));
}

TEST(NativePages, AreRefusedWhereNeitherHasTheRoom)
{
    HugeArray<char> array;
    EXPECT_FALSE(array.allocate(std::size_t{1} << 50));
    EXPECT_EQ(array.size(), 0U);
}

} // namespace
} // namespace gridforge::test
