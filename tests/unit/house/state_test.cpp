// What lives longer than a call stands in the files that are named here.
#include "unit/house/sources.h"

#include <fstream>
#include <gtest/gtest.h>
#include <regex>
#include <set>
#include <string>

namespace gridforge::test {
namespace {

// A variable that lives longer than the call that uses it, and changes: of a word for that, or at the head of a line, where only
// what belongs to no routine and no type stands.
bool holdsState(const std::string& line)
{
    static const std::regex variable(
        R"((?:\s*(?:constinit|thread_local|static) |(?!(?:using|namespace|template|concept|struct|class|enum|extern)\b)(?=\w)))"
        R"((?!(?:inline )?(?:constexpr |const [^*=({;]*[=({;])|inline namespace|.*operator)[^=({;]*[={;].*)");
    return std::regex_match(line, variable);
}

TEST(State, StandsWhereThePageSaysSo)
{
    std::set<std::string> holding;
    for (const auto& file : sourcesBelow(kSource / "src")) {
        std::ifstream in(file);
        for (std::string line; std::getline(in, line);) {
            if (holdsState(line)) {
                holding.insert(sourceName(file));
            }
        }
    }
    EXPECT_EQ(holding, (std::set<std::string>{"core/huge_array.cpp",
                                              "core/simd.cpp",
                                              "gis/gis_messages.cpp",
                                              "gis/layer_table.cpp",
                                              "gis/shp/dbf_writer.cpp",
                                              "grid/cell_store.cpp",
                                              "host/console.cpp",
                                              "host/ends.cpp",
                                              "host/file_stream.cpp",
                                              "host/file_system.cpp",
                                              "host/memory/memory_system.cpp",
                                              "host/messages.cpp",
                                              "host/page_room.cpp",
                                              "host/posix/read_hints.cpp",
                                              "host/posix/system.cpp",
                                              "host/progress.cpp",
                                              "host/system.cpp",
                                              "host/unit_table.cpp",
                                              "host/windows/pages.cpp",
                                              "host/windows/process.cpp",
                                              "host/windows/scratch_file.cpp",
                                              "host/windows/system.cpp",
                                              "run/ways.cpp"}));
    EXPECT_TRUE(holdsState("    static std::atomic<int> count = 0;"));
    EXPECT_TRUE(holdsState("    static const System* system = &nativeSystem();"));
    EXPECT_FALSE(holdsState("    static const std::string none;"));
    EXPECT_FALSE(holdsState("    static constexpr int kNone = 0;"));
    EXPECT_FALSE(holdsState("    static_assert(sizeof(int) == 4);"));
    EXPECT_FALSE(holdsState("    static std::string console();"));
    EXPECT_TRUE(holdsState("int count = 0;"));
    EXPECT_TRUE(holdsState("std::vector<std::string> names;"));
    EXPECT_TRUE(holdsState("inline const System* system{nullptr};"));
    EXPECT_FALSE(holdsState("    int count = 0;"));
    EXPECT_FALSE(holdsState("inline constexpr int kNone = 0;"));
    EXPECT_FALSE(holdsState("const std::regex form(\"a\");"));
    EXPECT_FALSE(holdsState("int count(int first = 0);"));
    EXPECT_FALSE(holdsState("Reader& Reader::operator=(Reader&& other) = default;"));
    EXPECT_FALSE(holdsState("inline namespace core {"));
    EXPECT_FALSE(holdsState("struct Lines {"));
}

} // namespace
} // namespace gridforge::test
