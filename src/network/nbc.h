// -nbc builds a network from branches and sections, as a control file asks for.
#pragma once

#include "run/inputs.h"

namespace gridforge::network {

void runNbc(const run::InputFileList& inputs);

} // namespace gridforge::network
