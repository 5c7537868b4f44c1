#include "driver/scan.h"

#include "driver/flag_table.h"
#include "host/console.h"

#include <cmath>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <set>

namespace gridforge {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Arguments = std::vector<std::string>;

// What the scan says leaves the console at once, so that later tests start with an empty one.
driver::CommandLine scanned(const Arguments& arguments)
{
    driver::CommandLine line = driver::scanArguments(arguments);
    flushConsole();
    return line;
}

struct FlagCase {
    Arguments arguments;
    std::function<void(run::RunSettings&)> sets; // on top of the defaults; nothing else may change
    std::int32_t operations = 0;
    Arguments inputs = {};
};

void nothing(run::RunSettings&) {}

// Every flag, those with a value with a good one.
const std::vector<FlagCase> kFlagCases = {
    {{"-max"}, [](run::RunSettings& s) { s.max = true; }, 1},
    {{"-min"}, [](run::RunSettings& s) { s.min = true; }, 1},
    {{"-dif"}, [](run::RunSettings& s) { s.dif = true; }, 1},
    {{"-src"}, [](run::RunSettings& s) { s.src = true; }},
    {{"-brkline", "l.shp"}, [](run::RunSettings& s) { s.brkline = true, s.brklineLayer = "l.shp"; }, 1},
    {{"-cd0.5"}, [](run::RunSettings& s) { s.cd = true, s.cutoff = 0.5F; }, 1},
    {{"-out", "new"}, [](run::RunSettings& s) { s.outputNameGiven = true, s.outputName = "new"; }},
    {{"-resize4"}, [](run::RunSettings& s) { s.resize = true, s.resizeFactor = 4; }, 1},
    {{"-trans_m0.25"}, [](run::RunSettings& s) { s.trans = true, s.transformM = 0.25F; }},
    {{"-trans_c-10"}, [](run::RunSettings& s) { s.trans = true, s.transformC = -10.0F; }},
    {{"-rm_max"}, [](run::RunSettings& s) { s.resizeMethod = run::ResizeMethod::maximum; }},
    {{"-rm_min"}, [](run::RunSettings& s) { s.resizeMethod = run::ResizeMethod::minimum; }},
    {{"-rm_max", "-rm_avg"}, nothing},
    {{"-classify", "c.csv"}, [](run::RunSettings& s) { s.classify = true, s.classFile = "c.csv"; }, 1},
    {{"-RGB"}, [](run::RunSettings& s) { s.rgb = true; }},
    {{"-count"}, [](run::RunSettings& s) { s.count = true; }, 1},
    {{"-fe"}, [](run::RunSettings& s) { s.fe = true; }, 1},
    {{"-nowetdry"}, [](run::RunSettings& s) { s.nowetdry = true; }, 1},
    {{"-change"}, [](run::RunSettings& s) { s.change = true; }, 1},
    {{"-check"}, [](run::RunSettings& s) { s.check = true; }},
    {{"-xyz"}, [](run::RunSettings& s) { s.xyz = true; }, 1},
    {{"-fuzzy"}, [](run::RunSettings& s) { s.fuzzy = true; }, 1},
    {{"-asc"}, [](run::RunSettings& s) { s.formatSpecified = true, s.ascWanted = true; }},
    {{"-flt"}, [](run::RunSettings& s) { s.formatSpecified = true, s.fltWanted = true; }},
    {{"-conv"}, [](run::RunSettings& s) { s.conv = true; }, 1},
    {{"-multiply"}, [](run::RunSettings& s) { s.multiply = true; }, 1},
    {{"-histogram", "c.csv"}, [](run::RunSettings& s) { s.histogram = true, s.classFile = "c.csv"; }, 1},
    {{"-grc"}, [](run::RunSettings& s) { s.grc = true; }},
    {{"-xs", "l.mif"}, [](run::RunSettings& s) { s.xs = true, s.xsLayer = "l.mif"; }, 1},
    {{"-nbc", "n.nbc"}, [](run::RunSettings& s) { s.nbc = true; }, 1, {"n.nbc"}},
    {{"-branch", "l.mif"}, [](run::RunSettings& s) { s.branchLayer = "l.mif"; }},
    {{"-remap"}, [](run::RunSettings& s) { s.remap = true, s.interpolation = 3; }, 1},
    {{"-na", "l.mif"}, [](run::RunSettings& s) { s.na = true, s.naLayer = "l.mif"; }, 1},
    {{"-mat", "m1", "-mat", "m2"},
     [](run::RunSettings& s) {
         s.materialGrids = {"m1", "m2"};
     }},
    {{"-cpsd500"}, [](run::RunSettings& s) { s.cpSearchDistance = 500.0F; }},
    {{"-cpmm1e3"}, [](run::RunSettings& s) { s.cpmm = true, s.cpMinMaxDistance = 1000.0F; }},
    {{"-lpmd2.5"}, [](run::RunSettings& s) { s.lpDistance = 2.5F; }},
    {{"-lp", "l.mif"}, [](run::RunSettings& s) { s.lp = true, s.lpLayer = "l.mif"; }, 1},
    {{"-config", "c"}, [](run::RunSettings& s) { s.configFile = "c"; }},
    {{"-cp", "l.mif"}, [](run::RunSettings& s) { s.cp = true, s.cpLayer = "l.mif"; }, 1},
    {{"-trim", "l.mif"}, [](run::RunSettings& s) { s.trim = true, s.trimLayer = "l.mif"; }, 1},
    {{"-nc_comp9"}, [](run::RunSettings& s) { s.ncCompression = 9; }},
    {{"-nc_shuffle0"}, [](run::RunSettings& s) { s.ncShuffle = false; }},
    {{"-nc_shuffle0", "-nc_shuffle-2"}, nothing},
    {{"-nc_part7"}, [](run::RunSettings& s) { s.ncPart = true; }},
    {{"-nc_part1", "-nc_part0"}, nothing},
    {{"-idw_npt12"}, [](run::RunSettings& s) { s.interpolation = 2, s.idwPoints = 12; }},
    {{"-tin"}, [](run::RunSettings& s) { s.interpolation = 3; }},
    {{"-wl", "w.asc"}, [](run::RunSettings& s) { s.waterLevelGrid = "w.asc"; }, 0, {"w.asc"}},
    {{"-dem", "d.asc"}, [](run::RunSettings& s) { s.demGrid = "d.asc"; }},
    {{"-ext", "e.asc"}, [](run::RunSettings& s) { s.extentGrid = "e.asc"; }},
    {{"-fb0.5"}, [](run::RunSettings& s) { s.interpolation = 2, s.freeboard = 0.5F; }},
    {{"-bd20"}, [](run::RunSettings& s) { s.interpolation = 2, s.bufferGiven = true, s.bufferDistance = 20.0F; }},
    {{"-nc"}, [](run::RunSettings& s) { s.nc = true; }, 1},
    {{"-default_n0.5"}, [](run::RunSettings& s) { s.defaultNGiven = true, s.defaultN = 0.5F; }},
    {{"-damages", "d.dmg"}, [](run::RunSettings& s) { s.damages = true; }, 1, {"d.dmg"}},
    {{"-damages"}, [](run::RunSettings& s) { s.damages = true; }}, // counts with its value only
    {{"-b"}, [](run::RunSettings& s) { s.batch = true; }},
    {{"-rf", "r.txt"}, [](run::RunSettings& s) { s.rf = true; }, 1, {"r.txt"}},
    {{"-rf"}, [](run::RunSettings& s) { s.rf = true; }},
    {{"-nbc"}, [](run::RunSettings& s) { s.nbc = true; }, 1}, // counts at the flag
    {{"-statMean"}, [](run::RunSettings& s) { s.stat = true, s.statMean = true; }},
    {{"-decimal5"}, [](run::RunSettings& s) { s.decimals = 5; }},
};

TEST(Scan, EachFlagSetsItsSettingsAndNoOthers)
{
    std::set<std::string_view> tried;
    for (const FlagCase& flag : kFlagCases) {
        run::RunSettings expected;
        flag.sets(expected);
        const driver::CommandLine line = scanned(flag.arguments);
        EXPECT_EQ(line.settings, expected) << flag.arguments[0];
        EXPECT_EQ(line.operations, flag.operations) << flag.arguments[0];
        EXPECT_EQ(line.rawInputList, flag.inputs) << flag.arguments[0];
        tried.insert(driver::findFlag(flag.arguments[0])->key);
        if (flag.arguments.back()[0] == '-') {
            tried.insert(driver::findFlag(flag.arguments.back())->key);
        }
    }
    EXPECT_EQ(tried.size(), driver::flagTable().size()) << "a flag has no case here";
}

TEST(Scan, DefaultsAreThoseOfARunWithoutFlags)
{
    const run::RunSettings settings = scanned({"a.asc"}).settings;
    EXPECT_EQ(settings.transformM, 1.0F);
    EXPECT_EQ(settings.transformC, 0.0F);
    EXPECT_EQ(settings.cutoff, 0.0F);
    EXPECT_EQ(settings.ncCompression, 1);
    EXPECT_TRUE(settings.ncShuffle);
    EXPECT_FALSE(settings.ncPart);
    EXPECT_EQ(settings.cpSearchDistance, 1000.0F);
    EXPECT_EQ(settings.cpMinMaxDistance, 100.0F);
    EXPECT_EQ(settings.lpDistance, 100.0F);
    EXPECT_EQ(settings.resizeMethod, run::ResizeMethod::average);
    EXPECT_EQ(settings.decimals, 3);
    EXPECT_EQ(settings.interpolation, 0);
    EXPECT_EQ(settings.freeboard, 0.0F);
    EXPECT_EQ(settings.bufferDistance, 0.0F);
    EXPECT_EQ(settings.idwPoints, 0);
    EXPECT_EQ(settings.pointToleranceX, 0.5F);
    EXPECT_EQ(settings.pointToleranceY, 0.5F);
}

TEST(Scan, PlainArgumentsKeepTheirOrder)
{
    EXPECT_THAT(scanned({"b", "-max", "a", "b", " -min", ""}).rawInputList, ElementsAre("b", "a", "b", " -min", ""));
}

TEST(Scan, ValueIsTakenWholeEvenIfItLooksLikeAFlag)
{
    const driver::CommandLine line = scanned({"-out", "-max", "-min"});
    EXPECT_EQ(line.settings.outputName, "-max");
    EXPECT_FALSE(line.settings.max);
    EXPECT_TRUE(line.settings.min);
    EXPECT_EQ(scanned({"-dem", "a b  "}).settings.demGrid, "a b");
    EXPECT_EQ(scanned({"-dem", " a"}).settings.demGrid, " a");
}

TEST(Scan, ValueStillAwaitedAtTheEndStaysBlank)
{
    const driver::CommandLine line = scanned({"-max", "-out"});
    EXPECT_TRUE(line.settings.outputNameGiven);
    EXPECT_EQ(line.settings.outputName, "");
    EXPECT_THAT(scanned({"-mat"}).settings.materialGrids, IsEmpty());
    EXPECT_THAT(scanned({"-wl"}).rawInputList, IsEmpty());
}

TEST(Scan, ArgumentsAndValuesAreCutAt1000Characters)
{
    const std::string name = std::string(1000, 'n');
    const driver::CommandLine line = scanned({name + "x", "-out", std::string(999, 'o') + "xyz"});
    EXPECT_THAT(line.rawInputList, ElementsAre(name));
    EXPECT_EQ(line.settings.outputName, std::string(999, 'o') + "x");
}

TEST(Scan, WaterLevelGridTakesThePlaceOfTheFirstInput)
{
    EXPECT_THAT(scanned({"-wl", "w", "a", "b"}).rawInputList, ElementsAre("w", "a", "b"));
    EXPECT_THAT(scanned({"a", "-wl", "w"}).rawInputList, ElementsAre("w", ""));
    EXPECT_THAT(scanned({"a", "b", "-wl", "w", "c"}).rawInputList, ElementsAre("w", "b", "", "c"));
    EXPECT_THAT(scanned({"-wl", "v", "-wl", "w"}).rawInputList, ElementsAre("w", ""));
}

TEST(Scan, ControlFilesJoinTheInputs)
{
    EXPECT_THAT(scanned({"a", "-nbc", "n", "-damages", "d", "-rf", "r", "b"}).rawInputList,
                ElementsAre("a", "n", "d", "r", "b"));
}

TEST(Scan, EachOperationFlagCountsAsOftenAsItStands)
{
    EXPECT_EQ(scanned({"-max", "-max", "-cd1", "-cd2"}).operations, 4);
    EXPECT_EQ(scanned({"-trans_m2", "-trans_c3", "-statMin", "-statMax"}).operations, 0);
    EXPECT_EQ(scanned({"-damages", "a", "-damages", "b"}).operations, 2);
}

TEST(Scan, LastResizeMethodWins)
{
    EXPECT_EQ(scanned({"-rm_max", "-rm_min"}).settings.resizeMethod, run::ResizeMethod::minimum);
    EXPECT_EQ(scanned({"-rm_min", "-rm_max"}).settings.resizeMethod, run::ResizeMethod::maximum);
    EXPECT_EQ(scanned({"-rm_min", "-rm_avg"}).settings.resizeMethod, run::ResizeMethod::average);
}

TEST(Scan, InterpolationFollowsTheOrderOfFlags)
{
    EXPECT_EQ(scanned({"-idw_npt12", "-remap"}).settings.interpolation, run::kInterpolateTin);
    EXPECT_EQ(scanned({"-remap", "-idw_npt12"}).settings.interpolation, run::kInterpolateIdw);
    EXPECT_EQ(scanned({"-remap", "-fb1", "-tin"}).settings.interpolation, run::kInterpolateTin);
    EXPECT_EQ(scanned({"-tin", "-bd1"}).settings.interpolation, run::kInterpolateIdw);
}

TEST(Scan, GluedNumbersAreReadFreeForm)
{
    EXPECT_EQ(scanned({"-CD0.1"}).settings.cutoff, 0.1F);
    EXPECT_EQ(scanned({"-cd10"}).settings.cutoff, 10.0F);
    EXPECT_EQ(scanned({"-cd1e-3"}).settings.cutoff, 1.0e-3F);
    EXPECT_EQ(scanned({"-cd1d2"}).settings.cutoff, 100.0F);
    EXPECT_EQ(scanned({"-cd 0.5"}).settings.cutoff, 0.5F); // one argument with a blank inside
    EXPECT_EQ(scanned({"-cd0.5 x"}).settings.cutoff, 0.5F);
    EXPECT_EQ(scanned({"-cd0.5", "-cd,"}).settings.cutoff, 0.5F); // an empty value leaves what was there
    EXPECT_TRUE(std::isnan(scanned({"-cdNaN"}).settings.cutoff));
    EXPECT_EQ(scanned({"-resize+3"}).settings.resizeFactor, 3);
    EXPECT_EQ(scanned({"-decimal-1"}).settings.decimals, -1);
    EXPECT_EQ(scanned({"-nc_shuffle,"}).settings.ncShuffle, true);
}

TEST(Scan, SmallestNumbersThatAreNotRefused)
{
    EXPECT_EQ(scanned({"-fb0"}).settings.freeboard, 0.0F);
    EXPECT_EQ(scanned({"-fb-0"}).settings.freeboard, 0.0F);
    EXPECT_EQ(scanned({"-bd0.0010001"}).settings.bufferDistance, 0.0010001F);
}

TEST(Scan, StatisticsAddUp)
{
    run::RunSettings expected;
    expected.stat = true;
    expected.statMean = true;
    expected.statMin = true;
    expected.statFrac = true;
    expected.statRanks = {3, 1, 3};
    EXPECT_EQ(scanned({"-statMean", "-statRank3", "-statMin", "-statRank1", "-statFrac", "-statRank3"}).settings,
              expected);
}

struct StatisticCase {
    std::string argument;
    bool run::RunSettings::*setting;
};

TEST(Scan, StatisticKeyMayStandAnywhereInAnyCase)
{
    const std::vector<StatisticCase> cases = {{"-statAll", &run::RunSettings::statAll},
                                              {"-statMean", &run::RunSettings::statMean},
                                              {"-statMedian", &run::RunSettings::statMedian},
                                              {"-statMin", &run::RunSettings::statMin},
                                              {"-statMax", &run::RunSettings::statMax},
                                              {"-statFrac", &run::RunSettings::statFrac},
                                              {"-STATMEDIAN", &run::RunSettings::statMedian},
                                              {"/stat_of_the_mean", &run::RunSettings::statMean},
                                              {"-statRankAll", &run::RunSettings::statRankAll},
                                              {"-statMinMean", &run::RunSettings::statMean}, // the order of keys
                                              {"-statFracMax", &run::RunSettings::statMax},
                                              {"-statSmall", &run::RunSettings::statAll},
                                              {"-statRank_all", &run::RunSettings::statRankAll},
                                              {"-statrankall", &run::RunSettings::statRankAll}};
    for (const StatisticCase& c : cases) {
        run::RunSettings expected;
        expected.stat = true;
        expected.*c.setting = true;
        EXPECT_EQ(scanned({c.argument}).settings, expected) << c.argument;
    }
}

TEST(Scan, RankStandsBehindTheExactWord)
{
    EXPECT_THAT(scanned({"-statRank12"}).settings.statRanks, ElementsAre(12));
    EXPECT_THAT(scanned({"-statRANKRank6"}).settings.statRanks, ElementsAre(6));
    EXPECT_THAT(scanned({"-stat Rank -4"}).settings.statRanks, ElementsAre(-4));
}

TEST(Scan, AsManyNamesAsTheListHolds)
{
    EXPECT_EQ(scanned(Arguments(2000, "a")).rawInputList.size(), 2000U);
    Arguments materials;
    for (int i = 0; i < 2001; ++i) {
        materials.insert(materials.end(), {"-mat", "m"});
    }
    EXPECT_EQ(scanned(materials).settings.materialGrids.size(), 2001U); // has no limit
}

} // namespace
} // namespace gridforge
