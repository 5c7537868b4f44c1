// What ends a network run, and what only warns.
#include "support/consoles.h"
#include "support/network_layers.h"
#include "support/tool_run.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace gridforge::test {
namespace {

using testing::HasSubstr;

// The run ends with these lines and the pause of an error.
void expectEnd(const ToolRun& run, const Lines& message)
{
    EXPECT_EQ(run.status(), 0);
    EXPECT_EQ(run.error(), "");
    EXPECT_CONSOLE_HOLDS(run, errorEnd(message));
    EXPECT_FALSE(run.reachedEnd());
}

void runNbcFile(ToolRun& run, const std::string& text)
{
    run.give("net.nbc", text);
    run.start();
}

const std::string kOneSection = "Line 4 5 8 5\n";
const std::string kOneRecord = "\"a\",-1,\"T\",\"T\",\"\",\"\",0\n";

TEST(NbcMessages, MoreThanOneControlFile)
{
    ToolRun run("-b -nbc net.nbc other.asc");
    run.give("other.asc", "");
    runNbcFile(run, "");
    expectEnd(run, {"Processing .nbc File... ", "ERROR - Only one .nbc file can be specified."});
}

TEST(NbcMessages, AnEmptyControlFileMakesNothing)
{
    ToolRun run("-b -nbc net.nbc");
    runNbcFile(run, "");
    EXPECT_CONSOLE_HOLDS(run, {"Writing 0, 1d_xs files.", "Finished writing 1d_xs files.",
                               "Allocating memory for storing 1d_nwk data..."});
    EXPECT_CONSOLE_HOLDS(run, {"Writing 0 1d_nwk files.", "Finished writing 1d_nwk file.", kFinished});
    EXPECT_NO_OTHER_FILES(run);
}

TEST(NbcMessages, SetXsBeforeAnySection)
{
    for (const std::string command : {"Set XS dx == 2", "Set XS Mat == 2", "Set XS Z == 2"}) {
        ToolRun run("-b -nbc net.nbc");
        giveLayer(run, "1d_cut_a", kCutColumns, kOneSection, kOneRecord);
        runNbcFile(run, command + "\nRead GIS XS == 1d_cut_a.mif\n");
        expectEnd(run, {openedInput("net.nbc"), openedUnit(1001),
                        "ERROR - Set XS used before any cross-sections have been read."});
    }
}

TEST(NbcMessages, NumbersThatCannotBeRead)
{
    for (const std::string command : {"Set XS dx == two", "set xs Mat ==", "Set XS Z == 'a'",
                                      "FLC per Unit Length == x", "Set XS Buffer Distance == 1..2"}) {
        ToolRun run("-b -nbc net.nbc");
        giveLayer(run, "1d_cut_a", kCutColumns, kOneSection, kOneRecord);
        runNbcFile(run, "Read GIS XS == 1d_cut_a.mif\n  " + command + " ! note\n");
        expectEnd(run, {"ERROR - Reading following line in .nbc file:", command});
    }
}

TEST(NbcMessages, MoreFlcFilesThanTheLimit)
{
    std::string text;
    for (int i = 0; i < 2000; ++i) {
        text += "Read GIS FLC == flc.mif\n";
    }
    {
        ToolRun run("-b -nbc net.nbc");
        giveLayer(run, "flc", {"FLC Float"}, "", "");
        runNbcFile(run, text);
        EXPECT_TRUE(run.reachedEnd());
    }
    ToolRun run("-b -nbc net.nbc");
    runNbcFile(run, text + "Read MI FLC == flc.mif\n");
    expectEnd(run, {"ERROR - More than 2000 FLC files specified."});
}

// --- Branches --------------------------------------------------------------------------------------------------------

void runBranches(ToolRun& run, const std::string& objects, const std::string& records,
                 const std::vector<std::string>& columns = kBranchColumns)
{
    giveLayer(run, "1d_br_a", columns, objects, records);
    runNbcFile(run, "Read GIS Branch == 1d_br_a.mif\n");
}

TEST(NbcMessages, CombinedPolylinesAreRefused)
{
    const std::string parts = "Pline Multiple 2\n  2\n0 0\n1 1\n  2\n2 2\n3 3\n";
    {
        ToolRun run("-b -nbc net.nbc");
        runBranches(run, parts, "\"a\",1,\"T\",0\n");
        expectEnd(run, {"Searching for Lines and Polylines...",
                        "ERROR - Combined polylines not yet supported.  Please disaggregate."});
    }
    ToolRun run("-b -nbc net.nbc");
    giveLayer(run, "1d_cut_a", kCutColumns, parts, kOneRecord);
    runNbcFile(run, "Read GIS XS == 1d_cut_a.mif\n");
    expectEnd(run, {"Searching for Lines and Polylines...",
                    "ERROR - Combined polylines not yet supported.  Please disaggregate."});
}

TEST(NbcMessages, BranchRecordsThatCannotBeRead)
{
    for (const std::string record : {"\"a\",rough,\"T\",0", "\"a\",1,\"T\"", "\"a\",1,\"T\",\"0.1\""}) {
        ToolRun run("-b -nbc net.nbc");
        runBranches(run, "Line 0 0 1 1\n", record + "\n");
        expectEnd(run, {"ERROR - Extracting attribute data for GIS object.  Data: " + record});
    }
    ToolRun run("-b -nbc net.nbc");
    runBranches(run, "Line 0 0 1 1\n", "\"a\",1,\"T\",0\n", kTypedColumns);
    expectEnd(run, {"ERROR - Extracting attribute data for GIS object.  Data: \"a\",1,\"T\",0"});
}

TEST(NbcMessages, EmptyBranchValuesAreBlankOr0)
{
    ToolRun run("-b -nbc net.nbc");
    runBranches(run, "Line 0 0 1 1\n", ",,,,\"\"\n", kTypedColumns);
    EXPECT_CONSOLE_HOLDS(
        run, {"WARNING - Branch Roughness less than or equal to 0 setting to 1.", "Polyline 1 with name \"\""});
    EXPECT_EQ(run.read("1d_nwk_a.mid"), nwkRecord("", "S", "T", "1.000", "0.000"));
}

TEST(NbcMessages, ACommaAtTheEndOfABranchRecordHoldsAnEmptyValue)
{
    {
        ToolRun run("-b -nbc net.nbc");
        runBranches(run, "Line 0 0 1 1\n", "\"a\",0.5,\"T\",\n");
        EXPECT_EQ(run.read("1d_nwk_a.mid"), nwkRecord("a", "S", "T", "0.500", "0.000"));
    }
    {
        ToolRun run("-b -nbc net.nbc");
        runBranches(run, "Line 0 0 1 1\n", "\"a\",0.5,\"T\",0.25,\n", kTypedColumns);
        EXPECT_EQ(run.read("1d_nwk_a.mid"), nwkRecord("a", "S", "T", "0.500", "0.250"));
    }
    ToolRun run("-b -nbc net.nbc");
    runBranches(run, "Line 0 0 1 1\n", "\n");
    expectEnd(run, {"ERROR - Extracting attribute data for GIS object.  Data: "});
}

std::string repeated(const std::string& text, int times)
{
    std::string all;
    for (int i = 0; i < times; ++i) {
        all += text;
    }
    return all;
}

TEST(NbcMessages, MoreBranchesThanTheLimit)
{
    ToolRun run("-b -nbc net.nbc");
    runBranches(run, repeated("Line 0 0 1 1\n", 2001), repeated("\"a\",1,\"T\",0\n", 2000) + "\"a\",0,\"T\",0\n");
    expectEnd(run, {"Polyline 2000 with name \"a\"",
                    "ERROR - More than the allowed number of branches.  Maximmum branches: 2000"});
}

TEST(NbcMessages, MoreConnectorsThanTheLimit)
{
    ToolRun run("-b -nbc net.nbc");
    runBranches(run, repeated("Line 0 0 1 1\n", 2001), repeated("\"x\",1,\"T\",0\n", 2001));
    expectEnd(run, {"Polyline 2000 is an \"x\" connector.",
                    "ERROR - More than the allowed number of x connectors.  Maximmum: 2000"});
}

std::string zigzag(int vertices)
{
    std::vector<double> xy;
    for (int i = 0; i < vertices; ++i) {
        xy.push_back(i);
        xy.push_back(i % 2);
    }
    return pline(xy);
}

TEST(NbcMessages, PolylinesOfMoreVerticesThanTheLimit)
{
    {
        ToolRun run("-b -nbc net.nbc");
        runBranches(run, zigzag(10000) + zigzag(100) + zigzag(101),
                    "\"a\",1,\"T\",0\n\"x\",1,\"T\",0\n\"x\",1,\"T\",0\n");
        expectEnd(run, {"Polyline 1 with name \"a\"", "Polyline 1 is an \"x\" connector.",
                        "ERROR - Number of vertices in x connector exceeds maximum: 100"});
    }
    {
        ToolRun run("-b -nbc net.nbc");
        runBranches(run, zigzag(10001), "\"a\",1,\"T\",0\n");
        expectEnd(run, {"ERROR - Number of vertices in polyline exceeds maximum: 10000"});
    }
    ToolRun run("-b -nbc net.nbc");
    giveLayer(run, "1d_cut_a", kCutColumns, zigzag(10001), kOneRecord);
    runNbcFile(run, "Read GIS XS == 1d_cut_a.mif\n");
    expectEnd(run, {"ERROR - Number of vertices in polyline exceeds maximum: 10000"});
}

TEST(NbcMessages, MorePointsThanTheLimit)
{
    for (const std::string spacing : {"0.0003", "0"}) {
        ToolRun run("-b -nbc net.nbc");
        giveLayer(run, "1d_cut_a", kCutColumns, kOneSection, "\"a\",0,\"T\",\"T\",\"\",\"\",0\n");
        runNbcFile(run, "Read GIS XS == 1d_cut_a.mif\nSet XS dx == " + spacing + "\n");
        expectEnd(run, {"Inserting additional vertices along sections...",
                        "ERROR - Number of vertices in polyline exceeds maximum: 10000"});
    }
}

TEST(NbcMessages, ABranchLongerThanItsIdsCanTell)
{
    ToolRun run("-b -nbc net.nbc");
    giveLayer(run, "1d_br_a", kBranchColumns, "Line 0 10 200000 10\n", "\"a\",1,\"T\",0\n");
    giveLayer(run, "1d_cut_a", kCutColumns, "Line 99997 5 99997 15\nLine 99999 5 99999 15\nLine 50000 5 50000 15\n",
              repeated(kOneRecord, 3));
    runNbcFile(run, "Read GIS Branch == 1d_br_a.mif\nRead GIS XS == 1d_cut_a.mif\n");
    expectEnd(run, {"Splitting branch data into network...", "ERROR  Should not be here, determining next chainage."});
}

// --- Sections --------------------------------------------------------------------------------------------------------

TEST(NbcMessages, SectionRecordsThatCannotBeRead)
{
    {
        ToolRun run("-b -nbc net.nbc");
        giveLayer(run, "1d_cut_a", kCutColumns, kOneSection, "\"a\",-1,\"T\",\"T\",\"\",\"\"\n");
        runNbcFile(run, "Read GIS XS == 1d_cut_a.mif\n");
        expectEnd(run, {"ERROR - Reading following line in 1d_xs file:", "\"a\",-1,\"T\",\"T\",\"\",\"\""});
    }
    ToolRun run("-b -nbc net.nbc");
    giveLayer(run, "1d_tab_a", kTabColumns, kOneSection, "\"a\",\"XZ\",,,,,,,,0,high,0\n");
    runNbcFile(run, "Read GIS XS == 1d_tab_a.mif\n");
    expectEnd(run, {"ERROR - Reading following line in 1d_xs file:", "\"a\",\"XZ\",,,,,,,,0,high,0"});
}

TEST(NbcMessages, ACommaAtTheEndOfASectionRecordHoldsAnEmptyValue)
{
    {
        ToolRun run("-b -nbc net.nbc");
        giveLayer(run, "1d_cut_a", kCutColumns, kOneSection, "\"a\",-1,\"T\",\"T\",\"\",\"\",\n");
        runNbcFile(run, "Read GIS XS == 1d_cut_a.mif\n");
        EXPECT_EQ(run.read("1d_xs_a.mid"), xsRecord("a.csv", "", "", "-1.000"));
    }
    {
        ToolRun run("-b -nbc net.nbc");
        giveLayer(run, "1d_tab_a", kTabColumns, kOneSection + kOneSection,
                  "\"a\",\"XZ\",\"R\",,,,,,,0.5,\n\"b\",\"XZ\",,,,,,,,,\n");
        runNbcFile(run, "Read GIS XS == 1d_tab_a.mif\n");
        EXPECT_EQ(run.read("1d_xs_a.mid"),
                  xsRecord("a.csv", "XZ", "R", "0.500") + xsRecord("b.csv", "XZ", "", "0.000"));
    }
    for (const std::string record : {"", "\"a\",-1,\"T\",\"T\",\"\","}) {
        ToolRun run("-b -nbc net.nbc");
        giveLayer(run, "1d_cut_a", kCutColumns, kOneSection, record + "\n");
        runNbcFile(run, "Read GIS XS == 1d_cut_a.mif\n");
        expectEnd(run, {"ERROR - Reading following line in 1d_xs file:", record});
    }
}

TEST(NbcMessages, MoreSectionsThanTheLimit)
{
    ToolRun run("-b -nbc net.nbc");
    giveLayer(run, "1d_cut_a", kCutColumns, repeated(kOneSection, 10001), repeated(kOneRecord, 10000) + "unread\n");
    runNbcFile(run, "Read GIS XS == 1d_cut_a.mif\n");
    expectEnd(run, {"ERROR - More than the allowed number of sections of: 10000"});
}

TEST(NbcMessages, SectionsWithoutPointsCannotBeSampled)
{
    // The second layer comes behind "Set XS dx".
    ToolRun run("-b -nbc net.nbc");
    giveLayer(run, "1d_cut_a", kCutColumns, kOneSection, kOneRecord);
    giveLayer(run, "1d_cut_b", kCutColumns, kOneSection, "\"b\",-1,\"T\",\"T\",\"\",\"\",0\n");
    run.give("dem.asc", ascGrid(sectionTerrain(9, 9)));
    runNbcFile(run,
               "Read GIS XS == 1d_cut_a.mif\nSet XS dx == 1\nRead GIS XS == 1d_cut_b.mif\nRead Grid Z == dem.asc\n");
    expectEnd(run, {"Finished reading grid.", "Extracting sections from grid...",
                    "ERROR - Vertices have not been defined use \"Set XS dx\" before any read grid commands."});
}

TEST(NbcMessages, SectionsThatAreNotExtractedNeedNoPoints)
{
    ToolRun run("-b -nbc net.nbc");
    giveLayer(run, "1d_cut_a", kCutColumns, kOneSection + kOneSection,
              "\"\",-1,\"T\",\"N\",\"\",\"\",0\n\"\",-1,\"T\",\"f\",\"\",\"\",0\n");
    run.give("dem.asc", ascGrid(sectionTerrain(9, 9)));
    runNbcFile(run, "Read GIS XS == 1d_cut_a.mif\nRead Grid Z == dem.asc\n");
    EXPECT_TRUE(run.says("Updated 0 vertices."));
    EXPECT_EQ(run.read("1d_xs_a.mid"), "");
}

TEST(NbcMessages, SectionsWithNeitherNameNorBranchAreAllTold)
{
    ToolRun run("-b -nbc net.nbc");
    const std::string nameless = "\"\",-1,\"T\",\"T\",\"\",\"\",0\n";
    giveLayer(run, "1d_cut_a", kCutColumns, repeated(kOneSection, 4),
              nameless + kOneRecord + nameless + "\"\",-1,\"T\",\"F\",\"\",\"\",0\n");
    runNbcFile(run, "Read GIS XS == 1d_cut_a.mif\n");
    expectEnd(run, {"ERROR - Cross-section must either have a source specified or cross a branch.",
                    "    Cross-section number  = 1",
                    "ERROR - Cross-section must either have a source specified or cross a branch.",
                    "    Cross-section number  = 3", "ERRORs found - See above for further information."});
}

TEST(NbcMessages, TheFirstLayerWithNamelessSectionsEndsTheRun)
{
    ToolRun run("-b -nbc net.nbc");
    const std::string nameless = "\"\",-1,\"T\",\"T\",\"\",\"\",0\n";
    giveLayer(run, "1d_cut_a", kCutColumns, kOneSection, kOneRecord);
    giveLayer(run, "1d_cut_b", kCutColumns, kOneSection, nameless);
    giveLayer(run, "1d_cut_c", kCutColumns, kOneSection, nameless);
    runNbcFile(run, "Read GIS XS == 1d_cut_a.mif\nRead GIS XS == 1d_cut_b.mif\nRead GIS XS == 1d_cut_c.mif\n");
    // Numbers run on from layer to layer.
    expectEnd(run, {"ERROR - Cross-section must either have a source specified or cross a branch.",
                    "    Cross-section number  = 2", "ERRORs found - See above for further information."});
    EXPECT_FALSE(run.says("    Cross-section number  = 3"));
    EXPECT_EQ(run.read("1d_xs_a.mid"), xsRecord("a.csv", "", "", "-1.000"));
    EXPECT_FALSE(run.has("1d_xs_c.mif"));
}

TEST(NbcMessages, AGridThatMemoryCannotHold)
{
    ToolRun run("-b -nbc net.nbc");
    giveLayer(run, "1d_cut_a", kCutColumns, kOneSection, kOneRecord);
    run.give("dem.asc",
             "ncols 2000000000\nnrows 2000000000\nxllcorner 0\nyllcorner 0\ncellsize 1\nNODATA_value -9999\n1\n");
    runNbcFile(run, "Read GIS XS == 1d_cut_a.mif\nSet XS dx == 1\nRead Grid Z == dem.asc\n");
    expectEnd(run, {"ERROR - Could not allocate enough memory (RAM)."});
}

TEST(NbcMessages, OddVerticesDoNoHarm)
{
    // One vertex, places that are none, and places far away: nothing meets, points stay without elevations.
    ToolRun run("-b -nbc net.nbc");
    giveLayer(run, "1d_br_a", kBranchColumns, "Pline 1\n5 5\nPline 3\nnan 5\n5 inf\n-1e300 1e300\nPline 2\n5 5\n5 5\n",
              "\"one\",1,\"T\",0\n\"odd\",1,\"T\",0\n\"no length\",1,\"T\",0\n");
    giveLayer(run, "1d_cut_a", kCutColumns,
              "Pline 1\n5 5\nPline 2\nnan nan\n5 nan\nPline 2\n1e300 5\n-1e300 5\nLine inf 0 -inf 0\n",
              "\"a\",-1,\"T\",\"T\",\"\",\"Perp\",1e30\n\"b\",-1,\"T\",\"T\",\"\",\"Buffer\",1e30\n"
              "\"c\",-1,\"T\",\"T\",\"\",\"Perp\",nan\n\"d\",-1,\"T\",\"T\",\"\",\"Buffer\",-3\n");
    run.give("dem.asc", ascGrid(sectionTerrain(9, 9)));
    runNbcFile(run, "Read GIS Branch == 1d_br_a.mif\nRead GIS XS == 1d_cut_a.mif\nSet XS dx == 1\n"
                    "Read Grid Z == dem.asc\nBranch Bendiness == On\n");
    EXPECT_EQ(run.status(), 0);
    EXPECT_EQ(run.error(), "");
    EXPECT_TRUE(run.reachedEnd()) << run.console();
    // Along the one point the steps of Perp go north, over the whole grid: rows 1 to 9 of column 5, 5.05 in the mean.
    EXPECT_EQ(run.read("a.csv"), "\"Chainage\",\"Z\"\r\n0.000,5.050\r\n");
    EXPECT_THAT(run.read("b.csv"), HasSubstr("0.000,-9999.000\r\nNaN,-9999.000\r\n"));
    EXPECT_THAT(run.read("c.csv"), HasSubstr("0.000,-9999.000\r\nInfinity,-9999.000\r\n"));
    EXPECT_TRUE(run.has("d.csv"));
    EXPECT_THAT(run.read("1d_nwk_a.mid"), HasSubstr("\"no length\""));
}

// --- -xs -------------------------------------------------------------------------------------------------------------

TEST(XsMessages, ASectionWithNeitherNameNorBranchEndsTheRunAtOnce)
{
    ToolRun run("-b -xs 1d_cut_a.mif dem.asc");
    const std::string nameless = "\"\",-1,\"T\",\"T\",\"\",\"\",0\n";
    giveLayer(run, "1d_cut_a", kCutColumns, repeated(kOneSection, 3), kOneRecord + nameless + nameless);
    run.give("dem.asc", ascGrid(sectionTerrain(9, 9)));
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"ERROR - Cross-section must either have a source specified or cross a branch.",
                               "Cross-section number  = 2"});
    EXPECT_FALSE(run.says("Cross-section number  = 3"));
    EXPECT_FALSE(run.says("Finished writing 1d_xs file."));
}

TEST(XsMessages, VectorMaterialsAreRefused)
{
    ToolRun run("-b -xs 1d_cut_a.mif -mat land.MIF dem.asc");
    giveLayer(run, "1d_cut_a", kCutColumns, kOneSection, kOneRecord);
    run.give("dem.asc", ascGrid(sectionTerrain(9, 9)));
    run.start();
    expectEnd(run, {"ERROR - Vector materials not yet supported..."});
}

TEST(XsMessages, AnOddExtensionOfMaterialsIsTakenForText)
{
    ToolRun run("-b -xs 1d_cut_a.mif -mat land.txt dem.asc");
    giveLayer(run, "1d_cut_a", kCutColumns, kOneSection, kOneRecord);
    run.give("dem.asc", ascGrid(sectionTerrain(9, 9)));
    run.give("land.txt", ascGrid({{7}}, {.xll = 3, .yll = 4}));
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"WARNING - Unable to determine extension of file: land.txt", "   Assuming .asc grid.",
                               "Loading materials grid data..."});
}

TEST(XsMessages, MaterialsWithoutXsOnlyPause)
{
    ToolRun run("-b -nbc net.nbc -mat land.asc");
    runNbcFile(run, "");
    EXPECT_CONSOLE_HOLDS(run, {"ERROR - \"-mat\" option only used with \"xs\". Flag ignored.", kEnter});
    EXPECT_TRUE(run.reachedEnd());
}

TEST(XsMessages, ADefaultThatIsNoNumber)
{
    ToolRun run("-b -xs 1d_cut_a.mif -default_n dem.asc");
    run.start();
    EXPECT_THAT(run.console(), HasSubstr("ERROR - Reading row"));
}

TEST(XsMessages, WithoutAGridThereIsNoInput)
{
    ToolRun run("-b -xs 1d_cut_a.mif");
    run.start();
    EXPECT_CONSOLE_HOLDS(run, errorEnd(" ERROR - No valid files found."));
}

} // namespace
} // namespace gridforge::test
