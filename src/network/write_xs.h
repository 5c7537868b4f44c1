// The sections as 1d_xs layers, with a CSV file for each, and the check layer of their points.
#pragma once

#include "gis/projection.h"
#include "network/records.h"

#include <string>

namespace gridforge::network {

// The extracted sections to one layer, each with the name of its CSV file. A section without a name gets one from the
// branch that it meets; one that meets none ends the run.
void nbc_write_xs_single(NbcSections& sections, const std::string& name, const gis::Projection& projection);

// The same, those of each section layer to a layer named after it, or all to the one of `outputName` where that is not
// blank. Without `writeFlag` only the names of the CSV files are settled. Keeps the folder of each layer's CSV files.
void nbc_write_xs(NbcSections& sections, const gis::Projection& projection, bool materials, bool writeFlag,
                  const std::string& outputName);

enum class MaterialNumber { rounded, truncated };

// The table of a section: chainage, elevation and, with `materials`, the material of each point.
void writeSectionTable(const std::string& name, const NbcSection& section, bool materials, MaterialNumber number);

// The tables of the extracted sections in the folders of their layers.
void nbc_write_csv(const NbcSections& sections, bool materials);

// The points of all sections with their values.
void nbc_write_check(const NbcSections& sections, const gis::Projection& projection, bool materials,
                     const std::string& name);

} // namespace gridforge::network
