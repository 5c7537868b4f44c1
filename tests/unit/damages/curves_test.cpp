#include "damages/curves.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <random>

namespace gridforge::test {
namespace {

// The plain twin: point by point, each step in single precision.
float lookUpPlainly(const std::vector<float>& depths, const std::vector<float>& damages, float depth)
{
    if (depth <= depths.front()) {
        return damages.front();
    }
    if (depth >= depths.back()) {
        return damages.back();
    }
    for (std::size_t k = 1; k < depths.size(); ++k) {
        if (depths[k] > depth) {
            const float a = depth - depths[k - 1];
            const float b = depths[k] - depths[k - 1];
            const float c = damages[k] - damages[k - 1];
            const float share = a / b;
            const float part = share * c;
            return damages[k - 1] + part;
        }
    }
    return std::numeric_limits<float>::quiet_NaN();
}

TEST(CurveLookup, GivesTheBitsOfThePlainWalk)
{
    std::mt19937 random(7);
    std::uniform_real_distribution<float> step(1e-3F, 2.0F);
    std::uniform_real_distribution<float> damage(-1e6F, 1e6F);
    std::uniform_int_distribution<int> count(2, 40);
    for (int round = 0; round < 200; ++round) {
        std::vector<float> depths = {step(random) - 5};
        std::vector<float> damages = {damage(random)};
        const int points = count(random);
        for (int i = 1; i < points; ++i) {
            depths.push_back(depths.back() + step(random));
            damages.push_back(damage(random));
        }
        std::vector<float> asked = depths; // each joint, and places all over
        std::uniform_real_distribution<float> place(depths.front() - 1, depths.back() + 1);
        for (int i = 0; i < 50; ++i) {
            asked.push_back(place(random));
        }
        for (const float depth : asked) {
            EXPECT_EQ(std::bit_cast<std::uint32_t>(damages::dmg_curve_lookup(depths, damages, depth)),
                      std::bit_cast<std::uint32_t>(lookUpPlainly(depths, damages, depth)));
        }
    }
}

TEST(CurveLookup, KeepsItsSingleSteps)
{
    // (0.1 - 0) / (0.3 - 0) x 1e7 rounds at each step; in double it would be 3333333.4.
    const std::vector<float> depths = {0, 0.3F};
    const std::vector<float> damages = {0, 1e7F};
    const float share = 0.1F / 0.3F;
    EXPECT_EQ(damages::dmg_curve_lookup(depths, damages, 0.1F), share * 1e7F);
}

TEST(CurveLookup, NotANumberHasNoDamage)
{
    const std::vector<float> depths = {0, 1};
    const std::vector<float> damages = {0, 10};
    EXPECT_TRUE(std::isnan(damages::dmg_curve_lookup(depths, damages, std::numeric_limits<float>::quiet_NaN())));
}

TEST(CurveLookup, TheEndsOfTheCurveStandForAllBeyondThem)
{
    const std::vector<float> depths = {0, 1, 2};
    const std::vector<float> damages = {5, 10, 7};
    EXPECT_EQ(damages::dmg_curve_lookup(depths, damages, -99), 5.0F);
    EXPECT_EQ(damages::dmg_curve_lookup(depths, damages, 0), 5.0F);
    EXPECT_EQ(damages::dmg_curve_lookup(depths, damages, 1), 10.0F);
    EXPECT_EQ(damages::dmg_curve_lookup(depths, damages, 2), 7.0F);
    EXPECT_EQ(damages::dmg_curve_lookup(depths, damages, 9), 7.0F);
}

TEST(CurveLookup, ADepthIsPastTheCurveFromItsLastPoint)
{
    const std::vector<float> depths = {0, 1, 2};
    EXPECT_TRUE(damages::isPastCurve(depths, 2));
    EXPECT_TRUE(damages::isPastCurve(depths, 9));
    EXPECT_FALSE(damages::isPastCurve(depths, std::nextafter(2.0F, 0.0F)));
    EXPECT_FALSE(damages::isPastCurve(depths, std::numeric_limits<float>::quiet_NaN()));
    // Never so at the first point, whose damage stands there.
    EXPECT_FALSE(damages::isPastCurve(std::vector<float>{2, 2}, 2));
}

} // namespace
} // namespace gridforge::test
