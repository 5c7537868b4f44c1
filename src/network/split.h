// Branches cut at their sections into network lines.
#pragma once

#include "network/records.h"

namespace gridforge::network {

// Makes the network lines: those of each branch, cut at the sections listed on it, then one for each connector. The
// branches' vertices are overwritten where a section crosses.
void nbc_split_branches(NbcBranches& branches, NbcLines& lines, const NbcConnectors& connectors);

// Announces the memory of the network lines and splits the branches into them.
NbcLines createLines(NbcBranches& branches, const NbcConnectors& connectors);

} // namespace gridforge::network
