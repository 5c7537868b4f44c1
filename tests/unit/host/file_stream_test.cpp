#include "host/file_stream.h"

#include "support/scratch_folder.h"

#include <cstdint>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>

namespace gridforge::test {
namespace {

constexpr std::uint64_t kLongest = std::uint64_t{1} << 28;

// A line of so many zeros, which take no room on the disk, and nothing after it.
bool canReadLineOf(std::uint64_t bytes)
{
    const ScratchFolder folder;
    folder.give("a", "");
    const std::string name = (folder.path() / "a").string();
    std::filesystem::resize_file(name, bytes);
    FileStream stream(theSystem().open(name, OpenFor::reading), Direction::in, name);
    std::string line;
    return stream.readLine(line, 5) && line == std::string(5, '\0');
}

TEST(FileStreams, TakeALineOfUpTo256Megabytes)
{
    EXPECT_TRUE(canReadLineOf(kLongest));
    EXPECT_FALSE(canReadLineOf(kLongest + 1));
}

} // namespace
} // namespace gridforge::test
