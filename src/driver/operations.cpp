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

namespace gridforge::driver {

namespace {

using S = run::RunSettings;

// The order counts only where validation lets a pair through: "-count -cd" is a count.
// clang-format off
constexpr std::array<OperationRow, 25> kOperations = {{
    {"max",       [](const S& s) { return s.max || s.min; },   ops::runMaxMin},
    {"conv",      [](const S& s) { return s.conv; },           ops::runConv},
    {"nc",        [](const S& s) { return s.nc; },             netcdf::runNc},
    {"dif",       [](const S& s) { return s.dif; },            ops::runDif},
    {"cd",        [](const S& s) { return s.cd && !s.count; }, ops::runCutoff},
    {"trans_m",   [](const S& s) { return s.trans; },          ops::runTransform},
    {"fe",        [](const S& s) { return s.fe; },             ops::runFloodExtent},
    {"fuzzy",     [](const S& s) { return s.fuzzy; },          ops::runFuzzy},
    {"count",     [](const S& s) { return s.count; },          ops::runCount},
    {"resize",    [](const S& s) { return s.resize; },         ops::runResize},
    {"classify",  [](const S& s) { return s.classify; },       ops::runClassify},
    {"histogram", [](const S& s) { return s.histogram; },      ops::runHistogram},
    {"cp",        [](const S& s) { return s.cp; },             sampling::runCalibrationPoints},
    {"lp",        [](const S& s) { return s.lp; },             sampling::runLongProfile},
    {"brkline",   [](const S& s) { return s.brkline; },        sampling::runBreaklines},
    {"xs",        [](const S& s) { return s.xs; },             network::runXs},
    {"nbc",       [](const S& s) { return s.nbc; },            network::runNbc},
    {"na",        [](const S& s) { return s.na; },             sampling::runNodalArea},
    {"multiply",  [](const S& s) { return s.multiply; },       ops::runMultiply},
    {"xyz",       [](const S& s) { return s.xyz; },            sampling::runXyz},
    {"trim",      [](const S& s) { return s.trim; },           sampling::runTrim},
    {"damages",   [](const S& s) { return s.damages; },        damages::runDamages},
    {"rf",        [](const S& s) { return s.rf; },             rainfall::runRainfall},
    {"remap",     [](const S& s) { return s.remap; },          remap::runRemap},
    {"stat",      [](const S& s) { return s.stat; },           ops::runStat},
}};
// clang-format on

} // namespace

std::span<const OperationRow> operationTable()
{
    return kOperations;
}

const OperationRow* selectOperation(const run::RunSettings& settings)
{
    const auto found =
        std::ranges::find_if(kOperations, [&](const OperationRow& row) { return row.selected(settings); });
    return found == kOperations.end() ? nullptr : &*found;
}

void runOperation(const run::RunSettings& settings, const run::InputFileList& inputs)
{
    const OperationRow* operation = selectOperation(settings);
    if (operation != nullptr) {
        operation->run(settings, inputs);
    }
}

} // namespace gridforge::driver
