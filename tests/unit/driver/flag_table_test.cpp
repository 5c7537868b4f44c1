#include "driver/flag_table.h"

#include "core/number_text.h"
#include "core/rounding.h"
#include "core/text.h"
#include "network/insert_vertices.h"
#include "remap/idw_cells.h"

#include <gtest/gtest.h>
#include <map>
#include <string>

namespace gridforge {
namespace {

using enum driver::SpanTest;
using enum driver::FlagKind;
using enum driver::FlagValue;
using enum driver::Counting;

struct Expected {
    std::string_view key;
    std::size_t span;
    driver::SpanTest test;
    driver::FlagKind kind;
    driver::FlagValue value;
    driver::Counting counting;
};

// The flags in their order, typed a second time from the manual and not from the table.
const std::vector<Expected> kExpected = {
    {"max", 3, contains, operation, none, atFlag},
    {"min", 3, contains, operation, none, atFlag},
    {"dif", 3, contains, operation, none, atFlag},
    {"src", 3, contains, option, none, never},
    {"brkline", 7, same, operation, next, atFlag},
    {"cd", 2, contains, operation, gluedReal, atFlag},
    {"out", 3, same, option, next, never},
    {"resize", 6, same, operation, gluedInteger, atFlag},
    {"trans_m", 7, same, operation, gluedReal, afterScan},
    {"trans_c", 7, same, operation, gluedReal, afterScan},
    {"rm_max", 6, same, option, none, never},
    {"rm_min", 6, same, option, none, never},
    {"rm_avg", 6, same, option, none, never},
    {"classify", 8, same, operation, next, atFlag},
    {"RGB", 3, same, option, none, never},
    {"count", 5, same, operation, none, atFlag},
    {"fe", 2, same, operation, none, atFlag},
    {"nowetdry", 8, contains, option, none, atFlag},
    {"change", 7, contains, option, none, atFlag},
    {"check", 6, contains, option, none, never},
    {"xyz", 3, contains, operation, none, atFlag},
    {"fuzzy", 5, contains, operation, none, atFlag},
    {"asc", 3, contains, option, none, never},
    {"flt", 3, contains, option, none, never},
    {"conv", 4, contains, operation, none, atFlag},
    {"multiply", 8, contains, operation, none, atFlag},
    {"histogram", 9, contains, operation, next, atFlag},
    {"grc", 3, contains, option, none, never},
    {"xs", 2, contains, operation, next, atFlag},
    {"nbc", 3, contains, operation, next, atFlag},
    {"branch", 6, contains, option, next, never},
    {"remap", 5, contains, operation, none, atFlag},
    {"na", 2, contains, operation, next, atFlag},
    {"mat", 3, contains, option, next, never},
    {"cpsd", 4, contains, option, gluedReal, never},
    {"cpmm", 4, contains, option, gluedReal, never},
    {"lpmd", 4, contains, option, gluedReal, never},
    {"lp", 2, same, operation, next, atFlag},
    {"config", 6, contains, option, next, never},
    {"cp", 2, contains, operation, next, atFlag},
    {"trim", 4, contains, operation, next, atFlag},
    {"nc_comp", 7, contains, option, gluedInteger, never},
    {"nc_shuffle", 10, contains, option, gluedInteger, never},
    {"nc_part", 7, contains, option, gluedInteger, never},
    {"idw_npt", 7, contains, option, gluedInteger, never},
    {"tin", 3, contains, option, none, never},
    {"wl", 2, contains, option, next, never},
    {"dem", 3, contains, option, next, never},
    {"ext", 3, contains, option, next, never},
    {"fb", 2, contains, option, gluedReal, never},
    {"bd", 2, contains, option, gluedReal, never},
    {"nc", 2, contains, operation, none, atFlag},
    {"default_n", 9, contains, option, gluedReal, never},
    {"damages", 7, contains, operation, next, atValue},
    {"b", 1, contains, option, none, never},
    {"rf", 2, contains, operation, next, atValue},
    {"stat", 4, contains, operation, statistic, afterScan},
    {"decimal", 7, contains, option, gluedInteger, never},
};

std::string_view keyOf(const driver::FlagRow* row)
{
    return row == nullptr ? "<none>" : row->key;
}

// The key of the flag that the argument is taken for.
std::string_view found(const std::string& argument)
{
    return keyOf(driver::findFlag(argument));
}

std::string withMark(std::string_view key)
{
    return join('-', key);
}

TEST(FlagTable, HasEveryFlagInItsOrder)
{
    ASSERT_EQ(driver::flagTable().size(), kExpected.size());
    for (std::size_t i = 0; i < kExpected.size(); ++i) {
        const driver::FlagRow& row = driver::flagTable()[i];
        const Expected& want = kExpected[i];
        EXPECT_EQ(row.key, want.key);
        EXPECT_EQ(row.span, want.span) << want.key;
        EXPECT_EQ(row.test, want.test) << want.key;
        EXPECT_EQ(row.kind, want.kind) << want.key;
        EXPECT_EQ(row.value, want.value) << want.key;
        EXPECT_EQ(row.counting, want.counting) << want.key;
    }
}

TEST(FlagTable, NoKeyIsShadowedByAnEarlierRow)
{
    for (const driver::FlagRow& row : driver::flagTable()) {
        EXPECT_EQ(driver::findFlag(withMark(row.key)), &row) << row.key << " is taken for " << found(withMark(row.key));
    }
}

TEST(FlagTable, CaseDoesNotCount)
{
    for (const driver::FlagRow& row : driver::flagTable()) {
        EXPECT_EQ(found(withMark(UPPERCASE(row.key))), row.key);
        EXPECT_EQ(found(withMark(LOWERCASE(row.key))), row.key);
    }
}

TEST(FlagTable, ThreeMarksMeanTheSame)
{
    for (const driver::FlagRow& row : driver::flagTable()) {
        for (const char mark : {'-', '/', '\x96'}) {
            const std::string argument = join(mark, row.key);
            EXPECT_TRUE(driver::hasFlagMark(argument));
            EXPECT_EQ(found(argument), row.key);
        }
    }
}

TEST(FlagTable, OtherFirstCharactersAreNoMark)
{
    EXPECT_FALSE(driver::hasFlagMark(""));
    EXPECT_FALSE(driver::hasFlagMark("max"));
    EXPECT_FALSE(driver::hasFlagMark(" -max"));
    EXPECT_FALSE(driver::hasFlagMark("+max"));
    EXPECT_FALSE(driver::hasFlagMark("\\max"));
    EXPECT_FALSE(driver::hasFlagMark("\xE2\x80\x93max")); // an en dash in UTF-8 is three other bytes
}

TEST(FlagTable, KeyIsFoundAtTheHeadOfALongerWord)
{
    for (const driver::FlagRow& row : driver::flagTable()) {
        EXPECT_EQ(found(withMark(row.key) + "zz 9"), row.key);
    }
    EXPECT_EQ(found("-maxima"), "max");
    EXPECT_EQ(found("-OUTPUT"), "out");
    EXPECT_EQ(found("-bye"), "b");
    EXPECT_EQ(found("-batch"), "b");
    EXPECT_EQ(found("-cps"), "cp");
    EXPECT_EQ(found("-nc_com"), "nc");
    EXPECT_EQ(found("-lpm"), "lp");
    EXPECT_EQ(found("-brklin"), "b");
    EXPECT_EQ(found("-counter"), "count");
}

TEST(FlagTable, KeyCutShortIsNotThatFlag)
{
    for (const driver::FlagRow& row : driver::flagTable()) {
        const std::string argument = withMark(row.key.substr(0, row.key.size() - 1));
        EXPECT_NE(driver::findFlag(argument), &row) << argument;
    }
}

TEST(FlagTable, OnlyChangeAndCheckAllowACharacterAhead)
{
    for (const driver::FlagRow& row : driver::flagTable()) {
        const bool allowed = row.key == "change" || row.key == "check";
        EXPECT_EQ(driver::findFlag(join("-~", row.key)) == &row, allowed) << row.key;
        EXPECT_NE(driver::findFlag(join("-~~", row.key)), &row) << row.key;
    }
    EXPECT_EQ(found("--change"), "change");
    EXPECT_EQ(found("-bcheck"), "check");
    EXPECT_EQ(found("--max"), "<none>");
}

TEST(FlagTable, UnknownWordsAreNoFlag)
{
    for (const std::string argument : {"-", "/", "-h", "/?", "-9999", "--", "-ma", "-~max", "-\"out", "-o ut"}) {
        EXPECT_EQ(found(argument), "<none>") << argument;
    }
}

TEST(FlagTable, EveryRowIsDescribedAndDoesSomething)
{
    for (const driver::FlagRow& row : driver::flagTable()) {
        EXPECT_FALSE(row.docs.description.empty()) << row.key;
        EXPECT_EQ(row.docs.description.find('\n'), std::string_view::npos) << row.key;
        EXPECT_EQ(row.docs.valueName.empty(), row.value == none) << row.key;
        EXPECT_TRUE(row.atFlag != nullptr || row.storeValue != nullptr || row.kind == operation) << row.key;
        EXPECT_EQ(row.storeValue != nullptr, row.value != none && row.value != statistic) << row.key;
    }
}

// The manual tells the defaults from the table; they stand a second time where the settings start.
TEST(FlagTable, DefaultsAreThoseOfFreshSettings)
{
    const driver::Settings fresh;
    const auto text = [](float value) { return fixedText(static_cast<double>(value), 1); };
    const std::map<std::string_view, std::string> numbers = {
        {"cd", text(get<ops::CutoffOptions>(fresh).cutoff)},
        {"trans_m", text(get<ops::TransformOptions>(fresh).m)},
        {"trans_c", text(get<ops::TransformOptions>(fresh).c)},
        {"cpsd", text(get<sampling::CpOptions>(fresh).searchDistance)},
        {"cpmm", text(get<sampling::CpOptions>(fresh).extremesDistance)},
        {"lpmd", text(get<sampling::LpOptions>(fresh).spacing)},
        {"nc_comp", AINTEGER(get<netcdf::NcOptions>(fresh).compression)},
        {"nc_shuffle", AINTEGER(get<netcdf::NcOptions>(fresh).shuffle ? 1 : 0)},
        {"nc_part", AINTEGER(get<netcdf::NcOptions>(fresh).part ? 1 : 0)},
        {"fb", text(get<remap::RemapOptions>(fresh).freeboard)},
        {"bd", text(get<remap::RemapOptions>(fresh).buffer.value_or(0.0F))},
        {"decimal", AINTEGER(get<run::Common>(fresh).decimals)},
        {"idw_npt", AINTEGER(remap::kDefaultIdwPoints)},
        {"default_n", AINTEGER(truncateToInt(static_cast<double>(network::kNoPointValue)))},
        {"resize", ""}, // without default: the operation needs it
    };
    for (const driver::FlagRow& row : driver::flagTable()) {
        if (isGlued(row)) {
            ASSERT_TRUE(numbers.contains(row.key)) << row.key;
            EXPECT_EQ(row.docs.defaultText, numbers.at(row.key)) << row.key;
        }
    }
    EXPECT_EQ(get<ops::ResizeOptions>(fresh).method, ops::ResizeMethod::average);
}

} // namespace
} // namespace gridforge
