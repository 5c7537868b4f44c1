// Which files ask of what family a layer is.
#include "unit/house/sources.h"

#include <fstream>
#include <gtest/gtest.h>
#include <regex>
#include <set>
#include <string>

namespace gridforge::test {
namespace {

// Lines that ask which family of files a layer is of: by the text of an extension, or by what a variant holds.
bool asksForFamily(const std::string& line)
{
    static const std::regex sign(R"re("\.(mif|mid|shp|shx|dbf)"|holds_alternative|get_if<|std::get<)re"
                                 R"re(|[=!]= *(gis::)?k(Mif|Shp)Extension|k(Mif|Shp)Extension *[=!]=)re");
    return std::regex_search(line.substr(0, line.find("//")), sign);
}

// Lines that have the extension of a layer looked at.
bool asksForExtension(const std::string& line)
{
    static const std::regex call("(hasMifExtension|hasLayerExtension|layerStem)\\(");
    return std::regex_search(line.substr(0, line.find("//")), call);
}

// The sources outside the folders of the two families that have such a line.
std::set<std::string> filesAsking(bool (*asks)(const std::string&))
{
    std::set<std::string> asking;
    for (const auto& file : sourcesBelow(kSource / "src")) {
        const std::string name = sourceName(file);
        if (name.starts_with("gis/mif/") || name.starts_with("gis/shp/")) {
            continue;
        }
        std::ifstream in(file);
        for (std::string line; std::getline(in, line);) {
            if (asks(line)) {
                asking.insert(name);
            }
        }
    }
    return asking;
}

// The two families stand in folders of their own, and one file chooses between them.
TEST(Layers, OnePlaceAsksForTheFamilyOfALayer)
{
    EXPECT_EQ(filesAsking(asksForFamily), (std::set<std::string>{"gis/layer_open.cpp", "gis/layer_name.h"}));
}

// Operations that look at the name that a user gave: for an output layer, or for a grid of materials, which no layer may be.
TEST(Layers, FewOperationsAskForTheExtensionOfALayer)
{
    EXPECT_EQ(filesAsking(asksForExtension),
              (std::set<std::string>{"damages/damages.cpp", "gis/layer_name.h", "gis/layer_open.cpp", "network/xs.cpp",
                                     "sampling/brkline.cpp", "sampling/lp.cpp"}));
}

TEST(Layers, AQuestionForTheFamilyIsSeen)
{
    EXPECT_TRUE(asksForFamily("    if (extension == \".mif\") {"));
    EXPECT_TRUE(asksForFamily("    if (extension == kMifExtension) {"));
    EXPECT_TRUE(asksForFamily("    if (gis::kShpExtension != extension) {"));
    EXPECT_TRUE(asksForFamily("std::get_if<mif::MifInput>(&layer.files)"));
    EXPECT_FALSE(asksForFamily("// the \".mif\" of a layer"));
    EXPECT_FALSE(asksForFamily("    say(\"Reading .mif file\");"));
    EXPECT_TRUE(asksForExtension("    if (gis::hasMifExtension(name)) {"));
    EXPECT_FALSE(asksForExtension("    name += gis::kMifExtension; // not hasMifExtension(name)"));
}

} // namespace
} // namespace gridforge::test
