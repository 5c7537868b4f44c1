#include "core/simd.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <string_view>

namespace gridforge::test {
namespace {

// The features of the first processor as the kernel lists them; empty where it does not.
std::set<std::string> processorFlags()
{
    std::ifstream in("/proc/cpuinfo");
    std::set<std::string> flags;
    for (std::string line; flags.empty() && std::getline(in, line);) {
        if (line.starts_with("flags")) {
            std::istringstream words(line.substr(line.find(':') + 1));
            for (std::string word; words >> word;) {
                flags.insert(word);
            }
        }
    }
    return flags;
}

// The second run of the tests turns AVX2 off in this way, and is worth nothing where that has no effect.
TEST(HasAvx2, IsWhatTheProcessorHasUnlessTheCLibraryTurnsItOff)
{
    const std::set<std::string> flags = processorFlags();
    if (flags.empty()) {
        GTEST_SKIP() << "the system does not list the features of its processor";
    }
    const char* const tunables = std::getenv("GLIBC_TUNABLES");
    const bool turnedOff = tunables != nullptr && std::string_view(tunables).find("-AVX2") != std::string_view::npos;
    EXPECT_EQ(hasAvx2(), flags.contains("avx2") && flags.contains("bmi1") && !turnedOff);
}

} // namespace
} // namespace gridforge::test
