#include "damages/frequency.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <limits>
#include <random>

namespace gridforge::test {
namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

// The plain twin: for each place the largest, which then gets -1.
std::vector<damages::DmgRes> sortPlainly(std::vector<damages::DmgRes> listed)
{
    std::vector<damages::DmgRes> sorted;
    std::size_t chosen = listed.size();
    for (std::size_t i = 0; i < listed.size(); ++i) {
        float best = -9999.0F;
        for (std::size_t j = 0; j < listed.size(); ++j) {
            if (listed[j].AEP > best) {
                best = listed[j].AEP;
                chosen = j;
            }
        }
        sorted.push_back(listed[chosen]);
        listed[chosen].AEP = -1.0F;
    }
    return sorted;
}

std::vector<damages::DmgRes> listOf(const std::vector<float>& probabilities)
{
    std::vector<damages::DmgRes> listed;
    for (std::size_t i = 0; i < probabilities.size(); ++i) {
        listed.push_back({std::to_string(i + 1), probabilities[i]});
    }
    return listed;
}

std::string shown(const std::vector<damages::DmgRes>& results)
{
    std::string text;
    for (const damages::DmgRes& result : results) {
        text += result.file + ":" + std::to_string(result.AEP) + " ";
    }
    return text;
}

TEST(SortByFrequency, TheMostFrequentGoesFirstAndEqualOnesKeepTheirOrder)
{
    EXPECT_EQ(shown(damages::sortByFrequency(listOf({1, 10, 0.5, 10, 1})).value()),
              "2:10.000000 4:10.000000 1:1.000000 5:1.000000 3:0.500000 ");
    EXPECT_TRUE(damages::sortByFrequency({}).value().empty());
}

TEST(SortByFrequency, WhatIsNoProbabilityGivesItsPlaceToAGridThatWasTaken)
{
    EXPECT_EQ(shown(damages::sortByFrequency(listOf({-5, 10, kNan})).value()), "2:10.000000 2:-1.000000 2:-1.000000 ");
    EXPECT_EQ(shown(damages::sortByFrequency(listOf({-5, -3})).value()), "2:-3.000000 2:-1.000000 ");
    EXPECT_EQ(shown(damages::sortByFrequency(listOf({-1, 4})).value()), "2:4.000000 1:-1.000000 ");
}

TEST(SortByFrequency, IsTheSelectionForAnyList)
{
    std::mt19937 random(3);
    const std::vector<float> some = {10, 5, 5, 1, 0.2F, 0, -0.5F, -1, -1, -2, -7, kNan, -9999, -20000};
    std::uniform_int_distribution<std::size_t> pick(0, some.size() - 1);
    std::uniform_int_distribution<int> length(1, 9);
    for (int round = 0; round < 3000; ++round) {
        std::vector<float> probabilities(static_cast<std::size_t>(length(random)));
        std::ranges::generate(probabilities, [&] { return some[pick(random)]; });
        if (std::ranges::none_of(probabilities, [](float p) { return p > -9999.0F; })) {
            EXPECT_FALSE(damages::sortByFrequency(listOf(probabilities)));
            continue;
        }
        const std::vector<damages::DmgRes> listed = listOf(probabilities);
        EXPECT_EQ(shown(damages::sortByFrequency(listed).value()), shown(sortPlainly(listed)));
    }
}

} // namespace
} // namespace gridforge::test
