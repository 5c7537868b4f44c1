#include "host/file_system.h"

#include "support/scratch_folder.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace gridforge {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class SearchFolder : public testing::Test {
protected:
    std::string in(std::string_view pattern) const { return (folder_.path() / "").string() + std::string(pattern); }
    SearchResult search(std::string_view pattern) const { return searchFolder(in(pattern)); }

    test::ScratchFolder folder_;
};

TEST_F(SearchFolder, FindsNamesInAscendingOrder)
{
    for (const char* name : {"b.asc", "a.asc", "B.asc", "ab.asc", "a.flt", ".asc", "d/x.asc"}) {
        folder_.give(name, "");
    }
    EXPECT_THAT(search("*.asc").names, ElementsAre(".asc", "B.asc", "a.asc", "ab.asc", "b.asc"));
    EXPECT_THAT(search("?.asc").names, ElementsAre("B.asc", "a.asc", "b.asc"));
    EXPECT_THAT(search("*").names, ElementsAre(".asc", "B.asc", "a.asc", "a.flt", "ab.asc", "b.asc", "d"));
    EXPECT_THAT(search("a*.*c").names, ElementsAre("a.asc", "ab.asc"));
    EXPECT_THAT(search("d\\*").names, ElementsAre("x.asc"));
    EXPECT_THAT(search("d").names, ElementsAre("d"));
    EXPECT_THAT(search("a.asc").names, ElementsAre("a.asc"));
}

TEST_F(SearchFolder, TellsTheErrorsApart)
{
    folder_.give("file", "");
    EXPECT_EQ(search("none").end, SearchEnd::noSuchFile);
    EXPECT_EQ(search("none*").end, SearchEnd::noSuchFile);
    EXPECT_EQ(search("nofolder/*").end, SearchEnd::noSuchFile);
    EXPECT_EQ(search("nofolder/x").end, SearchEnd::noSuchFile);
    EXPECT_EQ(search(".").end, SearchEnd::noSuchFile);
    EXPECT_EQ(searchFolder("").end, SearchEnd::noSuchFile);
    EXPECT_EQ(search("file/*").end, SearchEnd::invalidName);
    EXPECT_EQ(search("file/x").end, SearchEnd::invalidName);
    EXPECT_EQ(search(std::string(300, 'x')).end, SearchEnd::invalidName);
    EXPECT_THAT(search("file/*").names, IsEmpty());
}

TEST_F(SearchFolder, AFolderThatCannotBeReadIsAnotherError)
{
    if (geteuid() == 0) {
        GTEST_SKIP() << "the superuser reads every folder";
    }
    std::filesystem::create_directory(folder_.path() / "shut");
    std::filesystem::permissions(folder_.path() / "shut", std::filesystem::perms::none);
    EXPECT_EQ(search("shut/*").end, SearchEnd::invalidName);
}

TEST_F(SearchFolder, PatternsOfManyStarsEnd)
{
    folder_.give(std::string(200, 'a'), "");
    std::string pattern;
    for (int i = 0; i < 60; ++i) {
        pattern += "*a";
    }
    EXPECT_EQ(search(pattern + "*b").end, SearchEnd::noSuchFile);
    EXPECT_EQ(search(pattern + "*").names.size(), 1U);
}

TEST(FileExists, IsNoFolder)
{
    const test::ScratchFolder folder;
    folder.give("d/x", "");
    EXPECT_TRUE(fileExists((folder.path() / "d\\x").string()));
    EXPECT_FALSE(fileExists((folder.path() / "d").string()));
    EXPECT_FALSE(fileExists((folder.path() / "e").string()));
    EXPECT_TRUE(lastWriteTime((folder.path() / "d\\x").string()).has_value());
    EXPECT_FALSE(lastWriteTime((folder.path() / "e").string()).has_value());
}

} // namespace
} // namespace gridforge
