#include "driver/flag_table.h"

#include "core/numbers.h"
#include "core/text.h"
#include "run/inputs.h"

#include <algorithm>

namespace gridforge::driver {

namespace {

constexpr float kSmallestBufferDistance = 0.001F;

// --- What a flag sets ------------------------------------------------------------------------------------------------

template <bool run::RunSettings::*... switches>
void on(run::RunSettings& settings)
{
    ((settings.*switches = true), ...);
}

template <run::ResizeMethod method>
void resizeBy(run::RunSettings& settings)
{
    settings.resizeMethod = method;
}

// The method follows the order of flags: the last one that names a method wins, and -remap itself names TIN.
template <std::int32_t method, bool run::RunSettings::*... switches>
void interpolateBy(run::RunSettings& settings)
{
    settings.interpolation = method;
    on<switches...>(settings);
}

// --- Where a value goes ----------------------------------------------------------------------------------------------

template <std::string run::RunSettings::*name>
bool text(CommandLine& line, const std::string& value)
{
    line.settings.*name = value;
    return true;
}

template <auto number>
bool glued(CommandLine& line, const std::string& value)
{
    return readFree(value, line.settings.*number);
}

template <bool run::RunSettings::*setting>
bool gluedSwitch(CommandLine& line, const std::string& value)
{
    std::int32_t number = line.settings.*setting ? 1 : 0;
    const bool read = readFree(value, number);
    line.settings.*setting = number != 0;
    return read;
}

bool rawInput(CommandLine& line, const std::string& value)
{
    addRawInput(line, value);
    return true;
}

bool materialGrid(CommandLine& line, const std::string& value)
{
    line.settings.materialGrids.push_back(value);
    return true;
}

// The grid takes the first place of the inputs whatever stood there, and the list grows by a place all the same. The
// remap relies on finding it first; a name typed ahead of -wl is lost and leaves a blank last place. Deliberate.
bool waterLevelGrid(CommandLine& line, const std::string& value)
{
    line.settings.waterLevelGrid = value;
    addRawInput(line, {});
    line.rawInputList.front() = value;
    return true;
}

// --- The table -------------------------------------------------------------------------------------------------------

constexpr GluedChecks kCutoffChecks = {
    .missing = {"", "ERROR - Unable to read value of cutoff depth, ensure no space between flag and value: "}};
constexpr GluedChecks kSearchDistanceChecks = {
    .missing = {"ERROR - Unable to read value of calibration point search distance (cpsd).",
                "   Please ensure no space exists between flag and value (e.g. cpsd500). Read argument: "}};
constexpr GluedChecks kMinMaxDistanceChecks = {
    .missing = {"ERROR - Unable to read value of calib point min/max search distance (cpmm).",
                "   Please ensure NO space exists between flag and value (e.g. cpmm100). Read argument: "}};
constexpr GluedChecks kProfileDistanceChecks = {
    .missing = {"ERROR - Unable to read value of long profile distance (lpmd).",
                "   Please ensure NO space exists between flag and value (e.g. lpmd500). Read argument: "}};
constexpr GluedChecks kFreeboardChecks = {
    .notice = "CHECK - Free boarding specified, use IDW interporation.",
    .refused = [](const run::RunSettings& settings) { return settings.freeboard < 0.0F; },
    .refusal = "ERROR - Freeboard can not be less than 0."};
constexpr GluedChecks kBufferChecks = {
    .notice = "CHECK - Buffer distance specified, use IDW interporation.",
    // Not-a-number is refused too.
    .refused = [](const run::RunSettings& settings) { return !(settings.bufferDistance > kSmallestBufferDistance); },
    .refusal = "ERROR - Buffer distance can not be less than or equal to 0."};

using S = run::RunSettings;
using enum SpanTest;
using enum FlagKind;
using enum FlagValue;
using enum Counting;
using enum ValueKind;

// Operations that take a flag which many take.
constexpr std::string_view kEveryOperation = {};
constexpr std::string_view kNamedOutputs =
    "max conv nc dif cd trans_m fe fuzzy resize classify cp lp multiply xyz trim damages stat";
constexpr std::string_view kGridFormats =
    "max conv dif cd trans_m fe fuzzy resize classify multiply xyz trim remap stat";
constexpr std::string_view kDecimals =
    "max conv dif cd trans_m fe fuzzy resize classify multiply xyz trim rf remap stat";

// Longer keys stand before the keys that are their prefixes, and "b" after all that begin with it: the order is part
// of what each flag means. The spans of "change" and "check" are one longer than their keys, so "--change" is "-change"
// too. "-nowetdry" and "-change" count as operations though they are options of "-dif"; the validation relies on it.
// clang-format off
constexpr std::array<FlagRow, 58> kFlags = {{
    {"max",        3,  contains, operation, none,         atFlag,    {"highest value of each cell over the input grids, with its source grid", "max"},
                                                                     on<&S::max>},
    {"min",        3,  contains, operation, none,         atFlag,    {"lowest value of each cell over the input grids, with its source grid", "max"},
                                                                     on<&S::min>},
    {"dif",        3,  contains, operation, none,         atFlag,    {"first grid minus second grid", "dif"},
                                                                     on<&S::dif>},
    {"src",        3,  contains, option,    none,         never,     {"no source grid and no legend", "max"},
                                                                     on<&S::src>},
    {"brkline",    7,  same,     operation, next,         atFlag,    {"breakline elevations from a terrain grid", "brkline", layer, "layer"},
                                                                     on<&S::brkline>, text<&S::brklineLayer>},
    {"cd",         2,  contains, operation, gluedReal,    atFlag,    {"keep only cells at or above the cutoff value", "cd count", number, "value", "0.0", "cell values"},
                                                                     on<&S::cd>, glued<&S::cutoff>, kCutoffChecks},
    {"out",        3,  same,     option,    next,         never,     {"name of the main output", kNamedOutputs, name, "name"},
                                                                     on<&S::outputNameGiven>, text<&S::outputName>},
    {"resize",     6,  same,     operation, gluedInteger, atFlag,    {"coarser grid by a whole factor", "resize", integer, "factor", "", "cells"},
                                                                     on<&S::resize>, glued<&S::resizeFactor>},
    {"trans_m",    7,  same,     operation, gluedReal,    afterScan, {"transform y = mx + c: the multiplier", "trans_m", number, "m", "1.0"},
                                                                     on<&S::trans>, glued<&S::transformM>},
    {"trans_c",    7,  same,     operation, gluedReal,    afterScan, {"transform y = mx + c: the constant", "trans_m", number, "c", "0.0", "cell values"},
                                                                     on<&S::trans>, glued<&S::transformC>},
    {"rm_max",     6,  same,     option,    none,         never,     {"resize to the maximum of each block", "resize", toggle, "", "", "", {.group = "resizeMethod"}},
                                                                     resizeBy<run::ResizeMethod::maximum>},
    {"rm_min",     6,  same,     option,    none,         never,     {"resize to the minimum of each block", "resize", toggle, "", "", "", {.group = "resizeMethod"}},
                                                                     resizeBy<run::ResizeMethod::minimum>},
    {"rm_avg",     6,  same,     option,    none,         never,     {"resize to the average of each block", "resize", toggle, "", "on", "", {.group = "resizeMethod"}},
                                                                     resizeBy<run::ResizeMethod::average>},
    {"classify",   8,  same,     operation, next,         atFlag,    {"classes of a grid by a class file", "classify", table, "classes.csv"},
                                                                     on<&S::classify>, text<&S::classFile>},
    {"RGB",        3,  same,     option,    none,         never,     {"the class file carries colours", "classify"},
                                                                     on<&S::rgb>},
    {"count",      5,  same,     operation, none,         atFlag,    {"number of active cells, with -cd of those above the cutoff", "count"},
                                                                     on<&S::count>},
    {"fe",         2,  same,     operation, none,         atFlag,    {"flood extent: 1 where the input is active and not 0", "fe"},
                                                                     on<&S::fe>},
    {"nowetdry",   8,  contains, option,    none,         atFlag,    {"no wet/dry test", "dif", toggle, "", "", "", {.needs = "change"}},
                                                                     on<&S::nowetdry>},
    {"change",     7,  contains, option,    none,         atFlag,    {"change where one of the cells is null", "dif"},
                                                                     on<&S::change>},
    {"check",      6,  contains, option,    none,         never,     {"extra check output", "lp brkline"},
                                                                     on<&S::check>},
    {"xyz",        3,  contains, operation, none,         atFlag,    {"point file to grid", "xyz"},
                                                                     on<&S::xyz>},
    {"fuzzy",      5,  contains, operation, none,         atFlag,    {"fuzzy map of the input grids", "fuzzy"},
                                                                     on<&S::fuzzy>},
    {"asc",        3,  contains, option,    none,         never,     {"write grids as .asc", kGridFormats, toggle, "", "the format of the inputs", "", {.group = "gridFormat"}},
                                                                     on<&S::formatSpecified, &S::ascWanted>},
    {"flt",        3,  contains, option,    none,         never,     {"write grids as .flt", kGridFormats, toggle, "", "the format of the inputs", "", {.group = "gridFormat"}},
                                                                     on<&S::formatSpecified, &S::fltWanted>},
    {"conv",       4,  contains, operation, none,         atFlag,    {"conversion between .asc and .flt", "conv"},
                                                                     on<&S::conv>},
    {"multiply",   8,  contains, operation, none,         atFlag,    {"product of the input grids", "multiply"},
                                                                     on<&S::multiply>},
    {"histogram",  9,  contains, operation, next,         atFlag,    {"number of cells in each bin", "histogram", table, "bins.csv"},
                                                                     on<&S::histogram>, text<&S::classFile>},
    {"grc",        3,  contains, option,    none,         never,     {"grid class output", "classify"},
                                                                     on<&S::grc>},
    {"xs",         2,  contains, operation, next,         atFlag,    {"cross-sections of a layer from grids", "xs", layer, "layer"},
                                                                     on<&S::xs>, text<&S::xsLayer>},
    {"nbc",        3,  contains, operation, next,         atFlag,    {"1D network by a control file", "nbc", controlFile, "file.nbc"},
                                                                     on<&S::nbc>, rawInput},
    {"branch",     6,  contains, option,    next,         never,     {"the branch layer", "xs", layer, "layer"},
                                                                     nullptr, text<&S::branchLayer>},
    {"remap",      5,  contains, operation, none,         atFlag,    {"water level grid to a finer terrain grid; sets TIN", "remap"},
                                                                     interpolateBy<run::kInterpolateTin, &S::remap>},
    {"na",         2,  contains, operation, next,         atFlag,    {"nodal areas of a layer", "na", layer, "layer"},
                                                                     on<&S::na>, text<&S::naLayer>},
    {"mat",        3,  contains, option,    next,         never,     {"a material grid; may be repeated", "xs", grid, "grid", "", "", {.repeated = true}},
                                                                     nullptr, materialGrid},
    {"cpsd",       4,  contains, option,    gluedReal,    never,     {"search distance", "cp lp", number, "distance", "1000.0", "map units"},
                                                                     nullptr, glued<&S::cpSearchDistance>, kSearchDistanceChecks},
    {"cpmm",       4,  contains, option,    gluedReal,    never,     {"search distance of the minimum and maximum", "cp", number, "distance", "100.0", "map units"},
                                                                     on<&S::cpmm>, glued<&S::cpMinMaxDistance>, kMinMaxDistanceChecks},
    {"lpmd",       4,  contains, option,    gluedReal,    never,     {"distance between points", "lp", number, "distance", "100.0", "map units"},
                                                                     nullptr, glued<&S::lpDistance>, kProfileDistanceChecks},
    {"lp",         2,  same,     operation, next,         atFlag,    {"long profiles along the lines of a layer", "lp", layer, "layer"},
                                                                     on<&S::lp>, text<&S::lpLayer>},
    {"config",     6,  contains, option,    next,         never,     {"the config file", "cp", table, "file"},
                                                                     nullptr, text<&S::configFile>},
    {"cp",         2,  contains, operation, next,         atFlag,    {"calibration points of a layer against a grid", "cp", layer, "layer"},
                                                                     on<&S::cp>, text<&S::cpLayer>},
    {"trim",       4,  contains, operation, next,         atFlag,    {"a grid for each region of a layer", "trim", layer, "layer"},
                                                                     on<&S::trim>, text<&S::trimLayer>},
    {"nc_comp",    7,  contains, option,    gluedInteger, never,     {"NetCDF compression level", "nc", integer, "level", "1"},
                                                                     nullptr, glued<&S::ncCompression>},
    {"nc_shuffle", 10, contains, option,    gluedInteger, never,     {"NetCDF shuffle: 0 is off", "nc", choice, "0|1", "1"},
                                                                     nullptr, gluedSwitch<&S::ncShuffle>},
    {"nc_part",    7,  contains, option,    gluedInteger, never,     {"NetCDF part switch: 0 is off", "nc", choice, "0|1", "0"},
                                                                     nullptr, gluedSwitch<&S::ncPart>},
    {"idw_npt",    7,  contains, option,    gluedInteger, never,     {"IDW with that number of points", "remap", integer, "points", "12", "points"},
                                                                     interpolateBy<run::kInterpolateIdw>, glued<&S::idwPoints>},
    {"tin",        3,  contains, option,    none,         never,     {"TIN", "remap", toggle, "", "on"},
                                                                     interpolateBy<run::kInterpolateTin>},
    {"wl",         2,  contains, option,    next,         never,     {"the water level grid; becomes input 1", "remap", grid, "grid", "", "", {.required = true}},
                                                                     nullptr, waterLevelGrid},
    {"dem",        3,  contains, option,    next,         never,     {"the terrain grid", "remap", grid, "grid", "", "", {.required = true}},
                                                                     nullptr, text<&S::demGrid>},
    {"ext",        3,  contains, option,    next,         never,     {"the extent grid", "remap", grid, "grid"},
                                                                     nullptr, text<&S::extentGrid>},
    {"fb",         2,  contains, option,    gluedReal,    never,     {"freeboard; sets IDW", "remap", number, "freeboard", "0.0", "cell values"},
                                                                     interpolateBy<run::kInterpolateIdw>, glued<&S::freeboard>, kFreeboardChecks},
    {"bd",         2,  contains, option,    gluedReal,    never,     {"buffer distance; sets IDW", "remap", number, "distance", "0.0", "map units"},
                                                                     interpolateBy<run::kInterpolateIdw, &S::bufferGiven>, glued<&S::bufferDistance>, kBufferChecks},
    {"nc",         2,  contains, operation, none,         atFlag,    {"grids to a NetCDF series", "nc"},
                                                                     on<&S::nc>},
    {"default_n",  9,  contains, option,    gluedReal,    never,     {"material of points that no material grid gives one", "xs", number, "value", "-9999"},
                                                                     on<&S::defaultNGiven>, glued<&S::defaultN>},
    {"damages",    7,  contains, operation, next,         atValue,   {"flood damages by a control file", "damages", controlFile, "file.dmg"},
                                                                     on<&S::damages>, rawInput},
    {"b",          1,  contains, option,    none,         never,     {"batch mode: no wait for Enter after a run that finished", kEveryOperation},
                                                                     on<&S::batch>},
    {"rf",         2,  contains, operation, next,         atValue,   {"rainfall grids by a control file", "rf", controlFile, "file"},
                                                                     on<&S::rf>, rawInput},
    {"stat",       4,  contains, operation, statistic,    afterScan, {"statistics of the input grids; flags add up", "stat", choice, "All|Mean|Median|Min|Max|Frac|Rank<n>|RankAll", "", "", {.repeated = true}},
                                                                     on<&S::stat>},
    {"decimal",    7,  contains, option,    gluedInteger, never,     {"decimal places of .asc cells", kDecimals, integer, "places", "3", "decimals"},
                                                                     nullptr, glued<&S::decimals>},
}};
// clang-format on

bool matches(const FlagRow& row, std::string_view argument)
{
    const std::string_view span = argument.substr(1, row.span);
    return row.test == same ? ASAME(span, row.key) : FLAGEXISTS(span, row.key);
}

} // namespace

std::span<const FlagRow> flagTable()
{
    return kFlags;
}

bool takenBy(const FlagRow& row, std::string_view wanted)
{
    return row.docs.operations.empty() ||
           join(' ', row.docs.operations, ' ').find(join(' ', wanted, ' ')) != std::string::npos;
}

std::string_view operationOf(const FlagRow& row)
{
    return row.kind == operation ? row.docs.operations.substr(0, row.docs.operations.find(' ')) : std::string_view();
}

bool hasFlagMark(std::string_view argument)
{
    constexpr char kEnDash = '\x96';
    return !argument.empty() && (argument[0] == '-' || argument[0] == '/' || argument[0] == kEnDash);
}

const FlagRow* findFlag(std::string_view argument)
{
    const auto found = std::ranges::find_if(kFlags, [&](const FlagRow& row) { return matches(row, argument); });
    return found == kFlags.end() ? nullptr : &*found;
}

void addRawInput(CommandLine& line, std::string name)
{
    line.rawInputList.push_back(std::move(name));
    if (line.rawInputList.size() > std::size_t{run::kMaxInputs}) {
        run::failTooManyInputs();
    }
}

} // namespace gridforge::driver
