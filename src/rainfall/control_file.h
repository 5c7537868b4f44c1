// The rainfall control file: what it sets, and its passes that read settings, hyetographs and points.
#pragma once

#include "core/text.h"
#include "grid/grid.h"
#include "host/control_lines.h"
#include "host/units.h"
#include "rainfall/hyetographs.h"
#include "rainfall/points.h"

#include <cstdint>
#include <string>

namespace gridforge::rainfall {

enum class RfFormat { asc, flt, nc };
enum class RfMethod { none, polygon, tin, idw };

struct RfSettings {
    float cell = 0.0F;
    float sizeX = 0.0F;
    float sizeY = 0.0F;
    std::int32_t rows = 0;    // N
    std::int32_t columns = 0; // M
    double xOrigin = 0.0;
    double yOrigin = 0.0;
    RfFormat format = RfFormat::asc;
    RfMethod method = RfMethod::none;
    std::int32_t idwMaxPoints = 0; // 0: all
    float idwMaxDistance = -99.0F; // below 0.001: no limit
    float idwExponent = 2.0F;
};

// Calls `work` with each line of the open control file that has content, its value trimmed.
template <typename Work>
void forEachCommand(Unit unit, Work&& work)
{
    ControlLine line;
    std::string right;
    while (!atEnd(unit)) {
        if (READLINE(unit, line.text, kLineWidth)) {
            CHECKLINE(line.text, "*", "==", 0, right, line.command);
            line.value = trim(right);
            work(line);
        }
    }
}

// The first pass: how many locations and how many points of a hyetograph there may be. What is not set stays.
void rf_scan_limits(const std::string& controlFile, std::int32_t& maxLocations, std::int32_t& maxPoints);

// The second pass: settings, hyetographs and points. An unknown command ends the run.
RfSettings readRfCommands(const std::string& controlFile, RfHyetographs& hyetographs, RfPoints& points);

// Rows, columns, corner, cell size and null of the rainfall grids; a size that does not make a grid ends the run.
GridHeader settleRfGrid(const RfSettings& settings);

} // namespace gridforge::rainfall
