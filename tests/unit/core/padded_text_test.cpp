#include "core/padded_text.h"

#include <gtest/gtest.h>
#include <string>

namespace gridforge {
namespace {

TEST(PaddedText, HoldsATextOfAnyLengthUpToItsWidth)
{
    constexpr std::size_t kWidth = 600;
    PaddedText<kWidth> padded;
    for (std::size_t length = 0; length <= kWidth; ++length) {
        const std::string text(length, 'x');
        padded = text;
        EXPECT_EQ(padded.view(), text);
        EXPECT_EQ(padded.empty(), length == 0);
    }
    padded = std::string(kWidth + 1, 'x');
    EXPECT_EQ(padded.view(), std::string(kWidth, 'x'));
    padded.clear();
    EXPECT_TRUE(padded.empty());
}

TEST(PaddedText, BlanksAndZeroBytesAtTheEndArePadding)
{
    PaddedText<520> padded;
    for (const std::size_t length : {0U, 7U, 8U, 255U, 256U, 263U, 264U, 265U, 500U}) {
        const std::string text = std::string(length, ' ') + "x";
        padded = text + std::string("\0 \0", 3);
        EXPECT_EQ(padded.view(), text);
    }
    padded = std::string(520, '\0');
    EXPECT_TRUE(padded.empty());
}

} // namespace
} // namespace gridforge
