#include "exports/text_for_callers.h"

#include <gtest/gtest.h>
#include <initializer_list>
#include <string>
#include <utility>

namespace gridforge::exports {
namespace {

// The result of a logical routine and what it made of its text.
using Answer = std::pair<bool, std::string>;

Answer answerOf(bool (*routine)(std::string&), std::string text)
{
    const bool result = routine(text);
    return {result, text};
}

TEST(Asamecs, CountsCase)
{
    EXPECT_TRUE(ASAMECS("' Grid'\t", "Grid"));
    EXPECT_FALSE(ASAMECS("Grid", "grid"));
}

TEST(Blank, RemovesTabsAndLooksForTheRest)
{
    EXPECT_EQ(answerOf(BLANK, "\t\t"), Answer(true, ""));
    EXPECT_EQ(answerOf(BLANK, ""), Answer(true, ""));
    EXPECT_TRUE(answerOf(BLANK, " \t ").first);
    EXPECT_EQ(answerOf(BLANK, "\ta\tb"), Answer(false, "ab"));
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

TEST(Remove, DropsItsCharacterEverywhere)
{
    EXPECT_EQ(REMOVESPACES("  a b\t c  "), "ab\tc");
    EXPECT_EQ(REMOVETABS("\ta \tb\t"), "a b");
}

TEST(Ss256, HoldsTheFirst256)
{
    EXPECT_EQ(SS256("a b  "), "a b");
    EXPECT_EQ(SS256(std::string(255, 'a') + "bc"), std::string(255, 'a') + "b");
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

TEST(Csvcolumn, FindsTheFirstFieldOfThatName)
{
    EXPECT_EQ(CSVCOLUMN("Id, \"Depth\" ,Loss,depth", "DEPTH", -1), 2);
    EXPECT_EQ(CSVCOLUMN("Id,Depth,Loss", "Loss", -1), 3);
    EXPECT_EQ(CSVCOLUMN("Id,Depth,Loss", "Id", -1), 1);
}

TEST(Csvcolumn, GivesTheFallbackAtTheEnd)
{
    EXPECT_EQ(CSVCOLUMN("Id,Depth", "Los", 7), 7);
    EXPECT_EQ(CSVCOLUMN("", "Loss", 0), 0);
    EXPECT_EQ(CSVCOLUMN("Id,", "", 9), 2) << "the empty field after the last comma is a field";
}

TEST(Csvcolumn, HonoursNoQuotes)
{
    EXPECT_EQ(CSVCOLUMN("\"a,b\",c", "b", 9), 2);
    EXPECT_EQ(CSVCOLUMN("\"a,b\",c", "c", 9), 3);
}

TEST(Csvvalue, ReadsTheFieldOfAColumn)
{
    float value = -1;
    EXPECT_TRUE(CSVVALUE("1, 2.5 ,3e2", 1, value));
    EXPECT_EQ(value, 1.0F);
    EXPECT_TRUE(CSVVALUE("1, 2.5 ,3e2", 2, value));
    EXPECT_EQ(value, 2.5F);
    EXPECT_TRUE(CSVVALUE("1, 2.5 ,3e2", 3, value));
    EXPECT_EQ(value, 300.0F) << "no implied decimals";
}

TEST(Csvvalue, WithoutAValueGivesZeroAndFalse)
{
    for (const auto& [text, column] : std::initializer_list<std::pair<const char*, int>>{
             {"1,2", 3}, {"1,,3", 2}, {"1, ,3", 2}, {"1,2,", 3}, {"1,x,3", 2}, {"1,2 m,3", 2}, {"", 1}, {"1,2", 0}}) {
        float value = -1;
        EXPECT_FALSE(CSVVALUE(text, column, value)) << text;
        EXPECT_EQ(value, 0.0F) << text;
    }
}

TEST(Numberofdays, CountsYearsOf365Days)
{
    EXPECT_EQ(NUMBEROFDAYS("20000101"), 1);
    EXPECT_EQ(NUMBEROFDAYS("20000201"), 28 + 1);
    EXPECT_EQ(NUMBEROFDAYS("20010315"), 365 + 59 + 15);
    EXPECT_EQ(NUMBEROFDAYS("20231231 and more"), 23 * 365 + 334 + 31);
    EXPECT_EQ(NUMBEROFDAYS("19991231"), -365 + 334 + 31);
}

TEST(Numberofdays, HoldsFebruaryAt28)
{
    EXPECT_EQ(NUMBEROFDAYS("20040229"), 4 * 365 + 28 + 28);
    EXPECT_EQ(NUMBEROFDAYS("20040227"), 4 * 365 + 28 + 27);
    EXPECT_EQ(NUMBEROFDAYS("20040329"), 4 * 365 + 59 + 29);
}

TEST(Numberofdays, IsMinusOneWhereItCannotBeRead)
{
    for (const char* const date : {"", "2000", "200001", "2000xx01", "abcd0101", "200001x1", "20000001", "20001301"}) {
        EXPECT_EQ(NUMBEROFDAYS(date), -1) << date;
    }
}

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

} // namespace
} // namespace gridforge::exports
