#include "driver/scan.h"

#include "driver/flag_table.h"
#include "host/console.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <set>
#include <sstream>

namespace gridforge {
namespace {

using driver::Settings;
using driver::WantedFormats;
using netcdf::NcOptions;
using network::XsOptions;
using ops::ClassifyOptions;
using ops::CountOptions;
using ops::CutoffOptions;
using ops::DifOptions;
using ops::HistogramOptions;
using ops::MaxMinOptions;
using ops::ResizeOptions;
using ops::StatOptions;
using ops::TransformOptions;
using ops::TrimOptions;
using remap::Interpolation;
using remap::RemapOptions;
using run::Common;
using sampling::BrklineOptions;
using sampling::CpOptions;
using sampling::LpOptions;
using sampling::NaOptions;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using Arguments = std::vector<std::string>;

// What the scan says leaves the console at once, so that later tests start with an empty one.
driver::CommandLine scanned(const Arguments& arguments)
{
    driver::CommandLine line = driver::scanArguments(arguments);
    flushConsole();
    return line;
}

template <typename Options>
Options optionsOf(const Arguments& arguments)
{
    return get<Options>(scanned(arguments).settings);
}

struct FlagCase {
    Arguments arguments;
    std::function<void(Settings&)> sets; // on top of the defaults; nothing else may change
    Arguments asks = {};                 // for an operation
    std::int32_t operations = 0;
    Arguments inputs = {};
};

void nothing(Settings&) {}

// Every flag, those with a value with a good one.
const std::vector<FlagCase> kFlagCases = {
    {{"-max"}, [](Settings& s) { get<MaxMinOptions>(s).extreme = ops::Extreme::maximum; }, {"max"}, 1},
    {{"-min"}, nothing, {"max"}, 1},
    {{"-dif"}, nothing, {"dif"}, 1},
    {{"-src"}, [](Settings& s) { get<MaxMinOptions>(s).src = true; }},
    {{"-brkline", "l.shp"}, [](Settings& s) { get<BrklineOptions>(s).layer = "l.shp"; }, {"brkline"}, 1},
    {{"-cd0.5"},
     [](Settings& s) { get<CutoffOptions>(s).cutoff = 0.5F, get<CountOptions>(s).cutoff = 0.5F; },
     {"cd"},
     1},
    {{"-out", "new"}, [](Settings& s) { get<Common>(s).out = "new"; }},
    {{"-resize4"}, [](Settings& s) { get<ResizeOptions>(s).factor = 4; }, {"resize"}, 1},
    {{"-trans_m0.25"}, [](Settings& s) { get<TransformOptions>(s).m = 0.25F; }, {"trans_m"}},
    {{"-trans_c-10"}, [](Settings& s) { get<TransformOptions>(s).c = -10.0F; }, {"trans_m"}},
    {{"-rm_max"}, [](Settings& s) { get<ResizeOptions>(s).method = ops::ResizeMethod::maximum; }},
    {{"-rm_min"}, [](Settings& s) { get<ResizeOptions>(s).method = ops::ResizeMethod::minimum; }},
    {{"-rm_max", "-rm_avg"}, nothing},
    {{"-classify", "c.csv"}, [](Settings& s) { get<ClassifyOptions>(s).classFile = "c.csv"; }, {"classify"}, 1},
    {{"-RGB"}, [](Settings& s) { get<ClassifyOptions>(s).rgb = true; }},
    {{"-count"}, nothing, {"count"}, 1},
    {{"-fe"}, nothing, {"fe"}, 1},
    {{"-nowetdry"}, [](Settings& s) { get<DifOptions>(s).nowetdry = true; }, {}, 1},
    {{"-change"}, [](Settings& s) { get<DifOptions>(s).change = true; }, {}, 1},
    {{"-check"}, [](Settings& s) { get<LpOptions>(s).check = true, get<BrklineOptions>(s).check = true; }},
    {{"-xyz"}, nothing, {"xyz"}, 1},
    {{"-fuzzy"}, nothing, {"fuzzy"}, 1},
    {{"-asc"}, [](Settings& s) { get<WantedFormats>(s).asc = true; }},
    {{"-flt"}, [](Settings& s) { get<WantedFormats>(s).flt = true; }},
    {{"-conv"}, nothing, {"conv"}, 1},
    {{"-multiply"}, nothing, {"multiply"}, 1},
    {{"-histogram", "c.csv"}, [](Settings& s) { get<HistogramOptions>(s).binFile = "c.csv"; }, {"histogram"}, 1},
    {{"-grc"}, [](Settings& s) { get<ClassifyOptions>(s).grc = true; }},
    {{"-xs", "l.mif"}, [](Settings& s) { get<XsOptions>(s).sectionLayer = "l.mif"; }, {"xs"}, 1},
    {{"-nbc", "n.nbc"}, nothing, {"nbc"}, 1, {"n.nbc"}},
    {{"-branch", "l.mif"}, [](Settings& s) { get<XsOptions>(s).branchLayer = "l.mif"; }},
    {{"-remap"}, [](Settings& s) { get<RemapOptions>(s).interpolation = Interpolation::tin; }, {"remap"}, 1},
    {{"-na", "l.mif"}, [](Settings& s) { get<NaOptions>(s).layer = "l.mif"; }, {"na"}, 1},
    {{"-mat", "m1", "-mat", "m2"},
     [](Settings& s) {
         get<XsOptions>(s).materialGrids = {"m1", "m2"};
     }},
    {{"-cpsd500"},
     [](Settings& s) { get<CpOptions>(s).searchDistance = 500.0F, get<LpOptions>(s).searchDistance = 500.0F; }},
    {{"-cpmm1e3"},
     [](Settings& s) { get<CpOptions>(s).extremes = true, get<CpOptions>(s).extremesDistance = 1000.0F; }},
    {{"-lpmd2.5"}, [](Settings& s) { get<LpOptions>(s).spacing = 2.5F; }},
    {{"-lp", "l.mif"}, [](Settings& s) { get<LpOptions>(s).layer = "l.mif"; }, {"lp"}, 1},
    {{"-config", "c"}, [](Settings& s) { get<CpOptions>(s).configFile = "c"; }},
    {{"-cp", "l.mif"}, [](Settings& s) { get<CpOptions>(s).layer = "l.mif"; }, {"cp"}, 1},
    {{"-trim", "l.mif"}, [](Settings& s) { get<TrimOptions>(s).layer = "l.mif"; }, {"trim"}, 1},
    {{"-nc_comp9"}, [](Settings& s) { get<NcOptions>(s).compression = 9; }},
    {{"-nc_shuffle0"}, [](Settings& s) { get<NcOptions>(s).shuffle = false; }},
    {{"-nc_shuffle0", "-nc_shuffle-2"}, nothing},
    {{"-nc_part7"}, [](Settings& s) { get<NcOptions>(s).part = true; }},
    {{"-nc_part1", "-nc_part0"}, nothing},
    {{"-idw_npt12"},
     [](Settings& s) { get<RemapOptions>(s).interpolation = Interpolation::idw, get<RemapOptions>(s).idwPoints = 12; }},
    {{"-tin"}, [](Settings& s) { get<RemapOptions>(s).interpolation = Interpolation::tin; }},
    {{"-wl", "w.asc"}, [](Settings& s) { get<RemapOptions>(s).waterLevelGrid = "w.asc"; }, {}, 0, {"w.asc"}},
    {{"-dem", "d.asc"}, [](Settings& s) { get<RemapOptions>(s).demGrid = "d.asc"; }},
    {{"-ext", "e.asc"}, [](Settings& s) { get<RemapOptions>(s).extentGrid = "e.asc"; }},
    {{"-fb0.5"},
     [](Settings& s) {
         get<RemapOptions>(s).interpolation = Interpolation::idw, get<RemapOptions>(s).freeboard = 0.5F;
     }},
    {{"-bd20"},
     [](Settings& s) { get<RemapOptions>(s).interpolation = Interpolation::idw, get<RemapOptions>(s).buffer = 20.0F; }},
    {{"-nc"}, nothing, {"nc"}, 1},
    {{"-default_n0.5"}, [](Settings& s) { get<XsOptions>(s).defaultN = 0.5F; }},
    {{"-damages", "d.dmg"}, nothing, {"damages"}, 1, {"d.dmg"}},
    {{"-damages"}, nothing, {"damages"}}, // counts with its value only
    {{"-b"}, [](Settings& s) { get<Common>(s).batch = true; }},
    {{"-rf", "r.txt"}, nothing, {"rf"}, 1, {"r.txt"}},
    {{"-rf"}, nothing, {"rf"}},
    {{"-nbc"}, nothing, {"nbc"}, 1}, // counts at the flag
    {{"-statMean"}, [](Settings& s) { get<StatOptions>(s).mean = true; }, {"stat"}},
    {{"-decimal5"}, [](Settings& s) { get<Common>(s).decimals = 5; }},
};

TEST(Scan, EachFlagSetsItsSettingsAndNoOthers)
{
    std::set<std::string_view> tried;
    for (const FlagCase& flag : kFlagCases) {
        Settings expected;
        flag.sets(expected);
        const driver::CommandLine line = scanned(flag.arguments);
        EXPECT_EQ(line.settings, expected) << flag.arguments[0];
        EXPECT_THAT(line.asked, ElementsAreArray(flag.asks)) << flag.arguments[0];
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
    const Settings settings = scanned({"a.asc"}).settings;
    EXPECT_EQ(get<TransformOptions>(settings).m, 1.0F);
    EXPECT_EQ(get<TransformOptions>(settings).c, 0.0F);
    EXPECT_EQ(get<CutoffOptions>(settings).cutoff, 0.0F);
    EXPECT_EQ(get<CountOptions>(settings).cutoff, std::nullopt);
    EXPECT_EQ(get<NcOptions>(settings).compression, 1);
    EXPECT_TRUE(get<NcOptions>(settings).shuffle);
    EXPECT_FALSE(get<NcOptions>(settings).part);
    EXPECT_EQ(get<CpOptions>(settings).searchDistance, 1000.0F);
    EXPECT_EQ(get<CpOptions>(settings).extremesDistance, 100.0F);
    EXPECT_EQ(get<LpOptions>(settings).searchDistance, 1000.0F);
    EXPECT_EQ(get<LpOptions>(settings).spacing, 100.0F);
    EXPECT_EQ(get<ResizeOptions>(settings).method, ops::ResizeMethod::average);
    EXPECT_EQ(get<Common>(settings).out, std::nullopt);
    EXPECT_EQ(get<Common>(settings).format, std::nullopt);
    EXPECT_EQ(get<Common>(settings).decimals, 3);
    EXPECT_EQ(get<RemapOptions>(settings).interpolation, Interpolation::none);
    EXPECT_EQ(get<RemapOptions>(settings).freeboard, 0.0F);
    EXPECT_EQ(get<RemapOptions>(settings).buffer, std::nullopt);
    EXPECT_EQ(get<RemapOptions>(settings).idwPoints, 0);
}

// The words of the row are what the manual and the completion offer.
TEST(Scan, EachWordOfStatIsAStatisticOfItsOwn)
{
    std::istringstream words{std::string(driver::findFlag("-stat")->docs.valueName)};
    std::vector<StatOptions> seen{StatOptions()};
    for (std::string word; std::getline(words, word, '|');) {
        const auto options = optionsOf<StatOptions>({"-stat" + (word == "Rank<n>" ? "Rank3" : word)});
        EXPECT_EQ(std::ranges::count(seen, options), 0) << word;
        seen.push_back(options);
    }
    EXPECT_EQ(seen.size(), 9U); // the six of the message, ranks and all ranks
}

TEST(Scan, PlainArgumentsKeepTheirOrder)
{
    EXPECT_THAT(scanned({"b", "-max", "a", "b", " -min", ""}).rawInputList, ElementsAre("b", "a", "b", " -min", ""));
}

TEST(Scan, ValueIsTakenWholeEvenIfItLooksLikeAFlag)
{
    const driver::CommandLine line = scanned({"-out", "-max", "-min"});
    EXPECT_EQ(get<Common>(line.settings).out, "-max");
    EXPECT_EQ(get<MaxMinOptions>(line.settings).extreme, ops::Extreme::minimum);
    EXPECT_THAT(line.asked, ElementsAre("max"));
    EXPECT_EQ(line.operations, 1);
    EXPECT_EQ(optionsOf<RemapOptions>({"-dem", "a b  "}).demGrid, "a b");
    EXPECT_EQ(optionsOf<RemapOptions>({"-dem", " a"}).demGrid, " a");
}

TEST(Scan, ValueStillAwaitedAtTheEndStaysBlank)
{
    const driver::CommandLine line = scanned({"-max", "-out"});
    EXPECT_EQ(get<Common>(line.settings).out, "");
    EXPECT_THAT(optionsOf<XsOptions>({"-mat"}).materialGrids, IsEmpty());
    EXPECT_THAT(scanned({"-wl"}).rawInputList, IsEmpty());
}

TEST(Scan, ArgumentsAndValuesAreCutAt1000Characters)
{
    const std::string name = std::string(1000, 'n');
    const driver::CommandLine line = scanned({name + "x", "-out", std::string(999, 'o') + "xyz"});
    EXPECT_THAT(line.rawInputList, ElementsAre(name));
    EXPECT_EQ(get<Common>(line.settings).out, std::string(999, 'o') + "x");
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
    EXPECT_EQ(optionsOf<ResizeOptions>({"-rm_max", "-rm_min"}).method, ops::ResizeMethod::minimum);
    EXPECT_EQ(optionsOf<ResizeOptions>({"-rm_min", "-rm_max"}).method, ops::ResizeMethod::maximum);
    EXPECT_EQ(optionsOf<ResizeOptions>({"-rm_min", "-rm_avg"}).method, ops::ResizeMethod::average);
}

TEST(Scan, InterpolationFollowsTheOrderOfFlags)
{
    EXPECT_EQ(optionsOf<RemapOptions>({"-idw_npt12", "-remap"}).interpolation, Interpolation::tin);
    EXPECT_EQ(optionsOf<RemapOptions>({"-remap", "-idw_npt12"}).interpolation, Interpolation::idw);
    EXPECT_EQ(optionsOf<RemapOptions>({"-remap", "-fb1", "-tin"}).interpolation, Interpolation::tin);
    EXPECT_EQ(optionsOf<RemapOptions>({"-tin", "-bd1"}).interpolation, Interpolation::idw);
}

TEST(Scan, GluedNumbersAreReadFreeForm)
{
    EXPECT_EQ(optionsOf<CutoffOptions>({"-CD0.1"}).cutoff, 0.1F);
    EXPECT_EQ(optionsOf<CutoffOptions>({"-cd10"}).cutoff, 10.0F);
    EXPECT_EQ(optionsOf<CutoffOptions>({"-cd1e-3"}).cutoff, 1.0e-3F);
    EXPECT_EQ(optionsOf<CutoffOptions>({"-cd1d2"}).cutoff, 100.0F);
    EXPECT_EQ(optionsOf<CutoffOptions>({"-cd 0.5"}).cutoff, 0.5F); // one argument with a blank inside
    EXPECT_EQ(optionsOf<CutoffOptions>({"-cd0.5 x"}).cutoff, 0.5F);
    EXPECT_EQ(optionsOf<CutoffOptions>({"-cd0.5", "-cd,"}).cutoff, 0.5F); // an empty value leaves what was there
    EXPECT_TRUE(std::isnan(optionsOf<CutoffOptions>({"-cdNaN"}).cutoff));
    EXPECT_EQ(optionsOf<ResizeOptions>({"-resize+3"}).factor, 3);
    EXPECT_EQ(optionsOf<Common>({"-decimal-1"}).decimals, -1);
    EXPECT_EQ(optionsOf<NcOptions>({"-nc_shuffle,"}).shuffle, true);
}

TEST(Scan, SmallestNumbersThatAreNotRefused)
{
    EXPECT_EQ(optionsOf<RemapOptions>({"-fb0"}).freeboard, 0.0F);
    EXPECT_EQ(optionsOf<RemapOptions>({"-fb-0"}).freeboard, 0.0F);
    EXPECT_EQ(optionsOf<RemapOptions>({"-bd0.0010001"}).buffer, 0.0010001F);
}

TEST(Scan, StatisticsAddUp)
{
    StatOptions expected;
    expected.mean = true;
    expected.minimum = true;
    expected.fraction = true;
    expected.ranks = {3, 1, 3};
    EXPECT_EQ(optionsOf<StatOptions>({"-statMean", "-statRank3", "-statMin", "-statRank1", "-statFrac", "-statRank3"}),
              expected);
}

struct StatisticCase {
    std::string argument;
    bool StatOptions::*option;
};

TEST(Scan, StatisticKeyMayStandAnywhereInAnyCase)
{
    const std::vector<StatisticCase> cases = {
        {"-statAll", &StatOptions::all},           {"-statMean", &StatOptions::mean},
        {"-statMedian", &StatOptions::median},     {"-statMin", &StatOptions::minimum},
        {"-statMax", &StatOptions::maximum},       {"-statFrac", &StatOptions::fraction},
        {"-STATMEDIAN", &StatOptions::median},     {"/stat_of_the_mean", &StatOptions::mean},
        {"-statRankAll", &StatOptions::allRanks},  {"-statMinMean", &StatOptions::mean}, // the order of keys
        {"-statFracMax", &StatOptions::maximum},   {"-statSmall", &StatOptions::all},
        {"-statRank_all", &StatOptions::allRanks}, {"-statrankall", &StatOptions::allRanks}};
    for (const StatisticCase& c : cases) {
        Settings expected;
        get<StatOptions>(expected).*c.option = true;
        EXPECT_EQ(scanned({c.argument}).settings, expected) << c.argument;
    }
}

TEST(Scan, RankStandsBehindTheExactWord)
{
    EXPECT_THAT(optionsOf<StatOptions>({"-statRank12"}).ranks, ElementsAre(12));
    EXPECT_THAT(optionsOf<StatOptions>({"-statRANKRank6"}).ranks, ElementsAre(6));
    EXPECT_THAT(optionsOf<StatOptions>({"-stat Rank -4"}).ranks, ElementsAre(-4));
}

TEST(Scan, AsManyNamesAsTheListHolds)
{
    EXPECT_EQ(scanned(Arguments(2000, "a")).rawInputList.size(), 2000U);
    Arguments materials;
    for (int i = 0; i < 2001; ++i) {
        materials.insert(materials.end(), {"-mat", "m"});
    }
    EXPECT_EQ(optionsOf<XsOptions>(materials).materialGrids.size(), 2001U); // has no limit
}

} // namespace
} // namespace gridforge
