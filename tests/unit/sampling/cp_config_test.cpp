#include "sampling/cp_config.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace gridforge::test {
namespace {

const std::vector<sampling::SymbolThreshold> kThresholds = {
    {-0.5F, 33, 255, 8}, {0.5F, 34, 65280, 10}, {0.5F, 35, 1, 2}, {2, 36, 16711680, 12}};

TEST(SymbolStyle, IsThatOfTheFirstThresholdThatIsNotExceeded)
{
    EXPECT_EQ(sampling::symbolStyle(kThresholds, -99), "Symbol (33,255,8)");
    EXPECT_EQ(sampling::symbolStyle(kThresholds, -0.5F), "Symbol (33,255,8)");
    EXPECT_EQ(sampling::symbolStyle(kThresholds, std::nextafter(-0.5F, 0.0F)), "Symbol (34,65280,10)");
    EXPECT_EQ(sampling::symbolStyle(kThresholds, 0.5F), "Symbol (34,65280,10)");
    EXPECT_EQ(sampling::symbolStyle(kThresholds, 2), "Symbol (36,16711680,12)");
}

TEST(SymbolStyle, IsMissingAboveAllThresholdsAndForNotANumber)
{
    EXPECT_EQ(sampling::symbolStyle(kThresholds, std::nextafter(2.0F, 3.0F)), std::nullopt);
    EXPECT_EQ(sampling::symbolStyle(kThresholds, std::numeric_limits<float>::infinity()), std::nullopt);
    EXPECT_EQ(sampling::symbolStyle(kThresholds, std::numeric_limits<float>::quiet_NaN()), std::nullopt);
    EXPECT_EQ(sampling::symbolStyle({}, 0), std::nullopt);
}

} // namespace
} // namespace gridforge::test
