#include "core/free_form.h"

#include "core/text.h"

#include <cfloat>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <string>
#include <string_view>

namespace gridforge {
namespace {

constexpr float kInfF = std::numeric_limits<float>::infinity();
constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr std::int32_t kMaxInt = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kMinInt = std::numeric_limits<std::int32_t>::min();

std::string times(std::size_t count, char c)
{
    return std::string(count, c);
}

// --- Free-form reading: how values are told apart --------------------------------------------------------------------

// The values of a text read as 32-bit integers, "_" for an empty one and "!" for a failure.
std::string walk(std::string_view text, LastComma lastComma = LastComma::separates)
{
    FreeForm values(text, lastComma);
    std::string told;
    while (true) {
        std::int32_t value = -77;
        const FreeValue result = values.next(value);
        switch (result) {
        case FreeValue::value: told += std::to_string(value); break;
        case FreeValue::empty: told += "_"; break;
        case FreeValue::failure: told += "!"; break;
        case FreeValue::end: return told;
        }
        if (result != FreeValue::value) {
            EXPECT_EQ(value, -77) << "the target must stay";
        }
        told += ' ';
    }
}

TEST(FreeFormValues, EndAtBlanksTabsAndCommas)
{
    EXPECT_EQ(walk("1 2\t3,4"), "1 2 3 4 ");
    EXPECT_EQ(walk("  1 \t 2  "), "1 2 ");
    EXPECT_EQ(walk("1 , 2\t,\t3"), "1 2 3 ");
    EXPECT_EQ(walk(""), "");
    EXPECT_EQ(walk(" \t "), "");
}

TEST(FreeFormValues, MayBeEmptyBetweenCommas)
{
    EXPECT_EQ(walk("1,,3"), "1 _ 3 ");
    EXPECT_EQ(walk("1, ,3"), "1 _ 3 ");
    EXPECT_EQ(walk("1 , , , 4"), "1 _ _ 4 ");
    EXPECT_EQ(walk(",5"), "_ 5 ");
    EXPECT_EQ(walk(" ,, 5"), "_ _ 5 ");
}

TEST(FreeFormValues, ACommaAtTheEndIsOnlyASeparator)
{
    EXPECT_EQ(walk("1,"), "1 ");
    EXPECT_EQ(walk("1, "), "1 ");
    EXPECT_EQ(walk("1,,"), "1 _ ");
    EXPECT_EQ(walk(","), "_ ");
}

TEST(FreeFormValues, ACommaAtTheEndMayHoldAnEmptyValue)
{
    const auto held = [](std::string_view text) { return walk(text, LastComma::holdsEmpty); };
    EXPECT_EQ(held("1,"), "1 _ ");
    EXPECT_EQ(held("1 , \t"), "1 _ ");
    EXPECT_EQ(held("1,,"), "1 _ _ ");
    EXPECT_EQ(held(","), "_ _ ");
    EXPECT_EQ(held("x,"), "! _ ");
    EXPECT_EQ(held("1,2"), "1 2 ");
    EXPECT_EQ(held("1 2 "), "1 2 ");
    EXPECT_EQ(held(""), "");
    EXPECT_EQ(held("  "), "");
}

TEST(FreeFormValues, GoOnBehindAFailure)
{
    EXPECT_EQ(walk("1 x,3"), "1 ! 3 ");
    EXPECT_EQ(walk("1;2 3"), "! 3 ");
}

TEST(FreeFormValues, EndStaysTheEnd)
{
    FreeForm values("1");
    std::int32_t value = 0;
    EXPECT_EQ(values.next(value), FreeValue::value);
    EXPECT_EQ(values.next(value), FreeValue::end);
    EXPECT_EQ(values.next(value), FreeValue::end);
}

TEST(FreeFormValues, AreTakenAsFieldsThatALineHasToHave)
{
    FreeForm values("7,,'a b' x");
    std::int32_t count = 1;
    EXPECT_TRUE(values.take(count));
    EXPECT_EQ(count, 7);
    EXPECT_TRUE(values.take(count)) << "an empty field is there";
    EXPECT_EQ(count, 7);
    std::string name;
    EXPECT_TRUE(values.take(name, 2));
    EXPECT_EQ(name, "a");
    EXPECT_FALSE(values.take(count)) << "no number";
    EXPECT_FALSE(values.take(count)) << "missing";
    EXPECT_FALSE(values.take(name, 2));
    EXPECT_EQ(count, 7);
    EXPECT_EQ(name, "a");
}

TEST(FreeFormValues, MayBeOfEveryKindInOneText)
{
    FreeForm values("7 5000000000 0.1 0.1 'a b',x");
    std::int32_t narrow = 0;
    std::int64_t wide = 0;
    float single = 0;
    double real = 0;
    std::string quotedText;
    std::string plain;
    EXPECT_EQ(values.next(narrow), FreeValue::value);
    EXPECT_EQ(values.next(wide), FreeValue::value);
    EXPECT_EQ(values.next(single), FreeValue::value);
    EXPECT_EQ(values.next(real), FreeValue::value);
    EXPECT_EQ(values.nextText(quotedText, 100), FreeValue::value);
    EXPECT_EQ(values.nextText(plain, 100), FreeValue::value);
    EXPECT_EQ(narrow, 7);
    EXPECT_EQ(wide, 5000000000);
    EXPECT_EQ(single, 0.1F);
    EXPECT_EQ(real, 0.1);
    EXPECT_EQ(quotedText, "a b");
    EXPECT_EQ(plain, "x");
}

// --- Text values -----------------------------------------------------------------------------------------------------

// The text values, each in <>, with the same signs for the others.
std::string walkTexts(std::string_view text, std::size_t width = 100, LastComma lastComma = LastComma::separates)
{
    FreeForm values(text, lastComma);
    std::string told;
    while (true) {
        std::string value = "kept";
        const FreeValue result = values.nextText(value, width);
        switch (result) {
        case FreeValue::value: told += join('<', value, '>'); break;
        case FreeValue::empty: told += "_"; break;
        case FreeValue::failure: told += "!"; break;
        case FreeValue::end: return told;
        }
        if (result != FreeValue::value) {
            EXPECT_EQ(value, "kept");
        }
    }
}

TEST(FreeFormText, MayBeEmptyAfterTheLastComma)
{
    EXPECT_EQ(walkTexts("a,", 100, LastComma::holdsEmpty), "<a>_");
    EXPECT_EQ(walkTexts("\"a,\",", 100, LastComma::holdsEmpty), "<a,>_");
    EXPECT_EQ(walkTexts("\"a,\"", 100, LastComma::holdsEmpty), "<a,>");
    EXPECT_EQ(walkTexts("\"a", 100, LastComma::holdsEmpty), "!");
}

TEST(FreeFormText, EndsAtABlankOrComma)
{
    EXPECT_EQ(walkTexts("one two,three\tfour"), "<one><two><three><four>");
    EXPECT_EQ(walkTexts("a,,b,"), "<a>_<b>");
    EXPECT_EQ(walkTexts(R"(C:\x\y.asc x/y;z)"), R"(<C:\x\y.asc><x/y;z>)");
    EXPECT_EQ(walkTexts("Bob's 1\"2"), "<Bob's><1\"2>") << "quotes count at the head only";
}

TEST(FreeFormText, MayStandInQuotes)
{
    EXPECT_EQ(walkTexts(R"('a, b' "c 'd'",e)"), "<a, b><c 'd'><e>");
    EXPECT_EQ(walkTexts(R"('it''s' "say ""so""")"), R"(<it's><say "so">)");
    EXPECT_EQ(walkTexts(R"('' , "" ,x)"), "<><><x>");
    EXPECT_EQ(walkTexts("'a''' ''''"), "<a'><'>");
}

TEST(FreeFormText, AnOpenQuoteIsAFailure)
{
    EXPECT_EQ(walkTexts("a 'b c"), "<a>!");
    EXPECT_EQ(walkTexts("'"), "!");
    EXPECT_EQ(walkTexts("'a''"), "!");
}

TEST(FreeFormText, IsCutAtTheWidth)
{
    EXPECT_EQ(walkTexts("abcdef ab 'ab  cd'", 4), "<abcd><ab><ab>");
}

// --- Integers --------------------------------------------------------------------------------------------------------

TEST(ParseInteger, TakesASignAndDigits)
{
    const auto read = [](std::string_view text) {
        std::int32_t value = -77;
        return parseNumber(text, value) ? value : -99;
    };
    EXPECT_EQ(read("0"), 0);
    EXPECT_EQ(read("-0"), 0);
    EXPECT_EQ(read("+12"), 12);
    EXPECT_EQ(read("-12"), -12);
    EXPECT_EQ(read("0000000000000000000007"), 7);
    EXPECT_EQ(read("2147483647"), kMaxInt);
    EXPECT_EQ(read("-2147483648"), kMinInt);
}

TEST(ParseInteger, RefusesAllElse)
{
    for (const char* const text :
         {"",    "+",   "-",    "--1",   "+-1",        "-+1",         "1.",
          "1.5", "1e3", "0x10", "1a",    "a1",         " 1",          "1 ",
          "2*5", "1/",  "'1'",  "\"1\"", "2147483648", "-2147483649", "99999999999999999999999",
          "T",   "1,2"}) {
        std::int32_t value = -77;
        EXPECT_FALSE(parseNumber(text, value)) << text;
        EXPECT_EQ(value, -77) << text;
    }
}

TEST(ParseInteger, Has64BitsInAWideTarget)
{
    std::int64_t value = 0;
    EXPECT_TRUE(parseNumber("-9223372036854775808", value));
    EXPECT_EQ(value, std::numeric_limits<std::int64_t>::min());
    EXPECT_TRUE(parseNumber("+9223372036854775807", value));
    EXPECT_EQ(value, std::numeric_limits<std::int64_t>::max());
    EXPECT_FALSE(parseNumber("9223372036854775808", value));
    EXPECT_EQ(value, std::numeric_limits<std::int64_t>::max());
}

// --- Reals -----------------------------------------------------------------------------------------------------------

template <typename Real>
Real realOf(std::string_view text)
{
    Real value = -77;
    EXPECT_TRUE(parseNumber(text, value)) << text.substr(0, 40);
    return value;
}

TEST(ParseReal, TakesPointsAndExponents)
{
    EXPECT_EQ(realOf<double>("1"), 1.0);
    EXPECT_EQ(realOf<double>("+1.5"), 1.5);
    EXPECT_EQ(realOf<double>("-.5"), -0.5);
    EXPECT_EQ(realOf<double>("5."), 5.0);
    EXPECT_EQ(realOf<double>("5.e1"), 50.0);
    EXPECT_EQ(realOf<double>(".5E+2"), 50.0);
    EXPECT_EQ(realOf<double>("15d-1"), 1.5);
    EXPECT_EQ(realOf<double>("-15D+001"), -150.0);
    EXPECT_EQ(realOf<float>("2.5d2"), 250.0F);
    EXPECT_EQ(realOf<float>("1e5"), 100000.0F);
}

TEST(ParseReal, KeepsTheSignOfZero)
{
    EXPECT_TRUE(std::signbit(realOf<float>("-0.0")));
    EXPECT_FALSE(std::signbit(realOf<float>("+0.0")));
    EXPECT_EQ(realOf<float>("-0.0"), 0.0F);
}

TEST(ParseReal, TakesNanAndInfinityInAnyCase)
{
    EXPECT_TRUE(std::isnan(realOf<float>("NaN")));
    EXPECT_TRUE(std::isnan(realOf<double>("-nan")));
    EXPECT_TRUE(std::isnan(realOf<double>("+NAN")));
    EXPECT_EQ(realOf<float>("inf"), kInfF);
    EXPECT_EQ(realOf<float>("-Inf"), -kInfF);
    EXPECT_EQ(realOf<double>("+INFINITY"), kInf);
    EXPECT_EQ(realOf<double>("-infinity"), -kInf);
}

TEST(ParseReal, RefusesAllElse)
{
    for (const char* const text :
         {"",      "+",     "-",     ".",      "-.",    "e5",    ".e5",   "1e",  "1e+", "1d-",   "1.2.3",
          "1..2",  "--1",   "+-1",   "-+1",    "1-",    "1.5+3", "1.5-3", "1f",  "1q5", "0x1",   "0x1p3",
          "1e5.5", "1e5e5", "nan()", "nan(1)", "nanx",  "infin", "1 2",   " 1",  "1 ",  "2*5",   "1/",
          "1;",    "'1'",   "\"1\"", "1,5",    "1_000", "1'000", "in",    "na",  "T",   "1e--5", "1e 5",
          "1e+-5", "\t1",   "1\r",   "-+inf",  "++inf", "- 1",   "1.e",   "1.d+"}) {
        float single = -77;
        double real = -77;
        EXPECT_FALSE(parseNumber(text, single)) << text;
        EXPECT_FALSE(parseNumber(text, real)) << text;
        EXPECT_EQ(single, -77.0F) << text;
        EXPECT_EQ(real, -77.0) << text;
    }
    float value = -77;
    EXPECT_FALSE(parseNumber(std::string_view("1\0", 2), value));
}

TEST(ParseReal, IsThatOfTheCLibraryForFewDigitsAndMany)
{
    std::mt19937_64 random(2);
    for (int i = 0; i < 100'000; ++i) {
        const std::uint64_t whole = random() >> (random() % 64);
        std::string text = std::to_string(whole).substr(0, 1 + random() % 17);
        text.insert(random() % (text.size() + 1), random() % 4 == 0 ? "" : ".");
        text.insert(0, random() % 2 == 0 ? "" : "-");
        double real = 0;
        float single = 0;
        ASSERT_TRUE(parseNumber(text, real) && parseNumber(text, single)) << text;
        ASSERT_EQ(real, std::strtod(text.c_str(), nullptr)) << text;
        ASSERT_EQ(single, std::strtof(text.c_str(), nullptr)) << text;
    }
}

TEST(ParseReal, HalfWayBetweenSinglesGoesByWhatDoublesCannotShow)
{
    // 2^24 + 1 lies half way between two singles; what follows decides, if there is anything.
    for (const char* text : {"16777217", "16777219", "16777217.0000001", "1677721.75", "0.125000007450580596",
                             "1.00000005960464", "1.000000059604644775", "1.000000059604644776"}) {
        float single = 0;
        ASSERT_TRUE(parseNumber(text, single)) << text;
        EXPECT_EQ(single, std::strtof(text, nullptr)) << text;
    }
}

TEST(ParseReal, RoundsOnceToThePrecisionOfItsTarget)
{
    // Just above the middle of 1 and the next float: through a double it would fall on the middle and go down to 1.
    const float next = std::nextafter(1.0F, 2.0F);
    EXPECT_EQ(realOf<float>("1.00000005960464477539062500000000000000001"), next);
    EXPECT_EQ(realOf<float>("1.000000059604644775390625"), 1.0F) << "an exact tie goes to even";
    EXPECT_EQ(realOf<float>("1.000000178813934326171875"), 1.0F + 2 * FLT_EPSILON) << "here even is above";
    EXPECT_EQ(realOf<float>("16777217"), 16777216.0F);
    EXPECT_EQ(realOf<float>("16777219"), 16777220.0F);
    EXPECT_EQ(realOf<float>("-1.00000005960464477539062500000000000000001"), -next);
}

TEST(ParseReal, TooLargeIsAFailure)
{
    // The middle of the largest float, 2^128 - 2^104, and 2^128.
    const std::string middle = "340282356779733661637539395458142568448";
    EXPECT_EQ(realOf<float>("340282356779733661637539395458142568447.9"), FLT_MAX);
    EXPECT_EQ(realOf<double>("1.7976931348623157e308"), DBL_MAX);
    float single = -77;
    double real = -77;
    for (const std::string& text : {middle, std::string("1e39"), std::string("-1d39"), std::string("3.5e+38")}) {
        EXPECT_FALSE(parseNumber(text, single)) << text;
        EXPECT_TRUE(parseNumber(text, real)) << text << ": within range of a double";
    }
    for (const std::string& text : {std::string("1e309"), std::string("-1.8D308"), "1e" + times(400, '9'),
                                    times(400, '9'), "0." + times(5000, '0') + "1e" + times(300, '9')}) {
        EXPECT_FALSE(parseNumber(text, real)) << text.substr(0, 40);
    }
    EXPECT_EQ(single, -77.0F);
}

TEST(ParseReal, TooSmallIsTheNearestValueOrZero)
{
    EXPECT_EQ(realOf<float>("1e-45"), FLT_TRUE_MIN);
    EXPECT_EQ(realOf<float>("0.8e-45"), FLT_TRUE_MIN) << "nearer to the smallest than to 0";
    EXPECT_EQ(realOf<float>("0.7e-45"), 0.0F);
    EXPECT_EQ(realOf<float>("1e-40"), std::strtof("1e-40", nullptr));
    EXPECT_EQ(realOf<float>("1e-50"), 0.0F);
    EXPECT_EQ(realOf<double>("4e-324"), DBL_TRUE_MIN);
    EXPECT_EQ(realOf<double>("2e-324"), 0.0);
    EXPECT_TRUE(std::signbit(realOf<float>("-1e-50"))) << "0 keeps the sign";
    EXPECT_TRUE(std::signbit(realOf<double>("-1d-" + times(300, '9'))));
}

TEST(ParseReal, TakesAnyNumberOfDigits)
{
    EXPECT_EQ(realOf<double>("0." + times(5000, '0') + "1e5001"), 1.0);
    EXPECT_EQ(realOf<double>("1" + times(5000, '0') + "d-5000"), 1.0);
    EXPECT_EQ(realOf<float>(times(5000, '0') + "1.5"), 1.5F);
    EXPECT_EQ(realOf<float>("1.5" + times(5000, '0')), 1.5F);
    EXPECT_EQ(realOf<double>("0e" + times(300, '9')), 0.0);
    EXPECT_EQ(realOf<double>("0.0e-" + times(300, '9')), 0.0);
    EXPECT_EQ(realOf<double>("1e" + times(300, '0') + "1"), 10.0);
    EXPECT_EQ(realOf<float>("1.000000059604644775390625" + times(3000, '0') + "1"), std::nextafter(1.0F, 2.0F))
        << "the last of three thousand digits lifts it off the tie";
}

TEST(ParseReal, AgreesWithTheCLibraryOnRandomDigits)
{
    std::mt19937 random(1); // NOLINT: the same numbers in every run
    std::uniform_int_distribution<int> digit('0', '9');
    std::uniform_int_distribution<int> length(1, 25);
    std::uniform_int_distribution<int> exponent(-60, 45);
    for (int i = 0; i < 20000; ++i) {
        std::string text = i % 2 == 0 ? "-" : "";
        for (int n = length(random); n > 0; --n) {
            text += static_cast<char>(digit(random));
        }
        text += '.';
        for (int n = length(random); n > 0; --n) {
            text += static_cast<char>(digit(random));
        }
        text += "e" + std::to_string(exponent(random));
        const float single = std::strtof(text.c_str(), nullptr);
        float read = -77;
        ASSERT_EQ(parseNumber(text, read), std::isfinite(single)) << text;
        ASSERT_EQ(read, std::isfinite(single) ? single : -77.0F) << text;
        ASSERT_EQ(realOf<double>(text), std::strtod(text.c_str(), nullptr)) << text;
    }
}

// --- First values ----------------------------------------------------------------------------------------------------

TEST(ReadFree, TakesTheFirstValue)
{
    float value = -77;
    EXPECT_TRUE(readFree("  2.5 m", value));
    EXPECT_EQ(value, 2.5F);
    EXPECT_TRUE(readFree("3,x", value));
    EXPECT_EQ(value, 3.0F);
    double real = -77;
    EXPECT_TRUE(readFree("1d0", real));
    EXPECT_EQ(real, 1.0);
}

TEST(ReadFree, AnEmptyValueLeavesTheTarget)
{
    std::int32_t value = -77;
    EXPECT_TRUE(readFree(",5", value));
    EXPECT_EQ(value, -77);
}

TEST(ReadFree, AnEmptyTextAndAFailureAreFalse)
{
    std::int32_t narrow = -77;
    std::int64_t wide = -77;
    float single = -77;
    double real = -77;
    for (const char* const text : {"", "  \t ", "x 5", "5x", "'5'", "2*5", "5;"}) {
        EXPECT_FALSE(readFree(text, narrow)) << text;
        EXPECT_FALSE(readFree(text, wide)) << text;
        EXPECT_FALSE(readFree(text, single)) << text;
        EXPECT_FALSE(readFree(text, real)) << text;
    }
    EXPECT_EQ(narrow, -77);
    EXPECT_EQ(wide, -77);
    EXPECT_EQ(single, -77.0F);
    EXPECT_EQ(real, -77.0);
}

TEST(Checkint, ReadsAnIntegerOfItsWidth)
{
    std::int32_t value = -77;
    EXPECT_TRUE(CHECKINT(" 12 ", value));
    EXPECT_EQ(value, 12);
    EXPECT_TRUE(CHECKINT("-2147483648", value));
    EXPECT_EQ(value, kMinInt);
}

TEST(Checkint, IsFalseOnAnyFailure)
{
    for (const char* const text : {"", " ", "1.5", "12a", "9223372036854775808"}) {
        std::int32_t value = -77;
        EXPECT_FALSE(CHECKINT(text, value)) << text;
        EXPECT_EQ(value, -77);
    }
    std::int32_t value = -77;
    EXPECT_FALSE(CHECKINT("2147483648", value));
}

} // namespace
} // namespace gridforge
