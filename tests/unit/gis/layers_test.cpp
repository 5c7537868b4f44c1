#include "gis/gis_messages.h"
#include "gis/layer_name.h"
#include "gis/layer_reader.h"
#include "gis/layer_table.h"
#include "gis/layer_writer.h"
#include "gis/projection.h"
#include "host/console.h"
#include "host/messages.h"
#include "support/child_run.h"
#include "support/layer_files.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace gridforge::test {
namespace {

using testing::HasSubstr;

constexpr std::string_view kPointBody = "Point 1 2\n";

void start()
{
    gis::initialise();
}

std::string consoleOf(const ScratchFolder& folder, const std::function<void()>& code)
{
    const ChildRun run = runInChild(folder, [&] {
        start();
        code();
    });
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.errors, "");
    return run.console;
}

// The console of a run that the code must end by itself, up to the last pause.
std::string endOf(const ScratchFolder& folder, const std::function<void()>& code)
{
    const ChildRun run = runInChild(folder, [&] {
        start();
        code();
    });
    EXPECT_TRUE(run.ended) << run.console;
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.console, testing::EndsWith("\n\nPress Enter to Close\n"));
    return run.console;
}

// --- Open and close --------------------------------------------------------------------------------------------------

TEST(OpenLayer, SaysEachStepAndCloseDoesToo)
{
    const ScratchFolder folder;
    giveMif(folder, "l", kPointBody);
    EXPECT_EQ(consoleOf(folder,
                        [] {
                            gis::OpenLayer& layer = gis::openFiles("l.mif");
                            gis::readHeader(layer);
                            gis::close(layer);
                        }),
              "Opening GIS Layer: l.mif\n"
              "GIS Layer assigned ID of 1\n"
              "Trying to open file l.mif...OK.\n"
              "Opened File Unit:1001\n"
              "Trying to open file l.mid...OK.\n"
              "Opened File Unit:1002\n"
              "2 MIF Fields: Name [#/Type]: Name [1/Char(30)]  Val [2/Float]  \n"
              "Closing GIS Layer 1 [l.mif]...\n"
              "...Closed File Unit:1001\n"
              "...Closed File Unit:1002\n");
}

TEST(OpenLayer, StandsInTheTableUntilItIsClosed)
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

TEST(OpenLayer, TakesNamesOfAnyCaseWithoutExtensionAndOfTheMid)
{
    const ScratchFolder folder;
    giveMif(folder, "data", kPointBody);
    for (const char* name : {"data.MIF", "data", "data.mid", "  data.mif"}) {
        EXPECT_THAT(consoleOf(folder,
                              [&] {
                                  gis::OpenLayer& layer = gis::openFiles(name);
                                  gis::close(layer);
                              }),
                    HasSubstr("Trying to open file data.mif...OK.\nOpened File Unit:1001\n"
                              "Trying to open file data.mid...OK.\n"))
            << name;
    }
}

TEST(OpenLayer, NumberOneHundredAndOneEndsTheRun)
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

TEST(OpenLayer, AClosedSlotIsTheNextToBeUsed)
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

TEST(OpenLayer, RefusesOtherExtensions)
{
    const ScratchFolder folder;
    folder.give("table.csv", "a,1\n");
    EXPECT_THAT(endOf(folder, [] { gis::openLayer("table.csv"); }),
                HasSubstr("\n\nERROR 0252 - .csv is not a supported GIS file format.\n"));
    EXPECT_THAT(endOf(folder, [] { gis::openLayer("table.dbf"); }),
                HasSubstr("ERROR 0252 - .dbf is not a supported GIS file format.\n"));
    EXPECT_THAT(endOf(folder, [] { gis::createLayer("layer.TXT", {}); }),
                HasSubstr("ERROR 0252 - .txt is not a supported GIS file format.\n"));
}

TEST(OpenLayer, ShapefilesOpenAPairOfUnitsAndTheTable)
{
    const ScratchFolder folder;
    folder.give("l.shp", "");
    folder.give("l.dbf", "");
    EXPECT_EQ(consoleOf(folder,
                        [] {
                            gis::OpenLayer& layer = gis::openFiles("l.shp");
                            say("family ", layer.files.index());
                            gis::close(layer);
                        }),
              "Opening GIS Layer: l.shp\n"
              "GIS Layer assigned ID of 1\n"
              "Trying to open file l.shp...OK.\n"
              "Opened File Unit:1001\n"
              "Trying to open file l.shp...OK.\n"
              "Opened File Unit:1002\n"
              "Trying to open file l.dbf...OK.\n"
              "Opened File Unit:1003\n"
              "family 1\n"
              "Closing GIS Layer 1 [l.shp]...\n"
              "...Closed File Unit:1001\n"
              "...Closed File Unit:1002\n"
              "...Closed File Unit:1003\n");
}

TEST(OpenLayer, AMissingShapefileIsLeftToTheDialogue)
{
    const ScratchFolder folder;
    EXPECT_THAT(endOf(folder, [] { gis::openLayer("l.shp"); }), HasSubstr("CHECK 0008 - \"l.shp\" cannot be found\n"));
}

TEST(CreateLayer, ShapefilesAreOneSetALetter)
{
    const ScratchFolder folder;
    EXPECT_EQ(consoleOf(folder,
                        [] {
                            gis::createLayer("out.shp", {.columns = {{"N", "Integer"}}, .families = "pL"});
                        }),
              "Opening GIS Layer: out.shp\n"
              "GIS Layer assigned ID of 1\n"
              "Trying to open file out_p.shp...OK.  File Unit:1001\n"
              "Trying to open file out_p.shp...OK.  File Unit:1002\n"
              "Trying to open file out_p.shx...OK.  File Unit:1003\n"
              "Trying to open file out_p.shx...OK.  File Unit:1004\n"
              "Trying to open file out_p.prj...OK.  File Unit:1005\n"
              "Trying to open file out_p.dbf...OK.  File Unit:1006\n"
              "Trying to open file out_L.shp...OK.  File Unit:1007\n"
              "Trying to open file out_L.shp...OK.  File Unit:1008\n"
              "Trying to open file out_L.shx...OK.  File Unit:1009\n"
              "Trying to open file out_L.shx...OK.  File Unit:1010\n"
              "Trying to open file out_L.prj...OK.  File Unit:1011\n"
              "Trying to open file out_L.dbf...OK.  File Unit:1012\n"
              "...Closed File Unit:1005\n"
              "...Closed File Unit:1003\n"
              "...Closed File Unit:1011\n"
              "...Closed File Unit:1009\n");
    EXPECT_EQ(folder.read("out_p.shp")[32], 1);
    EXPECT_EQ(folder.read("out_L.shp")[32], 3);
}

TEST(CreateLayer, LettersOtherThanPLRMustNotOccur)
{
    const ScratchFolder folder;
    EXPECT_THAT(endOf(folder, [] { gis::createLayer("out.shp", {.families = "X"}); }),
                HasSubstr("Should not be here [OpenshpFileType] - please contact SUPPORT_CONTACT.\n"));
}

TEST(CreateLayer, TakesTheLowestIDThatIsFree)
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

TEST(OpenLayer, BackslashesInNamesAreFolders)
{
    const ScratchFolder folder;
    giveMif(folder, "gis/l", kPointBody);
    EXPECT_THAT(consoleOf(folder, [] { gis::openLayer("gis\\l.mif"); }),
                HasSubstr("Trying to open file gis\\l.mif...OK.\n"));
}

// --- Names -----------------------------------------------------------------------------------------------------------

TEST(LayerName, KnowsTheExtensionsOfLayers)
{
    EXPECT_TRUE(gis::hasLayerExtension("a.mif"));
    EXPECT_TRUE(gis::hasLayerExtension("a.b\\c.SHP"));
    EXPECT_FALSE(gis::hasLayerExtension("a.mid"));
    EXPECT_FALSE(gis::hasLayerExtension("mif"));
    EXPECT_TRUE(gis::hasMifExtension("a.Mif"));
    EXPECT_FALSE(gis::hasMifExtension("a.shp"));
}

TEST(LayerName, TheStemOfAShapefileIsWithoutItsFamily)
{
    EXPECT_EQ(gis::layerStem("in/a_L.shp", "L"), "in/a");
    EXPECT_EQ(gis::layerStem("in/a_P.shp", "L"), "in/a_P");
    EXPECT_EQ(gis::layerStem("in/a_L.mif", "L"), "in/a_L");
}

// --- Messages --------------------------------------------------------------------------------------------------------

TEST(GisReportMessage, OlderLinesShowBehindAShorterMessage)
{
    const ScratchFolder folder;
    EXPECT_EQ(consoleOf(folder,
                        [] {
                            gis::gisWarn("first", "second", "third");
                            gis::gisWarn("new first");
                            gis::gisReportMessage(0);
                        }),
              "\nfirst\nsecond\nthird\n\nnew first\nsecond\nthird\nnew first\nsecond\nthird\n");
}

// --- Tracked input layers --------------------------------------------------------------------------------------------

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

// --- Projection of the run -------------------------------------------------------------------------------------------

TEST(GetProjection, TakesTheCoordSysLineOfAMif)
{
    const ScratchFolder folder;
    giveMif(folder, "l", kPointBody);
    EXPECT_EQ(consoleOf(folder,
                        [] {
                            gis::Projection p{"unset", "unset"};
                            gis::get_projection("l.mif", p);
                            say(p.mif, "|", p.shp);
                        }),
              "Getting Projection...\n"
              "Trying to open file l.mif...OK.\n"
              "Opened File Unit:1001\n"
              "Using l.mif for setting projection.\n"
              "mif Projection: CoordSys NonEarth Units \"m\"\n"
              "...Closed File Unit:1001\n"
              "CoordSys NonEarth Units \"m\"|unset\n");
}

TEST(GetProjection, TakesTheFirstProjcsLineBesideAShp)
{
    const ScratchFolder folder;
    folder.give("l.prj", "first line\n  PROJCS[\"a\"]\nPROJCS[\"b\"]\n");
    EXPECT_EQ(consoleOf(folder,
                        [] {
                            gis::Projection p{"unset", "unset"};
                            gis::get_projection("l.SHP", p);
                            say(p.mif, "|", p.shp);
                        }),
              "Getting Projection...\n"
              "Trying to open file l.prj...OK.\n"
              "Opened File Unit:1001\n"
              "Using l.prj for setting projection.\n"
              "shp Projection:   PROJCS[\"a\"]\n"
              "...Closed File Unit:1001\n"
              "unset|  PROJCS[\"a\"]\n");
}

TEST(GetProjection, EndsTheRunWithoutOne)
{
    const ScratchFolder folder;
    const auto get = [](const char* name) {
        gis::Projection p{"unset", "unset"};
        gis::get_projection(name, p);
    };
    EXPECT_THAT(
        endOf(folder, [&] { get("gone.shp"); }),
        testing::StartsWith("Getting Projection...\nERROR - Projection file does not exist in folder: gone.prj\n"));
    folder.give("e.prj", "GEOGCS[\"a\"]\n");
    EXPECT_THAT(endOf(folder, [&] { get("e.shp"); }),
                HasSubstr("...Closed File Unit:1001\nERROR - Unable to find PROJCS line in e.prj\n"));
    folder.give("e.mif", "Version 300\n");
    EXPECT_THAT(endOf(folder, [&] { get("e.mif"); }),
                HasSubstr("Using e.mif for setting projection.\nERROR - Unable to find CoordSys line in e.mif\n"));
    EXPECT_THAT(endOf(folder, [&] { get("e.tab"); }),
                HasSubstr("ERROR - Unable to determine gis file type, expecting .mif or .shp. File: e.tab\n"));
}

TEST(GetProjection, EndsTheRunOnAReadThatTheSystemRefuses)
{
    const ScratchFolder folder;
    std::filesystem::create_symlink("/proc/self/mem", folder.path() / "l.prj");
    EXPECT_THAT(endOf(folder,
                      [] {
                          gis::Projection p{"unset", "unset"};
                          gis::get_projection("l.shp", p);
                      }),
                testing::EndsWith("Using l.prj for setting projection.\n"
                                  "ERROR - Reading following line in projection file:\n\n\nPress Enter to Close\n"));
}

} // namespace
} // namespace gridforge::test
