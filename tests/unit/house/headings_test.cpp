// The form of headings within files.
#include "unit/house/sources.h"

#include <fstream>
#include <gtest/gtest.h>
#include <string>

namespace gridforge::test {
namespace {

TEST(Headings, FillTheirLine)
{
    constexpr std::size_t kColumns = 120;
    std::size_t headings = 0;
    for (const char* const folder : {"src", "tests"}) {
        for (const auto& file : sourcesBelow(kSource / folder)) {
            std::ifstream in(file);
            for (std::string line; std::getline(in, line);) {
                if (line.starts_with("// --- ")) {
                    ++headings;
                    EXPECT_TRUE(line.size() == kColumns && line.ends_with("--")) << file << ": " << line;
                }
            }
        }
    }
    EXPECT_GT(headings, 10U);
}

} // namespace
} // namespace gridforge::test
