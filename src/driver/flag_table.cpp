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

bool controlFile(CommandLine& line, const std::string& value)
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

// Longer keys stand before the keys that are their prefixes, and "b" after all that begin with it: the order is part
// of what each flag means. The spans of "change" and "check" are one longer than their keys, so "--change" is "-change"
// too. "-nowetdry" and "-change" count as operations though they are options of "-dif"; the validation relies on it.
// clang-format off
constexpr std::array<FlagRow, 58> kFlags = {{
    {"max",        3,  contains, operation, none,         atFlag,    {"highest value of each cell over the input grids, with its source grid"},
                                                                     on<&S::max>},
    {"min",        3,  contains, operation, none,         atFlag,    {"lowest value of each cell over the input grids, with its source grid"},
                                                                     on<&S::min>},
    {"dif",        3,  contains, operation, none,         atFlag,    {"first grid minus second grid"},
                                                                     on<&S::dif>},
    {"src",        3,  contains, option,    none,         never,     {"with -max and -min: no source grid and no legend"},
                                                                     on<&S::src>},
    {"brkline",    7,  same,     operation, next,         atFlag,    {"breakline elevations from a terrain grid", "layer"},
                                                                     on<&S::brkline>, text<&S::brklineLayer>},
    {"cd",         2,  contains, operation, gluedReal,    atFlag,    {"keep only cells at or above the cutoff value", "value", "0.0"},
                                                                     on<&S::cd>, glued<&S::cutoff>, kCutoffChecks},
    {"out",        3,  same,     option,    next,         never,     {"name of the main output", "name"},
                                                                     on<&S::outputNameGiven>, text<&S::outputName>},
    {"resize",     6,  same,     operation, gluedInteger, atFlag,    {"coarser grid by a whole factor", "factor"},
                                                                     on<&S::resize>, glued<&S::resizeFactor>},
    {"trans_m",    7,  same,     operation, gluedReal,    afterScan, {"transform y = mx + c: the multiplier", "m", "1.0"},
                                                                     on<&S::trans>, glued<&S::transformM>},
    {"trans_c",    7,  same,     operation, gluedReal,    afterScan, {"transform y = mx + c: the constant", "c", "0.0"},
                                                                     on<&S::trans>, glued<&S::transformC>},
    {"rm_max",     6,  same,     option,    none,         never,     {"resize to the maximum of each block"},
                                                                     resizeBy<run::ResizeMethod::maximum>},
    {"rm_min",     6,  same,     option,    none,         never,     {"resize to the minimum of each block"},
                                                                     resizeBy<run::ResizeMethod::minimum>},
    {"rm_avg",     6,  same,     option,    none,         never,     {"resize to the average of each block", "", "on"},
                                                                     resizeBy<run::ResizeMethod::average>},
    {"classify",   8,  same,     operation, next,         atFlag,    {"classes of a grid by a class file", "classes.csv"},
                                                                     on<&S::classify>, text<&S::classFile>},
    {"RGB",        3,  same,     option,    none,         never,     {"with -classify: the class file carries colours"},
                                                                     on<&S::rgb>},
    {"count",      5,  same,     operation, none,         atFlag,    {"number of active cells, with -cd of those above the cutoff"},
                                                                     on<&S::count>},
    {"fe",         2,  same,     operation, none,         atFlag,    {"flood extent: 1 where the input is active and not 0"},
                                                                     on<&S::fe>},
    {"nowetdry",   8,  contains, option,    none,         atFlag,    {"with -dif -change: no wet/dry test"},
                                                                     on<&S::nowetdry>},
    {"change",     7,  contains, option,    none,         atFlag,    {"with -dif: change where one of the cells is null"},
                                                                     on<&S::change>},
    {"check",      6,  contains, option,    none,         never,     {"with -lp: extra check output"},
                                                                     on<&S::check>},
    {"xyz",        3,  contains, operation, none,         atFlag,    {"point file to grid"},
                                                                     on<&S::xyz>},
    {"fuzzy",      5,  contains, operation, none,         atFlag,    {"fuzzy map of the input grids"},
                                                                     on<&S::fuzzy>},
    {"asc",        3,  contains, option,    none,         never,     {"write grids as .asc", "", "the format of the inputs"},
                                                                     on<&S::formatSpecified, &S::ascWanted>},
    {"flt",        3,  contains, option,    none,         never,     {"write grids as .flt", "", "the format of the inputs"},
                                                                     on<&S::formatSpecified, &S::fltWanted>},
    {"conv",       4,  contains, operation, none,         atFlag,    {"conversion between .asc and .flt"},
                                                                     on<&S::conv>},
    {"multiply",   8,  contains, operation, none,         atFlag,    {"product of the input grids"},
                                                                     on<&S::multiply>},
    {"histogram",  9,  contains, operation, next,         atFlag,    {"number of cells in each bin", "bins.csv"},
                                                                     on<&S::histogram>, text<&S::classFile>},
    {"grc",        3,  contains, option,    none,         never,     {"with -classify: grid class output"},
                                                                     on<&S::grc>},
    {"xs",         2,  contains, operation, next,         atFlag,    {"cross-sections of a layer from grids", "layer"},
                                                                     on<&S::xs>, text<&S::xsLayer>},
    {"nbc",        3,  contains, operation, next,         atFlag,    {"1D network by a control file", "file.nbc"},
                                                                     on<&S::nbc>, controlFile},
    {"branch",     6,  contains, option,    next,         never,     {"with -xs: the branch layer", "layer"},
                                                                     nullptr, text<&S::branchLayer>},
    {"remap",      5,  contains, operation, none,         atFlag,    {"water level grid to a finer terrain grid; sets TIN"},
                                                                     interpolateBy<run::kInterpolateTin, &S::remap>},
    {"na",         2,  contains, operation, next,         atFlag,    {"nodal areas of a layer", "layer"},
                                                                     on<&S::na>, text<&S::naLayer>},
    {"mat",        3,  contains, option,    next,         never,     {"with -xs: a material grid; may be repeated", "grid"},
                                                                     nullptr, materialGrid},
    {"cpsd",       4,  contains, option,    gluedReal,    never,     {"with -cp: search distance", "distance", "1000.0"},
                                                                     nullptr, glued<&S::cpSearchDistance>, kSearchDistanceChecks},
    {"cpmm",       4,  contains, option,    gluedReal,    never,     {"with -cp: search distance of the minimum and maximum", "distance", "100.0"},
                                                                     on<&S::cpmm>, glued<&S::cpMinMaxDistance>, kMinMaxDistanceChecks},
    {"lpmd",       4,  contains, option,    gluedReal,    never,     {"with -lp: distance between points", "distance", "100.0"},
                                                                     nullptr, glued<&S::lpDistance>, kProfileDistanceChecks},
    {"lp",         2,  same,     operation, next,         atFlag,    {"long profiles along the lines of a layer", "layer"},
                                                                     on<&S::lp>, text<&S::lpLayer>},
    {"config",     6,  contains, option,    next,         never,     {"with -cp: the config file", "file"},
                                                                     nullptr, text<&S::configFile>},
    {"cp",         2,  contains, operation, next,         atFlag,    {"calibration points of a layer against a grid", "layer"},
                                                                     on<&S::cp>, text<&S::cpLayer>},
    {"trim",       4,  contains, operation, next,         atFlag,    {"a grid for each region of a layer", "layer"},
                                                                     on<&S::trim>, text<&S::trimLayer>},
    {"nc_comp",    7,  contains, option,    gluedInteger, never,     {"NetCDF compression level", "level", "1"},
                                                                     nullptr, glued<&S::ncCompression>},
    {"nc_shuffle", 10, contains, option,    gluedInteger, never,     {"NetCDF shuffle: 0 is off", "switch", "1"},
                                                                     nullptr, gluedSwitch<&S::ncShuffle>},
    {"nc_part",    7,  contains, option,    gluedInteger, never,     {"NetCDF part switch: 0 is off", "switch", "0"},
                                                                     nullptr, gluedSwitch<&S::ncPart>},
    {"idw_npt",    7,  contains, option,    gluedInteger, never,     {"with -remap: IDW with that number of points", "points", "12"},
                                                                     interpolateBy<run::kInterpolateIdw>, glued<&S::idwPoints>},
    {"tin",        3,  contains, option,    none,         never,     {"with -remap: TIN", "", "on"},
                                                                     interpolateBy<run::kInterpolateTin>},
    {"wl",         2,  contains, option,    next,         never,     {"with -remap: the water level grid; becomes input 1", "grid"},
                                                                     nullptr, waterLevelGrid},
    {"dem",        3,  contains, option,    next,         never,     {"with -remap: the terrain grid", "grid"},
                                                                     nullptr, text<&S::demGrid>},
    {"ext",        3,  contains, option,    next,         never,     {"with -remap: the extent grid", "grid"},
                                                                     nullptr, text<&S::extentGrid>},
    {"fb",         2,  contains, option,    gluedReal,    never,     {"with -remap: freeboard; sets IDW", "freeboard", "0.0"},
                                                                     interpolateBy<run::kInterpolateIdw>, glued<&S::freeboard>, kFreeboardChecks},
    {"bd",         2,  contains, option,    gluedReal,    never,     {"with -remap: buffer distance; sets IDW", "distance", "0.0"},
                                                                     interpolateBy<run::kInterpolateIdw, &S::bufferGiven>, glued<&S::bufferDistance>, kBufferChecks},
    {"nc",         2,  contains, operation, none,         atFlag,    {"grids to a NetCDF series"},
                                                                     on<&S::nc>},
    {"default_n",  9,  contains, option,    gluedReal,    never,     {"with -xs: material of points that no material grid gives one", "value", "-9999"},
                                                                     on<&S::defaultNGiven>, glued<&S::defaultN>},
    {"damages",    7,  contains, operation, next,         atValue,   {"flood damages by a control file", "file.dmg"},
                                                                     on<&S::damages>, controlFile},
    {"b",          1,  contains, option,    none,         never,     {"batch mode: no wait for Enter after a run that finished"},
                                                                     on<&S::batch>},
    {"rf",         2,  contains, operation, next,         atValue,   {"rainfall grids by a control file", "file"},
                                                                     on<&S::rf>, controlFile},
    {"stat",       4,  contains, operation, statistic,    afterScan, {"statistics of the input grids; flags add up", "All|Mean|Median|Min|Max|Frac|Rank<n>|RankAll"},
                                                                     on<&S::stat>},
    {"decimal",    7,  contains, option,    gluedInteger, never,     {"decimal places of .asc cells", "places", "3"},
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
