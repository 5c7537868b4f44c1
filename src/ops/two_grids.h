// What the operations on one grid or a pair share: a third name for the output, and how that is announced.
#pragma once

#include "run/common.h"
#include "run/inputs.h"

#include <string>
#include <string_view>

namespace gridforge::ops {

// Announces input 3 as the output name and takes it off the list. The name keeps its extension, so the written file has
// it twice ("c.asc.asc"), and the file must exist to have come through the expansion: on purpose, since scripts expect
// both.
void takeThirdAsOutput(run::Common& common, run::InputFileList& inputs);

// The output name given, announced, or else `ruled`.
std::string specifiedNameOr(const run::Common& common, std::string_view ruled);

} // namespace gridforge::ops
