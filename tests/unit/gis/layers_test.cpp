#include "gis/layers.h"

#include "gis/gis_messages.h"
#include "gis/projection.h"
#include "host/console.h"
#include "host/messages.h"
#include "support/child_run.h"
#include "support/layer_files.h"

#include <algorithm>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace gridforge::test {
namespace {

using testing::HasSubstr;
using testing::Not;

constexpr std::string_view kPointBody = "Point 1 2\n";

void start()
{
    gisInitialise(-1, "", "", "");
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
                            std::int32_t id = gisOpenLayer("l.mif", "", "I ");
                            gisReadHeader(id);
                            gisCloseLayer(id);
                            say("id ", id);
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
              "...Closed File Unit:1002\n"
              "id 0\n");
}

TEST(OpenLayer, FillsItsSlotAndEmptiesItOnClose)
{
    const ScratchFolder folder;
    giveMif(folder, "l", kPointBody);
    EXPECT_EQ(consoleOf(
                  folder,
                  [] {
                      std::int32_t id = gisOpenLayer("l.mif  ", "", "I ");
                      const Layer& slot = gisLayer(id);
                      const bool opened = slot.layerOpen && slot.layerFormat == kLayerMif && !slot.layerOutput &&
                                          !slot.layerEnd && slot.layerName == "l.mif" && slot.layerTrackId == 1;
                      gisCloseLayer(id);
                      const bool closed = !slot.layerOpen && slot.layerEnd && slot.layerFormat == kLayerNone && id == 0;
                      say("opened ", opened ? 1 : 0, " closed ", closed ? 1 : 0);
                  }).find("opened 1 closed 1\n") != std::string::npos,
              true);
}

TEST(OpenLayer, TakesNamesOfAnyCaseWithoutExtensionAndOfTheMid)
{
    const ScratchFolder folder;
    giveMif(folder, "data", kPointBody);
    for (const char* name : {"data.MIF", "data", "data.mid", "  data.mif"}) {
        EXPECT_THAT(consoleOf(folder,
                              [&] {
                                  std::int32_t id = gisOpenLayer(name, "", "I ");
                                  gisCloseLayer(id);
                              }),
                    HasSubstr("Trying to open file data.mif...OK.\nOpened File Unit:1001\n"
                              "Trying to open file data.mid...OK.\n"))
            << name;
    }
}

TEST(OpenLayer, NumberOneHundredAndOneEndsTheRun)
{
    const ScratchFolder folder;
    folder.give("t.csv", "a,1\n");
    const std::string console = endOf(folder, [] {
        for (int i = 1; i <= 100; ++i) {
            gisOpenLayer("t.csv", "", "I ", true);
        }
        say("all open");
        gisOpenLayer("t.csv", "", "I ", true);
    });
    EXPECT_THAT(console, HasSubstr("GIS Layer assigned ID of 100\n"));
    EXPECT_THAT(console, HasSubstr("all open\nOpening GIS Layer: t.csv\n\n"
                                   "ERROR 0251 - Cannot have more than 100 GIS layers open at once.\n"));
}

TEST(OpenLayer, AClosedSlotIsTheNextToBeUsed)
{
    const ScratchFolder folder;
    folder.give("t.csv", "a,1\n");
    EXPECT_THAT(consoleOf(folder,
                          [] {
                              for (int i = 1; i <= 100; ++i) {
                                  gisOpenLayer("t.csv", "", "I ", true);
                              }
                              std::int32_t third = 3;
                              std::int32_t seventh = 7;
                              gisCloseLayer(seventh);
                              gisCloseLayer(third);
                              say("reopened ", gisOpenLayer("t.csv", "", "I ", true));
                          }),
                HasSubstr("reopened 3\n"));
}

TEST(OpenLayer, RefusesOtherExtensions)
{
    const ScratchFolder folder;
    folder.give("table.csv", "a,1\n");
    EXPECT_THAT(endOf(folder, [] { gisOpenLayer("table.csv", "", "I "); }),
                HasSubstr("\n\nERROR 0252 - .csv is not a supported GIS file format.\n"));
    EXPECT_THAT(endOf(folder, [] { gisOpenLayer("table.dbf", "", "I "); }),
                HasSubstr("ERROR 0252 - .dbf is not a supported GIS file format.\n"));
    EXPECT_THAT(endOf(folder, [] { gisOpenLayer("layer.TXT", "", "I ", true); }),
                HasSubstr("ERROR 0252 - .txt is not a supported GIS file format.\n"));
}

TEST(FormatOf, FollowsTheExtension)
{
    EXPECT_EQ(gisFormatOf(".mif", false), 1);
    EXPECT_EQ(gisFormatOf(".mid", true), 1);
    EXPECT_EQ(gisFormatOf("", false), 1);
    EXPECT_EQ(gisFormatOf(".shp", false), 2);
    EXPECT_EQ(gisFormatOf(".dbf", true), 2);
    EXPECT_EQ(gisFormatOf(".csv", true), -1);
}

TEST(OpenLayer, ABareTableIsAMidWithoutMif)
{
    const ScratchFolder folder;
    folder.give("table.csv", "a,1\nb,2\n");
    EXPECT_THAT(consoleOf(folder,
                          [] {
                              std::int32_t id = gisOpenLayer("table.csv", "", "I ", true);
                              gisReadHeader(id);
                              std::string line;
                              while (!gisLayer(id).layerEnd) {
                                  gisReadRecord(id, GisO(), line);
                                  say("record ", line);
                              }
                              say("format ", gisLayer(id).layerFormat, " columns ", gisNumberAttributes(id));
                              gisCloseLayer(id);
                          }),
                HasSubstr("GIS Layer assigned ID of 1\nTrying to open file table.csv...OK.\nOpened File Unit:1001\n"
                          "record a,1\nrecord b,2\nformat 1 columns 0\nClosing GIS Layer 1 [table.csv]...\n"));
}

TEST(OpenLayer, ABareMidOpensAlone)
{
    const ScratchFolder folder;
    folder.give("t.mid", "a,1\n");
    EXPECT_THAT(consoleOf(folder, [] { gisOpenLayer("t.mid", "", "I ", true); }),
                HasSubstr("GIS Layer assigned ID of 1\nTrying to open file t.mid...OK.\nOpened File Unit:1001\n"));
}

TEST(OpenLayer, OtherModesMustNotOccur)
{
    const ScratchFolder folder;
    EXPECT_THAT(endOf(folder, [] { gisOpenLayer("l.mif", "", "X "); }),
                HasSubstr("\n\nShould not be here [OpenGIS] - please contact SUPPORT_CONTACT.\n"));
}

TEST(OpenLayer, ShapefilesOpenAPairOfUnitsAndTheTable)
{
    const ScratchFolder folder;
    folder.give("l.shp", "");
    folder.give("l.dbf", "");
    EXPECT_EQ(consoleOf(folder,
                        [] {
                            std::int32_t id = gisOpenLayer("l.shp", "", "I ");
                            say("format ", gisLayer(id).layerFormat);
                            gisCloseLayer(id);
                        }),
              "Opening GIS Layer: l.shp\n"
              "GIS Layer assigned ID of 1\n"
              "Trying to open file l.shp...OK.\n"
              "Opened File Unit:1001\n"
              "Trying to open file l.shp...OK.\n"
              "Opened File Unit:1002\n"
              "Trying to open file l.dbf...OK.\n"
              "Opened File Unit:1003\n"
              "format 2\n"
              "Closing GIS Layer 1 [l.shp]...\n"
              "...Closed File Unit:1001\n"
              "...Closed File Unit:1002\n"
              "...Closed File Unit:1003\n");
}

TEST(OpenLayer, AnInputShapefileWithALetterMayBeMissing)
{
    const ScratchFolder folder;
    EXPECT_EQ(consoleOf(folder,
                        [] {
                            say("id ", gisOpenLayer("l.shp", "P", "I "));
                            say("open ", gisLayer(1).layerOpen ? 1 : 0, " format ", gisLayer(1).layerFormat);
                        }),
              "Opening GIS Layer: l.shp\nGIS Layer assigned ID of 1\nid 0\nopen 0 format 0\n");
}

TEST(OpenLayer, AnInputShapefileWithALetterOpensThatSet)
{
    const ScratchFolder folder;
    folder.give("l_P.shp", "");
    folder.give("l_P.dbf", "");
    EXPECT_THAT(consoleOf(folder, [] { say("id ", gisOpenLayer("l.shp", "P", "I ")); }),
                HasSubstr("Trying to open file l_P.dbf...OK.\nOpened File Unit:1003\nid 1\n"));
}

TEST(OpenLayer, ASetWithALetterIsFoundInOtherCase)
{
    const ScratchFolder folder;
    folder.give("L_p.SHP", "");
    folder.give("L_P.DBF", "");
    folder.give("L_P.PRJ", "PROJCS[\"Utm 56\"]\n");
    EXPECT_THAT(consoleOf(folder,
                          [] {
                              gisChecks().shpProjection = "UTM 55"; // so that the .prj is asked for
                              say("id ", gisOpenLayer("l.shp", "P", "I "));
                          }),
                HasSubstr("Trying to open file l_P.prj...OK.\n"
                          "Opened File Unit:1001\n"
                          "...Closed File Unit:1001\n"
                          "\nWARNING 0305 - Projection of .shp file is different to that specified by the SHP "
                          "Projection == command.\n"
                          "Trying to open file l_P.shp...OK.\n"
                          "Opened File Unit:1001\n"
                          "Trying to open file l_P.shp...OK.\n"
                          "Opened File Unit:1002\n"
                          "Trying to open file l_P.dbf...OK.\n"
                          "Opened File Unit:1003\n"
                          "id 1\n"));
}

TEST(OpenLayer, AMissingShapefileWithoutLetterIsLeftToTheDialogue)
{
    const ScratchFolder folder;
    EXPECT_THAT(endOf(folder, [] { gisOpenLayer("l.shp", "", "I "); }),
                HasSubstr("CHECK 0008 - \"l.shp\" cannot be found\n"));
}

TEST(OpenLayer, OutputShapefilesAreOneSetALetter)
{
    const ScratchFolder folder;
    EXPECT_EQ(consoleOf(folder,
                        [] {
                            gisOpenLayer("out.shp", "pL", "O ");
                            say("types ", gisLayer(1).shpFiles[0].shapeType, gisLayer(1).shpFiles[1].shapeType,
                                gisLayer(1).shpFiles[2].shapeType);
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
              "types 130\n");
}

TEST(OpenLayer, OutputLettersOtherThanPLRMustNotOccur)
{
    const ScratchFolder folder;
    EXPECT_THAT(endOf(folder, [] { gisOpenLayer("out.shp", "X", "O "); }),
                HasSubstr("Should not be here [OpenshpFileType] - please contact SUPPORT_CONTACT.\n"));
}

TEST(OpenLayer, AttributesOnlyWantsTheTable)
{
    const ScratchFolder folder;
    folder.give("t.dbf", "");
    EXPECT_THAT(endOf(folder, [] { gisOpenLayer("t.shp", "", "I ", true); }),
                HasSubstr("\n\nERROR 0426 - .dbf file not specified.\n"));
    EXPECT_THAT(consoleOf(folder, [] { gisOpenLayer("t.dbf", "", "I ", true); }),
                HasSubstr("ID of 1\nTrying to open file t.dbf...OK.\nOpened File Unit:1001\n"));
}

TEST(OpenLayer, BackslashesInNamesAreFolders)
{
    const ScratchFolder folder;
    giveMif(folder, "gis/l", kPointBody);
    EXPECT_THAT(consoleOf(folder, [] { gisOpenLayer("gis\\l.mif", "", "I "); }),
                HasSubstr("Trying to open file gis\\l.mif...OK.\n"));
}

TEST(CloseLayer, WithoutALayerIsOnlySaid)
{
    const ScratchFolder folder;
    EXPECT_EQ(consoleOf(folder,
                        [] {
                            std::int32_t none = 0;
                            gisCloseLayer(none);
                            say("goes on");
                        }),
              "SOFTWARE CHECK - Trying to close a GIS Layer that's not open.  Please contact SUPPORT_CONTACT.\n"
              "goes on\n");
}

TEST(CloseLayer, ASlotThatIsNotOpenMustNotOccur)
{
    const ScratchFolder folder;
    EXPECT_THAT(endOf(folder,
                      [] {
                          std::int32_t unused = 5;
                          gisCloseLayer(unused);
                      }),
                HasSubstr("Should not be here [gisCloseLayer] - please contact SUPPORT_CONTACT.\n"));
    EXPECT_THAT(endOf(folder, [] { gisWriteEoF(5); }),
                HasSubstr("Should not be here [gisWriteHeader] - please contact SUPPORT_CONTACT.\n"));
}

TEST(CloseAllLayers, ClosesInRisingOrderAndTellsWhetherThereWasOne)
{
    const ScratchFolder folder;
    folder.give("a.csv", "1\n");
    EXPECT_THAT(
        consoleOf(folder,
                  [] {
                      bool any = true;
                      gisCloseAllLayers(any);
                      say("any ", any ? 1 : 0);
                      gisOpenLayer("a.csv", "", "I ", true);
                      gisOpenLayer("a.csv", "", "I ", true);
                      gisCloseAllLayers(any);
                      say("any ", any ? 1 : 0);
                  }),
        testing::AllOf(testing::StartsWith("Closing any unclosed GIS layers...\n\nany 0\n"),
                       testing::EndsWith("Closing any unclosed GIS layers...\n"
                                         "Closing GIS Layer 1 [a.csv]...\n...Closed File Unit:1001\n"
                                         "Closing GIS Layer 2 [a.csv]...\n...Closed File Unit:1002\n\nany 1\n")));
}

// --- Handles that are none -------------------------------------------------------------------------------------------

struct Misuse {
    const char* routine;
    void (*call)(std::int32_t gisID);
};

const Misuse kMisuses[] = {
    {"gisInitialiseLayer", [](std::int32_t id) { gisInitialiseLayer(id); }},
    {"gisReadHeader", [](std::int32_t id) { gisReadHeader(id); }},
    {"gisNumberAttributes", [](std::int32_t id) { gisNumberAttributes(id); }},
    {"gisNumberRecords", [](std::int32_t id) { gisNumberRecords(id); }},
    {"gisGotoBeginningOfData", [](std::int32_t id) { gisGotoBeginningOfData(id); }},
    {"gisGotoBeginningOfAttributes",
     [](std::int32_t id) {
         std::int32_t count = 0;
         gisGotoBeginningOfAttributes(id, count);
     }},
    {"gisReadAttributeDefinition", [](std::int32_t id) { gisReadAttributeDefinition(id); }},
    {"gisObjectType",
     [](std::int32_t id) {
         GisO gisO;
         gisObjectType(id, gisO);
     }},
    {"gisReadObject",
     [](std::int32_t id) {
         GisO gisO;
         GisCoordinates coordinates;
         gisReadObject(id, gisO, coordinates, 10);
     }},
    {"gisReadRecord",
     [](std::int32_t id) {
         std::string line;
         gisReadRecord(id, GisO(), line);
     }},
    {"gisWriteHeader", [](std::int32_t id) { gisWriteHeader(id); }},
    {"gisWriteObject",
     [](std::int32_t id) {
         GisO gisO;
         gisWriteObject(id, gisO);
     }},
    {"gisWriteRecord", [](std::int32_t id) { gisWriteRecord(id, GisO()); }},
    {"gisWriteRecordLarge", [](std::int32_t id) { gisWriteRecordLarge(id, GisO()); }},
};

TEST(LayerRoutines, StopOnHandlesThatAreNone)
{
    const ScratchFolder folder;
    for (const Misuse& misuse : kMisuses) {
        for (const std::int32_t id : {0, -1, 101}) {
            EXPECT_THAT(endOf(folder, [&] { misuse.call(id); }),
                        HasSubstr("\nShould not be here " + std::string(misuse.routine) +
                                  "[gisID=0] - please contact SUPPORT_CONTACT.\n"))
                << id;
        }
    }
}

TEST(LayerRoutines, StopOnSlotsThatAreNotOpen)
{
    const ScratchFolder folder;
    for (const Misuse& misuse : kMisuses) {
        if (misuse.routine == std::string("gisInitialiseLayer")) {
            continue;
        }
        EXPECT_THAT(endOf(folder, [&] { misuse.call(3); }),
                    HasSubstr("\nShould not be here [" + std::string(misuse.routine) +
                              "] - please contact SUPPORT_CONTACT.\n"));
    }
}

// --- Messages --------------------------------------------------------------------------------------------------------

TEST(GisReportMessage, OlderLinesShowBehindAShorterMessage)
{
    const ScratchFolder folder;
    EXPECT_EQ(consoleOf(folder,
                        [] {
                            gisWarn("first", "second", "third");
                            gisWarn("new first");
                            gisReportMessage(0);
                        }),
              "\nfirst\nsecond\nthird\n\nnew first\nsecond\nthird\nnew first\nsecond\nthird\n");
}

TEST(GisReportMessage, GoesToTheLogToo)
{
    const ScratchFolder folder;
    consoleOf(folder, [] {
        Unit log = 0;
        OPENER(log, "O ", "run.log");
        gisInitialise(log, "", "", "");
        gisWarn("WARNING 1 - text");
    });
    EXPECT_EQ(folder.read("run.log"), "\r\nWARNING 1 - text\r\n");
}

// --- Tracked input layers --------------------------------------------------------------------------------------------

TEST(TrackedLayers, AFileOpenedTwiceIsOneEntryAndTwoSlots)
{
    const ScratchFolder folder;
    giveMif(folder, "a", kPointBody);
    giveMif(folder, "b", kPointBody);
    EXPECT_THAT(consoleOf(folder,
                          [] {
                              const std::int32_t first = gisOpenLayer("a.mif", "", "I ");
                              const std::int32_t second = gisOpenLayer("b.mif", "", "I ");
                              const std::int32_t third = gisOpenLayer("a.mif", "", "I ");
                              say("slots ", first, second, third, " entries ", gisLayer(first).layerTrackId,
                                  gisLayer(second).layerTrackId, gisLayer(third).layerTrackId);
                          }),
                HasSubstr("slots 123 entries 121\n"));
}

TEST(TrackedLayers, StandInWorkspaceAndLayer)
{
    const ScratchFolder folder;
    giveMif(folder, "a", kPointBody);
    giveMif(folder, "b", kPointBody);
    folder.give("b.tab", "");
    folder.give("s.shp", "");
    folder.give("s.dbf", "");
    consoleOf(folder, [] {
        gisInitialise(-1, "run 7", "w", "in");
        gisOpenLayer("a.mif", "", "I ");
        gisOpenLayer("b.mif", "", "I ");
        gisOpenLayer("s.shp", "", "I ");
        gisOpenLayer("a.mif", "", "I ");
        gisCloseTracking();
    });
    const std::string at = std::filesystem::canonical(folder.path()).string() + "/";
    EXPECT_EQ(folder.read("w.wor"), "!Workspace\r\n!Version 600\r\n!Charset WindowsLatin1\r\n"
                                    "!Contains GIS input layers from KESTOR simulation run 7\r\n"
                                    "! .mif/.mid Layer with no .tab Layer \"" +
                                        at +
                                        "a.mif\"\r\n"
                                        "Open Table \"" +
                                        at +
                                        "b.tab\"\r\n"
                                        "! Non-MapInfo .tab Layer \"" +
                                        at + "s.shp\"\r\n");
    EXPECT_EQ(folder.read("in_input_layers.mif"),
              "Version 300\r\nCharset \"WindowsLatin1\"\r\nDelimiter \",\"\r\nColumns 3\r\n  ID Integer\r\n"
              "  Open_ID Integer\r\n  Layer Char(254)\r\nData\r\n\r\nnone\r\nnone\r\nnone\r\n");
    EXPECT_EQ(folder.read("in_input_layers.mid"), "    1,    1, \"" + at +
                                                      "a.mif\"\r\n"
                                                      "    2,    2, \"" +
                                                      at +
                                                      "b.mif\"\r\n"
                                                      "    3,    3, \"" +
                                                      at + "s.shp\"\r\n");
}

TEST(TrackedLayers, QuotesInNamesAreDoubledInTheRecord)
{
    const ScratchFolder folder;
    giveMif(folder, "a\"b", kPointBody);
    consoleOf(folder, [] {
        gisInitialise(-1, "", "", "in");
        gisOpenLayer("a\"b.mif", "", "I ");
        gisCloseTracking();
    });
    EXPECT_THAT(folder.read("in_input_layers.mid"), testing::EndsWith("/a\"\"b.mif\"\r\n"));
}

TEST(TrackedLayers, PastTheLimitThereIsAWarning)
{
    const ScratchFolder folder;
    for (int i = 1; i <= 1001; ++i) {
        folder.give("t" + std::to_string(i) + ".csv", "1\n");
    }
    const std::string console = consoleOf(folder, [] {
        gisInitialise(-1, "", "w", "in");
        for (int i = 1; i <= 1001; ++i) {
            std::int32_t id = gisOpenLayer("t" + std::to_string(i) + ".csv", "", "I ", true);
            if (i >= 999) {
                say("number ", gisLayer(id).layerTrackId);
            }
            gisCloseLayer(id);
        }
        gisCloseTracking();
    });
    const std::string warning = "WARNING 0317 - Exceeded limit of input GIS layers that can be tracked (layer "
                                "referencing may not be complete).\n";
    const std::size_t at = console.find(warning);
    ASSERT_NE(at, std::string::npos);
    EXPECT_LT(console.find("number 999\n"), at);
    EXPECT_GT(console.find("number 1000\n"), at);
    // The count stays, so each further layer is the last one again: not stored, but told in the list of what was read.
    const std::size_t again = console.find(warning, at + 1);
    ASSERT_NE(again, std::string::npos);
    EXPECT_NE(console.find("number 1000\n", again), std::string::npos);
    const std::string workspace = folder.read("w.wor");
    EXPECT_EQ(std::count(workspace.begin(), workspace.end(), '\n'), 4 + 999);
    const std::string records = folder.read("in_input_layers.mid");
    EXPECT_EQ(std::count(records.begin(), records.end(), '\n'), 1001);
    EXPECT_THAT(records, testing::EndsWith("t1001.csv\"\r\n"));
    EXPECT_EQ(records.rfind(" 1000,    1, "), records.rfind(" 1000"));
}

// --- Projection and save-date checks ---------------------------------------------------------------------------------

TEST(MiProjection, EqualButForBlanksAndQuotesPassesInSilence)
{
    const ScratchFolder folder;
    giveMif(folder, "l", kPointBody);
    EXPECT_THAT(consoleOf(folder,
                          [] {
                              gisChecks().miProjection = "COORDSYSNONEARTHUNITSM";
                              const std::int32_t id = gisOpenLayer("l.mif", "", "I ");
                              gisReadHeader(id);
                          }),
                Not(HasSubstr("0305")));
}

TEST(MiProjection, ADifferenceIsAWarningOrAnError)
{
    const ScratchFolder folder;
    giveMif(folder, "l", kPointBody);
    EXPECT_THAT(consoleOf(folder,
                          [] {
                              gisChecks().miProjection = "OTHER";
                              gisOpenLayer("l.mif", "", "I ");
                          }),
                HasSubstr("\n\nWARNING 0305 - Projection of .mif file is different to that specified by the MI "
                          "Projection == command.\nTrying to open file l.mid...OK.\n"));
    EXPECT_THAT(endOf(folder,
                      [] {
                          gisChecks().miProjection = "OTHER";
                          gisChecks().projectionCheckIsError = true;
                          gisOpenLayer("l.mif", "", "I ");
                      }),
                HasSubstr("\n\nERROR 0305 - Projection of .mif file is different to that specified by the MI "
                          "Projection == command.\nUse \"MI Projection Check == WARNING\" to change message to a "
                          "WARNING.\n"));
}

TEST(MiProjection, AFileWithoutCoordSysIsWarnedOf)
{
    const ScratchFolder folder;
    folder.give("l.mif", "Version 300\nColumns 1\n  A Float\nData\n");
    folder.give("l.mid", "1\n");
    EXPECT_THAT(consoleOf(folder,
                          [] {
                              gisChecks().miProjection = "OTHER";
                              gisOpenLayer("l.mif", "", "I ");
                          }),
                HasSubstr("\n\nWARNING 0306 - Problems finding CoordSys line in .mif file.\n\nWARNING 0305 - "));
}

TEST(ShpProjection, IsTheFirstNameOfTheFirstLine)
{
    const ScratchFolder folder;
    folder.give("l.shp", "");
    folder.give("l.dbf", "");
    folder.give("l.prj", "projcs[\"Utm 56\",GEOGCS[\"g\"]]\n");
    const auto open = [](const char* projection, bool isError) {
        gisChecks().shpProjection = projection;
        gisChecks().projectionCheckIsError = isError;
        gisOpenLayer("l.shp", "", "I ");
    };
    EXPECT_THAT(consoleOf(folder, [&] { open("UTM 56", true); }), Not(HasSubstr("0305")));
    EXPECT_THAT(consoleOf(folder, [&] { open("UTM 55", false); }),
                HasSubstr("\n\nWARNING 0305 - Projection of .shp file is different to that specified by the SHP "
                          "Projection == command.\nTrying to open file l.shp...OK.\n"));
    EXPECT_THAT(endOf(folder, [&] { open("UTM 55", true); }),
                HasSubstr("\n\nERROR 0305 - Projection of .shp file is different to that specified by the SHP "
                          "Projection == command.\nUse \"GIS Projection Check == WARNING\" to change message to a "
                          "WARNING.\n"));
    folder.give("l.prj", "GEOGCS[\"g\"]\n");
    EXPECT_THAT(consoleOf(folder, [&] { open("UTM 56", false); }),
                HasSubstr("\n\nWARNING 0420 - Could not find PROJCS definition.  Projection of .shp file might not be "
                          "cartesian.\n\nWARNING 0305 - "));
    folder.give("l.prj", "");
    EXPECT_THAT(endOf(folder, [&] { open("UTM 56", false); }),
                HasSubstr("\n\nERROR 0420 - Could not read projection line in .prj file.\n"));
}

TEST(SaveDates, AMidNewerThanItsTabIsReported)
{
    const ScratchFolder folder;
    giveMif(folder, "l", kPointBody);
    folder.give("l.tab", "");
    const auto later = std::filesystem::last_write_time(folder.path() / "l.tab") + std::chrono::hours(1);
    std::filesystem::last_write_time(folder.path() / "l.mid", later);
    EXPECT_THAT(consoleOf(folder,
                          [] {
                              gisChecks().checkSaveDates = true;
                              gisOpenLayer("l.mif", "", "I ");
                          }),
                HasSubstr("Checking save date is later than that of l.mid...NOT OK\nWARNING 0004 - Save date of "
                          "\"l.mid\" file is later than that of \"l.tab\"\n"));
}

TEST(SaveDates, AfterAnErrorTheFilesAreOpenedAgainUntilTheUserGivesUp)
{
    const ScratchFolder folder;
    giveMif(folder, "l", kPointBody);
    folder.give("l.tab", "");
    const auto written = std::filesystem::last_write_time(folder.path() / "l.tab");
    std::filesystem::last_write_time(folder.path() / "l.mid", written + std::chrono::hours(1));
    const ChildRun run = runInChild(
        folder,
        [] {
            start();
            gisChecks().checkSaveDates = true;
            gisChecks().saveDateMustHold = true;
            gisOpenLayer("l.mif", "", "I ");
        },
        "\n");
    const std::string round = "Trying to open file l.mif...OK.\nOpened File Unit:1001\n"
                              "Trying to open file l.mid...OK.\nOpened File Unit:1002\n"
                              "Checking save date is later than that of l.mid...NOT OK\n"
                              "ERROR 0004 - Save date of \"l.mid\" file is later than that of \"l.tab\"\n"
                              "...Closed File Unit:1001\n...Closed File Unit:1002\n"
                              "Re-export mif file and press Enter, or close window.\n";
    EXPECT_EQ(run.console,
              "Opening GIS Layer: l.mif\nGIS Layer assigned ID of 1\n" + round + round + "\nPress Enter to Close\n");
}

// --- Projection of the run -------------------------------------------------------------------------------------------

struct Projections {
    std::string mif = "unset";
    std::string shp = "unset";
};

TEST(GetProjection, TakesTheCoordSysLineOfAMif)
{
    const ScratchFolder folder;
    giveMif(folder, "l", kPointBody);
    EXPECT_EQ(consoleOf(folder,
                        [] {
                            Projections p;
                            get_projection("l.mif", p.mif, p.shp);
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
                            Projections p;
                            get_projection("l.SHP", p.mif, p.shp);
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
        Projections p;
        get_projection(name, p.mif, p.shp);
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
                          Projections p;
                          get_projection("l.shp", p.mif, p.shp);
                      }),
                testing::EndsWith("Using l.prj for setting projection.\n"
                                  "ERROR - Reading following line in projection file:\n\n\nPress Enter to Close\n"));
}

// --- Words of control files ------------------------------------------------------------------------------------------

TEST(ControlWords, TakeTheOldAndTheNewWord)
{
    EXPECT_TRUE(READGIS("read gis building == x", "Building"));
    EXPECT_TRUE(READGIS("Read MI Building == x", "Building"));
    EXPECT_FALSE(READGIS("Read MID Building == x", "Building"));
    EXPECT_TRUE(WRITEGIS("Write MI Lines", "Lines"));
    EXPECT_TRUE(WRITEGIS("Write GIS Lines", "Lines"));
    EXPECT_FALSE(WRITEGIS("Read GIS Lines", "Lines"));
    EXPECT_TRUE(READROWCOL("Read MID Cells", "Cells"));
    EXPECT_TRUE(READROWCOL("Read RowCol Cells", "Cells"));
    EXPECT_FALSE(READROWCOL("Read MI Cells", "Cells"));
}

} // namespace
} // namespace gridforge::test
