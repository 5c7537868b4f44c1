#include "support/exported_calls.h"

#include <cstdint>
#include <gridforge/gridforge.h>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

namespace gridforge::test {
namespace {

// A logical routine's answer and what it leaves of its text.
struct Left {
    std::int32_t answer;
    std::string text;
    bool operator==(const Left&) const = default;
};
Left left(std::int32_t (*routine)(char*, std::size_t), std::string text)
{
    const std::int32_t answer = call(routine, text);
    return {answer, text};
}

// --- Comparing and finding -------------------------------------------------------------------------------------------

TEST(ExportedComparing, GivesOneOrZero)
{
    EXPECT_EQ(call(::ASAME, "'a'   ", "A"), 1);
    EXPECT_EQ(call(::ASAME, "a", "b"), 0);
    EXPECT_EQ(call(::ASAMECS, "'a'", "a  "), 1);
    EXPECT_EQ(call(::ASAMECS, "a", "A"), 0);
    EXPECT_EQ(call(::FLAGEXISTS, "Spread  ", "read   "), 1);
    EXPECT_EQ(call(::FLAGEXISTS, "Spread", "Reader"), 0);
    EXPECT_EQ(call(::FLAGEXISTS, "   ", "  "), 1);
}

TEST(ExportedComparing, EmptyTextsMayBeNullPointers)
{
    EXPECT_EQ(::ASAME(nullptr, 0, nullptr, 0), 1);
    EXPECT_EQ(::FLAGEXISTS(nullptr, 0, "a", 1), 0);
    EXPECT_EQ(::FLAGEXISTSRET("abc", 3, "a", 1, nullptr, 0), 1);
    EXPECT_EQ(::BLANK(nullptr, 0), 1);
    EXPECT_EQ(::LENSL(nullptr, 0), 0);
    EXPECT_EQ(textOf(3, ::UPPERCASE, std::string_view()), "   ");
}

TEST(ExportedFlagexistsret, FillsTheRest)
{
    std::string rest(6, '~');
    EXPECT_EQ(call(::FLAGEXISTSRET, "Read GIS  Lines", "read gis", rest), 1);
    EXPECT_EQ(rest, "  Line"); // cut
    EXPECT_EQ(call(::FLAGEXISTSRET, "Set x", "SET", rest), 1);
    EXPECT_EQ(rest, " x    "); // padded
    EXPECT_EQ(call(::FLAGEXISTSRET, "Set x", "get", rest), 0);
    EXPECT_EQ(rest, "      ");
}

TEST(ExportedTests, ChangeTheirTextInPlace)
{
    EXPECT_EQ(left(::BLANK, "\t \t"), (Left{1, "   "}));
    EXPECT_EQ(left(::BLANK, "\ta\tb"), (Left{0, "ab  "}));
    EXPECT_EQ(left(::COMMENTLINE, "  # note"), (Left{1, "        "}));
    EXPECT_EQ(left(::COMMENTLINE, " abc # note"), (Left{0, "abc        "}));
    EXPECT_EQ(left(::COMMENTLINE, "    "), (Left{1, "    "}));
    EXPECT_EQ(left(::NUMBERLINE, "  -1"), (Left{1, "-1  "}));
    EXPECT_EQ(left(::NUMBERLINE, "  x1"), (Left{0, "x1  "}));
    EXPECT_EQ(left(::NUMBERLINE, "    "), (Left{1, "    "}));
    EXPECT_EQ(left(::POSITIVEINTEGERNUMBER, "  12 "), (Left{1, "12   "}));
    EXPECT_EQ(left(::POSITIVEINTEGERNUMBER, " 1 2"), (Left{0, "1 2 "}));
    EXPECT_EQ(left(::POSITIVEINTEGERNUMBER, "   "), (Left{0, "   "}));
    EXPECT_EQ(left(::DRIVEANDURLNAME, "c:\\x      "), (Left{0, "C Drive\\x "}));
    EXPECT_EQ(left(::DRIVEANDURLNAME, " a\\b"), (Left{1, "a\\b "}));
}

TEST(ExportedLensl, ClosesTheTextWithAZeroByte)
{
    using namespace std::string_literals;
    EXPECT_EQ(left(::LENSL, "ab   "), (Left{2, "ab\0  "s}));
    EXPECT_EQ(left(::LENSL, "ab\0\0 \0"s), (Left{2, "ab\0   "s}));
    EXPECT_EQ(left(::LENSL, "abc"), (Left{3, "abc"}));
    EXPECT_EQ(left(::LENSL, "abc "), (Left{3, "abc\0"s}));
    EXPECT_EQ(left(::LENSL, " \0 "s), (Left{0, " \0 "s}));
}

TEST(ExportedCheckint, ReadsOrLeavesTheValue)
{
    std::int32_t value = 7;
    EXPECT_EQ(call(::CHECKINT, " 12 x", &value), 1);
    EXPECT_EQ(value, 12);
    EXPECT_EQ(call(::CHECKINT, "   ", &value), 0);
    EXPECT_EQ(call(::CHECKINT, "2.5", &value), 0);
    EXPECT_EQ(call(::CHECKINT4, "3000000000", &value), 0);
    EXPECT_EQ(value, 12);
    EXPECT_EQ(call(::CHECKINT4, "-5", &value), 1);
    EXPECT_EQ(value, -5);
    std::int64_t large = 0;
    EXPECT_EQ(call(::CHECKINT8, "3000000000", &large), 1);
    EXPECT_EQ(large, 3000000000);
    for (const char* const text : {"", " ", "1.5", "12a", "9223372036854775808"}) {
        EXPECT_EQ(call(::CHECKINT4, text, &value), 0) << text;
        EXPECT_EQ(call(::CHECKINT8, text, &large), 0) << text;
    }
    EXPECT_EQ(value, -5);
    EXPECT_EQ(large, 3000000000);
}

// --- Text from text --------------------------------------------------------------------------------------------------

using Change = void (*)(char*, std::size_t, const char*, std::size_t);
struct Case {
    const char* name;
    Change routine;
    std::string_view text;
    std::string_view result;
};
const std::vector<Case> kChanges = {
    {"TRIMF", ::TRIMF, "  \ta b  ", "\ta b"},
    {"UPPERCASE", ::UPPERCASE, "aZ1\xE4 ", "AZ1\xE4"},
    {"LOWERCASE", ::LOWERCASE, "aZ1\xC4 ", "az1\xC4"},
    {"REMOVESPACES", ::REMOVESPACES, " a b\tc ", "ab\tc"},
    {"REMOVETABS", ::REMOVETABS, "\ta\tb c", "ab c"},
    {"SS256", ::SS256, " ab ", " ab"},
    {"REMOVEQUOTES", ::REMOVEQUOTES, "\"it's\"", "its"},
    {"DOUBLEQUOTE", ::DOUBLEQUOTE, "a\"b", "a\"\"b"},
    {"CLEANATTRIBUTENAME", ::CLEANATTRIBUTENAME, "a-b_1 ", "ab_1"},
    {"CLEANATTRIBUTENAME", ::CLEANATTRIBUTENAME, "  ", "X"},
    {"FILEEXT", ::FILEEXT, "a.b\\FILE.ASC  ", ".asc"},
    {"FILEEXT", ::FILEEXT, "a.b/c", ""},
    {"FILEEXTKC", ::FILEEXTKC, "FILE.Asc", ".Asc"},
    {"FILENAMEPATH", ::FILENAMEPATH, "C:\\work\\a_b.mif", "C:\\work\\a_b"},
    {"FILENAME", ::FILENAME, "C:\\work\\a_b.mif", "a_b"},
    {"FILENAMEEXT", ::FILENAMEEXT, "C:\\work/a_b.mif", "a_b.mif"},
    {"FILE___EXT", ::FILE___EXT, "a_B.mif", "_b"},
    {"FILE___EXT", ::FILE___EXT, "C:\\work\\a_b.mif", ""},
    {"FILENAMENO_", ::FILENAMENO_, "C:\\work\\a_b.mif", "a"},
    {"FILENAMEPATHNO_", ::FILENAMEPATHNO_, "C:\\work\\a_b.mif", "C:\\work\\a"},
    {"FILEFOLDERPATH", ::FILEFOLDERPATH, "C:\\work\\a_b.mif", "C:\\work\\"},
    {"FILEFOLDERPATH", ::FILEFOLDERPATH, "name.asc", ""},
    {"REMOVEDOTDOT", ::REMOVEDOTDOT, "a\\b\\..\\c", "a\\c"},
    {"REMOVEDOTDOT", ::REMOVEDOTDOT, "..\\..\\a", "..\\..\\a"},
};

TEST(ExportedChanges, FillTheResultPaddedOrCut)
{
    for (const Case& change : kChanges) {
        for (const std::size_t width : {0U, 1U, 3U, 20U}) {
            EXPECT_EQ(textOf(width, change.routine, change.text), field(change.result, width)) << change.name;
        }
    }
}

TEST(ExportedChanges, TheResultMayBeTheArgument)
{
    for (const Case& change : kChanges) {
        std::string text(change.text);
        const std::string expected = field(change.result, text.size());
        call(change.routine, text, text);
        EXPECT_EQ(text, expected) << change.name;
    }
}

TEST(ExportedSs256, CutsThere)
{
    const std::string text(300, 'a');
    EXPECT_EQ(textOf(260, ::SS256, text), std::string(256, 'a') + "    ");
}

TEST(ExportedAlphanumericonly, ReplacesOrDrops)
{
    EXPECT_EQ(textOf(6, ::ALPHANUMERICONLY, "a-b c ", '_'), "a_b_c ");
    EXPECT_EQ(textOf(6, ::ALPHANUMERICONLY, "a-b c ", '\0'), "abc   ");
    EXPECT_EQ(textOf(6, ::ALPHANUMERICONLY, "--", '\0'), "X     ");
}

TEST(ExportedReplace, FindsWithoutRegardToCase)
{
    EXPECT_EQ(textOf(12, ::REPLACE, "One one", "ONE  ", "two  "), field("two one", 12));
    EXPECT_EQ(textOf(4, ::REPLACE, "One one", "none", "two"), "One ");
    EXPECT_EQ(textOf(12, ::REPLACEALL, "One one", "one", "two"), field("two two", 12));
    EXPECT_EQ(textOf(5, ::REPLACEALL, "One one", "one", "two"), "two t");
}

TEST(ExportedSplitfirstword, MovesAWord)
{
    std::string word(4, '~');
    std::string text = " 'a b'c  second ";
    call(::SPLITFIRSTWORD, word, text);
    EXPECT_EQ(word, "a bc");
    EXPECT_EQ(text, field("second", 16));
    call(::SPLITFIRSTWORD, word, text);
    call(::SPLITFIRSTWORD, word, text);
    EXPECT_EQ(word, "    ");
    EXPECT_EQ(text, field("", 16));
}

TEST(ExportedAddfolder, JoinsWithABackslash)
{
    EXPECT_EQ(textOf(12, ::ADDFOLDER, "C:\\x", "..\\y.asc"), field("C:\\y.asc", 12));
    EXPECT_EQ(textOf(8, ::ADDFOLDER, "C:\\x\\", "D:\\y.asc"), "D:\\y.asc");
    EXPECT_EQ(textOf(3, ::ADDFOLDER, "", ""), ".  ");
}

// --- Numbers to text -------------------------------------------------------------------------------------------------

TEST(ExportedNumbers, StandOnTheLeft)
{
    EXPECT_EQ(textOf(6, ::AINTEGER, std::int32_t{-12}), "-12   ");
    EXPECT_EQ(textOf(12, ::AINTEGER8, std::int64_t{3000000000}), "3000000000  ");
    EXPECT_EQ(textOf(20, ::AINTEGER8, std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
    EXPECT_EQ(textOf(6, ::AINTEGERPREC0, std::int32_t{7}, std::int32_t{3}), "007   ");
    EXPECT_EQ(textOf(6, ::AINTEGER8PREC0, std::int64_t{7}, std::int32_t{3}), "007   ");
    EXPECT_EQ(textOf(6, ::AREAL, 2.5F), "2.5   ");
    EXPECT_EQ(textOf(6, ::AREAL, 0.0F), "0.    ");
    EXPECT_EQ(textOf(6, ::AREAL, 12345.0F), "12345.");
    EXPECT_EQ(textOf(14, ::AREAL8, 0.25), field("0.25", 14));
    EXPECT_EQ(textOf(14, ::AREAL8, 293000.125), field("293000.125", 14));
    EXPECT_EQ(textOf(8, ::AREALD, 2.5F, std::int32_t{3}), "2.500   ");
    EXPECT_EQ(textOf(8, ::AREALD8, -0.125, std::int32_t{2}), "-0.12   "); // a tie goes to even
    EXPECT_EQ(textOf(2, ::AREALD8, 1.5, std::int32_t{1}), "1.");
}

// --- Counting and fields ---------------------------------------------------------------------------------------------

TEST(ExportedCounting, CountsFromOne)
{
    EXPECT_EQ(call(::NEXTCOMMA, "\"a,b\",c"), 6);
    EXPECT_EQ(call(::NEXTCOMMA, "abc"), 0);
    EXPECT_EQ(call(::NUMBEROFSUBSTRINGS, "a,b,,c  ", ","), 4);
    EXPECT_EQ(call(::NUMBEROFSUBSTRINGS, "a b  ", " "), 2);
    EXPECT_EQ(call(::NUMBEROFSUBSTRINGS, "   ", ","), 0);
    EXPECT_EQ(textOf(4, ::SUBSTRING, "a, bc,d", ",", std::int32_t{2}), "bc  ");
    EXPECT_EQ(textOf(4, ::SUBSTRING, "a, bc,d", ",", std::int32_t{4}), "    ");
    EXPECT_EQ(call(::NUMBEROFNUMBERS, "1,,3"), 3);
    EXPECT_EQ(call(::NUMBEROFNUMBERS, "1 2 abc"), -2);
    EXPECT_EQ(call(::NUMBEROFDAYS, "20010301"), 365 + 59 + 1);
    EXPECT_EQ(call(::NUMBEROFDAYS, "2001x301"), -1);
}

} // namespace
} // namespace gridforge::test
