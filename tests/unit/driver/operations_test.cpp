#include "driver/operations.h"

#include "driver/flag_table.h"
#include "driver/scan.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace gridforge {
namespace {

std::string_view selected(const std::vector<std::string>& arguments)
{
    const driver::OperationRow* row = driver::selectOperation(driver::scanArguments(arguments));
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

TEST(Operations, EachIsSelectedByItsOwnFlag)
{
    EXPECT_EQ(selected({"-max"}), "max");
    EXPECT_EQ(selected({"-min"}), "max");
    EXPECT_EQ(selected({"-conv"}), "conv");
    EXPECT_EQ(selected({"-nc"}), "nc");
    EXPECT_EQ(selected({"-dif"}), "dif");
    EXPECT_EQ(selected({"-cd1"}), "cd");
    EXPECT_EQ(selected({"-trans_m2"}), "trans_m");
    EXPECT_EQ(selected({"-trans_c2"}), "trans_m");
    EXPECT_EQ(selected({"-fe"}), "fe");
    EXPECT_EQ(selected({"-fuzzy"}), "fuzzy");
    EXPECT_EQ(selected({"-count"}), "count");
    EXPECT_EQ(selected({"-resize2"}), "resize");
    EXPECT_EQ(selected({"-classify", "c"}), "classify");
    EXPECT_EQ(selected({"-histogram", "c"}), "histogram");
    EXPECT_EQ(selected({"-cp", "l"}), "cp");
    EXPECT_EQ(selected({"-lp", "l"}), "lp");
    EXPECT_EQ(selected({"-brkline", "l"}), "brkline");
    EXPECT_EQ(selected({"-xs", "l"}), "xs");
    EXPECT_EQ(selected({"-nbc", "n"}), "nbc");
    EXPECT_EQ(selected({"-na", "l"}), "na");
    EXPECT_EQ(selected({"-multiply"}), "multiply");
    EXPECT_EQ(selected({"-xyz"}), "xyz");
    EXPECT_EQ(selected({"-trim", "l"}), "trim");
    EXPECT_EQ(selected({"-damages", "d"}), "damages");
    EXPECT_EQ(selected({"-rf", "r"}), "rf");
    EXPECT_EQ(selected({"-remap"}), "remap");
    EXPECT_EQ(selected({"-statMin"}), "stat");
}

TEST(Operations, CutoffWithCountIsACount)
{
    EXPECT_EQ(selected({"-cd1", "-count"}), "count");
}

TEST(Operations, EarlierOneWinsWhereTwoPass)
{
    EXPECT_EQ(selected({"-dif", "-change", "-max"}), "max");
    EXPECT_EQ(selected({"-dif", "-change", "-statMin"}), "dif");
}

TEST(Operations, OptionsAloneSelectNone)
{
    EXPECT_EQ(selected({}), "<none>");
    EXPECT_EQ(selected({"-change", "-nowetdry"}), "<none>");
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
