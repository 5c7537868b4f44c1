// Which layer may include which, and that files need each other in no circle.
#include "unit/house/sources.h"

#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <sstream>
#include <string>

namespace gridforge::test {
namespace {

// Each folder of src/ and the folders it may include from, besides itself: the picture in docs/architecture.md.
const std::map<std::string, std::set<std::string>> kMayInclude{
    {"core", {}},
    {"plane", {"core"}},
    {"host", {"core"}},
    {"grid", {"core", "plane", "host"}},
    {"gis", {"core", "plane", "host"}},
    {"run", {"core", "plane", "host", "grid", "gis"}},
    {"ops", {"core", "plane", "host", "grid", "gis", "run"}},
    {"remap", {"core", "plane", "host", "grid", "run"}},
    {"netcdf", {"core", "plane", "host", "grid", "run"}},
    {"sampling", {"core", "plane", "host", "grid", "gis", "run"}},
    {"network", {"core", "plane", "host", "grid", "gis", "run"}},
    {"damages", {"core", "plane", "host", "grid", "gis", "run"}},
    {"rainfall", {"core", "plane", "host", "grid", "gis", "run", "netcdf"}},
    {"driver",
     {"core", "host", "grid", "gis", "run", "ops", "sampling", "remap", "netcdf", "network", "damages", "rainfall"}},
    {"exports", {"core", "plane", "host", "gis"}},
};

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

// The folder of src/ that a file in it, or in a folder of that one, belongs to.
std::string layerOf(const fs::path& file)
{
    return file.lexically_relative(kSource / "src").begin()->string();
}

TEST(Layers, IncludesGoDownThePictureAndUseAllOfIt)
{
    std::size_t includes = 0;
    std::map<std::string, std::set<std::string>> used;
    for (const auto& [folder, below] : kMayInclude) {
        used[folder];
    }
    for (const auto& file : sourcesBelow(kSource / "src")) {
        const std::string folder = layerOf(file);
        ASSERT_TRUE(kMayInclude.contains(folder)) << file << " is in a folder that the picture does not show";
        std::ifstream in(file);
        int number = 0;
        for (std::string line; std::getline(in, line);) {
            ++number;
            if (const std::string name = quotedInclude(line); !name.empty()) {
                ++includes;
                EXPECT_EQ(objection(folder, name), "") << file << ':' << number << ": " << line;
                used[folder].insert(name.substr(0, name.find('/')));
            }
        }
    }
    for (auto& [folder, names] : used) {
        names.erase(folder);
    }
    EXPECT_EQ(used, kMayInclude);
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
    EXPECT_EQ(objection("remap", "gis/layer_name.h"), "remap may not use gis");
    EXPECT_EQ(objection("ops", "max_min.h"), "is not named as folder/file.h");
    EXPECT_EQ(objection("ops", "../grid/header.h"), "is not named as folder/file.h");
}

// CMakeLists.txt has the same picture; this keeps the two from drifting apart.
TEST(Layers, TheBuildLinksTheSamePicture)
{
    std::map<std::string, std::set<std::string>> linked;
    std::ifstream in(kSource / "CMakeLists.txt");
    for (std::string line; std::getline(in, line);) {
        if (!line.starts_with("gridforge_layer(")) {
            continue;
        }
        line = line.substr(line.find('(') + 1);
        line = line.substr(0, std::min(line.find(')'), line.find(" FORMS ")));
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

// --- Files of a folder -----------------------------------------------------------------------------------------------

// For each source, without its extension, those that it includes. A header and its .cpp are one; so are the two forms of a
// kernel, as the plain one calls the other where it may.
using Needs = std::map<std::string, std::set<std::string>>;

std::string withoutForm(const std::string& file)
{
    const std::string name = fs::path(file).replace_extension().generic_string();
    return name.ends_with("_avx2") ? name.substr(0, name.size() - std::string("_avx2").size()) : name;
}

// Takes out the sources that need none, or only others that are taken out. What is left stands in circles, or needs some that do.
void settle(Needs& needs)
{
    std::set<std::string> settled;
    std::size_t before = 0;
    do {
        before = settled.size();
        std::erase_if(needs, [&settled](const auto& source) {
            const bool isSettled = std::ranges::includes(settled, source.second);
            if (isSettled) {
                settled.insert(source.first);
            }
            return isSettled;
        });
    } while (settled.size() != before);
}

TEST(Layers, FilesNeedEachOtherInNoCircle)
{
    Needs needs;
    for (const auto& file : sourcesBelow(kSource / "src")) {
        const std::string source = withoutForm(sourceName(file));
        needs[source];
        std::ifstream in(file);
        for (std::string line; std::getline(in, line);) {
            const std::string name = quotedInclude(line);
            if (!name.empty() && withoutForm(name) != source) {
                needs[source].insert(withoutForm(name));
            }
        }
    }
    EXPECT_GT(needs.size(), 100U);
    settle(needs);
    for (const auto& [source, others] : needs) {
        ADD_FAILURE() << source << " stands in a circle, or needs a file that does";
    }
}

TEST(Layers, ACircleOfFilesIsSeen)
{
    Needs line{{"a", {"b", "c"}}, {"b", {"c"}}, {"c", {}}};
    settle(line);
    EXPECT_TRUE(line.empty());
    Needs circle{{"a", {"b"}}, {"b", {"c", "d"}}, {"c", {"b"}}, {"d", {}}};
    settle(circle);
    EXPECT_EQ(circle.size(), 3U); // without d
    EXPECT_EQ(withoutForm("ops/stat_cells_avx2.cpp"), "ops/stat_cells");
}

} // namespace
} // namespace gridforge::test
