// Buildings in runs: what is read of layers, and the level that points and polygons get on a grid.
#include "support/consoles.h"
#include "support/damages_files.h"
#include "support/shp_bytes.h"
#include "support/tool_run.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace gridforge::test {
namespace {

using testing::HasSubstr;

const std::string kWarning = "WARNING - Polygon partially or fully outside of results grid.";
const std::string kOutside = "WARNING - Building is outside grid area.";

// Records of as many buildings, named by number, floor level 0.
std::string records(int count)
{
    std::string text;
    for (int i = 1; i <= count; ++i) {
        text += "\"House\"," + std::to_string(i) + ",0,1\n";
    }
    return text;
}

struct BuildingRun {
    BuildingRun(const std::string& objects, const std::string& recordText, const std::string& settings = "")
        : run("-b -damages c.dmg")
    {
        giveDamageFiles(run, objects, recordText);
        run.give("c.dmg", settings + kPlainControl);
        // The damage is 100 times the level; null cells show as 5.
        run.give("house.csv", "h\n0.05,5\n100,10000\n");
    }
    // The damages of the buildings.
    std::vector<std::string> damages()
    {
        run.start();
        std::vector<std::string> found;
        const std::string table = run.read("h_Damages.csv");
        for (std::size_t line = table.find('\n') + 1; line < table.size(); line = table.find('\n', line) + 1) {
            const std::size_t end = table.find(",0.\r\n", line);
            const std::size_t start = table.rfind(',', end - 1) + 1;
            found.push_back(table.substr(start, end - start));
        }
        return found;
    }
    void expectEnd(const std::vector<std::string>& message)
    {
        run.start();
        EXPECT_CONSOLE_HOLDS(run, errorEnd(message));
        EXPECT_NO_OTHER_FILES(run);
    }
    ToolRun run;
};

using Damages = std::vector<std::string>;
const std::string kDry = "5.";

// --- Points ----------------------------------------------------------------------------------------------------------

TEST(DamagesBuildings, APointHasTheCellWhoseNorthEastCornerIsNearest)
{
    BuildingRun run(pointMif("3.49", "2.51") + pointMif("3.5", "2.5") + pointMif("0.5", "0.5") + pointMif("8.4", "6.4"),
                    records(4));
    // Columns 3, 4, 1 and 8; rows 3, 3, 1 and 6.
    EXPECT_EQ(run.damages(), (Damages{"3300.", "3400.", "1100.", "6800."}));
    EXPECT_FALSE(run.run.says(kOutside));
}

TEST(DamagesBuildings, APointOffTheGridIsDry)
{
    BuildingRun run(pointMif("0.49", "2") + pointMif("8.5", "2") + pointMif("2", "0.49") + pointMif("2", "6.5") +
                        pointMif("-1e300", "1e300") + pointMif("NaN", "2"),
                    records(6));
    EXPECT_EQ(run.damages(), Damages(6, kDry));
    EXPECT_CONSOLE_HOLDS(
        run.run, {"   Done.", kOutside, kOutside, kOutside, kOutside, kOutside, kOutside, "Deallocating grid memory."});
}

TEST(DamagesBuildings, APointInANullCellIsDry)
{
    BuildingRun run(pointMif("2", "1") + pointMif("1", "1"), "\"House\",1,-500,3\n\"House\",2,0,1\n");
    run.run.give("wl.asc", ascGrid({{11, -77}}, {.null = -77}));
    EXPECT_EQ(run.damages(), (Damages{"15.", "1100."})); // 5 x 3
    EXPECT_FALSE(run.run.says(kOutside));
}

TEST(DamagesBuildings, CoordinatesCountFromTheCornerOfTheGridInCells)
{
    BuildingRun run(pointMif("106.9", "203.1"), records(1));
    run.run.give("wl.asc",
                 ascGrid({{31, 32, 33}, {21, 22, 23}, {11, 12, 13}}, {.xll = 100, .yll = 200, .cellsize = 2.5}));
    EXPECT_EQ(run.damages(), (Damages{"1300."})); // 6.9 / 2.5 = 2.76, 3.1 / 2.5 = 1.24
}

// --- Polygons --------------------------------------------------------------------------------------------------------

const std::string kAverage = "Region Inspection Method == Avg\n";

TEST(DamagesBuildings, APolygonHasTheHighestOrTheMeanLevelInIt)
{
    // North-east corners at columns 4 to 6, rows 3 and 4; then the single one of column 4, row 3.
    const std::string objects = boxMif(3.5, 2.5, 6.5, 4.5) + boxMif(3.9, 2.9, 4.1, 3.1);
    EXPECT_EQ(BuildingRun(objects, records(2)).damages(), (Damages{"4600.", "3400."}));
    EXPECT_EQ(BuildingRun(objects, records(2), kAverage).damages(), (Damages{"4000.", "3400."}));
}

TEST(DamagesBuildings, NullCellsDoNotCountForAPolygon)
{
    const std::string grid = ascGrid({{-9999, -9999, 10, -9999},
                                      {-9999, -9999, -9999, 30},
                                      {-9999, -9999, -9999, -9999},
                                      {-9999, -9999, -9999, -9999}});
    const std::string objects = boxMif(2.5, 2.5, 4.5, 4.5) + boxMif(2.5, 2.5, 3.5, 3.5);
    BuildingRun highest(objects, records(2));
    highest.run.give("wl.asc", grid);
    EXPECT_EQ(highest.damages(), (Damages{"3000.", kDry}));
    BuildingRun mean(objects, records(2), kAverage);
    mean.run.give("wl.asc", grid);
    EXPECT_EQ(mean.damages(), (Damages{"2000.", kDry}));
}

TEST(DamagesBuildings, APolygonBetweenTheCellsIsDry)
{
    const std::string objects = boxMif(3.2, 2.2, 3.8, 2.8);
    EXPECT_EQ(BuildingRun(objects, records(1)).damages(), (Damages{kDry}));
    EXPECT_EQ(BuildingRun(objects, records(1), kAverage).damages(), (Damages{kDry}));
}

TEST(DamagesBuildings, BeyondTheLastRowAndColumnThereAreNoCells)
{
    // Columns 7 and 8 of 8, rows 5 and 6 of 6; then beyond both.
    const std::string objects = boxMif(6.5, 4.5, 20, 30) + boxMif(8.5, 6.5, 1e9, 1e300);
    EXPECT_EQ(BuildingRun(objects, records(2)).damages(), (Damages{"6800.", kDry}));
    // (57 + 58 + 67 + 68) / 4
    EXPECT_EQ(BuildingRun(objects, records(2), kAverage).damages(), (Damages{"6250.", kDry}));
}

TEST(DamagesBuildings, LevelsOfMinus998AndLessAreDryByTheMaximum)
{
    const std::string objects = boxMif(2.9, 2.9, 3.1, 3.1);
    const auto onLevel = [&](double level, const std::string& settings) {
        BuildingRun run(objects, "\"House\",1,-1010,1\n", settings);
        run.run.give("wl.asc", ascGrid({{0, 0, level}, {0, 0, 0}, {0, 0, 0}}));
        return run.damages().at(0);
    };
    EXPECT_EQ(onLevel(-997.5, ""), "1250.");
    EXPECT_EQ(onLevel(-998, ""), kDry);
    EXPECT_EQ(onLevel(-1000, ""), kDry);
    EXPECT_EQ(onLevel(-1000, kAverage), "1000.");
}

// A window that begins outside of the grid in the south or west: the level of the building before stays.
TEST(DamagesBuildings, APolygonAtTheLowSideHasTheLevelOfTheBuildingBefore)
{
    // The first column of the window is that of the west end less one: 1.5 gives 0, which is outside.
    BuildingRun run(boxMif(1.5, 2.5, 3.5, 4.5) + pointMif("3", "2") + boxMif(1.5, 2.5, 3.5, 4.5) +
                        boxMif(2.5, 1.5, 3.5, 4.5) + boxMif(2.5, 2.5, 3.5, 4.5) + boxMif(-50, -50, -40, -40) +
                        boxMif(100, 100, 101, 101),
                    records(7));
    run.run.type("");
    // Before the first building the level is 0, a depth of 0.
    EXPECT_EQ(run.damages(), (Damages{kDry, "2300.", "2300.", "2300.", "4300.", "4300.", "4300."}));
    EXPECT_CONSOLE_HOLDS(run.run, {"   Done.", kWarning, kEnter, kWarning, kEnter, kWarning, kEnter, kWarning, kEnter,
                                   kWarning, kEnter, "Deallocating grid memory."});
}

TEST(DamagesBuildings, TheLevelStaysFromGridToGridANullOfAnotherGridToo)
{
    ToolRun run("-b -damages c.dmg");
    giveDamageFiles(run, boxMif(0.5, 0.5, 3.5, 4.5) + pointMif("1", "1"), "\"House\",1,0,1\n\"House\",2,0,1\n");
    run.give("c.dmg", "Read GIS Building == h.mif\nRead Curve House == house.csv\nRead Result % 10 == a.asc\n"
                      "Read Result % 5 == b.asc\nRead Result % 1 == c.asc\n");
    run.give("house.csv", "h\n-20,1\n-10,2\n0,3\n100,103\n");
    run.give("a.asc", ascGrid({{40}}));
    run.give("b.asc", ascGrid({{-15}}, {.null = -15}));
    run.give("c.asc", ascGrid({{7}}, {.null = -50}));
    run.start();
    // Polygon: 0 at first, 40 left by the point on grid a, -15 left by it on grid b (whose null it was: on grid c it is a
    // level, with damage 1.5). Point: 40; null, whose depth of -99 has damage 1; 7.
    EXPECT_EQ(run.read("h_Damages.csv").substr(run.read("h_Damages.csv").find('\n') + 1),
              "\"House\",\"1\",0.,1.,3.,43.,1.5,0.\r\n"
              "\"House\",\"2\",0.,1.,43.,1.,10.,0.\r\n");
}

// --- Objects ---------------------------------------------------------------------------------------------------------

TEST(DamagesBuildings, OtherObjectsArePassedOverWithTheirRecords)
{
    BuildingRun run("Line 1 1 2 2\n" + pointMif("3", "2") + "Pline 2\n1 1\n2 2\nNone\n" + pointMif("4", "2") +
                        "Text \"t\"\n1 1 2 2\n",
                    "a,b,c\n\"House\",1,0,1\n\n\"\"\n\"House\",2,0,1\nx\n");
    EXPECT_EQ(run.damages(), (Damages{"2300.", "2400."}));
    const std::string skipped = "WARNING - Object is not a point or region, skipping.";
    EXPECT_CONSOLE_HOLDS(run.run, {skipped, "Building 1 is a point.", skipped, skipped, "Building 2 is a point.",
                                   skipped, " Finished reading building data."});
}

TEST(DamagesBuildings, ARegionOfSeveralPartsEndsTheRun)
{
    BuildingRun run("Region 2\n4\n1 1\n2 1\n2 2\n1 1\n4\n3 3\n4 3\n4 4\n3 3\n", records(1));
    run.expectEnd({"ERROR - Multiple region objects not yet supported.  Please disaggregate / remove holes."});
}

TEST(DamagesBuildings, ARegionOfTooManyVerticesEndsTheRun)
{
    const std::string box = boxMif(2.5, 2.5, 3.5, 4.5); // 6 with the closing vertex and the slot behind it
    EXPECT_EQ(BuildingRun(box, records(1), "Maximum Vertices == 6\n").damages(), (Damages{"4300."}));
    BuildingRun run(box, records(1), "Maximum Vertices == 5\n");
    run.expectEnd({"ERROR - Region objects contains too many vertices. Maximum vertices in a single region:5",
                   "   This can be specified with Maximum Vertices == 5 in the .dmg file."});
}

TEST(DamagesBuildings, ARegionOfAMillionVerticesEndsTheRun)
{
    BuildingRun run("Region 1\n1000000\n1 1\n", records(1), "Maximum Vertices == 2147483647\n");
    run.run.start();
    EXPECT_THAT(run.run.console(), HasSubstr("ERROR 0310 - Exceeded number of allowable nodes"));
}

void giveBuildingShapefile(ToolRun& run, const std::string& object, const std::string& values)
{
    giveShapefile(run, "s", 5,
                  {.objects = {object},
                   .columns = {{"TYPE", 'C', 6}, {"ID", 'C', 3}, {"FFL", 'N', 6}, {"M", 'N', 4}},
                   .values = {values}});
}

TEST(DamagesBuildings, RegionsOfShapefilesAreReadAndWritten)
{
    ToolRun run("-b -damages c.dmg");
    giveDamageFiles(run, "", "");
    run.give("c.dmg", "Read GIS Building == s.shp\nRead Curve House == house.csv\nRead Result % 1 == wl.asc\n");
    giveBuildingShapefile(run, partsRecord(5, {0}, {3.5, 2.5, 3.5, 4.5, 6.5, 4.5, 6.5, 2.5, 3.5, 2.5}),
                          "House b1  40.00    ");
    run.start();
    // (46 - 40) x 100; the blank multiplier is none.
    EXPECT_THAT(run.read("s_Damages.csv"), HasSubstr("\r\n\"House\",\"b1\",40.,1.,600.,0.\r\n"));
    EXPECT_TRUE(run.says("Building 1 is a polygon with 6 nodes."));
    const std::string written = run.read("s_Damages_R.shp");
    ASSERT_EQ(written.size(), 100U + 8 + 4 + 32 + 8 + 4 + 5 * 16);
    EXPECT_EQ(written.substr(written.size() - 80), reals({3.5, 2.5, 3.5, 4.5, 6.5, 4.5, 6.5, 2.5, 3.5, 2.5}));
}

TEST(DamagesBuildings, RegionsWithoutVerticesDoNoHarm)
{
    for (const std::string& record : {partsRecord(5, {}, {}), partsRecord(5, {0}, {}), partsRecord(5, {0}, {3, 3})}) {
        ToolRun run("-b -damages c.dmg -out o.mif");
        giveDamageFiles(run, "", "");
        run.give("c.dmg", "Read GIS Building == s.shp\nRead Curve House == house.csv\nRead Result % 1 == wl.asc\n");
        giveBuildingShapefile(run, record, "House b1  40.00   1");
        run.start();
        EXPECT_EQ(run.status(), 0);
        EXPECT_THAT(run.read("o.csv"), HasSubstr("\r\n\"House\",\"b1\",40.,1.,0.,0.\r\n"));
        EXPECT_TRUE(run.has("o.mif") && run.has("o.mid"));
    }
}

// --- Attributes ------------------------------------------------------------------------------------------------------

TEST(DamagesBuildings, AttributesAreFreeForm)
{
    BuildingRun run(pointMif("3", "2") + pointMif("3", "2") + pointMif("3", "2"),
                    "house A 3 2\n'House',\"say \"\"A\"\"\",,1\n\"HOUSE\",,1e1, 1 , more, of it\n");
    run.run.start();
    EXPECT_THAT(run.run.read("h_Damages.csv"), HasSubstr("\r\n\"House\",\"A\",3.,2.,4000.,0.\r\n"
                                                         "\"House\",\"say \"\"A\"\"\",0.,1.,2300.,0.\r\n"
                                                         "\"House\",\"\",10.,1.,1300.,0.\r\n"));
}

TEST(DamagesBuildings, ARecordThatCannotBeReadEndsTheRun)
{
    const std::string message = "ERROR - Extracting attribute data for GIS object.  Data: ";
    for (const char* record : {"\"House\",\"A\",3", "\"House\",\"A\",", "\"House\",\"A\",high,1",
                               "\"House\",\"A\",3,1x", "\"House\",\"A,3,1", "", "\"House\",\"A\",3,\"1\""}) {
        BuildingRun run(pointMif("3", "2"), std::string(record) + "\n");
        run.expectEnd({"Building 1 is a point.", message + record});
    }
}

TEST(DamagesBuildings, ACommaAtTheEndOfARecordLeavesTheMultiplierAt1)
{
    BuildingRun run(pointMif("3", "2") + pointMif("3", "2"), "\"House\",\"A\",3,\n\"House\",\"A\",,\n");
    run.run.start();
    EXPECT_THAT(run.run.read("h_Damages.csv"),
                HasSubstr("\r\n\"House\",\"A\",3.,1.,2000.,0.\r\n\"House\",\"A\",0.,1.,2300.,0.\r\n"));
}

// (23 - 3) x 100 x 2; the quotes of the names do not shift the columns.
TEST(DamagesBuildings, QuotesInNamesAreDoubledInLinesAndSingleInTables)
{
    ToolRun run("-b -damages c.dmg -out d.shp");
    giveDamageFiles(run, pointMif("3", "2"), "\"Old \"\"House\"\"\",\"No. 1, \"\"West\"\"\",3,2\n");
    run.give("c.dmg", "Read GIS Building == h.mif\nRead Curve Old \"House\" == house.csv\nRead Result % 1 == wl.asc\n");
    run.start();
    EXPECT_THAT(run.read("d.csv"), HasSubstr("\r\n\"Old \"\"House\"\"\",\"No. 1, \"\"West\"\"\",3.,2.,4000.,0.\r\n"));
    const auto cell = [](std::string value, std::size_t width, bool isText) {
        value.insert(isText ? value.size() : 0, width - value.size(), ' ');
        return value;
    };
    const std::string record = " " + cell("Old \"House\"", 100, true) + cell("No. 1, \"West\"", 100, true) +
                               cell("3.", 16, false) + cell("2.", 16, false) + cell("4000.", 16, false) +
                               cell("0.", 16, false);
    EXPECT_THAT(tableOf(run.read("d_P.dbf")), testing::Contains(record));

    // And back: the table that was written is read as a layer of buildings.
    ToolRun back("-b -damages c.dmg -out e.mif");
    giveDamageFiles(back, "", "");
    for (const char* extension : {".shp", ".dbf", ".prj"}) {
        back.give(std::string("d") + extension, run.read(std::string("d_P") + extension));
    }
    back.give("d.prj", "PROJCS[\"Town grid\"]\n");
    back.give("c.dmg",
              "Read GIS Building == d.shp\nRead Curve Old \"House\" == house.csv\nRead Result % 1 == wl.asc\n");
    back.start();
    EXPECT_EQ(back.read("e.mid"), "\"Old \"\"House\"\"\",\"No. 1, \"\"West\"\"\",3.,2.,4000.,0.\r\n");
}

TEST(DamagesBuildings, ABuildingWithoutItsCurveEndsTheRun)
{
    BuildingRun run(pointMif("3", "2"), "\"Shop\",\"A\",3,1\n");
    run.expectEnd({"Building 1 is a point.", "ERROR - Unable to find Shop in damage curves."});
}

TEST(DamagesBuildings, CurvesAreFoundWhateverTheCaseAndTheQuotes)
{
    BuildingRun run(pointMif("3", "2") + pointMif("3", "2"), "\"  'HOUSE' \",1,0,1\nhOuSe,2,0,1\n");
    EXPECT_EQ(run.damages(), (Damages{"2300.", "2300."}));
}

TEST(DamagesBuildings, IdentifiersAreCutAt100Characters)
{
    const std::string id(120, 'i');
    BuildingRun run(pointMif("3", "2"), "\"House\",\"" + id + "\",0,1\n");
    run.run.start();
    EXPECT_THAT(run.run.read("h_Damages.csv"), HasSubstr("\"House\",\"" + id.substr(0, 100) + "\",0.,1.,"));
}

} // namespace
} // namespace gridforge::test
