// Rules of the house that no compiler checks: which layer may include which, and that every test file is run.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "support/paths.h"

namespace gridforge::test {
namespace {

namespace fs = std::filesystem;

const fs::path kSource = sourceFolder();

// Each folder of src/ and the folders it may include from, besides itself: the picture in docs/architecture.md.
const std::map<std::string, std::set<std::string>> kMayInclude{
    {"core", {}},
    {"plane", {"core"}},
    {"host", {"core"}},
    {"grid", {"core", "host"}},
    {"gis", {"core", "plane", "host", "grid"}},
    {"run", {"core", "plane", "host", "grid", "gis"}},
    {"ops", {"core", "plane", "host", "grid", "gis", "run"}},
    {"sampling", {"core", "plane", "host", "grid", "gis", "run"}},
    {"remap", {"core", "plane", "host", "grid", "gis", "run"}},
    {"netcdf", {"core", "plane", "host", "grid", "gis", "run"}},
    {"network", {"core", "plane", "host", "grid", "gis", "run"}},
    {"damages", {"core", "plane", "host", "grid", "gis", "run"}},
    {"rainfall", {"core", "plane", "host", "grid", "gis", "run", "netcdf"}},
    {"driver",
     {"core", "plane", "host", "grid", "gis", "run", "ops", "sampling", "remap", "netcdf", "network", "damages",
      "rainfall"}},
    {"exports", {"core", "plane", "host", "grid", "gis"}},
};

// The quoted name of an #include "..." line, "" for any other line.
std::string quotedInclude(const std::string& line)
{
    const auto hash = line.find_first_not_of(" \t");
    if (hash == std::string::npos || line[hash] != '#') {
        return {};
    }
    const auto word = line.find_first_not_of(" \t", hash + 1);
    if (word == std::string::npos || line.compare(word, 7, "include") != 0) {
        return {};
    }
    const auto open = line.find('"', word);
    const auto end = open == std::string::npos ? open : line.find('"', open + 1);
    return end == std::string::npos ? std::string() : line.substr(open + 1, end - open - 1);
}

// What is wrong with an include of `name` in a file of `folder`; "" where nothing is.
std::string objection(const std::string& folder, const std::string& name)
{
    const auto slash = name.find('/');
    const std::string from = name.substr(0, std::min(slash, name.size()));
    if (slash == std::string::npos || !kMayInclude.contains(from)) {
        return "is not named as folder/file.h";
    }
    if (from != folder && !kMayInclude.at(folder).contains(from)) {
        return folder + " may not use " + from;
    }
    return {};
}

std::vector<fs::path> sourcesBelow(const fs::path& folder)
{
    std::vector<fs::path> files;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        const auto extension = entry.path().extension();
        if (extension == ".cpp" || extension == ".h") {
            files.push_back(entry.path());
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

TEST(Layers, IncludesGoDownThePictureOnly)
{
    std::size_t includes = 0;
    for (const auto& file : sourcesBelow(kSource / "src")) {
        const std::string folder = file.parent_path().filename().string();
        ASSERT_TRUE(kMayInclude.contains(folder)) << file << " is in a folder that the picture does not show";
        std::ifstream in(file);
        int number = 0;
        for (std::string line; std::getline(in, line);) {
            ++number;
            if (const std::string name = quotedInclude(line); !name.empty()) {
                ++includes;
                EXPECT_EQ(objection(folder, name), "") << file << ':' << number << ": " << line;
            }
        }
    }
    EXPECT_GT(includes, 10U) << "hardly any include was found: does the reading of the lines still work?";
}

TEST(Layers, AForbiddenIncludeIsSeen)
{
    EXPECT_EQ(quotedInclude("#include \"run/inputs.h\""), "run/inputs.h");
    EXPECT_EQ(quotedInclude("  #  include \"run/inputs.h\" // why"), "run/inputs.h");
    EXPECT_EQ(quotedInclude("#include <vector>"), "");
    EXPECT_EQ(quotedInclude("say(\"#include\");"), "");
    EXPECT_EQ(objection("grid", "core/text.h"), "");
    EXPECT_EQ(objection("grid", "run/inputs.h"), "grid may not use run");
    EXPECT_EQ(objection("ops", "sampling/points.h"), "ops may not use sampling");
    EXPECT_EQ(objection("ops", "max_min.h"), "is not named as folder/file.h");
    EXPECT_EQ(objection("ops", "../grid/header.h"), "is not named as folder/file.h");
}

// The libraries are told the same picture in CMakeLists.txt; this keeps the two from drifting apart.
TEST(Layers, TheBuildLinksTheSamePicture)
{
    std::map<std::string, std::set<std::string>> linked;
    std::ifstream in(kSource / "CMakeLists.txt");
    for (std::string line; std::getline(in, line);) {
        if (!line.starts_with("gridforge_layer(")) {
            continue;
        }
        line = line.substr(line.find('(') + 1);
        line = line.substr(0, line.find(')'));
        std::istringstream words(line);
        std::string layer;
        words >> layer;
        auto& uses = linked[layer];
        for (std::string word; words >> word;) {
            if (word != "USES") {
                uses.insert(word);
            }
        }
    }
    EXPECT_EQ(linked, kMayInclude);
}

TEST(TestFiles, EveryOneBelongsToARunner)
{
    const std::set<std::string> runners{"unit", "cli", "interop", "real"};
    const std::set<std::string> helpers{"support", "fuzz", "witness"};
    std::size_t tests = 0;
    for (const auto& file : sourcesBelow(kSource / "tests")) {
        const std::string folder = file.lexically_relative(kSource / "tests").begin()->string();
        if (helpers.contains(folder)) {
            continue;
        }
        ++tests;
        EXPECT_TRUE(runners.contains(folder)) << file << " is in a folder that no runner takes";
        const bool taken = file.extension() == ".h" || file.filename().string().ends_with("_test.cpp");
        EXPECT_TRUE(taken) << file << " is not taken by its runner";
    }
    EXPECT_GT(tests, 1U);
}

} // namespace
} // namespace gridforge::test
