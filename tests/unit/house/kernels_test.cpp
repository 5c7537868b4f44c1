// Files of kernels need nothing but each other and the pure rooms.
#include "unit/house/pure_files.h"
#include "unit/house/sources.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>

namespace gridforge::test {
namespace {

TEST(Kernels, NeedNothingButTheLowerRoomsAndEachOther)
{
    std::size_t files = 0;
    for (const auto& file : sourcesBelow(kSource / "src")) {
        if (!holdsKernels(sourceName(file))) {
            continue;
        }
        ++files;
        std::ifstream in(file);
        for (std::string line; std::getline(in, line);) {
            const std::string name = quotedInclude(line);
            const bool pure = kPureRooms.contains(name.substr(0, name.find('/')));
            EXPECT_TRUE(name.empty() || pure || holdsKernels(name)) << file << ": " << line;
        }
    }
    EXPECT_GT(files, 10U);
    for (const std::string& shared : kNamedKernels) {
        EXPECT_TRUE(fs::exists(kSource / "src" / (shared + ".h"))) << shared;
    }
    EXPECT_TRUE(holdsKernels("sampling/cell_search.cpp"));
    EXPECT_FALSE(holdsKernels("grid/reader.h"));
}

} // namespace
} // namespace gridforge::test
