#include "driver/flag_table.h"

#include "core/free_form.h"
#include "core/text.h"
#include "run/inputs.h"

#include <algorithm>
#include <array>
#include <optional>
#include <tuple>

namespace gridforge::driver {

namespace {

constexpr float kSmallestBufferDistance = 0.001F;

// --- What a flag sets ------------------------------------------------------------------------------------------------

template <typename Options, typename Value>
Value& at(Settings& settings, Value Options::*option)
{
    return get<Options>(settings).*option;
}

template <auto... switches>
void on(Settings& settings)
{
    ((at(settings, switches) = true), ...);
}

template <auto option, auto value>
void choose(Settings& settings)
{
    at(settings, option) = value;
}

// The option counts as given from the flag on, whatever its value will be.
template <auto option>
void give(Settings& settings)
{
    if (!at(settings, option)) {
        at(settings, option).emplace();
    }
}

// The method follows the order of flags: the last one that names a method wins, and -remap itself names TIN.
template <remap::Interpolation method>
void interpolateBy(Settings& settings)
{
    choose<&remap::RemapOptions::interpolation, method>(settings);
}

void growByIdw(Settings& settings)
{
    interpolateBy<remap::Interpolation::idw>(settings);
    give<&remap::RemapOptions::buffer>(settings);
}

// --- Where a value goes ----------------------------------------------------------------------------------------------

template <auto option>
bool text(CommandLine& line, const std::string& value)
{
    at(line.settings, option) = value;
    return true;
}

template <typename Number>
bool readNumber(const std::string& value, Number& number)
{
    return readFree(value, number);
}

template <typename Number>
bool readNumber(const std::string& value, std::optional<Number>& given)
{
    return readFree(value, *given);
}

template <auto... options>
bool glued(CommandLine& line, const std::string& value)
{
    return (readNumber(value, at(line.settings, options)) && ...);
}

template <auto option>
bool gluedSwitch(CommandLine& line, const std::string& value)
{
    bool& setting = at(line.settings, option);
    std::int32_t number = setting ? 1 : 0;
    const bool read = readFree(value, number);
    setting = number != 0;
    return read;
}

bool rawInput(CommandLine& line, const std::string& value)
{
    addRawInput(line, value);
    return true;
}

bool materialGrid(CommandLine& line, const std::string& value)
{
    get<network::XsOptions>(line.settings).materialGrids.push_back(value);
    return true;
}

// The grid takes the first place of the inputs whatever stood there, and the list grows by a place all the same. The
// remap relies on finding it first; a name typed before -wl is lost and leaves a blank last place: on purpose, since
// scripts rely on the places.
bool waterLevelGrid(CommandLine& line, const std::string& value)
{
    get<remap::RemapOptions>(line.settings).waterLevelGrid = value;
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
    .refused = [](const Settings& settings) { return get<remap::RemapOptions>(settings).freeboard < 0.0F; },
    .refusal = "ERROR - Freeboard can not be less than 0."};
constexpr GluedChecks kBufferChecks = {
    .notice = "CHECK - Buffer distance specified, use IDW interporation.",
    // Not-a-number is refused too.
    .refused =
        [](const Settings& settings) { return !(get<remap::RemapOptions>(settings).buffer > kSmallestBufferDistance); },
    .refusal = "ERROR - Buffer distance can not be less than or equal to 0."};

using network::XsOptions;
using ops::ClassifyOptions;
using ops::DifOptions;
using ops::MaxMinOptions;
using ops::ResizeOptions;
using ops::TransformOptions;
using remap::Interpolation;
using remap::RemapOptions;
using run::Common;
using sampling::BrklineOptions;
using sampling::CpOptions;
using sampling::LpOptions;
using enum SpanTest;
using enum FlagKind;
using enum FlagValue;
using enum Counting;
using enum ValueKind;

// Many operations take it, and their rows say so.
constexpr std::string_view kByOperation = {};

// Longer keys stand before the keys that are their prefixes, and "b" after all that begin with it: the order is part
// of what each flag means. The spans of "change" and "check" are one longer than their keys, so "--change" is "-change"
// too. "-nowetdry" and "-change" count as operations though they are options of "-dif"; the validation relies on it.
// clang-format off
constexpr auto kFlags = std::to_array<FlagRow>({
    {"max",        3,  contains, operation, none,         atFlag,    {"highest value of each cell over the input grids, with its source grid", "max"},
                                                                     choose<&MaxMinOptions::extreme, ops::Extreme::maximum>},
    {"min",        3,  contains, operation, none,         atFlag,    {"lowest value of each cell over the input grids, with its source grid", "max"}},
    {"dif",        3,  contains, operation, none,         atFlag,    {"first grid minus second grid", "dif"}},
    {"src",        3,  contains, option,    none,         never,     {"no source grid and no legend", "max"},
                                                                     on<&MaxMinOptions::src>},
    {"brkline",    7,  same,     operation, next,         atFlag,    {"breakline elevations from a terrain grid", "brkline", layer, "layer"},
                                                                     nullptr, text<&BrklineOptions::layer>},
    {"cd",         2,  contains, operation, gluedReal,    atFlag,    {"keep only cells at or above the cutoff value", "cd count", number, "value", "0.0", "cell values"},
                                                                     give<&ops::CountOptions::cutoff>, glued<&ops::CutoffOptions::cutoff, &ops::CountOptions::cutoff>, kCutoffChecks},
    {"out",        3,  same,     option,    next,         never,     {"name of the main output", kByOperation, name, "name"},
                                                                     give<&Common::out>, text<&Common::out>},
    {"resize",     6,  same,     operation, gluedInteger, atFlag,    {"coarser grid by a whole factor", "resize", integer, "factor", "", "cells"},
                                                                     nullptr, glued<&ResizeOptions::factor>},
    {"trans_m",    7,  same,     operation, gluedReal,    afterScan, {"transform y = mx + c: the multiplier", "trans_m", number, "m", "1.0"},
                                                                     nullptr, glued<&TransformOptions::m>},
    {"trans_c",    7,  same,     operation, gluedReal,    afterScan, {"transform y = mx + c: the constant", "trans_m", number, "c", "0.0", "cell values"},
                                                                     nullptr, glued<&TransformOptions::c>},
    {"rm_max",     6,  same,     option,    none,         never,     {"resize to the maximum of each block", "resize", toggle, "", "", "", {.group = "resizeMethod"}},
                                                                     choose<&ResizeOptions::method, ops::ResizeMethod::maximum>},
    {"rm_min",     6,  same,     option,    none,         never,     {"resize to the minimum of each block", "resize", toggle, "", "", "", {.group = "resizeMethod"}},
                                                                     choose<&ResizeOptions::method, ops::ResizeMethod::minimum>},
    {"rm_avg",     6,  same,     option,    none,         never,     {"resize to the average of each block", "resize", toggle, "", "on", "", {.group = "resizeMethod"}},
                                                                     choose<&ResizeOptions::method, ops::ResizeMethod::average>},
    {"classify",   8,  same,     operation, next,         atFlag,    {"classes of a grid by a class file", "classify", table, "classes.csv", "", "", {}, "csv"},
                                                                     nullptr, text<&ClassifyOptions::classFile>},
    {"RGB",        3,  same,     option,    none,         never,     {"the class file carries colours", "classify"},
                                                                     on<&ClassifyOptions::rgb>},
    {"count",      5,  same,     operation, none,         atFlag,    {"number of active cells, with -cd of those above the cutoff", "count"}},
    {"fe",         2,  same,     operation, none,         atFlag,    {"flood extent: 1 where the input is active and not 0", "fe"}},
    {"nowetdry",   8,  contains, option,    none,         atFlag,    {"no wet/dry test", "dif", toggle, "", "", "", {.needs = "change"}},
                                                                     on<&DifOptions::nowetdry>},
    {"change",     7,  contains, option,    none,         atFlag,    {"change where one of the cells is null", "dif"},
                                                                     on<&DifOptions::change>},
    {"check",      6,  contains, option,    none,         never,     {"extra check output", "lp brkline"},
                                                                     on<&LpOptions::check, &BrklineOptions::check>},
    {"xyz",        3,  contains, operation, none,         atFlag,    {"point file to grid", "xyz"}},
    {"fuzzy",      5,  contains, operation, none,         atFlag,    {"fuzzy map of the input grids", "fuzzy"}},
    {"asc",        3,  contains, option,    none,         never,     {"write grids as .asc", kByOperation, toggle, "", "the format of the inputs", "", {.group = "gridFormat"}},
                                                                     on<&WantedFormats::asc>},
    {"flt",        3,  contains, option,    none,         never,     {"write grids as .flt", kByOperation, toggle, "", "the format of the inputs", "", {.group = "gridFormat"}},
                                                                     on<&WantedFormats::flt>},
    {"conv",       4,  contains, operation, none,         atFlag,    {"conversion between .asc and .flt", "conv"}},
    {"multiply",   8,  contains, operation, none,         atFlag,    {"product of the input grids", "multiply"}},
    {"histogram",  9,  contains, operation, next,         atFlag,    {"number of cells in each bin", "histogram", table, "bins.csv", "", "", {}, "csv"},
                                                                     nullptr, text<&ops::HistogramOptions::binFile>},
    {"grc",        3,  contains, option,    none,         never,     {"grid class output", "classify"},
                                                                     on<&ClassifyOptions::grc>},
    {"xs",         2,  contains, operation, next,         atFlag,    {"cross-sections of a layer from grids", "xs", layer, "layer"},
                                                                     nullptr, text<&XsOptions::sectionLayer>},
    {"nbc",        3,  contains, operation, next,         atFlag,    {"1D network by a control file", "nbc", controlFile, "file.nbc", "", "", {}, "nbc"},
                                                                     nullptr, rawInput},
    {"branch",     6,  contains, option,    next,         never,     {"the branch layer", "xs", layer, "layer"},
                                                                     nullptr, text<&XsOptions::branchLayer>},
    {"remap",      5,  contains, operation, none,         atFlag,    {"water level grid to a finer terrain grid; sets TIN", "remap"},
                                                                     interpolateBy<Interpolation::tin>},
    {"na",         2,  contains, operation, next,         atFlag,    {"nodal areas of a layer", "na", layer, "layer"},
                                                                     nullptr, text<&sampling::NaOptions::layer>},
    {"mat",        3,  contains, option,    next,         never,     {"a material grid; may be repeated", "xs", grid, "grid", "", "", {.repeated = true}},
                                                                     nullptr, materialGrid},
    {"cpsd",       4,  contains, option,    gluedReal,    never,     {"search distance", "cp lp", number, "distance", "1000.0", "map units"},
                                                                     nullptr, glued<&CpOptions::searchDistance, &LpOptions::searchDistance>, kSearchDistanceChecks},
    {"cpmm",       4,  contains, option,    gluedReal,    never,     {"search distance of the minimum and maximum", "cp", number, "distance", "100.0", "map units"},
                                                                     on<&CpOptions::extremes>, glued<&CpOptions::extremesDistance>, kMinMaxDistanceChecks},
    {"lpmd",       4,  contains, option,    gluedReal,    never,     {"distance between points", "lp", number, "distance", "100.0", "map units"},
                                                                     nullptr, glued<&LpOptions::spacing>, kProfileDistanceChecks},
    {"lp",         2,  same,     operation, next,         atFlag,    {"long profiles along the lines of a layer", "lp", layer, "layer"},
                                                                     nullptr, text<&LpOptions::layer>},
    {"config",     6,  contains, option,    next,         never,     {"the config file", "cp", table, "file"},
                                                                     nullptr, text<&CpOptions::configFile>},
    {"cp",         2,  contains, operation, next,         atFlag,    {"calibration points of a layer against a grid", "cp", layer, "layer"},
                                                                     nullptr, text<&CpOptions::layer>},
    {"trim",       4,  contains, operation, next,         atFlag,    {"a grid for each region of a layer", "trim", layer, "layer"},
                                                                     nullptr, text<&ops::TrimOptions::layer>},
    {"nc_comp",    7,  contains, option,    gluedInteger, never,     {"NetCDF compression level", "nc", integer, "level", "1"},
                                                                     nullptr, glued<&netcdf::NcOptions::compression>},
    {"nc_shuffle", 10, contains, option,    gluedInteger, never,     {"NetCDF shuffle: 0 is off", "nc", choice, "0|1", "1"},
                                                                     nullptr, gluedSwitch<&netcdf::NcOptions::shuffle>},
    {"nc_part",    7,  contains, option,    gluedInteger, never,     {"NetCDF part switch: 0 is off", "nc", choice, "0|1", "0"},
                                                                     nullptr, gluedSwitch<&netcdf::NcOptions::part>},
    {"idw_npt",    7,  contains, option,    gluedInteger, never,     {"IDW with that number of points", "remap", integer, "points", "12", "points"},
                                                                     interpolateBy<Interpolation::idw>, glued<&RemapOptions::idwPoints>},
    {"tin",        3,  contains, option,    none,         never,     {"TIN", "remap", toggle, "", "on"},
                                                                     interpolateBy<Interpolation::tin>},
    {"wl",         2,  contains, option,    next,         never,     {"the water level grid; becomes input 1", "remap", grid, "grid", "", "", {.required = true}},
                                                                     nullptr, waterLevelGrid},
    {"dem",        3,  contains, option,    next,         never,     {"the terrain grid", "remap", grid, "grid", "", "", {.required = true}},
                                                                     nullptr, text<&RemapOptions::demGrid>},
    {"ext",        3,  contains, option,    next,         never,     {"the extent grid", "remap", grid, "grid"},
                                                                     nullptr, text<&RemapOptions::extentGrid>},
    {"fb",         2,  contains, option,    gluedReal,    never,     {"freeboard; sets IDW", "remap", number, "freeboard", "0.0", "cell values"},
                                                                     interpolateBy<Interpolation::idw>, glued<&RemapOptions::freeboard>, kFreeboardChecks},
    {"bd",         2,  contains, option,    gluedReal,    never,     {"buffer distance; sets IDW", "remap", number, "distance", "0.0", "map units"},
                                                                     growByIdw, glued<&RemapOptions::buffer>, kBufferChecks},
    {"nc",         2,  contains, operation, none,         atFlag,    {"grids to a NetCDF series", "nc"}},
    {"default_n",  9,  contains, option,    gluedReal,    never,     {"material of points that no material grid gives one", "xs", number, "value", "-9999"},
                                                                     give<&XsOptions::defaultN>, glued<&XsOptions::defaultN>},
    {"damages",    7,  contains, operation, next,         atValue,   {"flood damages by a control file", "damages", controlFile, "file.dmg", "", "", {}, "dmg"},
                                                                     nullptr, rawInput},
    {"b",          1,  contains, option,    none,         never,     {"batch mode: no wait for Enter after a run that finished", kEveryOperation},
                                                                     on<&Common::batch>},
    {"rf",         2,  contains, operation, next,         atValue,   {"rainfall grids by a control file", "rf", controlFile, "file.rfc", "", "", {}, "rfc"},
                                                                     nullptr, rawInput},
    {"stat",       4,  contains, operation, statistic,    afterScan, {"statistics of the input grids; flags add up", "stat", choice, "All|Mean|Median|Min|Max|Frac|Rank<n>|RankAll", "", "", {.repeated = true}}},
    {"decimal",    7,  contains, option,    gluedInteger, never,     {"decimal places of .asc cells", kByOperation, integer, "places", "3", "decimals"},
                                                                     nullptr, glued<&Common::decimals>},
});
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
