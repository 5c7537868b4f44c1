#include "ops/two_grids.h"

#include "core/text.h"
#include "host/console.h"

#include <cassert>

namespace gridforge::ops {

void takeThirdAsOutput(run::RunSettings& settings, run::InputFileList& inputs)
{
    assert(inputs.count() == 3);
    say("   Using third filename as output: ", quoted(inputs[3]), '.');
    settings.outputName = inputs[3];
    settings.outputNameGiven = true;
    inputs.dropLast();
}

std::string specifiedNameOr(const run::RunSettings& settings, std::string_view ruled)
{
    if (!settings.outputNameGiven) {
        return cut(ruled, kNameWidth);
    }
    say("Using specified output file name: ", quoted(settings.outputName));
    return settings.outputName;
}

} // namespace gridforge::ops
