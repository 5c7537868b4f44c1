// The .dmg control file, read in two passes: the limits first, wherever they stand in the file, then all else.
#pragma once

#include "damages/records.h"
#include "gis/projection.h"

#include <string>
#include <vector>

namespace gridforge::damages {

// Takes the limits that the file sets; the others stay. A value that cannot be read ends the run.
void dmg_scan_limits(const std::string& controlFile, DmgLimits& limits);

struct DmgControl {
    std::vector<std::string> buildingFiles;
    std::vector<DmgCurve> curves;
    std::vector<DmgRes> results; // as listed
    RegionLevel method = RegionLevel::maximum;
    gis::Projection projection; // of the first building layer
};

// The second pass. It reads the curves as it meets them. Unknown commands are ignored.
DmgControl readDamagesFile(const std::string& controlFile, const DmgLimits& limits);

} // namespace gridforge::damages
