#include "support/ogr.h"
#include "support/paths.h"
#include "support/read_layer.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>

namespace gridforge::test {
namespace {

std::vector<std::filesystem::path> layers(std::string_view extension)
{
    std::vector<std::filesystem::path> found;
    if (std::filesystem::exists(dataFolder())) {
        for (const auto& entry : std::filesystem::recursive_directory_iterator(dataFolder())) {
            // A record of this one runs over two lines, which no reader of lines can know.
            if (entry.path().extension() == extension && entry.path().stem() != "multilinemid") {
                found.push_back(entry.path());
            }
        }
    }
    std::ranges::sort(found);
    return found;
}

bool near(double a, double b)
{
    return std::abs(a - b) <= 1e-12 * std::max(std::abs(a), std::abs(b)) + 1e-9;
}

std::vector<double> distinct(std::vector<double> numbers)
{
    std::ranges::sort(numbers);
    numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
    return numbers;
}

// Objects against what OGR reads; of a line of several parts in a .mif only the first is read.
void compare(const std::vector<ReadObject>& objects, const std::vector<OgrFeature>& features,
             std::string_view extension)
{
    ASSERT_EQ(objects.size(), features.size());
    for (std::size_t i = 0; i < objects.size(); ++i) {
        SCOPED_TRACE(i);
        if (objects[i].kind != gis::Kind::combinedPolyline || extension == ".shp") {
            ASSERT_EQ(objects[i].numbers.size(), features[i].numbers.size());
        }
        const bool manyRings =
            objects[i].kind == gis::Kind::region && objects[i].rings > 1; // OGR puts them in an order of its own
        const auto ours = manyRings ? distinct(objects[i].numbers) : objects[i].numbers;
        const auto theirs = manyRings ? distinct(features[i].numbers) : features[i].numbers;
        for (std::size_t k = 0; k < ours.size(); ++k) {
            ASSERT_TRUE(near(ours[k], theirs[k])) << k << ": " << ours[k] << " and " << theirs[k];
        }
    }
}

void compareAll(std::string_view extension)
{
    const auto found = layers(extension);
    if (found.empty() || !haveOgr()) {
        GTEST_SKIP() << "no data or no OGR";
    }
    EXPECT_GE(found.size(), 10U);
    for (const auto& layer : found) {
        SCOPED_TRACE(layer.string());
        compare(readLayer(layer.string()), ogrFeatures(layer.string()), extension);
    }
}

TEST(RealLayers, MifLayersReadAsOgrReadsThem)
{
    compareAll(".mif");
}

TEST(RealLayers, ShpLayersReadAsOgrReadsThem)
{
    compareAll(".shp");
}

// Layers that are there in both families hold the same objects; only the kind of a straight line may differ.
TEST(RealLayers, BothFamiliesReadTheSame)
{
    int pairs = 0;
    for (auto layer : layers(".shp")) {
        const auto shp = readLayer(layer.string());
        if (!std::filesystem::exists(layer.replace_extension(".mif"))) {
            continue;
        }
        SCOPED_TRACE(layer.string());
        ++pairs;
        const auto mif = readLayer(layer.string());
        ASSERT_EQ(shp.size(), mif.size());
        for (std::size_t i = 0; i < shp.size(); ++i) {
            SCOPED_TRACE(i);
            const bool straight = mif[i].kind == gis::Kind::line;
            EXPECT_EQ(shp[i].kind, straight ? gis::Kind::polyline : mif[i].kind);
            ASSERT_EQ(shp[i].numbers.size(), mif[i].numbers.size());
            // Rings may begin at another vertex and run the other way round.
            const auto a = distinct(shp[i].numbers);
            const auto b = distinct(mif[i].numbers);
            ASSERT_EQ(a.size(), b.size());
            for (std::size_t k = 0; k < a.size(); ++k) {
                ASSERT_NEAR(a[k], b[k], 1e-5) << k;
            }
        }
    }
    if (pairs == 0) {
        GTEST_SKIP() << "no data";
    }
}

} // namespace
} // namespace gridforge::test
