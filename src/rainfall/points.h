// Rainfall locations from point layers (`rf_points`).
#pragma once

#include "rainfall/hyetographs.h"
#include "rainfall/rf_point.h"

#include <string>
#include <string_view>

namespace gridforge::rainfall {

// Name, F1 and F2 out of a data line; one that cannot be read ends the run.
RfRecord parseRfRecord(std::string_view dataLine);
// A factor below 0.001 becomes 1, with a warning.
void mendFactors(RfRecord& record);

// Appends the points of a layer; other objects are skipped with a warning. Points past the maximum end the run.
void rf_read_points(const std::string& layerName, RfPoints& points);

// Gives each point the number of its hyetograph; a name that no hyetograph has ends the run.
void rf_match_points(const RfHyetographs& hyetographs, RfPoints& points);

} // namespace gridforge::rainfall
