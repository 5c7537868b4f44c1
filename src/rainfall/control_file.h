// The rainfall control file: what it sets, and its passes that read settings, hyetographs and points.
#pragma once

#include "rainfall/hyetographs.h"
#include "rainfall/points.h"

#include <cstdint>
#include <string>

namespace gridforge::rainfall {

enum class RfFormat { asc, flt, nc };
enum class RfMethod { polygon, tin, idw };

struct RfSettings {
    float cell = 0.0F;
    float sizeX = 0.0F;
    float sizeY = 0.0F;
    std::int32_t rows = 0;    // N
    std::int32_t columns = 0; // M
    double xOrigin = 0.0;
    double yOrigin = 0.0;
    RfFormat format = RfFormat::asc;
    RfMethod method = RfMethod::polygon; // the file must name one
    std::int32_t idwMaxPoints = 0;       // 0: all
    float idwMaxDistance = -99.0F;       // below 0.001: no limit
    float idwExponent = 2.0F;
};

// How many locations and how many points of a hyetograph there may be.
struct RfLimits {
    std::int32_t locations = 100;
    std::int32_t points = 100;
};

// The first pass: the limits that the file sets; the others stay.
void rf_scan_limits(const std::string& controlFile, RfLimits& limits);

// The second pass: settings, hyetographs and points. An unknown command ends the run.
RfSettings readRfCommands(const std::string& controlFile, RfHyetographs& hyetographs, RfPoints& points);

} // namespace gridforge::rainfall
