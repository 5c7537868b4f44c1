#include "driver/operations.h"

#include "core/text.h"
#include "damages/damages.h"
#include "netcdf/nc.h"
#include "network/nbc.h"
#include "network/xs.h"
#include "ops/classify.h"
#include "ops/conv.h"
#include "ops/count.h"
#include "ops/cutoff.h"
#include "ops/dif.h"
#include "ops/flood_extent.h"
#include "ops/fuzzy.h"
#include "ops/histogram.h"
#include "ops/max_min.h"
#include "ops/multiply.h"
#include "ops/resize.h"
#include "ops/stat.h"
#include "ops/stat_cells.h"
#include "ops/transform.h"
#include "ops/trim.h"
#include "ops/xyz.h"
#include "rainfall/rainfall.h"
#include "remap/remap.h"
#include "sampling/brkline.h"
#include "sampling/cp.h"
#include "sampling/lp.h"
#include "sampling/na.h"

#include <algorithm>
#include <array>
#include <tuple>
#include <type_traits>

namespace gridforge::driver {

namespace {

using enum FileKind;

// clang-format off
constexpr auto kMaxOutputs = std::to_array<OutputRow>({
    {grid, "{first}(maxmax)", "{out}", "max"},
    {grid, "{first}(maxmax)_src", "{out}_src", "max", "src"},
    {table, "{first}(maxmax)_src_legend.csv", "{out}_src_legend.csv", "max", "src"},
    {grid, "{first}(minmin)", "{out}", "min"},
    {grid, "{first}(minmin)_src", "{out}_src", "min", "src"},
    {table, "{first}(minmin)_src_legend.csv", "{out}_src_legend.csv", "min", "src"},
});
constexpr auto kConvOutputs = std::to_array<OutputRow>({
    {grid, "{input}", "{out}"},
});
constexpr auto kNcOutputs = std::to_array<OutputRow>({
    {netcdf, "{first}.nc", "{out}.nc"},
});
constexpr auto kDifOutputs = std::to_array<OutputRow>({
    {grid, "{first} - {second}", "{out}"},
    {grid, "{first} - {second}_wd", "{out}_wd", "", "change nowetdry"},
});
constexpr auto kCdOutputs = std::to_array<OutputRow>({
    {grid, "{first}_cd{value}", "{out}", "", "", "of one input"},
    {grid, "{second}_filtered{value}", "{out}", "", "", "of two inputs"},
});
constexpr auto kTransMOutputs = std::to_array<OutputRow>({
    {grid, "{first}_trans", "{out}"},
});
constexpr auto kFeOutputs = std::to_array<OutputRow>({
    {grid, "{first}_extent", "{out}"},
});
constexpr auto kFuzzyOutputs = std::to_array<OutputRow>({
    {grid, "{first}_fuzzy", "{out}"},
});
constexpr auto kCountOutputs = std::to_array<OutputRow>({
    {table, "{first}_count.txt"},
});
constexpr auto kResizeOutputs = std::to_array<OutputRow>({
    {grid, "{first}_resize{value}", "{out}"},
});
constexpr auto kClassifyOutputs = std::to_array<OutputRow>({
    {grid, "{first}_classified", "{out}"},
});
constexpr auto kHistogramOutputs = std::to_array<OutputRow>({
    {table, "{first}_histogram.csv"},
});
constexpr auto kCpOutputs = std::to_array<OutputRow>({
    {layer, "{layer}_Res", "{out}"},
    {layer, "{layer}_Cn", "{out}_Cn"},
    {table, "{layer}.csv", "{out}.csv"},
});
constexpr auto kLpOutputs = std::to_array<OutputRow>({
    {table, "{layer}_{label}.csv", "{out}_{label}.csv", "", "", "of each line"},
    {layer, "{layer}_LP_check", "{out}", "check"},
});
constexpr auto kBrklineOutputs = std::to_array<OutputRow>({
    {layer, "{layer}_brkline"},
    {layer, "{layer}_check", "", "check"},
});
constexpr auto kXsOutputs = std::to_array<OutputRow>({
    {layer, "1d_nwk{rest}", "", "branch", "", "in the folder of the branches"},
    {layer, "1d_xs{rest}", "", "", "", "in the folder of the sections"},
    {table, "{table}", "", "", "", "of each section, by its first attribute or csv/{branch}_{chainage}.csv", true},
});
constexpr auto kNbcOutputs = std::to_array<OutputRow>({
    {layer, "1d_nwk{rest}", "", "", "", "in the folder of the branches, unless the control file says otherwise", true},
    {layer, "1d_xs{rest}", "", "", "", "in the folder of the sections, unless the control file says otherwise", true},
    {table, "{table}", "", "", "", "of each section, by its first attribute or csv/{branch}_{chainage}.csv", true},
    {layer, "{control}.nbc_check", "", "", "", "with Write Check == On"},
});
constexpr auto kNaOutputs = std::to_array<OutputRow>({
    {table, "{table}", "", "", "", "of each region, by its first attribute", true},
});
constexpr auto kMultiplyOutputs = std::to_array<OutputRow>({
    {grid, "{first}_mlt_{second}", "{out}"},
});
constexpr auto kXyzOutputs = std::to_array<OutputRow>({
    {grid, "{first}_xyz_to_grid", "{out}"},
});
constexpr auto kTrimOutputs = std::to_array<OutputRow>({
    {grid, "{region}_{input}", "{out}", "", "", "of one input and one region"},
    {grid, "{region}_{input}", "{out}_{input}", "", "", "of several inputs and one region"},
    {grid, "{region}_{input}", "{out}_{region}", "", "", "of one input and several regions"},
    {grid, "{region}_{input}", "{out}_{input}_{region}", "", "", "of several inputs and regions"},
});
constexpr auto kDamagesOutputs = std::to_array<OutputRow>({
    {layer, "{layer}_Damages", "{out}", "", "", "after the first layer of the control file"},
    {table, "{layer}_Damages.csv", "{out}.csv", "", "", "after the first layer of the control file"},
});
constexpr auto kRfOutputs = std::to_array<OutputRow>({
    {grid, "{control}_t{time}", "", "", "", "of each time, with RF Grid Format == ASC or FLT"},
    {grid, "{control}_total", "", "", "", "with RF Grid Format == ASC or FLT"},
    {netcdf, "{control}.nc", "", "", "", "with RF Grid Format == NC"},
    {table, "{control}_index.csv"},
    {grid, "rf_index", "", "", "", "with RF Interpolation Method == Polygon"},
    {grid, "rf_fac", "", "", "", "with RF Interpolation Method == Polygon"},
    {grid, "rf_giit", "", "", "", "with RF Interpolation Method == TIN"},
});
constexpr auto kRemapOutputs = std::to_array<OutputRow>({
    {grid, "{levels}_remap_h"},
    {grid, "{levels}_remap_d"},
    {grid, "{levels}_h_IDW", "", "idw_npt bd fb", "", "by the IDW method"},
    {grid, "{levels}_d2_iter{n}", "", "idw_npt bd fb", "", "of each 100th iteration of the IDW method"},
    {grid, "{input}_remap", "", "", "", "of each input without _h_ and _d_ in its name"},
});
constexpr auto kStatOutputs = std::to_array<OutputRow>({
    {grid, "{first}_Min_Val", "{out}_Min_Val", "statMin statAll"},
    {grid, "{first}_Min_Src", "{out}_Min_Src", "statMin statAll"},
    {grid, "{first}_Max_Val", "{out}_Max_Val", "statMax statAll"},
    {grid, "{first}_Max_Src", "{out}_Max_Src", "statMax statAll"},
    {grid, "{first}_Mean_Val", "{out}_Mean_Val", "statMean statAll"},
    {grid, "{first}_Mean_Src", "{out}_Mean_Src", "statMean statAll"},
    {grid, "{first}_Median_Val", "{out}_Median_Val", "statMedian statAll"},
    {grid, "{first}_Median_Src", "{out}_Median_Src", "statMedian statAll"},
    {grid, "{first}_Frac_Wet", "{out}_Frac_Wet", "statFrac statAll"},
    {grid, "{first}_Rank{rank}_Val", "{out}_Rank{rank}_Val", "statRank statRankAll", "", "of each rank"},
    {grid, "{first}_Rank{rank}_Src", "{out}_Rank{rank}_Src", "statRank statRankAll", "", "of each rank"},
    {table, "{first}_Src_legend.csv", "{out}_Src_legend.csv"},
});
// clang-format on

// --- How a run is called ---------------------------------------------------------------------------------------------

template <typename Wanted>
const Wanted& found(const Settings& settings, const run::InputFileList& inputs)
{
    if constexpr (std::is_same_v<Wanted, run::InputFileList>) {
        return inputs;
    } else {
        return get<Wanted>(settings);
    }
}

template <typename... Parameters>
void call(void (*run)(const Parameters&...), const Settings& settings, const run::InputFileList& inputs)
{
    run(found<Parameters>(settings, inputs)...);
}

// With the records that its parameters ask for.
template <auto run>
void with(const Settings& settings, const run::InputFileList& inputs)
{
    call(run, settings, inputs);
}

bool hasWord(std::string_view words, std::string_view word)
{
    return join(' ', words, ' ').find(join(' ', word, ' ')) != std::string::npos;
}

// --- The table -------------------------------------------------------------------------------------------------------

// Options that many operations take.
constexpr std::string_view kNamedOutput = "out";
constexpr std::string_view kNewGrids = "out asc flt decimal";

// The order counts only where validation lets a pair through.
// clang-format off
constexpr auto kOperations = std::to_array<OperationRow>({
    {"max",
     {"highest or lowest value of each cell over many grids", "max-min", {1, run::kMaxInputs}, kMaxOutputs, kNewGrids},
     with<ops::runMaxMin>},
    {"conv",
     {"turns .asc grids into .flt and back", "conv", {1, run::kMaxInputs}, kConvOutputs, kNewGrids},
     with<ops::runConv>},
    {"nc",
     {"a series of grids in one NetCDF file, with their maximum", "nc", {1, run::kMaxInputs}, kNcOutputs, kNamedOutput},
     with<netcdf::runNc>},
    {"dif",
     {"difference of two grids, and where only one is active", "dif",
      {2, 2, Surplus::refused, ThenName::output}, kDifOutputs, kNewGrids},
     with<ops::runDif>},
    {"cd",
     {"cells that reach a cutoff, or a second grid's cells there", "cd",
      {1, 2, Surplus::refused, ThenName::existingOutput}, kCdOutputs, kNewGrids},
     with<ops::runCutoff>, "count"},
    {"trans_m",
     {"y = m x + c", "transform", {1, 1, Surplus::ignored}, kTransMOutputs, kNewGrids},
     with<ops::runTransform>},
    {"fe",
     {"mask of the wet cells", "fe", {1, 1, Surplus::ignored}, kFeOutputs, kNewGrids},
     with<ops::runFloodExtent>},
    {"fuzzy",
     {"fraction of grids in which a cell is active", "fuzzy", {1, run::kMaxInputs}, kFuzzyOutputs, kNewGrids},
     with<ops::runFuzzy>},
    {"count",
     {"number of wet cells", "count", {1, 1, Surplus::ignored}, kCountOutputs},
     with<ops::runCount>},
    {"resize",
     {"coarser grid by average, minimum or maximum", "resize", {1, 1}, kResizeOutputs, kNewGrids},
     with<ops::runResize>},
    {"classify",
     {"class numbers in place of values", "classify", {1, 1}, kClassifyOutputs, kNewGrids},
     with<ops::runClassify>},
    {"histogram",
     {"counts of cells by bins", "histogram", {1, 1}, kHistogramOutputs},
     with<ops::runHistogram>},
    {"cp",
     {"observed points against the nearest cells of a grid", "cp", {1, 1, Surplus::ignored}, kCpOutputs, kNamedOutput},
     with<sampling::runCalibrationPoints>},
    {"lp",
     {"long profiles, invert and banks, along lines", "lp", {1, 1, Surplus::ignored}, kLpOutputs, kNamedOutput},
     with<sampling::runLongProfile>},
    {"brkline",
     {"lines with ground elevations at vertices along them", "brkline", {1, 1}, kBrklineOutputs},
     with<sampling::runBreaklines>},
    {"xs",
     {"cross-sections from grids, and a network with -branch", "xs", {1, run::kMaxInputs}, kXsOutputs},
     with<network::runXs>},
    {"nbc",
     {"a 1D network and its cross-sections by a control file", "nbc", {0, 0}, kNbcOutputs},
     with<network::runNbc>},
    {"na",
     {"tables of height and area of the terrain inside regions", "na", {1, 1}, kNaOutputs},
     with<sampling::runNodalArea>},
    {"multiply",
     {"product of two grids", "multiply", {2, 2, Surplus::refused, ThenName::existingOutput}, kMultiplyOutputs, kNewGrids},
     with<ops::runMultiply>},
    {"xyz",
     {"a grid out of a text file of points", "xyz",
      {1, 1, Surplus::ignored, ThenName::none, ValueKind::table}, kXyzOutputs, kNewGrids},
     with<ops::runXyz>},
    {"trim",
     {"a grid for each region of a layer", "trim", {1, run::kMaxInputs}, kTrimOutputs, kNewGrids},
     with<ops::runTrim>},
    {"damages",
     {"what floods cost each building", "damages", {0, 0}, kDamagesOutputs, kNamedOutput},
     with<damages::runDamages>},
    {"rf",
     {"rainfall at gauges or over areas to a grid for each time step", "rf", {0, 0}, kRfOutputs, "decimal"},
     with<rainfall::runRainfall>},
    {"remap",
     {"water levels of a coarse model on a finer terrain", "remap", {0, run::kMaxInputs - 1}, kRemapOutputs, "asc flt decimal"},
     with<remap::runRemap>},
    {"stat",
     {"minimum, maximum, mean, median, ranks and fraction wet over grids", "stat", {2, ops::kMaxStatGrids}, kStatOutputs, kNewGrids},
     with<ops::runStat>},
});
// clang-format on

} // namespace

std::span<const OperationRow> operationTable()
{
    return kOperations;
}

bool isOptionOf(const FlagRow& flag, const OperationRow& operation)
{
    return operationOf(flag) != operation.name &&
           (hasWord(flag.docs.operations, operation.name) || hasWord(operation.docs.options, flag.key));
}

const OperationRow* selectOperation(const CommandLine& line)
{
    const auto found = std::ranges::find_if(kOperations, [&](const OperationRow& row) {
        return line.asked.contains(row.name) && !line.asked.contains(row.yieldsTo);
    });
    return found == kOperations.end() ? nullptr : &*found;
}

void runOperation(const CommandLine& line, const run::InputFileList& inputs)
{
    const OperationRow* operation = selectOperation(line);
    if (operation != nullptr) {
        operation->run(line.settings, inputs);
    }
}

} // namespace gridforge::driver
