// Rainfall locations from point layers (`rf_points`).
#pragma once

#include "rainfall/hyetographs.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace gridforge::rainfall {

// The name of a hyetograph and the factors of its depths: what the record of a point or polygon holds.
struct RfRecord {
    std::string name;
    float f1 = 0;
    float f2 = 0;
};

struct RfPoint {
    RfRecord record;
    double x = 0;
    double y = 0;
    std::int32_t hyetograph = 0; // from 1, once matched
};

struct RfPoints {
    std::int32_t maxLocations = 0;
    std::vector<RfPoint> records;

    std::int32_t count() const { return static_cast<std::int32_t>(records.size()); }
};

// Name, F1 and F2 out of a data line; one that cannot be read ends the run.
RfRecord parseRfRecord(std::string_view dataLine);
// A factor below 0.001 becomes 1, with a warning.
void mendFactors(RfRecord& record);

// Appends the points of a layer; other objects are skipped with a warning. Points past the maximum end the run.
void rf_read_points(const std::string& layerName, RfPoints& points);

// Gives each point the number of its hyetograph; a name that no hyetograph has ends the run.
void rf_match_points(const RfHyetographs& hyetographs, RfPoints& points);

} // namespace gridforge::rainfall
