#include "driver/operations.h"

#include "driver/flag_table.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace gridforge {
namespace {

std::string_view selected(void (*set)(run::RunSettings&))
{
    run::RunSettings settings;
    set(settings);
    const driver::OperationRow* row = driver::selectOperation(settings);
    return row == nullptr ? "<none>" : row->name;
}

TEST(Operations, StandInTheirOrder)
{
    std::vector<std::string_view> names;
    for (const driver::OperationRow& row : driver::operationTable()) {
        names.push_back(row.name);
    }
    EXPECT_THAT(names, testing::ElementsAre("max", "conv", "nc", "dif", "cd", "trans_m", "fe", "fuzzy", "count",
                                            "resize", "classify", "histogram", "cp", "lp", "brkline", "xs", "nbc", "na",
                                            "multiply", "xyz", "trim", "damages", "rf", "remap", "stat"));
}

TEST(Operations, EachIsSelectedByItsOwnSetting)
{
    EXPECT_EQ(selected([](run::RunSettings& s) { s.max = true; }), "max");
    EXPECT_EQ(selected([](run::RunSettings& s) { s.min = true; }), "max");
    EXPECT_EQ(selected([](run::RunSettings& s) { s.conv = true; }), "conv");
    EXPECT_EQ(selected([](run::RunSettings& s) { s.nc = true; }), "nc");
    EXPECT_EQ(selected([](run::RunSettings& s) { s.dif = true; }), "dif");
    EXPECT_EQ(selected([](run::RunSettings& s) { s.cd = true; }), "cd");
    EXPECT_EQ(selected([](run::RunSettings& s) { s.trans = true; }), "trans_m");
    EXPECT_EQ(selected([](run::RunSettings& s) { s.fe = true; }), "fe");
    EXPECT_EQ(selected([](run::RunSettings& s) { s.fuzzy = true; }), "fuzzy");
    EXPECT_EQ(selected([](run::RunSettings& s) { s.count = true; }), "count");
    EXPECT_EQ(selected([](run::RunSettings& s) { s.resize = true; }), "resize");
    EXPECT_EQ(selected([](run::RunSettings& s) { s.classify = true; }), "classify");
    EXPECT_EQ(selected([](run::RunSettings& s) { s.histogram = true; }), "histogram");
    EXPECT_EQ(selected([](run::RunSettings& s) { s.cp = true; }), "cp");
    EXPECT_EQ(selected([](run::RunSettings& s) { s.lp = true; }), "lp");
    EXPECT_EQ(selected([](run::RunSettings& s) { s.brkline = true; }), "brkline");
    EXPECT_EQ(selected([](run::RunSettings& s) { s.xs = true; }), "xs");
    EXPECT_EQ(selected([](run::RunSettings& s) { s.nbc = true; }), "nbc");
    EXPECT_EQ(selected([](run::RunSettings& s) { s.na = true; }), "na");
    EXPECT_EQ(selected([](run::RunSettings& s) { s.multiply = true; }), "multiply");
    EXPECT_EQ(selected([](run::RunSettings& s) { s.xyz = true; }), "xyz");
    EXPECT_EQ(selected([](run::RunSettings& s) { s.trim = true; }), "trim");
    EXPECT_EQ(selected([](run::RunSettings& s) { s.damages = true; }), "damages");
    EXPECT_EQ(selected([](run::RunSettings& s) { s.rf = true; }), "rf");
    EXPECT_EQ(selected([](run::RunSettings& s) { s.remap = true; }), "remap");
    EXPECT_EQ(selected([](run::RunSettings& s) { s.stat = true; }), "stat");
}

TEST(Operations, CutoffWithCountIsACount)
{
    EXPECT_EQ(selected([](run::RunSettings& s) { s.cd = s.count = true; }), "count");
}

TEST(Operations, EarlierOneWinsWhereTwoPass)
{
    EXPECT_EQ(selected([](run::RunSettings& s) { s.dif = s.change = s.max = true; }), "max");
    EXPECT_EQ(selected([](run::RunSettings& s) { s.dif = s.change = s.stat = true; }), "dif");
}

TEST(Operations, OptionsAloneSelectNone)
{
    EXPECT_EQ(selected([](run::RunSettings&) {}), "<none>");
    EXPECT_EQ(selected([](run::RunSettings& s) { s.change = s.nowetdry = true; }), "<none>");
}

TEST(Operations, EachIsNamedByAnOperationFlag)
{
    for (const driver::OperationRow& row : driver::operationTable()) {
        const driver::FlagRow* flag = driver::findFlag("-" + std::string(row.name));
        ASSERT_NE(flag, nullptr) << row.name;
        EXPECT_EQ(flag->key, row.name);
        EXPECT_NE(row.run, nullptr) << row.name;
        EXPECT_EQ(flag->kind, driver::FlagKind::operation);
    }
}

} // namespace
} // namespace gridforge
