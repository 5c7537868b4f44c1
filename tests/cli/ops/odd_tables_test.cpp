// Whole runs of -classify and -histogram on grids that hold every odd number, with limits among them, against plain loops.
#include "support/consoles.h"
#include "support/odd_grids.h"

#include <cstdio>
#include <gtest/gtest.h>
#include <limits>
#include <ostream>
#include <string>
#include <vector>

namespace gridforge::test {
namespace {

constexpr float kNullOfGrid = -9999;
constexpr std::uint32_t kSeed = 3;

Values cellsOfGrid()
{
    return oddGrid(kNullOfGrid, kSeed);
}

struct Limit {
    std::string text;
    float value;
};

struct Limits {
    std::string name;
    std::vector<Limit> limits;
};

void PrintTo(const Limits& limits, std::ostream* out)
{
    *out << limits.name;
}

// As the files of classes and of bins hold them.
std::string tableOf(const Limits& limits)
{
    std::string table = "Limit,Name\n";
    for (const Limit& limit : limits.limits) {
        table += limit.text + ",x\n";
    }
    return table;
}

// The first whose limit is not below the cell, from 1; one more than there are limits where none is, as for what is no number.
std::size_t placeOf(float cell, const Limits& limits)
{
    for (std::size_t i = 0; i < limits.limits.size(); ++i) {
        if (cell <= limits.limits[i].value) {
            return i + 1;
        }
    }
    return limits.limits.size() + 1;
}

Limits oddLimits()
{
    return {"odd",
            {{"-Infinity", -kInfinity},
             {"-3.4e38", -3.4e38F},
             {"-9999", -9999.0F},
             {"-1", -1.0F},
             {"-1e-40", -1.0e-40F},
             {"-0.0", -0.0F},
             {"0", 0.0F},
             {"1.4e-45", std::numeric_limits<float>::denorm_min()},
             {"1e-40", 1.0e-40F},
             {"0.3", 0.3F},
             {"0.3", 0.3F},
             {"9e29", 9.0e29F},
             {"3.4e38", 3.4e38F},
             {"Infinity", kInfinity}}};
}

// As many as a file may hold, from -3 to 3.1875, which single precision and six decimals hold exactly.
Limits manyLimits()
{
    Limits many{"many", {}};
    for (int i = 0; i < 100; ++i) {
        const float value = -3.0F + 0.0625F * static_cast<float>(i);
        many.limits.push_back({std::to_string(value), value});
    }
    return many;
}

Limits fewLimits()
{
    return {"few", {{"-1e-40", -1.0e-40F}, {"2", 2.0F}}};
}

class OddTables : public testing::TestWithParam<Limits> {
protected:
    // On the grid a.flt, with the limits in a file of that name.
    static void start(ToolRun& run, const std::string& table)
    {
        run.give(table, tableOf(GetParam()));
        giveOddGrid(run, "a", kNullOfGrid, kSeed);
        run.start();
        EXPECT_TRUE(run.reachedEnd()) << run.console();
    }
};

TEST_P(OddTables, GiveTheCellsTheirClasses)
{
    ToolRun run("-b -classify classes.csv a.flt -out r");
    start(run, "classes.csv");
    Values expected;
    for (const float cell : cellsOfGrid()) {
        expected.push_back(cell == kNullOfGrid ? kNullOfGrid : static_cast<float>(placeOf(cell, GetParam())));
    }
    expectSameBits(valuesOf(run.read("r.flt")), expected);
}

TEST_P(OddTables, GiveClassesToTheFormWithATable)
{
    ToolRun run("-b -classify classes.csv a.flt -grc -asc -out r");
    start(run, "classes.csv");
    const Values cells = cellsOfGrid();
    std::string rows;
    for (std::size_t i = 0; i < cells.size(); ++i) {
        char field[16];
        std::snprintf(field, sizeof(field), "%4d",
                      cells[i] == kNullOfGrid ? 0 : static_cast<int>(placeOf(cells[i], GetParam())));
        rows += field;
        rows += (i + 1) % kOddColumns == 0 ? "\r\n" : "";
    }
    const std::string written = run.read("r.asc");
    ASSERT_GT(written.size(), rows.size());
    EXPECT_EQ(written.substr(written.size() - rows.size()), rows);
}

TEST_P(OddTables, CountTheCellsOfEachBin)
{
    ToolRun run("-b -histogram bins.csv a.flt");
    start(run, "bins.csv");
    std::vector<int> counts(GetParam().limits.size() + 1);
    int total = 0;
    for (const float cell : cellsOfGrid()) {
        if (cell != kNullOfGrid) {
            ++counts[placeOf(cell, GetParam()) - 1];
            ++total;
        }
    }
    EXPECT_TRUE(run.says("Found " + std::to_string(total) + " non-null values.")) << run.console();
    // Count and percentage end each line, after the texts of the limit.
    const std::string table = run.read("a_histogram.csv");
    std::size_t at = table.find("\r\n") + 2;
    for (const int count : counts) {
        char ending[32];
        std::snprintf(ending, sizeof(ending), ",%12d,%6.2f", count,
                      static_cast<double>(count) / static_cast<double>(total) * 100.0);
        const std::size_t end = table.find("\r\n", at);
        ASSERT_NE(end, std::string::npos);
        const std::string line = table.substr(at, end - at);
        ASSERT_GT(line.size(), std::string(ending).size());
        EXPECT_EQ(line.substr(line.size() - std::string(ending).size()), ending) << line;
        at = end + 2;
    }
    EXPECT_EQ(at, table.size());
}

INSTANTIATE_TEST_SUITE_P(Limits, OddTables, testing::Values(fewLimits(), oddLimits(), manyLimits()));

} // namespace
} // namespace gridforge::test
