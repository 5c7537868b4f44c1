#include "ops/two_grids.h"

#include "core/text.h"
#include "host/console.h"

#include <cassert>

namespace gridforge::ops {

void takeThirdAsOutput(run::Common& common, run::InputFileList& inputs)
{
    assert(inputs.count() == 3);
    say("   Using third filename as output: ", quoted(inputs[3]), '.');
    common.out = inputs[3];
    inputs.dropLast();
}

std::string specifiedNameOr(const run::Common& common, std::string_view ruled)
{
    if (!common.out) {
        return cut(ruled, kNameWidth);
    }
    say("Using specified output file name: ", quoted(*common.out));
    return *common.out;
}

} // namespace gridforge::ops
