// -damages: what floods of several probabilities cost each building of a layer.
#pragma once

#include "damages/output.h"
#include "run/common.h"
#include "run/inputs.h"

#include <string_view>

namespace gridforge::damages {

// The outputs: beside the first building layer, or as -out says.
DamageNames damageNames(const run::Common& common, std::string_view firstLayer);

void runDamages(const run::Common& common, const run::InputFileList& inputs);

} // namespace gridforge::damages
