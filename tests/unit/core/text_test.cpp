#include "core/text.h"

#include <gtest/gtest.h>
#include <initializer_list>
#include <string>
#include <utility>

namespace gridforge {
namespace {

// The result of a logical routine and what it made of its text.
using Answer = std::pair<bool, std::string>;

Answer answerOf(bool (*routine)(std::string&), std::string text)
{
    const bool result = routine(text);
    return {result, text};
}

// --- Views of a text -------------------------------------------------------------------------------------------------

TEST(Trim, TakesBlanksOnly)
{
    EXPECT_EQ(trimLeft("  a b  "), "a b  ");
    EXPECT_EQ(trimRight("  a b  "), "  a b");
    EXPECT_EQ(trim("  a b  "), "a b");
    EXPECT_EQ(trim(" \ta\t "), "\ta\t");
    EXPECT_EQ(trimLeft("   "), "");
    EXPECT_EQ(trimRight("   "), "");
    EXPECT_EQ(trim(""), "");
}

TEST(Cut, HoldsTheWidthWithoutTrailingBlanks)
{
    EXPECT_EQ(cut("abcdef", 4), "abcd");
    EXPECT_EQ(cut("ab  ef", 4), "ab");
    EXPECT_EQ(cut("ab", 4), "ab");
    EXPECT_EQ(cut("    ef", 4), "");
    EXPECT_EQ(cut("ab", 0), "");
}

TEST(Join, PutsPartsSideBySide)
{
    EXPECT_EQ(join("a ", std::string("b"), 'c', -5, std::int64_t{5000000000}), "a bc-55000000000");
    EXPECT_EQ(join(), "");
    EXPECT_EQ(quoted("a b"), "\"a b\"");
}

// --- Comparing and finding -------------------------------------------------------------------------------------------

TEST(Asame, IgnoresCaseQuotesTabsAndOuterBlanks)
{
    EXPECT_TRUE(ASAME("'a'", "A"));
    EXPECT_TRUE(ASAME("Grid  ", "grid"));
    EXPECT_TRUE(ASAME("G\tRI\tD", "grid"));
    EXPECT_TRUE(ASAME(" \t\" ' Grid\"' \t", "gr\"id"));
    EXPECT_TRUE(ASAME("", " '\" \t"));
    EXPECT_TRUE(ASAME("a \"b", "a b"));
}

TEST(Asame, CountsInnerBlanksAndEveryCharacter)
{
    EXPECT_FALSE(ASAME("a b", "ab"));
    EXPECT_FALSE(ASAME("a  b", "a b"));
    EXPECT_FALSE(ASAME("grid", "grids"));
    EXPECT_FALSE(ASAME("grids", "grid"));
    EXPECT_FALSE(ASAME("", "a"));
    EXPECT_FALSE(ASAME("a", "b"));
    // Bytes beyond ASCII have no case.
    EXPECT_FALSE(ASAME("\xE4", "\xC4"));
}

TEST(Asame, SeesTheFirst1000Characters)
{
    const std::string thousand(1000, 'a');
    EXPECT_TRUE(ASAME(thousand + "b", thousand + "c"));
    EXPECT_FALSE(ASAME(thousand.substr(1) + "b", thousand.substr(1) + "c"));
}

TEST(Flagexists, FindsTheKeyAnywhereInAnyCase)
{
    EXPECT_TRUE(FLAGEXISTS("Read GIS Network", "gis"));
    EXPECT_TRUE(FLAGEXISTS("read", "READ"));
    EXPECT_TRUE(FLAGEXISTS("Spread", "Read")) << "no word boundary";
    EXPECT_TRUE(FLAGEXISTS("abc", "c"));
    EXPECT_FALSE(FLAGEXISTS("Rea d", "Read"));
    EXPECT_FALSE(FLAGEXISTS("Rea", "Read"));
    EXPECT_FALSE(FLAGEXISTS("", "a"));
}

TEST(Flagexists, TrailingBlanksDoNotCountButLeadingOnesDo)
{
    EXPECT_TRUE(FLAGEXISTS("Read  ", "read   "));
    EXPECT_TRUE(FLAGEXISTS("a Read", " read"));
    EXPECT_FALSE(FLAGEXISTS("Read", " read"));
}

TEST(Flagexists, ABlankKeyIsAlwaysThere)
{
    EXPECT_TRUE(FLAGEXISTS("", ""));
    EXPECT_TRUE(FLAGEXISTS("  ", " "));
    EXPECT_TRUE(FLAGEXISTS("abc", " "));
}

TEST(Flagexists, FindsAKeyWhoseStartRepeats)
{
    EXPECT_TRUE(FLAGEXISTS("aaab", "AAB"));
    EXPECT_TRUE(FLAGEXISTS("nc_nc_comp", "nc_comp"));
}

TEST(Flagexists, TakesEveryCharacterLiterally)
{
    EXPECT_TRUE(FLAGEXISTS("a.*b", ".*"));
    EXPECT_FALSE(FLAGEXISTS("axxb", ".*"));
    EXPECT_FALSE(FLAGEXISTS("a[b", "a{b")) << "neighbours of letters have no case";
}

TEST(Flagexistsret, GivesWhatStandsBehindTheKey)
{
    std::string rest = "stale";
    EXPECT_TRUE(FLAGEXISTSRET("The MaxTime 5 Hours", "maxtime ", rest));
    EXPECT_EQ(rest, " 5 Hours");
    EXPECT_TRUE(FLAGEXISTSRET("aXbXc", "x", rest));
    EXPECT_EQ(rest, "bXc") << "behind the first";
    EXPECT_TRUE(FLAGEXISTSRET("abc", "BC", rest));
    EXPECT_EQ(rest, "");
    EXPECT_TRUE(FLAGEXISTSRET("abc", "", rest));
    EXPECT_EQ(rest, "abc");
}

TEST(Flagexistsret, IsBlankOnAMiss)
{
    std::string rest = "stale";
    EXPECT_FALSE(FLAGEXISTSRET("abc", "x", rest));
    EXPECT_EQ(rest, "");
}

TEST(Flagexistsret, MayReplaceItsOwnText)
{
    std::string text = "key = a value that is longer than a short text";
    EXPECT_TRUE(FLAGEXISTSRET(text, "=", text));
    EXPECT_EQ(text, " a value that is longer than a short text");
}

TEST(Commentline, CutsTheComment)
{
    EXPECT_TRUE(answerOf(COMMENTLINE, "  # note").first);
    EXPECT_TRUE(answerOf(COMMENTLINE, "! note").first);
    EXPECT_TRUE(answerOf(COMMENTLINE, "").first);
    EXPECT_TRUE(answerOf(COMMENTLINE, "   ").first);
    EXPECT_EQ(answerOf(COMMENTLINE, "abc # note"), Answer(false, "abc "));
    EXPECT_EQ(answerOf(COMMENTLINE, "  a ! b # c"), Answer(false, "a "));
    EXPECT_EQ(answerOf(COMMENTLINE, "  a # b ! c"), Answer(false, "a "));
    EXPECT_EQ(answerOf(COMMENTLINE, "  abc"), Answer(false, "abc"));
}

TEST(Commentline, DoesNotSeeQuotes)
{
    EXPECT_EQ(answerOf(COMMENTLINE, R"(name == "High! Street")"), Answer(false, R"(name == "High)"));
    EXPECT_EQ(answerOf(COMMENTLINE, "a '#1'"), Answer(false, "a '"));
}

TEST(Commentline, ATabIsContent)
{
    EXPECT_EQ(answerOf(COMMENTLINE, "\t# note"), Answer(false, "\t"));
}

// --- Changing text ---------------------------------------------------------------------------------------------------

TEST(Trimf, RemovesLeadingBlanksButNoTabs)
{
    EXPECT_EQ(TRIMF("   a b"), "a b");
    EXPECT_EQ(TRIMF(" \t a"), "\t a");
    EXPECT_EQ(TRIMF("    "), "");
}

TEST(Uppercase, TouchesAToZAlone)
{
    EXPECT_EQ(UPPERCASE("azAZ09`{@[_\xE9"), "AZAZ09`{@[_\xE9");
    EXPECT_EQ(LOWERCASE("azAZ09`{@[_\xC9"), "azaz09`{@[_\xC9");
}

TEST(Removequotes, DropsThemEverywhere)
{
    EXPECT_EQ(REMOVEQUOTES("'it''s' \"a\" b"), "its a b");
}

TEST(Doublequote, DoublesDoubleQuotesOnly)
{
    EXPECT_EQ(DOUBLEQUOTE(R"(a "b" 'c')"), R"(a ""b"" 'c')");
    EXPECT_EQ(DOUBLEQUOTE(R"("")"), R"("""")");
    EXPECT_EQ(quotedValue(R"(a "b" 'c')"), R"("a ""b"" 'c'")");
    EXPECT_EQ(quotedValue(""), R"("")");
}

TEST(Cleanattributename, KeepsLettersDigitsAndUnderscores)
{
    EXPECT_EQ(CLEANATTRIBUTENAME("Max depth_1 (m)"), "Maxdepth_1m");
    EXPECT_EQ(CLEANATTRIBUTENAME("_"), "_");
    EXPECT_EQ(CLEANATTRIBUTENAME(" ()"), "X");
    EXPECT_EQ(CLEANATTRIBUTENAME(""), "X");
}

// --- Counting and fields ---------------------------------------------------------------------------------------------

} // namespace
} // namespace gridforge
