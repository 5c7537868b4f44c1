// Where each cross-section meets a branch.
#pragma once

#include "network/records.h"

namespace gridforge::network {

// Finds for every section the vertex that it snaps to or the segment that it crosses, and lists the sections that split
// on their branches. Costs little more than the vertices where sections and branches lie, whatever their number.
void nbc_match_sections(NbcBranches& branches, NbcSections& sections);

} // namespace gridforge::network
