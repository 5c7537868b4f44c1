#include "driver/run_tool.h"

#include "core/product.h"
#include "driver/operations.h"
#include "driver/scan.h"
#include "driver/usage.h"
#include "driver/validate.h"
#include "gis/layer_table.h"
#include "host/ends.h"
#include "host/limits.h"
#include "host/units.h"

#include <string_view>

namespace gridforge::driver {

namespace {

constexpr std::string_view kBanner = "Build 2020-10-AA";
constexpr std::int32_t kUnitBase = 1000;

// The tables that live as long as the process.
void startTables()
{
    startUnits(kUnitBase);
    gis::initialise();
}

} // namespace

void runTool(const std::vector<std::string>& arguments)
{
    startTables();
    say(kBanner);
    if (arguments.empty()) {
        showUsage();
    }

    CommandLine line = scanArguments(arguments);
    validate(line);
    askForLimits();
    const run::InputFileList inputs = run::expandInputs(line.rawInputList);
    runOperation(line, inputs);
    endFinished(get<run::Common>(line.settings).batch);
}

} // namespace gridforge::driver
