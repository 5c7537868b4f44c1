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

TEST(Asamecs, CountsCase)
{
    EXPECT_TRUE(ASAMECS("' Grid'\t", "Grid"));
    EXPECT_FALSE(ASAMECS("Grid", "grid"));
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

TEST(Blank, RemovesTabsAndLooksForTheRest)
{
    EXPECT_EQ(answerOf(BLANK, "\t\t"), Answer(true, ""));
    EXPECT_EQ(answerOf(BLANK, ""), Answer(true, ""));
    EXPECT_TRUE(answerOf(BLANK, " \t ").first);
    EXPECT_EQ(answerOf(BLANK, "\ta\tb"), Answer(false, "ab"));
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

TEST(Numberline, LooksAtTheFirstCharacter)
{
    for (const char* const yes : {"0", "9 lives", "-", ".", "-a", ".5", "", "  "}) {
        EXPECT_TRUE(answerOf(NUMBERLINE, yes).first) << yes;
    }
    for (const char* const no : {"+1", "a1", "e5", "\t1", ",1", "/", ":"}) {
        EXPECT_FALSE(answerOf(NUMBERLINE, no).first) << no;
    }
    EXPECT_EQ(answerOf(NUMBERLINE, "   1 2"), Answer(true, "1 2"));
}

TEST(Lensl, PassesBlanksAndZeroBytesAtTheEnd)
{
    using namespace std::string_view_literals;
    EXPECT_EQ(LENSL("abc"), 3);
    EXPECT_EQ(LENSL("abc \0 \0\0"sv), 3);
    EXPECT_EQ(LENSL(" a\0b  "sv), 4);
    EXPECT_EQ(LENSL(" \0 "sv), 0);
    EXPECT_EQ(LENSL(""), 0);
}

TEST(Positiveintegernumber, WantsDigitsOnly)
{
    EXPECT_EQ(answerOf(POSITIVEINTEGERNUMBER, "  120 "), Answer(true, "120 "));
    EXPECT_TRUE(answerOf(POSITIVEINTEGERNUMBER, "0").first);
    EXPECT_TRUE(answerOf(POSITIVEINTEGERNUMBER, "99999999999999999999").first);
    for (const char* const no : {"", "  ", "+1", "-1", "1.", "1 2", "1a", "1\t"}) {
        EXPECT_FALSE(answerOf(POSITIVEINTEGERNUMBER, no).first) << no;
    }
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

TEST(Remove, DropsItsCharactersEverywhere)
{
    EXPECT_EQ(REMOVESPACES("  a b\t c  "), "ab\tc");
    EXPECT_EQ(REMOVETABS("\ta \tb\t"), "a b");
    EXPECT_EQ(REMOVEQUOTES("'it''s' \"a\" b"), "its a b");
}

TEST(Ss256, HoldsTheFirst256)
{
    EXPECT_EQ(SS256("a b  "), "a b");
    EXPECT_EQ(SS256(std::string(255, 'a') + "bc"), std::string(255, 'a') + "b");
}

TEST(Doublequote, DoublesDoubleQuotesOnly)
{
    EXPECT_EQ(DOUBLEQUOTE(R"(a "b" 'c')"), R"(a ""b"" 'c')");
    EXPECT_EQ(DOUBLEQUOTE(R"("")"), R"("""")");
    EXPECT_EQ(quotedValue(R"(a "b" 'c')"), R"("a ""b"" 'c'")");
    EXPECT_EQ(quotedValue(""), R"("")");
}

TEST(Alphanumericonly, ReplacesOrDropsTheRest)
{
    EXPECT_EQ(ALPHANUMERICONLY("a-b c.9Z", '_'), "a_b_c_9Z");
    EXPECT_EQ(ALPHANUMERICONLY("a-b c.9Z", '\0'), "abc9Z");
    EXPECT_EQ(ALPHANUMERICONLY(" a ", '_'), "_a") << "trailing blanks are no content";
    EXPECT_EQ(ALPHANUMERICONLY("\xE9", '_'), "_");
}

TEST(Alphanumericonly, IsXWhereNothingIsLeft)
{
    EXPECT_EQ(ALPHANUMERICONLY("-.", '\0'), "X");
    EXPECT_EQ(ALPHANUMERICONLY("", '_'), "X");
    EXPECT_EQ(ALPHANUMERICONLY("-.", ' '), "X");
    EXPECT_EQ(ALPHANUMERICONLY("-.", '_'), "__");
}

TEST(Cleanattributename, KeepsLettersDigitsAndUnderscores)
{
    EXPECT_EQ(CLEANATTRIBUTENAME("Max depth_1 (m)"), "Maxdepth_1m");
    EXPECT_EQ(CLEANATTRIBUTENAME("_"), "_");
    EXPECT_EQ(CLEANATTRIBUTENAME(" ()"), "X");
    EXPECT_EQ(CLEANATTRIBUTENAME(""), "X");
}

TEST(Replace, ReplacesTheFirstInAnyCase)
{
    EXPECT_EQ(REPLACE("The Grid, the grid", "GRID", "Cell"), "The Cell, the grid");
    EXPECT_EQ(REPLACE("abc", "x", "y"), "abc");
    EXPECT_EQ(REPLACE("abc", "b", "-and-"), "a-and-c");
    EXPECT_EQ(REPLACE("abc", "B", ""), "ac");
    EXPECT_EQ(REPLACE("abc", "b", " x  "), "a xc") << "`with` loses trailing blanks";
    EXPECT_EQ(REPLACE("", "b", "x"), "");
    EXPECT_EQ(REPLACE("abc", "", "x"), "abc");
    EXPECT_EQ(REPLACE("ab", "B", "b"), "ab") << "may hold what it replaces";
}

TEST(Replaceall, GoesOnFromTheStartUntilNoneIsLeft)
{
    EXPECT_EQ(REPLACEALL("a,b,,c", ",", ";"), "a;b;;c");
    EXPECT_EQ(REPLACEALL("aXbxc", "x", ""), "abc");
    EXPECT_EQ(REPLACEALL("aaaab", "ab", "b"), "b") << "what a replacement brings together is found";
    EXPECT_EQ(REPLACEALL("abc", "", "x"), "abc");
}

TEST(Splitfirstword, CutsTheFirstWordOff)
{
    const auto split = [](std::string text) {
        std::string word = "stale";
        SPLITFIRSTWORD(word, text);
        return std::pair(word, text);
    };
    using Words = std::pair<std::string, std::string>;
    EXPECT_EQ(split("  one  two three"), Words("one", "two three"));
    EXPECT_EQ(split("'my file.asc' two"), Words("my file.asc", "two"));
    EXPECT_EQ(split("a\"b c\"d e"), Words("ab cd", "e"));
    EXPECT_EQ(split("one"), Words("one", ""));
    EXPECT_EQ(split("\"not closed"), Words("not closed", ""));
    EXPECT_EQ(split("one\ttwo three"), Words("one\ttwo", "three"));
    EXPECT_EQ(split(""), Words("", ""));
    EXPECT_EQ(split("   "), Words("", ""));
}

// --- Counting and fields ---------------------------------------------------------------------------------------------

TEST(Nextcomma, PassesCommasInQuotes)
{
    EXPECT_EQ(NEXTCOMMA("ab,c"), 3);
    EXPECT_EQ(NEXTCOMMA(","), 1);
    EXPECT_EQ(NEXTCOMMA("abc"), 0);
    EXPECT_EQ(NEXTCOMMA(""), 0);
    EXPECT_EQ(NEXTCOMMA("\"a,b\",c"), 6);
    EXPECT_EQ(NEXTCOMMA("'a,b',c"), 6);
    EXPECT_EQ(NEXTCOMMA("'a,b"), 0);
}

TEST(Nextcomma, SkipsADoubledQuoteInQuotes)
{
    EXPECT_EQ(NEXTCOMMA(R"("a"",b",c)"), 8);
    EXPECT_EQ(NEXTCOMMA("'it''s, so',c"), 12);
    EXPECT_EQ(NEXTCOMMA(R"("",c)"), 3) << "empty quotes are open and closed";
}

TEST(Nextcomma, EitherKindOfQuoteToggles)
{
    EXPECT_EQ(NEXTCOMMA(R"("a',b)"), 4);
    EXPECT_EQ(NEXTCOMMA("O'Brien,b"), 0);
}

TEST(Numberofsubstrings, CountsFieldsNotSeparators)
{
    EXPECT_EQ(NUMBEROFSUBSTRINGS("a,b,c", ","), 3);
    EXPECT_EQ(NUMBEROFSUBSTRINGS("abc", ","), 1);
    EXPECT_EQ(NUMBEROFSUBSTRINGS(",", ","), 2);
    EXPECT_EQ(NUMBEROFSUBSTRINGS("a==b==c", "=="), 3);
    EXPECT_EQ(NUMBEROFSUBSTRINGS("a b  ", " "), 2);
    EXPECT_EQ(NUMBEROFSUBSTRINGS("", ","), 0);
    EXPECT_EQ(NUMBEROFSUBSTRINGS("   ", " "), 0);
    EXPECT_EQ(NUMBEROFSUBSTRINGS("abc", ""), 1);
}

TEST(Substring, GivesTheFieldLeftTrimmed)
{
    EXPECT_EQ(SUBSTRING("a;  b c;;d", ";", 1), "a");
    EXPECT_EQ(SUBSTRING("a;  b c;;d", ";", 2), "b c");
    EXPECT_EQ(SUBSTRING("a;  b c;;d", ";", 3), "");
    EXPECT_EQ(SUBSTRING("a;  b c;;d", ";", 4), "d");
    EXPECT_EQ(SUBSTRING("a;  b c;;d", ";", 5), "");
    EXPECT_EQ(SUBSTRING("a;", ";", 2), "");
    EXPECT_EQ(SUBSTRING("a;b", ";", 0), "");
    EXPECT_EQ(SUBSTRING("", ";", 1), "");
    EXPECT_EQ(SUBSTRING("abc", "", 1), "abc");
    EXPECT_EQ(SUBSTRING("abc", "", 2), "");
}

TEST(Substring, IsOffByTheExcessOfALongSeparator)
{
    // Each start steps one character past a separator's start, each end lies one excess further back.
    EXPECT_EQ(SUBSTRING("abc==def==ghi", "==", 1), "ab");
    EXPECT_EQ(SUBSTRING("abc==def==ghi", "==", 2), "=de");
    EXPECT_EQ(SUBSTRING("abc==def==ghi", "==", 3), "=ghi");
    EXPECT_EQ(SUBSTRING("a<->b", "<->", 1), "") << "the end lies before the start";
}

TEST(Numberofnumbers, CountsNumbersAndEmptyFields)
{
    EXPECT_EQ(NUMBEROFNUMBERS("1,,3"), 3);
    EXPECT_EQ(NUMBEROFNUMBERS("1 2 3"), 3);
    EXPECT_EQ(NUMBEROFNUMBERS("  1.5e-3 ,\t-2,3 , 4"), 4);
    EXPECT_EQ(NUMBEROFNUMBERS("1, ,3"), 3);
    EXPECT_EQ(NUMBEROFNUMBERS("1,,,4"), 4);
    EXPECT_EQ(NUMBEROFNUMBERS(""), 0);
    EXPECT_EQ(NUMBEROFNUMBERS("   "), 0);
}

TEST(Numberofnumbers, CountsNoEmptyFieldAtEitherEnd)
{
    EXPECT_EQ(NUMBEROFNUMBERS(",1"), 1);
    EXPECT_EQ(NUMBEROFNUMBERS("1,"), 1);
    EXPECT_EQ(NUMBEROFNUMBERS("1,,"), 2);
    EXPECT_EQ(NUMBEROFNUMBERS(","), 0);
}

TEST(Numberofnumbers, StopsAtAComment)
{
    EXPECT_EQ(NUMBEROFNUMBERS("1 2 ! abc"), 2);
    EXPECT_EQ(NUMBEROFNUMBERS("1 2#3"), 2);
}

TEST(Numberofnumbers, IsNegativeWhereOtherTextStands)
{
    EXPECT_EQ(NUMBEROFNUMBERS("1 2 abc"), -2);
    EXPECT_EQ(NUMBEROFNUMBERS("1 +2"), -1);
    EXPECT_EQ(NUMBEROFNUMBERS("1d5"), -1) << "a d stands in no number here";
    EXPECT_EQ(NUMBEROFNUMBERS("1,,x"), -2);
    EXPECT_EQ(NUMBEROFNUMBERS("x"), 0);
    EXPECT_EQ(NUMBEROFNUMBERS("e E - ."), 4) << "each of them begins a number";
}

} // namespace
} // namespace gridforge
