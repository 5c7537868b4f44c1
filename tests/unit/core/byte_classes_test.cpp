#include "core/byte_classes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace gridforge::test {
namespace {

std::string allThat(bool (*is)(char))
{
    std::string found;
    for (int byte = 0; byte < 256; ++byte) {
        if (is(static_cast<char>(byte))) {
            found += static_cast<char>(byte);
        }
    }
    return found;
}

TEST(ByteClasses, HoldTheseBytesAndNoOther)
{
    EXPECT_EQ(allThat(isDigit), "0123456789");
    EXPECT_EQ(allThat(isBlank), "\t ");
    EXPECT_EQ(allThat(isQuote), "\"'");
    EXPECT_EQ(allThat(isSeparator), "\t\n\r ,");
}

} // namespace
} // namespace gridforge::test
