// Layers of both families written and read in memory: nothing outside is asked for.
#include "gis/layer_reader.h"
#include "gis/layer_table.h"
#include "gis/layer_writer.h"
#include "support/memory_run.h"

#include <gtest/gtest.h>
#include <string>

namespace gridforge {
namespace {

class LayersInMemory : public testing::TestWithParam<std::string> {};

INSTANTIATE_TEST_SUITE_P(Families, LayersInMemory, testing::Values("mif", "shp"),
                         [](const auto& family) { return family.param; });

TEST_P(LayersInMemory, AreReadAsTheyWereWritten)
{
    const test::MemoryRun run;
    gis::initialise();
    gis::LayerWriter writer = gis::createLayer(
        "gauge." + GetParam(),
        {.columns = {{"level", "Float"}}, .projection = {"CoordSys NonEarth", "PROJCS[]"}, .families = "P"});
    writer.write({.kind = gis::Kind::point, .x = {1.5}, .y = {-2.5}, .record = "3.25"});
    writer.close();

    gis::LayerReader reader = gis::openLayer(GetParam() == "shp" ? "gauge_P.shp" : "gauge.mif");
    gis::LayerObject* const object = reader.next();
    ASSERT_NE(object, nullptr);
    EXPECT_EQ(object->kind, gis::Kind::point);
    EXPECT_EQ(std::stof(object->record), 3.25F) << object->record;
    gis::Coordinates read;
    reader.readCoordinates(*object, read, 2);
    EXPECT_EQ(read.x[0], 1.5);
    EXPECT_EQ(read.y[0], -2.5);
    EXPECT_EQ(reader.next(), nullptr);
    reader.close();
}

} // namespace
} // namespace gridforge
