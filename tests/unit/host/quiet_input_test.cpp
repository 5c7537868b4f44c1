#include "host/quiet_input.h"

#include "support/scratch_folder.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

namespace gridforge {
namespace {

using test::ScratchFolder;
using testing::ElementsAre;

std::optional<std::vector<std::string>> lines(const ScratchFolder& folder, const std::string& name)
{
    return lookAtLines((folder.path() / name).string(), 3);
}

TEST(LookAtLines, GivesThemAsUnitsDo)
{
    const ScratchFolder folder;
    folder.give("a.csv", "\xEF\xBB\xBF"
                         "one\r\ntwo  \nlast");
    EXPECT_THAT(*lines(folder, "a.csv"), ElementsAre("one", "two", "last"));
    folder.give("b.csv", "one\n\n");
    EXPECT_THAT(*lines(folder, "B.csv"), ElementsAre("one", ""));
}

TEST(LookAtLines, GivesNoneOfWhatIsOutOfTheOrdinary)
{
    const ScratchFolder folder;
    EXPECT_FALSE(lines(folder, "missing.csv"));
    folder.give("long.csv", "1\n2\n3\n4\n");
    EXPECT_FALSE(lines(folder, "long.csv"));
    std::filesystem::create_directory(folder.path() / "folder.csv");
    EXPECT_FALSE(lines(folder, "folder.csv"));
}

TEST(FindQuietly, SeesTheSize)
{
    const ScratchFolder folder;
    folder.give("a.flt", "12345");
    const auto input = findQuietly((folder.path() / "A.flt").string());
    ASSERT_TRUE(input);
    EXPECT_EQ(input->name, (folder.path() / "a.flt").string());
    EXPECT_EQ(input->size, 5);
}

} // namespace
} // namespace gridforge
