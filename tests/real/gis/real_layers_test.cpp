#include "support/ogr.h"
#include "support/read_layer.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>

namespace gridforge::test {
namespace {

std::vector<std::filesystem::path> layers(std::string_view extension)
{
    std::vector<std::filesystem::path> found;
    if (std::filesystem::exists(GRIDFORGE_DATA_DIR)) {
        for (const auto& entry : std::filesystem::recursive_directory_iterator(GRIDFORGE_DATA_DIR)) {
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

// Objects against what OGR reads; of a line of several parts only the first is read.
void compare(const std::vector<LayerObject>& objects, const std::vector<OgrFeature>& features)
{
    ASSERT_EQ(objects.size(), features.size());
    for (std::size_t i = 0; i < objects.size(); ++i) {
        SCOPED_TRACE(i);
        if (!objects[i].gisO.plineMultiple) {
            ASSERT_EQ(objects[i].numbers.size(), features[i].numbers.size());
        }
        for (std::size_t k = 0; k < objects[i].numbers.size(); ++k) {
            ASSERT_TRUE(near(objects[i].numbers[k], features[i].numbers[k]))
                << k << ": " << objects[i].numbers[k] << " and " << features[i].numbers[k];
        }
    }
}

TEST(RealLayers, MifLayersReadAsOgrReadsThem)
{
    const auto found = layers(".mif");
    if (found.empty() || !haveOgr()) {
        GTEST_SKIP() << "no data or no OGR";
    }
    EXPECT_GE(found.size(), 10U);
    for (const auto& layer : found) {
        SCOPED_TRACE(layer.string());
        compare(readLayer(layer.string()), ogrFeatures(layer.string()));
    }
}

} // namespace
} // namespace gridforge::test
