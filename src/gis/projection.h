// The projection that a run takes from the first layer it reads, for the layers that it writes.
#pragma once

#include "host/units.h"

#include <string>
#include <string_view>

namespace gridforge::gis {

struct Projection {
    std::string mif = {}; // the CoordSys line of a .mif
    std::string shp = {}; // the line of a .prj
};

// Reads the PROJCS line of the .prj beside a .shp, or the CoordSys line of a .mif, and leaves the other one. A layer without
// its line ends the run.
void get_projection(std::string_view gisFile, Projection& projection);

// For the families: opens the file on `unit`, which stays open, and reads its first line that holds `word`. The console shows
// it after `label`. False if no line holds the word.
bool findProjectionLine(const std::string& fileName, std::string_view word, std::string_view label,
                        std::string& projection, Unit& unit);

} // namespace gridforge::gis
