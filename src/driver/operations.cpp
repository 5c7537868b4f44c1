#include "driver/operations.h"

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
#include "ops/resize.h"
#include "ops/stat.h"
#include "ops/transform.h"
#include "rainfall/rainfall.h"
#include "remap/remap.h"
#include "sampling/brkline.h"
#include "sampling/cp.h"
#include "sampling/lp.h"
#include "sampling/na.h"
#include "sampling/trim.h"
#include "sampling/xyz.h"

#include <algorithm>
#include <array>

namespace gridforge {

namespace {

using S = RunSettings;

// The order counts only where validation lets a pair through: "-count -cd" is a count.
// clang-format off
constexpr std::array<OperationRow, 25> kOperations = {{
    {"max",       [](const S& s) { return s.max || s.min; },   runMaxMin},
    {"conv",      [](const S& s) { return s.conv; },           runConv},
    {"nc",        [](const S& s) { return s.nc; },             runNc},
    {"dif",       [](const S& s) { return s.dif; },            runDif},
    {"cd",        [](const S& s) { return s.cd && !s.count; }, runCutoff},
    {"trans_m",   [](const S& s) { return s.trans; },          runTransform},
    {"fe",        [](const S& s) { return s.fe; },             runFloodExtent},
    {"fuzzy",     [](const S& s) { return s.fuzzy; },          runFuzzy},
    {"count",     [](const S& s) { return s.count; },          runCount},
    {"resize",    [](const S& s) { return s.resize; },         runResize},
    {"classify",  [](const S& s) { return s.classify; },       runClassify},
    {"histogram", [](const S& s) { return s.histogram; },      runHistogram},
    {"cp",        [](const S& s) { return s.cp; },             runCalibrationPoints},
    {"lp",        [](const S& s) { return s.lp; },             runLongProfile},
    {"brkline",   [](const S& s) { return s.brkline; },        runBreaklines},
    {"xs",        [](const S& s) { return s.xs; },             runXs},
    {"nbc",       [](const S& s) { return s.nbc; },            runNbc},
    {"na",        [](const S& s) { return s.na; },             runNodalArea},
    {"multiply",  [](const S& s) { return s.multiply; },       runMultiply},
    {"xyz",       [](const S& s) { return s.xyz; },            runXyz},
    {"trim",      [](const S& s) { return s.trim; },           runTrim},
    {"damages",   [](const S& s) { return s.damages; },        runDamages},
    {"rf",        [](const S& s) { return s.rf; },             runRainfall},
    {"remap",     [](const S& s) { return s.remap; },          runRemap},
    {"stat",      [](const S& s) { return s.stat; },           runStat},
}};
// clang-format on

} // namespace

std::span<const OperationRow> operationTable()
{
    return kOperations;
}

const OperationRow* selectOperation(const RunSettings& settings)
{
    const auto found =
        std::ranges::find_if(kOperations, [&](const OperationRow& row) { return row.selected(settings); });
    return found == kOperations.end() ? nullptr : &*found;
}

void runOperation(const RunSettings& settings, const InputFileList& inputs)
{
    const OperationRow* operation = selectOperation(settings);
    if (operation != nullptr) {
        operation->run(settings, inputs);
    }
}

} // namespace gridforge
