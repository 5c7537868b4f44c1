// -dif: the first grid less the second, and where only one of the two is active.
#pragma once

#include "run/common.h"
#include "run/inputs.h"

namespace gridforge::ops {

// Two flags and no choice of one: -change counts in the check for a single operation also where -nowetdry wins.
struct DifOptions {
    bool change = false;   // the change where one of the cells is null
    bool nowetdry = false; // the difference alone; wins over the change

    friend bool operator==(const DifOptions&, const DifOptions&) = default;
};

void runDif(const run::Common& common, const DifOptions& options, const run::InputFileList& inputs);

} // namespace gridforge::ops
