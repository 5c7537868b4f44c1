#include "core/limit_table.h"

#include "ops/classify_cells.h"
#include "ops/histogram_cells.h"
#include "support/odd_cells.h"
#include "unit/ops/plain_classes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace gridforge::test {
namespace {

constexpr float kNullA = -9999.0F;
constexpr float kMost = std::numeric_limits<float>::max();
constexpr float kLeast = std::numeric_limits<float>::denorm_min();

struct Limits {
    std::vector<float> limits;
    std::size_t mostInAPlace;
};

std::vector<float> evenLimits(std::size_t count, float first, float apart)
{
    std::vector<float> limits;
    for (std::size_t i = 0; i < count; ++i) {
        limits.push_back(first + static_cast<float>(i) * apart);
    }
    return limits;
}

// Some limits among many even ones.
std::vector<float> with(const std::vector<float>& some, float first, float apart = 1)
{
    std::vector<float> limits = evenLimits(20, first, apart);
    limits.insert(limits.end(), some.begin(), some.end());
    std::ranges::sort(limits);
    return limits;
}

std::vector<Limits> manyLimits()
{
    return {
        {evenLimits(17, -3, 1), 1},
        {evenLimits(40, 0.15F, 0.15F), 1},
        {evenLimits(100, -20, 0.3F), 1},
        {evenLimits(255, -128, 1), 1},
        {evenLimits(18, 16777216, 2), 1},
        {with({-0.5F, -0.5F}, -1), 2},
        {with({0.25F, 0.25F, 0.25F}, -1), 3},
        {with({0.001F, 0.01F, 0.1F}, 500), 3},
        {with({-kMost / 4, 100, 101}, 1e36F, 1e36F), 2},
    };
}

// Of these a table knows nothing.
std::vector<std::vector<float>> otherLimits()
{
    return {
        evenLimits(16, 0, 1),                       // few
        evenLimits(256, 0, 1),                      // too many to be numbered
        with({0.25F, 0.25F, 0.25F, 0.25F}, -1),     // crowded
        with({0.0001F, 0.001F, 0.01F, 0.1F}, 1000), // crowded in the lowest place
        std::vector<float>(20, 1),
        with({-kInfinity}, -1),
        with({kInfinity}, -1),
        with({-kMost, kMost}, -1),
        with({-kLeast, 0, kLeast}, -kLeast * 1024, kLeast * 1024),
    };
}

// The limits, what lies next to them, and other cells.
std::vector<float> cellsAround(const std::vector<float>& limits)
{
    std::vector<float> cells = oddCells(5001, kNullA, 54);
    for (const float limit : limits) {
        cells.insert(cells.end(), {limit, std::nextafter(limit, kMost), std::nextafter(limit, -kMost), -limit});
    }
    cells.insert(cells.end(), {kNaN, -kNaN, kInfinity, -kInfinity, kMost, -kMost, kLeast, -kLeast, kNullA});
    return cells;
}

TEST(LimitTable, PassesTheLimitsThatAPlainSearchPasses)
{
    for (const Limits& many : manyLimits()) {
        const std::vector<float>& limits = many.limits;
        const LimitTable table(limits);
        EXPECT_EQ(table.mostInAPlace(), many.mostInAPlace) << limits.front() << " to " << limits.back();
        const std::vector<float> cells = cellsAround(limits);
        std::size_t seen = 0;
        table.forEach(cells, [&](std::size_t i, std::size_t passed) {
            EXPECT_EQ(passed + 1, static_cast<std::size_t>(plainClass(cells[i], limits))) << cells[i];
            seen += i == seen ? 1 : 0;
        });
        EXPECT_EQ(seen, cells.size());
    }
}

TEST(LimitTable, IsOfNoUseForLimitsThatAreFewOrCrowdedOrNotFinite)
{
    for (const std::vector<float>& limits : otherLimits()) {
        EXPECT_EQ(LimitTable(limits).mostInAPlace(), 0U) << limits.front() << " to " << limits.back();
    }
}

TEST(LimitTable, GivesClassesAndBinsOfAnyLimits)
{
    std::vector<std::vector<float>> all = otherLimits();
    for (const Limits& many : manyLimits()) {
        all.push_back(many.limits);
    }
    for (const std::vector<float>& limits : all) {
        const std::vector<float> cells = cellsAround(limits);
        std::vector<float> classes(cells.size());
        std::vector<std::int64_t> counts(limits.size() + 1);
        std::vector<std::int64_t> plainCounts(limits.size() + 1);
        ops::classifyCells(cells, kNullA, limits, classes);
        ops::countBins(cells, kNullA, limits, counts);
        for (std::size_t i = 0; i < cells.size(); ++i) {
            const std::int32_t plain = plainClass(cells[i], limits);
            EXPECT_EQ(classes[i], cells[i] == kNullA ? kNullA : static_cast<float>(plain)) << cells[i];
            plainCounts[static_cast<std::size_t>(plain - 1)] += cells[i] == kNullA ? 0 : 1;
        }
        EXPECT_EQ(counts, plainCounts);
    }
}

} // namespace
} // namespace gridforge::test
