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

TEST(OpenLayer, BackslashesInNamesAreFolders)
{
    const ScratchFolder folder;
    giveMif(folder, "gis/l", kPointBody);
    EXPECT_THAT(consoleOf(folder, [] { gis::openLayer("gis\\l.mif"); }),
                HasSubstr("Trying to open file gis\\l.mif...OK.\n"));
}

} // namespace
} // namespace gridforge::test
