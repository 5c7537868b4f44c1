#include "host/file_identity.h"

#include "host/file_stream.h"
#include "support/scratch_folder.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>

namespace gridforge {
namespace {

class Identity : public testing::Test {
protected:
    Identity() { folder_.give("d/a", ""); }
    std::string in(const char* name) const { return (folder_.path() / name).string(); }

    test::ScratchFolder folder_;
};

TEST_F(Identity, IsOneForAllNamesOfAFile)
{
    const auto a = identityOfOutput(in("d/a"));
    ASSERT_TRUE(a.has_value());
    std::filesystem::create_hard_link(in("d/a"), in("hard"));
    std::filesystem::create_symlink("d/a", in("soft"));
    for (const char* name : {"d\\a", "d/../d/./a", "hard", "soft"}) {
        EXPECT_EQ(identityOfOutput(in(name)), a) << name;
        EXPECT_EQ(identityOfInput(in(name)), a) << name;
    }
    const FileStream stream(theSystem().open(in("hard"), OpenFor::reading), Direction::in, "hard");
    EXPECT_EQ(stream.identity(), a);
}

TEST_F(Identity, OfAnInputIsFoundInOtherCase)
{
    EXPECT_EQ(identityOfInput(in("d/A")), identityOfOutput(in("d/a")));
    EXPECT_FALSE(identityOfOutput(in("d/A")).has_value());
}

TEST_F(Identity, DiffersBetweenFiles)
{
    folder_.give("b", "");
    EXPECT_NE(identityOfOutput(in("b")), identityOfOutput(in("d/a")));
}

TEST_F(Identity, IsNothingForWhatIsNotThere)
{
    std::filesystem::create_symlink("nowhere", in("dangling"));
    for (const char* name : {"c", "d/a/x", "dangling"}) {
        EXPECT_FALSE(identityOfOutput(in(name)).has_value()) << name;
        EXPECT_FALSE(identityOfInput(in(name)).has_value()) << name;
    }
    EXPECT_FALSE(FileStream().identity().has_value());
    EXPECT_FALSE(FileStream().identity().has_value());
}

TEST_F(Identity, KnowsFilesThatKeepTheirBytes)
{
    EXPECT_TRUE(identityOfOutput(in("d/a"))->regular);
    EXPECT_FALSE(identityOfOutput("/dev/null")->regular);
}

} // namespace
} // namespace gridforge
