#include "gis/layer_table.h"

#include "gis/layer_reader.h"
#include "gis/layer_writer.h"
#include "host/console.h"
#include "support/layer_files.h"
#include "support/layer_runs.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace gridforge::test {
namespace {

using testing::HasSubstr;

TEST(LayerIds, StandsInTheTableUntilItIsClosed)
{
    const ScratchFolder folder;
    giveMif(folder, "l", kPointBody);
    EXPECT_THAT(consoleOf(folder,
                          [] {
                              gis::LayerReader layer = gis::openLayer("l.mif  ");
                              const gis::OpenLayer* const open = gis::inputLayer(1);
                              say("open ", open != nullptr && open->name == "l.mif" && !open->end ? 1 : 0);
                              layer.close();
                              say("closed ", gis::inputLayer(1) == nullptr ? 1 : 0);
                              gis::createLayer("o.mif", {});
                              say("output ", gis::inputLayer(1) == nullptr ? 1 : 0);
                          }),
                testing::AllOf(HasSubstr("open 1\n"), HasSubstr("closed 1\n"), HasSubstr("output 1\n")));
}

TEST(LayerIds, NumberOneHundredAndOneEndsTheRun)
{
    const ScratchFolder folder;
    giveMif(folder, "t", kPointBody);
    const std::string console = endOf(folder, [] {
        for (int i = 1; i <= 100; ++i) {
            gis::openFiles("t.mif");
        }
        say("all open");
        gis::openFiles("t.mif");
    });
    EXPECT_THAT(console, HasSubstr("GIS Layer assigned ID of 100\n"));
    EXPECT_THAT(console, HasSubstr("all open\nOpening GIS Layer: t.mif\n\n"
                                   "ERROR 0251 - Cannot have more than 100 GIS layers open at once.\n"));
}

TEST(LayerIds, AClosedSlotIsTheNextToBeUsed)
{
    const ScratchFolder folder;
    giveMif(folder, "t", kPointBody);
    EXPECT_THAT(consoleOf(folder,
                          [] {
                              for (int i = 1; i <= 100; ++i) {
                                  gis::openFiles("t.mif");
                              }
                              gis::close(*gis::inputLayer(7));
                              gis::close(*gis::inputLayer(3));
                              say("reopened ", gis::openFiles("t.mif").id);
                          }),
                HasSubstr("reopened 3\n"));
}

TEST(LayerIds, TakesTheLowestIDThatIsFree)
{
    const ScratchFolder folder;
    giveMif(folder, "t", kPointBody);
    EXPECT_THAT(consoleOf(folder,
                          [] {
                              gis::openFiles("t.mif");
                              gis::LayerWriter second = gis::createLayer("a.mif", {});
                              gis::openFiles("t.mif");
                              second.close();
                              gis::createLayer("b", {});
                          }),
                testing::AllOf(HasSubstr("Opening GIS Layer: a.mif\nGIS Layer assigned ID of 2\n"),
                               HasSubstr("Closing GIS Layer 2 [a.mif]...\n"),
                               HasSubstr("Opening GIS Layer: b\nGIS Layer assigned ID of 2\n"
                                         "Trying to open file b.mif...OK.")));
}

TEST(TrackedLayers, FromTheThousandthNewOneOnThereIsAWarning)
{
    const ScratchFolder folder;
    for (int i = 1; i <= 1001; ++i) {
        giveMif(folder, "t" + std::to_string(i), kPointBody);
    }
    const std::string console = consoleOf(folder, [] {
        const auto openAndClose = [](int i) {
            say("layer ", i);
            gis::close(gis::openFiles("t" + std::to_string(i) + ".mif"));
        };
        for (int i = 1; i <= 1001; ++i) {
            openAndClose(i);
        }
        openAndClose(1); // is in the list
        openAndClose(1001);
    });
    const std::string warning =
        "GIS Layer assigned ID of 1\n\nWARNING 0317 - Exceeded limit of input GIS layers that can "
        "be tracked (layer referencing may not be complete).\nTrying to open file ";
    std::vector<std::size_t> places;
    for (std::size_t at = console.find(warning); at != std::string::npos; at = console.find(warning, at + 1)) {
        places.push_back(at);
    }
    ASSERT_EQ(places.size(), 3U);
    EXPECT_GT(places[0], console.find("layer 1000\n"));
    EXPECT_LT(places[0], console.find("layer 1001\n"));
    EXPECT_LT(places[1], console.rfind("layer 1\n"));
    EXPECT_GT(places[2], console.rfind("layer 1001\n"));
}

} // namespace
} // namespace gridforge::test
