// Sample points along the sections.
#pragma once

#include "network/records.h"

#include <optional>

namespace gridforge::network {

// What points hold that have no elevation, and no material either.
inline constexpr float kNoPointValue = -9999.0F;

// Gives every section its points at a spacing of its own or of `spacing`, without values except a default material. A section with a distance below 0 has its vertices as points. More than 10000 points end the run.
void nbc_insert_vertices(NbcSections& sections, float spacing, std::optional<float> defaultMaterial);

} // namespace gridforge::network
