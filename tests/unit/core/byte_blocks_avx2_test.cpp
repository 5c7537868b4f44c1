#include "core/byte_blocks_avx2.h"

#include "core/byte_classes.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <string_view>

#if defined(__x86_64__)

namespace gridforge::test {
namespace {

// Nearly all bytes of a grid, and some that differ from them in one bit.
std::string randomText(std::mt19937& random)
{
    constexpr std::string_view kBytes = "0123456789.- ,\n\r\t\v\f\x0E\x8A\xAC*(;$\0"
                                        "eE";
    std::string text;
    for (std::size_t i = 0; i < kByteBlock; ++i) {
        text += kBytes[random() % kBytes.size()];
    }
    return text;
}

TEST(ClassifyBytes, AgreesWithTheClassesOfSingleBytes)
{
    if (!hasAvx2()) {
        GTEST_SKIP() << "AVX2 is missing or turned off";
    }
    std::mt19937 random(64);
    for (int block = 0; block < 1000; ++block) {
        const std::string text = randomText(random);
        const ByteBlock found = classifyBytes(text.data());
        for (std::size_t i = 0; i < kByteBlock; ++i) {
            const auto byte = static_cast<unsigned char>(text[i]);
            EXPECT_EQ((found.values >> i & 1) == 0, isSeparator(text[i])) << int{byte} << " at " << i;
            EXPECT_EQ((found.commas >> i & 1) != 0, text[i] == ',') << int{byte} << " at " << i;
            EXPECT_EQ((found.lineEnds >> i & 1) != 0, text[i] == '\n') << int{byte} << " at " << i;
            EXPECT_EQ((found.returns >> i & 1) != 0, text[i] == '\r') << int{byte} << " at " << i;
        }
    }
}

} // namespace
} // namespace gridforge::test

#endif
