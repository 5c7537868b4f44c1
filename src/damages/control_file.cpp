#include "damages/control_file.h"

#include "core/numbers.h"
#include "core/text.h"
#include "damages/curves.h"
#include "gis/projection.h"
#include "host/console.h"
#include "host/control_lines.h"
#include "host/ends.h"
#include "host/units.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace gridforge::damages {

namespace {

constexpr std::int32_t kMaxBuildingFiles = 2000;
constexpr float kPercent = 100.0F;

// The next line with a command, its value left-trimmed; false at the end of the file.
bool nextControlLine(Unit unit, ControlLine& line)
{
    while (!atEnd(unit)) {
        if (READLINE(unit, line.text) && CHECKLINE(line.text, "*", "==", 0, line.value, line.command)) {
            line.value = TRIMF(line.value);
            return true;
        }
    }
    return false;
}

// What stands in the command from a column on, counted from 1. The column is fixed, so words before the command put
// the values off, on purpose: files are read as they always were.
std::string_view fromColumn(const std::string& command, std::size_t column)
{
    return std::string_view(command).substr(std::min(column - 1, command.size()));
}

// --- The first pass --------------------------------------------------------------------------------------------------

struct LimitCommand {
    std::string_view key;
    std::int32_t DmgLimits::*limit;
};

// In the order in which they are tried.
constexpr std::array<LimitCommand, 6> kLimitCommands = {{
    {"Maximum Building", &DmgLimits::buildings},
    {"Maximum Vertice", &DmgLimits::vertices},
    {"Maximum Vertex", &DmgLimits::vertices},
    {"Maximum Damage Curve", &DmgLimits::curves},
    {"Maximum Point in Curve", &DmgLimits::curvePoints},
    {"Maximum Results", &DmgLimits::results},
}};

void takeLimit(const ControlLine& line, DmgLimits& limits)
{
    const auto* const found = std::ranges::find_if(
        kLimitCommands, [&line](const LimitCommand& command) { return FLAGEXISTS(line.command, command.key); });
    if (found != kLimitCommands.end() && !readFree(line.value, limits.*found->limit)) {
        say("ERROR - Extracting maximum arrays size as parameter on following line in damages file:");
        fail(line.text);
    }
}

// --- The second pass -------------------------------------------------------------------------------------------------

void addBuildingFile(const ControlLine& line, DmgControl& control)
{
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

void addCurve(const ControlLine& line, const DmgLimits& limits, DmgControl& control)
{
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
    curve.name = cut(fromColumn(line.command, kNameColumn), kCurveNameWidth);
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
    if (!readFree(fromColumn(line.command, inPercent ? kPercentColumn : kFractionColumn), value)) {
        say("ERROR - Reading following line in classes file:"); // shared with the table of classes
        fail(line.text);
    }
    return inPercent ? value : value * kPercent;
}

void addResult(const ControlLine& line, const DmgLimits& limits, DmgControl& control)
{
    if (static_cast<std::int64_t>(control.results.size()) >= limits.results) {
        say("ERROR - Number of damages results files exceeds maximum: ", limits.results);
        fail("   This can be specified with Maximum Results == ", limits.results, " in the .dmg file.");
    }
    control.results.push_back({line.value, probability(line)});
}

void setMethod(const ControlLine& line, DmgControl& control)
{
    if (ASAME(line.value, "Max")) {
        control.method = kInspectMax;
    } else if (ASAME(line.value, "Avg")) {
        control.method = kInspectAvg;
    } else {
        fail("ERROR - Unexpected Region Inspection Method use \"Max\" or \"Avg\"");
    }
}

// The order decides which action a line gets that holds the words of two.
void takeCommand(const ControlLine& line, const DmgLimits& limits, DmgControl& control)
{
    const auto holds = [&line](std::string_view words) { return FLAGEXISTS(line.command, words); };
    if (holds("Read GIS Building") || holds("Read MI Building")) {
        addBuildingFile(line, control);
    } else if (holds("Read Curve")) {
        addCurve(line, limits, control);
    } else if (holds("Read Result")) {
        addResult(line, limits, control);
    } else if (holds("Region Inspection Method")) {
        setMethod(line, control);
    }
}

} // namespace

void dmg_scan_limits(const std::string& controlFile, DmgLimits& limits)
{
    say("Scanning damages file to determine if maximum array sizes are defined...");
    Unit unit = 0;
    OPENER(unit, "I ", controlFile);
    ControlLine line;
    while (nextControlLine(unit, line)) {
        takeLimit(line, limits);
    }
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
    DmgControl control;
    ControlLine line;
    while (nextControlLine(unit, line)) {
        takeCommand(line, limits, control);
    }
    CLOSER(unit);
    say("Finished Read Damages File.");
    return control;
}

} // namespace gridforge::damages
