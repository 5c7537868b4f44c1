// Depth-damage curves in runs: their files, ends and joints.
#include "support/consoles.h"
#include "support/damages_files.h"
#include "support/tool_run.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace gridforge::test {
namespace {

using testing::HasSubstr;

// One point building at the cell with the level 12, floor level 2: the depth is 10.
struct CurveRun {
    explicit CurveRun(const std::string& curve, const std::string& record = "\"House\",\"A\",2,1\n")
        : run("-b -damages c.dmg")
    {
        giveDamageFiles(run, pointMif("2", "1"), record);
        run.give("house.csv", curve);
        run.start();
    }
    // What stands in the table between the multiplier and the average annual damage.
    std::string damage() const
    {
        const std::string table = run.read("h_Damages.csv");
        const std::size_t end = table.rfind(",0.\r\n");
        const std::size_t start = table.rfind(',', end - 1) + 1;
        return table.substr(start, end - start);
    }
    ToolRun run;
};

void expectEnd(const std::string& curve, const std::vector<std::string>& message)
{
    const CurveRun curveRun(curve);
    EXPECT_CONSOLE_HOLDS(curveRun.run, errorEnd(message));
    EXPECT_NO_OTHER_FILES(curveRun.run);
}

constexpr const char* kAbove = "Depth exceeds highest value in curve.";

TEST(DamagesCurve, BetweenTwoPointsTheDamageIsInterpolated)
{
    const CurveRun curve("h\n0,100\n8,200\n12,600\n20,0\n");
    EXPECT_EQ(curve.damage(), "400."); // 200 + (10 - 8) / (12 - 8) * (600 - 200)
    EXPECT_FALSE(curve.run.says(kAbove));
}

TEST(DamagesCurve, AtAJointTheDamageIsThatOfThePoint)
{
    EXPECT_EQ(CurveRun("h\n0,100\n10,250\n12,600\n").damage(), "250.");
}

TEST(DamagesCurve, BelowAndAtTheFirstPointItIsTheFirstDamage)
{
    for (const char* curve : {"h\n10,55\n12,600\n", "h\n11,55\n12,600\n"}) {
        const CurveRun curveRun(curve);
        EXPECT_EQ(curveRun.damage(), "55.");
        EXPECT_FALSE(curveRun.run.says(kAbove));
    }
}

TEST(DamagesCurve, AtAndAboveTheLastPointItIsTheLastDamageAndALineTellsSo)
{
    for (const char* curve : {"h\n1,55\n10,600\n", "h\n1,55\n9,600\n"}) {
        const CurveRun curveRun(curve);
        EXPECT_EQ(curveRun.damage(), "600.");
        EXPECT_CONSOLE_HOLDS(curveRun.run, {"   Done.", kAbove, "Deallocating grid memory."});
    }
}

TEST(DamagesCurve, DamagesMayFallAndBeNegative)
{
    EXPECT_EQ(CurveRun("h\n0,100\n20,-300\n").damage(), "-100.");
}

TEST(DamagesCurve, TheMultiplierScalesTheDamage)
{
    const std::string curve = "h\n0,0\n20,400\n"; // 200 at the depth of 10
    EXPECT_EQ(CurveRun(curve, "\"House\",\"A\",2,2.5\n").damage(), "500.");
    EXPECT_EQ(CurveRun(curve, "\"House\",\"A\",2,0.00011\n").damage(), "0.022");
    // Such multipliers mean that there is none.
    for (const char* none : {"0", "0.00005", "0.0001", "-3", ",", "NaN", ""}) {
        const CurveRun run(curve, std::string("\"House\",\"A\",2,") + none + "\n");
        EXPECT_THAT(run.run.read("h_Damages.csv"), HasSubstr("\"House\",\"A\",2.,1.,200.,0.")) << none;
    }
}

TEST(DamagesCurve, AnInfiniteOrUnknownFloorGivesWhatTheCurveHas)
{
    const std::string curve = "h\n0,5\n20,400\n";
    EXPECT_EQ(CurveRun(curve, "\"House\",\"A\",Inf,1\n").damage(), "5.");
    EXPECT_EQ(CurveRun(curve, "\"House\",\"A\",-Inf,1\n").damage(), "400.");
    EXPECT_EQ(CurveRun(curve, "\"House\",\"A\",NaN,1\n").damage(), "NaN");
}

// --- The file --------------------------------------------------------------------------------------------------------

TEST(DamagesCurve, PointsAreFreeFormAndAnEmptyValueIs0)
{
    const CurveRun curve("any heading, of # any kind\r\n , 3 \r\n2.5e1\t\t28\r\n");
    EXPECT_EQ(curve.damage(), "13."); // 3 + 10 / 25 * 25
    EXPECT_TRUE(curve.run.says("Number of points in damage curve found: 2"));
}

TEST(DamagesCurve, ALineThatIsNotTwoNumbersEndsTheRun)
{
    const std::string message = "ERROR - Reading following line in damages curve file:";
    expectEnd("h\n0,0\n1,high\n", {message, "1,high"});
    expectEnd("h\n0,0\n1\n", {message, "1"});
    expectEnd("h\n0,0\n! a comment\n1,1\n", {message, "! a comment"});
    // The blank line at the end of a file too.
    expectEnd("h\n0,0\n1,1\n\n", {message, ""});
}

TEST(DamagesCurve, FewerThan2PointsEndTheRun)
{
    const std::string message = "ERROR - Less than 2 points in damages curve.";
    expectEnd("h\n0,0\n", {"Number of points in damage curve found: 1", message});
    expectEnd("h\n", {"Number of points in damage curve found: 0", message});
    expectEnd("", {"Number of points in damage curve found: 0", message});
}

TEST(DamagesCurve, DepthsThatDoNotRiseEndTheRun)
{
    const std::string message = "ERROR - Depth values in damages curve not increasing.";
    expectEnd("h\n0,0\n1,1\n1,2\n", {"Number of points in damage curve found: 3", message});
    expectEnd("h\n0,0\n2,1\n1,2\n", {message});
    expectEnd("h\nNaN,0\n2,1\n3,2\n", {message});
    expectEnd("h\n0,0\n0.00000000000000000000000000000000000000000000000000001,1\n",
              {message}); // 0 in single precision
}

TEST(DamagesCurve, MorePointsThanTheLimitEndTheRun)
{
    std::string curve = "h\n";
    for (int i = 0; i < 100; ++i) {
        curve += std::to_string(i) + "," + std::to_string(i) + "\n";
    }
    EXPECT_EQ(CurveRun(curve).damage(), "10.");
    // A limit below 1 is past with the first point.
    for (const char* limit : {"0", "-1"}) {
        ToolRun run("-b -damages c.dmg");
        giveDamageFiles(run, pointMif("2", "1"), "\"House\",\"A\",2,1\n");
        run.give("c.dmg", std::string("Maximum Point in Curve == ") + limit + "\n" + kPlainControl);
        run.start();
        EXPECT_CONSOLE_HOLDS(run, errorEnd("ERROR - Number of bins exceeds maximum."));
    }
    // The line past the limit is not read for its values.
    expectEnd(curve + "nothing\n", {openedUnit(1002), "ERROR - Number of bins exceeds maximum."});
}

} // namespace
} // namespace gridforge::test
