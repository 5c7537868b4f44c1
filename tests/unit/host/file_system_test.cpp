#include "host/file_system.h"

#include "support/scratch_folder.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <system_error>

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
    std::filesystem::create_directory(folder_.path() / "shut");
    std::filesystem::permissions(folder_.path() / "shut", std::filesystem::perms::none);
    std::error_code refused;
    const std::filesystem::directory_iterator open(folder_.path() / "shut", refused);
    if (!refused) {
        GTEST_SKIP() << "the superuser reads every folder";
    }
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

class FindInput : public SearchFolder {
protected:
    // The name found for `asked`, both as seen from the folder; "" for none.
    std::string found(std::string_view asked) const
    {
        const auto name = findInput(in(asked));
        EXPECT_EQ(inputExists(in(asked)), name.has_value());
        return name ? name->substr(in("").size()) : "";
    }
};

TEST_F(FindInput, TakesItsOwnNameFirst)
{
    for (const char* name : {"a.asc", "A.asc", "a.ASC"}) {
        folder_.give(name, "");
    }
    EXPECT_EQ(found("a.asc"), "a.asc");
    EXPECT_EQ(found("A.asc"), "A.asc");
}

TEST_F(FindInput, TakesTheOneFileInOtherCase)
{
    folder_.give("Sub/Depth_1%.ASC", "");
    EXPECT_EQ(found("Sub\\dEPTH_1%.asc"), "Sub/Depth_1%.ASC");
    EXPECT_EQ(found("Sub/Depth_1%.as"), "");
    EXPECT_EQ(found("Sub/Depth_1%.asc2"), "");
    EXPECT_EQ(found("Sub/?epth_1%.asc"), "");
}

TEST_F(FindInput, TakesNoneOfTwo)
{
    folder_.give("A.asc", "");
    folder_.give("a.ASC", "");
    EXPECT_EQ(found("a.asc"), "");
}

TEST_F(FindInput, LooksAtTheCaseOfTheLastPartOnly)
{
    folder_.give("Sub/a.asc", "");
    EXPECT_EQ(found("sub/a.asc"), "");
    EXPECT_EQ(found("none/a.asc"), "");
    EXPECT_EQ(found("Sub/a.asc/"), "");
    EXPECT_EQ(found("Sub/a.asc/x"), "");
}

TEST_F(FindInput, KnowsTheLettersOfAsciiOnly)
{
    folder_.give("\xC3\x84.asc", ""); // a capital with a diaeresis; the small one has A4
    folder_.give("x[.asc", "");
    EXPECT_EQ(found("\xC3\xA4.asc"), "");
    EXPECT_EQ(found("x{.asc"), "");
}

TEST_F(FindInput, TakesNoFolder)
{
    folder_.give("D/x", "");
    EXPECT_EQ(found("D"), "");
    EXPECT_EQ(found("d"), "");
    folder_.give("E/x", "");
    folder_.give("e", "");
    folder_.give("f/x", "");
    folder_.give("F", "");
    EXPECT_EQ(found("E"), "e");
    EXPECT_EQ(found("f"), "F");
}

TEST_F(FindInput, FollowsLinks)
{
    folder_.give("target", "");
    std::filesystem::create_symlink("target", folder_.path() / "LINK");
    std::filesystem::create_symlink("nowhere", folder_.path() / "Link");
    EXPECT_EQ(found("link"), "LINK");
    EXPECT_EQ(found("Link"), "LINK");
}

TEST_F(FindInput, LeavesTheDirectorySearchExact)
{
    folder_.give("A.asc", "");
    EXPECT_EQ(search("a.asc").end, SearchEnd::noSuchFile);
    EXPECT_EQ(search("a*").end, SearchEnd::noSuchFile);
}

} // namespace
} // namespace gridforge
