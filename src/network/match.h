// Where each cross-section meets a branch.
#pragma once

#include "network/records.h"

#include <cstdint>

namespace gridforge::network {

// The extents of branch b and section s, from 1, meet or touch.
bool extents_overlap(const NbcBranches& branches, std::int32_t b, const NbcSections& sections, std::int32_t s);

// Finds for every section the vertex that it snaps to or the segment that it crosses, and lists the sections that split
// on their branches. Costs little more than the vertices where sections and branches lie, whatever their number.
void nbc_match_sections(NbcBranches& branches, NbcSections& sections);

} // namespace gridforge::network
