// The .dmg control file: each command, limit and message.
#include "support/consoles.h"
#include "support/damages_files.h"
#include "support/tool_run.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace gridforge::test {
namespace {

using testing::HasSubstr;
using testing::Not;

const std::string kPoint = pointMif("2", "1"); // level 12
const std::string kRecord = "\"House\",\"A\",0,1\n";

// Runs a control file beside the plain files.
struct ControlRun {
    explicit ControlRun(const std::string& control) : run("-b -damages c.dmg")
    {
        giveDamageFiles(run, kPoint, kRecord);
        run.give("c.dmg", control);
    }
    std::string table()
    {
        run.start();
        return run.has("h_Damages.csv") ? run.read("h_Damages.csv") : run.console();
    }
    ToolRun run;
};

void expectEnd(const std::string& control, const std::vector<std::string>& message)
{
    ControlRun ended(control);
    ended.run.start();
    EXPECT_CONSOLE_HOLDS(ended.run, errorEnd(message));
    EXPECT_NO_OTHER_FILES(ended.run);
}

const std::string kLayer = "Read GIS Building == h.mif\n";
const std::string kCurve = "Read Curve House == house.csv\n";
const std::string kGrid = "Read Result % 1 == wl.asc\n";

TEST(DamagesControl, ABuildingLayerMayBeReadAsMi)
{
    ControlRun control("Read MI Building == h.mif\n" + kCurve + kGrid);
    ControlRun same(kLayer + kCurve + kGrid);
    const std::string table = control.table();
    EXPECT_THAT(table, HasSubstr("\"House\",\"A\",0.,1.,1200.,0."));
    EXPECT_EQ(table, same.table());
}

// --- Limits ----------------------------------------------------------------------------------------------------------

TEST(DamagesControl, LimitsAreTakenFromAnywhereInTheFile)
{
    ControlRun control(kLayer + kCurve +
                       "MAXIMUM BUILDINGS == 11\n"
                       "Number of maximum building == 12 ! the last one holds\n"
                       "Maximum Vertices == 13\n"
                       "maximum damage curves==14\n"
                       "Maximum Points in Curve == 15\n" // not the words of the command
                       "\tMaximum Point in Curve\t==\t16\n"
                       "Maximum Results == 17, 18\n" +
                       kGrid);
    EXPECT_THAT(control.table(), HasSubstr("\"House\",\"A\",0.,1.,1200.,0."));
    EXPECT_CONSOLE_HOLDS(control.run,
                         {"   Done.", "Maximum number of buildings: 12",
                          "Maximum number of vertices in a single building: 13", "Maximum number of damages curves: 14",
                          "Maximum number of points in damage curve: 16", "Maximum number of results grids: 17",
                          "Allocating memory for damage curves..."});
}

TEST(DamagesControl, TheVertexLimitHasTwoNames)
{
    ControlRun control("Maximum Vertex == 33\n" + kPlainControl);
    control.run.start();
    EXPECT_TRUE(control.run.says("Maximum number of vertices in a single building: 33"));
}

TEST(DamagesControl, TheFirstOfTwoLimitsInALineIsSet)
{
    ControlRun control("Maximum Results, Maximum Building == 3\n" + kPlainControl);
    control.run.start();
    EXPECT_TRUE(control.run.says("Maximum number of buildings: 3"));
    EXPECT_TRUE(control.run.says("Maximum number of results grids: 25"));
}

TEST(DamagesControl, ALimitThatIsNoIntegerEndsTheRun)
{
    const std::string message =
        "ERROR - Extracting maximum arrays size as parameter on following line in damages file:";
    expectEnd("  Maximum Buildings == many # so it is\n", {message, "Maximum Buildings == many"});
    expectEnd("Maximum Buildings\n", {message, "Maximum Buildings"});
    expectEnd("Maximum Results == 2.5\n", {message, "Maximum Results == 2.5"});
    expectEnd("Maximum Vertex == 99999999999\n", {message, "Maximum Vertex == 99999999999"});
}

TEST(DamagesControl, HugeLimitsCostNothing)
{
    ControlRun control("Maximum Buildings == 2147483647\nMaximum Vertices == 2147483647\n"
                       "Maximum Damage Curves == 2147483647\nMaximum Point in Curve == 2147483647\n"
                       "Maximum Results == 2147483647\n" +
                       kPlainControl);
    EXPECT_THAT(control.table(), HasSubstr("1200."));
}

TEST(DamagesControl, ALimitMayBeMet)
{
    ControlRun control("Maximum Buildings == 1\nMaximum Damage Curves == 1\nMaximum Point in Curve == 2\n"
                       "Maximum Results == 1\n" +
                       kPlainControl);
    EXPECT_THAT(control.table(), HasSubstr("1200."));
}

TEST(DamagesControl, MoreCurvesThanTheLimitEndTheRun)
{
    expectEnd("Maximum Damage Curve == 1\n" + kCurve + kCurve,
              {"Debug - dmg_curve_%ncurve: 2", "Debug - i: 2", "ERROR - Number of damage curves exceeds maximum: 1",
               "   This can be specified with Maximum Curve == 1 in the .dmg file."});
    expectEnd("Maximum Damage Curve == -1\n" + kCurve,
              {"ERROR - Number of damage curves exceeds maximum: -1",
               "   This can be specified with Maximum Curve == -1 in the .dmg file."});
}

TEST(DamagesControl, MoreResultsThanTheLimitEndTheRun)
{
    std::string many;
    for (int i = 0; i < 26; ++i) {
        many += kGrid;
    }
    expectEnd(many, {"ERROR - Number of damages results files exceeds maximum: 25",
                     "   This can be specified with Maximum Results == 25 in the .dmg file."});
}

TEST(DamagesControl, MoreLayersThan2000EndTheRun)
{
    std::string control;
    for (int i = 0; i < 2001; ++i) {
        control += kLayer;
    }
    expectEnd(control,
              {"Debug - nGISF: 2001", "Debug - k: 2001", "ERROR - Number of building polygons exceeds maximum:2000"});
}

TEST(DamagesControl, MoreBuildingsThanTheLimitEndTheRun)
{
    ToolRun run("-damages c.dmg");
    giveDamageFiles(run, kPoint + kPoint, kRecord + kRecord);
    run.give("c.dmg", "Maximum Buildings == 1\n" + kPlainControl);
    run.start();
    EXPECT_CONSOLE_HOLDS(run, errorEnd("Building 1 is a point.", "ERROR - Number of buildings exceeds maximum: 1",
                                       "   This can be specified with Maximum Buildings == 1 in the .dmg file."));
    EXPECT_NO_OTHER_FILES(run);
}

// --- Commands --------------------------------------------------------------------------------------------------------

TEST(DamagesControl, UnknownCommandsCommentsAndBareSeparatorsArePassedOver)
{
    ControlRun control("# a comment\n\n== nothing\nWrite everything == now\nRead me\n" + kPlainControl + "! the end");
    EXPECT_THAT(control.table(), HasSubstr("1200."));
}

TEST(DamagesControl, LinesMayEndInLfOrCrLf)
{
    ControlRun control("Read GIS Building == h.mif\r\nRead Curve House == house.csv\nRead Result % 1 == wl.asc");
    EXPECT_THAT(control.table(), HasSubstr("1200."));
}

TEST(DamagesControl, LayersHaveTwoCommands)
{
    ControlRun control("read mi buildings == h.mif\n" + kCurve + kGrid);
    EXPECT_THAT(control.table(), HasSubstr("1200."));
}

TEST(DamagesControl, TheNameOfACurveIsWhatStandsBehindTheCommand)
{
    ControlRun control(kLayer + "READ curve Residential == house.csv\n" + kGrid);
    control.run.give("h.mid", "\"RESIDENTIAL\",\"A\",0,1\n");
    EXPECT_THAT(control.table(), HasSubstr("\"Residential\",\"A\",0.,1.,1200.,0."));
    EXPECT_TRUE(control.run.says("Found new damages curve: Residential"));
}

TEST(DamagesControl, CurveNamesKeepTheirBlanksAndAreCutAt100Characters)
{
    const std::string name = "Two  storeys, brick " + std::string(80, 'x');
    ControlRun control(kLayer + "Read Curve " + name + "yz == house.csv\n" + kGrid);
    control.run.give("h.mid", "\"two  storeys, brick " + std::string(80, 'X') + "\",\"A\",0,1\n");
    EXPECT_THAT(control.table(), HasSubstr("\r\n\"" + name + "\",\"A\",0.,1.,1200.,0."));
    EXPECT_TRUE(control.run.says("Found new damages curve: " + name));
}

TEST(DamagesControl, TheFirstOfTwoCurvesOfANameIsTaken)
{
    ControlRun control(kLayer + "Read Curve house == other.csv\n" + kCurve + kGrid);
    control.run.give("other.csv", "Depth,Damage\n0,7\n1,7\n");
    EXPECT_THAT(control.table(), HasSubstr("\"house\",\"A\",0.,1.,7.,0."));
}

TEST(DamagesControl, ALineWithTheWordsOfTwoCommandsIsTheFirst)
{
    // A curve named "Read Result".
    ControlRun control(kLayer + "Read Curve Read Result == house.csv\n" + kGrid);
    control.run.give("h.mid", "\"read result\",\"A\",0,1\n");
    EXPECT_THAT(control.table(), HasSubstr("\"Read Result\",\"A\",0.,1.,1200.,0."));
}

TEST(DamagesControl, AFractionAndAPercentageMeanTheSame)
{
    for (const char* result :
         {"Read Result 0.01", "Read Result % 1", "Read Result %1", "READ RESULT 1e-2", "read result% 1"}) {
        ControlRun control(kLayer + kCurve + result + " == wl.asc\n");
        EXPECT_THAT(control.table(), HasSubstr(",Damages 1.000 AEP (%),")) << result;
    }
}

TEST(DamagesControl, AProbabilityThatCannotBeReadEndsTheRun)
{
    const std::string message = "ERROR - Reading following line in classes file:";
    // What stands from the 14th column on is "%".
    expectEnd("Read Result 1% == wl.asc\n", {message, "Read Result 1% == wl.asc"});
    expectEnd("Read Result == wl.asc\n", {message, "Read Result == wl.asc"});
    expectEnd("Read Result rare == wl.asc\n", {message, "Read Result rare == wl.asc"});
    expectEnd("Read Result %", {message, "Read Result %"});
    expectEnd("Read Results 0.01 == wl.asc\n", {message, "Read Results 0.01 == wl.asc"});
}

TEST(DamagesControl, TheInspectionMethodIsMaxUnlessItIsAvg)
{
    // A polygon about the cells (3, 3) and (3, 4) with the levels 33 and 34.
    for (const auto& [method, damage] : std::vector<std::pair<std::string, std::string>>{
             {"", "3400."},
             {"Region Inspection Method == Max\n", "3400."},
             {"Region Inspection Method == \"MAX\"\n", "3400."},
             {"region inspection method ==avg\n", "3350."},
             {"Region Inspection Method == Avg\nRegion Inspection Method == max\n", "3400."},
         }) {
        ControlRun control(method + kPlainControl);
        control.run.give("h.mif", buildingsMif(boxMif(2.5, 2.5, 4.5, 3.5)));
        EXPECT_THAT(control.table(), HasSubstr("\"House\",\"A\",0.,1.," + damage + ",0.")) << method;
    }
}

TEST(DamagesControl, AnotherInspectionMethodEndsTheRun)
{
    expectEnd("Region Inspection Method == Mean\n",
              {"ERROR - Unexpected Region Inspection Method use \"Max\" or \"Avg\""});
    expectEnd("Region Inspection Method\n", {"ERROR - Unexpected Region Inspection Method use \"Max\" or \"Avg\""});
}

TEST(DamagesControl, AnEmptyFileEndsWhereTheLayerIsWritten)
{
    ControlRun control("");
    control.run.start();
    EXPECT_CONSOLE_HOLDS(control.run,
                         {"Finished Read Damages File.", "Debug - dmg_curve_%ncurve: 0", "Debug - dmg_res_%nRes: 0",
                          "Allocating memory for GIS data...", "   Done",
                          "Total number of building GIS files to read: 0", "Total number of grid files to read: 0"});
    EXPECT_CONSOLE_HOLDS(control.run, {"Output GIS File: _Damages", "Output CSV File: _Damages.csv",
                                       "Writing building damages data to GIS...", "Opening GIS Layer: _Damages"});
}

// --- The projection --------------------------------------------------------------------------------------------------

TEST(DamagesControl, OnlyTheFirstLayerGivesTheProjection)
{
    ControlRun control(kLayer + "Read GIS Building == two.mif\n" + kCurve + kGrid);
    std::string second = buildingsMif(pointMif("3", "1"));
    second.replace(second.find("NonEarth"), 8, "Elsewhere");
    control.run.give("two.mif", second);
    control.run.give("two.mid", "\"House\",\"B\",0,1\n");
    EXPECT_THAT(control.table(), HasSubstr("1200.,0.\r\n\"House\",\"B\",0.,1.,1300.,0.\r\n"));
    EXPECT_THAT(control.run.read("h_Damages.mif"), Not(HasSubstr("Elsewhere")));
    EXPECT_CONSOLE_HOLDS(control.run, {"Debug - nGISF: 2", "Debug - k: 2", "Projection check not yet implemented."});
    EXPECT_CONSOLE_HOLDS(control.run, {"Total number of building GIS files to read: 2", "Reading GIS File: h.mif"});
    EXPECT_CONSOLE_HOLDS(control.run, {"Reading GIS File: two.mif", "Read building data from GIS..."});
    EXPECT_CONSOLE_HOLDS(control.run, {"Building 2 is a point.", " Finished reading building data."});
}

TEST(DamagesControl, ALayerWithoutAProjectionEndsTheRun)
{
    expectEnd("Read GIS Building == none.shp\n",
              {"Getting Projection...", "ERROR - Projection file does not exist in folder: none.prj"});
    expectEnd(
        "Read GIS Building == h.tab\n",
        {"Getting Projection...", "ERROR - Unable to determine gis file type, expecting .mif or .shp. File: h.tab"});
    ControlRun mif(kLayer);
    mif.run.give("h.mif", "Version 300\nData\n");
    mif.run.start();
    EXPECT_CONSOLE_HOLDS(
        mif.run, errorEnd("Using h.mif for setting projection.", "ERROR - Unable to find CoordSys line in h.mif"));
    ControlRun shp("Read GIS Building == h.shp\n");
    shp.run.give("h.prj", "GEOGCS[\"Degrees\"]\n");
    shp.run.start();
    EXPECT_CONSOLE_HOLDS(shp.run, errorEnd("Using h.prj for setting projection.", closedUnit(1002),
                                           "ERROR - Unable to find PROJCS line in h.prj"));
}

TEST(DamagesControl, AProjectionThatCannotBeReadEndsTheRun)
{
    ControlRun control("Read GIS Building == h.shp\n");
    std::filesystem::create_symlink("/proc/self/mem", control.run.folder() / "h.prj");
    control.run.start();
    EXPECT_CONSOLE_HOLDS(control.run, errorEnd("Using h.prj for setting projection.",
                                               "ERROR - Reading following line in projection file:", ""));
}

} // namespace
} // namespace gridforge::test
