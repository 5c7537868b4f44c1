// Hyetograph files, and what they must have in common.
#include "support/consoles.h"
#include "support/rainfall_files.h"

#include <gtest/gtest.h>
#include <string>

namespace gridforge::test {
namespace {

const std::string kCase = kRainfallGrid + kTwoHyetographs + "RF Interpolation Method == Poly\n";

// `text` takes the place of hyetograph b.
void expectRefusal(const std::string& text, const Lines& message)
{
    ToolRun run("-b -rf rain.rfc");
    giveRainfall(run, kCase);
    run.give("b.csv", text);
    run.start();
    EXPECT_EQ(run.status(), 0);
    EXPECT_CONSOLE_HOLDS(run, joined({message, errorEnd()}));
    EXPECT_NO_OTHER_FILES(run);
}

void expectPass(const std::string& a, const std::string& b)
{
    ToolRun run("-b -rf rain.rfc");
    giveRainfall(run, kCase);
    run.give("a.csv", a);
    run.give("b.csv", b);
    run.start();
    EXPECT_TRUE(run.reachedEnd());
}

std::string lines(int count)
{
    std::string text = "Time,Depth\n";
    for (int i = 1; i <= count; ++i) {
        text += std::to_string(i) + ",1\n";
    }
    return text;
}

TEST(RainfallHyetographCli, NeedsTwoPoints)
{
    const std::string message = "ERROR - Less than 2 points in damages curve.";
    for (const std::string empty : {"", "Time,Depth", "Time,Depth\r\n"}) {
        expectRefusal(empty, {closedUnit(1002), "Number of points in damage curve found: 0", message});
    }
    expectRefusal(lines(1), {closedUnit(1002), "Number of points in damage curve found: 1", message});
}

TEST(RainfallHyetographCli, TakesAHundredPointsUnlessMoreAreAllowed)
{
    expectPass(lines(100), lines(100));
    expectRefusal(lines(101), {openedUnit(1002), "ERROR - Number of data points in hyetogprah exceeds maximum.",
                               "   Please specify with \"Maximum Points in Hyetograph == \""});
    ToolRun run("-b -rf rain.rfc");
    giveRainfall(run, kCase + "Maximum Points in Hyetograph == 101\n");
    run.give("a.csv", lines(101));
    run.give("b.csv", lines(101));
    run.start();
    EXPECT_TRUE(run.says("Number of points in damage curve found: 101"));
    EXPECT_TRUE(run.reachedEnd());
}

TEST(RainfallHyetographCli, RefusesLinesThatCannotBeRead)
{
    const std::string message = "ERROR - Reading following line in rainfall hyetograph:";
    expectRefusal("Time,Depth\n0,1\n0.5\n", {message, "0.5"});
    expectRefusal("Time,Depth\n0,1\nhalf,1\n", {message, "half,1"});
    expectRefusal("Time,Depth\n0,1\n# no comments here\n", {message, "# no comments here"});
    expectRefusal("Time,Depth\n0,1\n\n0.5,1\n", {message, ""});
}

TEST(RainfallHyetographCli, ReadsValuesInFreeForm)
{
    ToolRun run("-b -rf rain.rfc");
    giveRainfall(run, kCase + "Read GIS RF Polygon == areas.mif\n");
    giveRainfallLayer(run, "areas", mifRectangle("90", "190", "140", "230"), "\"b\",1,1\n");
    run.give("b.csv", "Time,Depth\n 0.0\t25e-1 and more\n+5d-1 , ,\n"); // an empty depth is 0
    run.start();
    EXPECT_GRID(run, "rain_t0..asc", {{2.5, 2.5, 2.5}, {2.5, 2.5, 2.5}});
    EXPECT_GRID(run, "rain_t0.5.asc", {{0, 0, 0}, {0, 0, 0}});
}

TEST(RainfallHyetographCli, TimesMustRise)
{
    const std::string message = "ERROR - Time values in rainfall hyetograph not in ascending order.";
    expectRefusal("Time,Depth\n0,1\n0,1\n", {"Number of points in damage curve found: 2", message});
    expectRefusal("Time,Depth\n0,1\n1,1\n0.5,1\n", {"Number of points in damage curve found: 3", message});
    expectRefusal("Time,Depth\n0,1\nNaN,1\n", {"Number of points in damage curve found: 2", message});
}

TEST(RainfallHyetographCli, NeedsTwoHyetographs)
{
    for (const std::string hyetographs : {"", "Rainfall Hyetograph a == a.csv\n"}) {
        ToolRun run("-b -rf rain.rfc");
        giveRainfall(run, kRainfallGrid + hyetographs + "RF Interpolation Method == Poly\n");
        run.start();
        EXPECT_CONSOLE_HOLDS(run, errorEnd("Checking rainfall hyetographs have consistent times.",
                                           "ERROR - No rainfall hyetogrpahs specified."));
        EXPECT_NO_OTHER_FILES(run);
    }
}

TEST(RainfallHyetographCli, CountsOfTimesMustAgree)
{
    expectRefusal(lines(3), {"Checking rainfall hyetographs have consistent times.",
                             "ERROR - Rainfall times in hyteographs do not match. Names: a and b"});
}

TEST(RainfallHyetographCli, TimesMayDifferByAThousandth)
{
    expectPass("h\n1,1\n2.0,1\n", "h\n1,1\n2.0005,1\n");
    ToolRun run("-b -rf rain.rfc");
    giveRainfall(run, kCase);
    run.give("a.csv", "h\n1,1\n2.0,1\n");
    run.give("b.csv", "h\n1,1\n2.002,1\n");
    run.start();
    EXPECT_CONSOLE_HOLDS(run, errorEnd("ERROR - Rainfall times in hyteographs do not match. Names: a and b",
                                       "    Times for timestep 2 are 2. and 2.002"));
}

TEST(RainfallHyetographCli, TheNameIsTheRestOfTheCommand)
{
    ToolRun run("-b -rf rain.rfc");
    const std::string longName(150, 'n');
    giveRainfall(run, kRainfallGrid + "Rainfall Hyetograph   North Hill  == a.csv\nRainfall Hyetograph == b.csv\n" +
                          "Rainfall Hyetograph " + longName + " == c.csv\nRF Interpolation Method == Poly\n");
    run.start();
    EXPECT_TRUE(run.says("New hyetogrpah :North Hill"));
    EXPECT_TRUE(run.says("New hyetogrpah :"));
    EXPECT_TRUE(run.says("New hyetogrpah :" + longName.substr(0, 100)));
    EXPECT_TRUE(run.reachedEnd());
}

TEST(RainfallHyetographCli, AMissingFileEndsWithTheDialogue)
{
    ToolRun run("-b -rf rain.rfc");
    giveRainfall(run, "Rainfall Hyetograph x == gone.csv\n");
    run.start();
    EXPECT_TRUE(run.says("CHECK 0008 - \"gone.csv\" cannot be found"));
    EXPECT_NO_OTHER_FILES(run);
}

} // namespace
} // namespace gridforge::test
