// Where the memory of large arrays comes from.
#include "core/huge_array.h"
#include "host/memory/memory_system.h"
#include "host/system.h"
#include "support/environment.h"
#include "support/sanitizers.h"
#include "support/scratch_folder.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>

namespace gridforge::test {
namespace {

// What /proc/self/smaps says of the memory that holds the array: the line with its name, and its flags.
struct MappedMemory {
    std::string line;
    std::string flags;
};

MappedMemory memoryOf(const HugeArray<char>& array)
{
    std::ifstream maps("/proc/self/smaps");
    const auto address = reinterpret_cast<std::uintptr_t>(&array[0]);
    MappedMemory found;
    bool inside = false;
    for (std::string line; std::getline(maps, line);) {
        std::uintptr_t from = 0;
        std::uintptr_t to = 0;
        if (std::sscanf(line.c_str(), "%zx-%zx", &from, &to) == 2) {
            inside = from <= address && address < to;
            found.line = inside ? line : found.line;
        } else if (inside && line.starts_with("VmFlags:")) {
            found.flags = line;
        }
    }
    return found;
}

// The host has put its pages in place of the heap before any test ran.
class NativePages : public testing::Test {
protected:
    void SetUp() override
    {
        if (kSanitized || !std::ifstream("/proc/self/smaps")) {
            GTEST_SKIP() << "no pages of our own, or no list of them";
        }
    }
};

constexpr std::size_t kLarge = std::size_t{8} << 20;
constexpr std::size_t kMoreThanBuffers = std::size_t{72} << 20;

TEST_F(NativePages, AreHuge)
{
    HugeArray<char> array;
    ASSERT_TRUE(array.allocate(kLarge));
    array[0] = 1;
    EXPECT_NE(memoryOf(array).flags.find(" hg"), std::string::npos); // the system knows that huge ones are wished
}

TEST_F(NativePages, AreOfAFileWhereTheMemoryIsUsedUp)
{
    const ScratchFolder folder;
    const Environment environment({{"GRIDFORGE_MEMORY", "1"}, {"GRIDFORGE_SCRATCH", folder.path().string()}});
    HugeArray<char> array;
    ASSERT_TRUE(array.allocate(kMoreThanBuffers));
    EXPECT_NE(memoryOf(array).line.find(folder.path().string()), std::string::npos);
    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
    EXPECT_TRUE(std::ranges::all_of(array.all(), [](char byte) { return byte == 0; }));
    array[kMoreThanBuffers - 1] = 'z';

    HugeArray<char> small;
    ASSERT_TRUE(small.allocate(kLarge));
    EXPECT_NE(memoryOf(small).line.find(folder.path().string()), std::string::npos); // nothing is left for it either
    array.release();
    ASSERT_TRUE(small.allocate(kLarge));
    EXPECT_EQ(memoryOf(small).line.find(folder.path().string()), std::string::npos);
}

// Whose numbers of files are no descriptors.
TEST_F(NativePages, AreOfAFileOfTheDiskAlsoWhereTheFilesOfTheRunAreInMemory)
{
    const ScratchFolder folder;
    const Environment environment({{"GRIDFORGE_MEMORY", "1"}, {"GRIDFORGE_SCRATCH", folder.path().string()}});
    useSystem(memorySystem());
    HugeArray<char> array;
    const bool taken = array.allocate(kMoreThanBuffers);
    useSystem(nativeSystem());
    ASSERT_TRUE(taken);
    EXPECT_NE(memoryOf(array).line.find(folder.path().string()), std::string::npos);
}

TEST_F(NativePages, AreInMemoryAfterAllWhereNoFileCanHoldThem)
{
    const Environment environment({{"GRIDFORGE_MEMORY", "1"}, {"GRIDFORGE_SCRATCH", "/nowhere"}});
    HugeArray<char> array;
    ASSERT_TRUE(array.allocate(kMoreThanBuffers));
    EXPECT_NE(memoryOf(array).flags.find(" hg"), std::string::npos);
}

TEST_F(NativePages, AreRefusedWhereNeitherHasTheRoom)
{
    HugeArray<char> array;
    EXPECT_FALSE(array.allocate(std::size_t{1} << 50));
    EXPECT_EQ(array.size(), 0U);
}

} // namespace
} // namespace gridforge::test
