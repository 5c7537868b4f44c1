#include "ops/class_table.h"

#include "support/scratch_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

namespace gridforge::ops {
namespace {

using testing::ElementsAre;

std::optional<std::vector<float>> limits(const std::string& text, bool coloured = false)
{
    const test::ScratchFolder folder;
    folder.give("c.csv", text);
    return lookAtLimits((folder.path() / "c.csv").string(), coloured);
}

TEST(LookAtLimits, GivesThemAsTheTableIsRead)
{
    EXPECT_THAT(*limits("Limit,Name\n1.5,a\n, b\n7,c"),
                ElementsAre(1.5, 1.5, 7)); // an empty limit is 0, which never is reached
    EXPECT_THAT(*limits("Value,Name\n1,a\n2,\"b, c\"\n,c\n", true), ElementsAre(1, 2, 2));
}

TEST(LookAtLimits, GivesNoneOfATableThatEndsTheRun)
{
    EXPECT_FALSE(limits(""));
    EXPECT_FALSE(limits("Limit,Name\n1,a\n"));
    EXPECT_FALSE(limits("Limit,Name\n1,a\nx,b\n"));
    EXPECT_FALSE(limits("Limit,Name\n1,a\n2\n")); // the name is missing
    EXPECT_FALSE(limits("Value,Name\n1,a\nx,b\n", true));
    EXPECT_FALSE(limits("Value,Name\n1,a\nvalue 2,b\n", true));
    std::string many = "Limit,Name\n";
    for (int i = 0; i <= kMaxClasses; ++i) {
        many += std::to_string(i) + ",a\n";
    }
    EXPECT_FALSE(limits(many));
    EXPECT_FALSE(lookAtLimits("missing.csv", false));
    EXPECT_FALSE(lookAtLimits("", false));
}

} // namespace
} // namespace gridforge::ops
