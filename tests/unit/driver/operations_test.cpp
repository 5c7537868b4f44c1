#include "driver/operations.h"

#include "driver/flag_table.h"
#include "driver/scan.h"

#include <algorithm>
#include <cstdint>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
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

// As the pages say under usage.
TEST(Operations, TakeTheirNumbersOfGrids)
{
    constexpr std::int32_t kMany = 2000;
    const std::map<std::string_view, std::pair<std::int32_t, std::int32_t>> numbers{
        {"max", {1, kMany}},  {"conv", {1, kMany}}, {"nc", {1, kMany}},   {"dif", {2, 2}},
        {"cd", {1, 2}},       {"trans_m", {1, 1}},  {"fe", {1, 1}},       {"fuzzy", {1, kMany}},
        {"count", {1, 1}},    {"resize", {1, 1}},   {"classify", {1, 1}}, {"histogram", {1, 1}},
        {"cp", {1, 1}},       {"lp", {1, 1}},       {"brkline", {1, 1}},  {"xs", {1, kMany}},
        {"nbc", {0, 0}},      {"na", {1, 1}},       {"multiply", {2, 2}}, {"xyz", {1, 1}},
        {"trim", {1, kMany}}, {"damages", {0, 0}},  {"rf", {0, 0}},       {"remap", {0, kMany - 1}},
        {"stat", {2, 10}}};
    for (const driver::OperationRow& row : driver::operationTable()) {
        const auto [least, most] = numbers.at(row.name);
        EXPECT_EQ(row.docs.inputs.least, least) << row.name;
        EXPECT_EQ(row.docs.inputs.most, most) << row.name;
    }
}

TEST(Operations, EachIsSelectedByItsOwnFlag)
{
    for (const driver::OperationRow& row : driver::operationTable()) {
        const driver::FlagRow& flag = *driver::findFlag("-" + std::string(row.name));
        std::vector<std::string> arguments{"-" + std::string(row.name) + (isGlued(flag) ? "2" : "")};
        if (flag.value == driver::FlagValue::next) {
            arguments.emplace_back("name");
        } else if (flag.value == driver::FlagValue::statistic) {
            arguments.back() += "Min";
        }
        EXPECT_EQ(selected(arguments), row.name);
    }
    EXPECT_EQ(selected({"-min"}), "max");
    EXPECT_EQ(selected({"-trans_c2"}), "trans_m");
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

// A name that is no flag would be an option that nobody sees.
TEST(Operations, SharedOptionsAreFlagsWithoutOperations)
{
    std::size_t options = 0;
    for (const driver::OperationRow& row : driver::operationTable()) {
        std::istringstream words{std::string(row.docs.options)};
        for (std::string word; words >> word; ++options) {
            const driver::FlagRow* flag = driver::findFlag("-" + word);
            ASSERT_NE(flag, nullptr) << row.name;
            EXPECT_EQ(flag->key, word) << row.name;
            EXPECT_EQ(flag->docs.operations, "") << row.name;
            EXPECT_TRUE(driver::isOptionOf(*flag, row)) << row.name;
        }
    }
    EXPECT_GT(options, 40U);
}

// A flag that the operation takes, or a word of -stat.
void expectTaken(const std::string& word, const driver::OperationRow& operation)
{
    const driver::FlagRow* flag = driver::findFlag("-" + word);
    ASSERT_NE(flag, nullptr) << operation.name << ": " << word;
    EXPECT_TRUE(driver::operationOf(*flag) == operation.name || driver::isOptionOf(*flag, operation))
        << operation.name << ": " << word;
    if (flag->value == driver::FlagValue::statistic) {
        const std::string statistic = word.substr(flag->key.size());
        EXPECT_TRUE(("|" + std::string(flag->docs.valueName) + "|").find("|" + statistic) != std::string::npos) << word;
    } else {
        EXPECT_EQ(flag->key, word) << operation.name;
    }
}

TEST(Operations, ConditionsOfOutputsAreFlagsThatTheyTake)
{
    std::size_t conditions = 0;
    for (const driver::OperationRow& row : driver::operationTable()) {
        for (const driver::OutputRow& output : row.docs.outputs) {
            std::istringstream words{std::string(output.when) + " " + std::string(output.unless)};
            for (std::string word; words >> word; ++conditions) {
                expectTaken(word, row);
            }
        }
    }
    EXPECT_GT(conditions, 30U);
}

TEST(Operations, FlagsThatOthersNeedAreOfTheSameOperation)
{
    std::size_t needs = 0;
    for (const driver::OperationRow& row : driver::operationTable()) {
        for (const driver::FlagRow& flag : driver::flagTable()) {
            if (driver::isOptionOf(flag, row) && !flag.docs.use.needs.empty()) {
                ++needs;
                expectTaken(std::string(flag.docs.use.needs), row);
            }
        }
    }
    EXPECT_GE(needs, 1U);
}

TEST(Operations, OptionsAreThoseOfTheirRows)
{
    const driver::OperationRow& count =
        *std::ranges::find(driver::operationTable(), "count", &driver::OperationRow::name);
    EXPECT_TRUE(driver::isOptionOf(*driver::findFlag("-cd"), count));
    EXPECT_FALSE(driver::isOptionOf(*driver::findFlag("-count"), count));
    EXPECT_FALSE(driver::isOptionOf(*driver::findFlag("-out"), count));
    EXPECT_FALSE(driver::isOptionOf(*driver::findFlag("-b"), count));
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
