#include "damages/control_file.h"

#include "core/free_form.h"
#include "core/text.h"
#include "damages/curves.h"
#include "gis/projection.h"
#include "host/console.h"
#include "host/control_commands.h"
#include "host/ends.h"
#include "host/units.h"

#include <array>
#include <string_view>
#include <utility>

namespace gridforge::damages {

namespace {

constexpr std::int32_t kMaxBuildingFiles = 2000;
constexpr float kPercent = 100.0F;

// --- The first pass --------------------------------------------------------------------------------------------------

template <std::int32_t DmgLimits::*limit>
void takeLimit(const ControlLine& line, DmgLimits& limits)
{
    readValue(line,
              "ERROR - Extracting maximum arrays size as parameter on following line in damages file:", limits.*limit);
}

// In the order in which they are tried.
constexpr auto kLimitCommands = std::to_array<ControlCommand<DmgLimits>>({
    {"Maximum Building", takeLimit<&DmgLimits::buildings>},
    {"Maximum Vertice", takeLimit<&DmgLimits::vertices>},
    {"Maximum Vertex", takeLimit<&DmgLimits::vertices>},
    {"Maximum Damage Curve", takeLimit<&DmgLimits::curves>},
    {"Maximum Point in Curve", takeLimit<&DmgLimits::curvePoints>},
    {"Maximum Results", takeLimit<&DmgLimits::results>},
});

// --- The second pass -------------------------------------------------------------------------------------------------

struct SecondPass {
    const DmgLimits& limits;
    DmgControl control;
};

void addBuildingFile(const ControlLine& line, SecondPass& pass)
{
    DmgControl& control = pass.control;
    const std::size_t count = control.buildingFiles.size() + 1;
    say("Debug - nGISF: ", count);
    say("Debug - k: ", count);
    if (count > kMaxBuildingFiles) {
        fail("ERROR - Number of building polygons exceeds maximum:", kMaxBuildingFiles);
    }
    control.buildingFiles.push_back(line.value);
    if (count == 1) {
        get_projection(line.value, control.projection);
    } else {
        say("Projection check not yet implemented.");
    }
}

void addCurve(const ControlLine& line, SecondPass& pass)
{
    auto& [limits, control] = pass;
    constexpr std::size_t kNameColumn = 12; // after "Read Curve" and a blank
    const auto count = static_cast<std::int64_t>(control.curves.size()) + 1;
    say("Debug - dmg_curve_%ncurve: ", count);
    say("Debug - i: ", count);
    if (count > limits.curves) {
        say("ERROR - Number of damage curves exceeds maximum: ", limits.curves);
        // Only "Maximum Damage Curve" is known as a command; users know the text as it stands.
        fail("   This can be specified with Maximum Curve == ", limits.curves, " in the .dmg file.");
    }
    DmgCurve curve;
    curve.name = cut(fromColumn(line, kNameColumn), kCurveNameWidth);
    say("Found new damages curve: ", trimLeft(curve.name));
    dmg_read_curve(line.value, limits.curvePoints, curve);
    control.curves.push_back(std::move(curve));
}

// The probability in percent, given as such after "Read Result %" or as a fraction after "Read Result".
float probability(const ControlLine& line)
{
    constexpr std::size_t kPercentColumn = 14;
    constexpr std::size_t kFractionColumn = 12;
    const bool inPercent = line.command.find('%') != std::string::npos;
    float value = 0;
    if (!readFree(fromColumn(line, inPercent ? kPercentColumn : kFractionColumn), value)) {
        // The words are those of the table of classes; they stay as they are.
        failLine("ERROR - Reading following line in classes file:", line.text);
    }
    return inPercent ? value : value * kPercent;
}

void addResult(const ControlLine& line, SecondPass& pass)
{
    auto& [limits, control] = pass;
    if (static_cast<std::int64_t>(control.results.size()) >= limits.results) {
        say("ERROR - Number of damages results files exceeds maximum: ", limits.results);
        fail("   This can be specified with Maximum Results == ", limits.results, " in the .dmg file.");
    }
    control.results.push_back({line.value, probability(line)});
}

void setMethod(const ControlLine& line, SecondPass& pass)
{
    DmgControl& control = pass.control;
    if (ASAME(line.value, "Max")) {
        control.method = RegionLevel::maximum;
    } else if (ASAME(line.value, "Avg")) {
        control.method = RegionLevel::average;
    } else {
        fail("ERROR - Unexpected Region Inspection Method use \"Max\" or \"Avg\"");
    }
}

// The order decides which action a line gets that holds the words of two. Unknown commands are ignored.
constexpr auto kCommands = std::to_array<ControlCommand<SecondPass>>({
    {"Read GIS Building", addBuildingFile},
    {"Read MI Building", addBuildingFile},
    {"Read Curve", addCurve},
    {"Read Result", addResult},
    {"Region Inspection Method", setMethod},
});

} // namespace

void dmg_scan_limits(const std::string& controlFile, DmgLimits& limits)
{
    say("Scanning damages file to determine if maximum array sizes are defined...");
    Unit unit = 0;
    OPENER(unit, "I ", controlFile);
    runCommands(unit, {}, kLimitCommands, limits);
    CLOSER(unit);
    say("   Done.");
    say("Maximum number of buildings: ", limits.buildings);
    say("Maximum number of vertices in a single building: ", limits.vertices);
    say("Maximum number of damages curves: ", limits.curves);
    say("Maximum number of points in damage curve: ", limits.curvePoints);
    say("Maximum number of results grids: ", limits.results);
}

DmgControl readDamagesFile(const std::string& controlFile, const DmgLimits& limits)
{
    say("Opening damages .dmg file: ", controlFile);
    Unit unit = 0;
    OPENER(unit, "I ", controlFile);
    SecondPass pass{limits, {}};
    runCommands(unit, {}, kCommands, pass);
    CLOSER(unit);
    say("Finished Read Damages File.");
    return std::move(pass.control);
}

} // namespace gridforge::damages
