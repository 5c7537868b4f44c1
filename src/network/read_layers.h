// Branches, connectors and sections out of their layers.
#pragma once

#include "network/records.h"

#include <string>

namespace gridforge::network {

// Empty records, with the lines that announce them.
NbcSections createSections();
NbcBranches createBranches();

// Adds the lines and polylines of a branch layer. Attributes: name, roughness, flag, form loss and, in a layer of more
// than four, the channel type. Objects with the name x become connectors. What cannot be read ends the run.
void nbc_read_branches(const std::string& layerName, NbcBranches& branches, NbcConnectors& connectors);

// Adds the lines and polylines of a section layer: cut lines, or with 12 attributes and more those of a 1d_tab layer.
// What cannot be read ends the run.
void nbc_read_sections(const std::string& layerName, NbcSections& sections);

} // namespace gridforge::network
