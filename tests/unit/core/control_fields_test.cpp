#include "core/control_fields.h"

#include "core/text.h"

#include <gtest/gtest.h>
#include <initializer_list>
#include <string>
#include <utility>

namespace gridforge {
namespace {

// --- CHECKLINE -------------------------------------------------------------------------------------------------------

struct Split {
    bool command;
    std::string left;
    std::string right;
    bool operator==(const Split&) const = default;
};

void PrintTo(const Split& split, std::ostream* out)
{
    *out << split.command << " <" << split.left << "> <" << split.right << ">";
}

Split splitOf(std::string_view line, std::string_view key = "*",
              std::string_view separator = "==", std::int32_t splitColumn = 0)
{
    Split split{false, "stale", "stale"};
    split.command = CHECKLINE(line, key, separator, splitColumn, split.right, split.left);
    return split;
}

TEST(Checkline, LeavesBothSidesUntrimmedAndTheirCase)
{
    EXPECT_EQ(splitOf("Read GIS X == file.mif"), (Split{true, "Read GIS X ", " file.mif"}));
    EXPECT_EQ(splitOf("a==b==c"), (Split{true, "a", "b==c"}));
    EXPECT_EQ(splitOf("a==="), (Split{true, "a", "="}));
}

TEST(Checkline, WithoutSeparatorAllIsLeft)
{
    EXPECT_EQ(splitOf("Read GIS X = file.mif"), (Split{true, "Read GIS X = file.mif", ""}));
    EXPECT_EQ(splitOf(""), (Split{true, "", ""}));
}

TEST(Checkline, ABlankCommandBeforeASeparatorIsNone)
{
    EXPECT_EQ(splitOf("== value"), (Split{false, "", " value"}));
    EXPECT_EQ(splitOf("  == value"), (Split{false, "  ", " value"}));
}

TEST(Checkline, SplitsAtTheColumnWhereTheSeparatorIsMissing)
{
    EXPECT_EQ(splitOf("abcdef", "*", "==", 4), (Split{true, "abcd", "ef"}));
    EXPECT_EQ(splitOf("abc", "*", "==", 4), (Split{true, "abc", ""}));
    EXPECT_EQ(splitOf("a==cdef", "*", "==", 4), (Split{true, "a", "cdef"}));
    EXPECT_EQ(splitOf("    ef", "*", "==", 4), (Split{false, "    ", "ef"}));
}

TEST(Checkline, ABlankSeparatorSplitsAtTheColumnAlone)
{
    EXPECT_EQ(splitOf("a==cdef", "*", " ", 2), (Split{true, "a=", "=cdef"}));
    EXPECT_EQ(splitOf("a == b", "*", "", 0), (Split{true, "", "a == b"}));
}

TEST(Checkline, WantsTheKeyOnTheLeft)
{
    EXPECT_TRUE(splitOf("Spread GIS == b", "read").command);
    EXPECT_FALSE(splitOf("GIS == Read", "read").command);
    EXPECT_TRUE(splitOf("read", "READ ").command);
    // Split all the same.
    EXPECT_EQ(splitOf("a == b", "read"), (Split{false, "a ", " b"}));
}

TEST(Checkline, MaySplitALineIntoItself)
{
    std::string line = "Read Grid == a much longer value than any short text holds";
    std::string value;
    EXPECT_TRUE(CHECKLINE(line, "*", "==", 0, value, line));
    EXPECT_EQ(line, "Read Grid ");
    EXPECT_EQ(value, " a much longer value than any short text holds");
}

// --- Values by key or column -----------------------------------------------------------------------------------------

TEST(KeyOrColumnValue, AKeyWithoutItsSignIsReported)
{
    std::string line = "Key";
    line.resize(kWorkWidth, ' ');
    const auto value = [&](std::string_view rest, ValueEnd end) {
        const std::string whole = line + std::string(rest);
        return keyOrColumnValue(whole, LOWERCASE(whole), "key", 1, end);
    };
    EXPECT_EQ(value(" 5, 6", ValueEnd::atComma), std::nullopt);
    EXPECT_EQ(value("= 5, 6", ValueEnd::atComma), "5");
    EXPECT_EQ(value("= 5, 6", ValueEnd::atLineEnd), "5, 6");
    EXPECT_EQ(keyOrColumnValue("a, b", "a, b", "key", 2, ValueEnd::atComma), "b");
}

} // namespace
} // namespace gridforge
