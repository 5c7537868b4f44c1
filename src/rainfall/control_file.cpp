#include "rainfall/control_file.h"

#include "core/free_form.h"
#include "core/text.h"
#include "host/console.h"
#include "host/control_commands.h"
#include "host/ends.h"
#include "host/units.h"

#include <array>
#include <string_view>

namespace gridforge::rainfall {

namespace {

constexpr float kLeastCell = 0.001F;

// --- The first pass --------------------------------------------------------------------------------------------------

template <std::int32_t RfLimits::*limit>
void takeLimit(const ControlLine& line, RfLimits& limits)
{
    readValue(line, "ERROR - Extracting maximum arrays size as parameter on following line in rainfall control file:",
              limits.*limit);
}

constexpr auto kLimitCommands = std::to_array<ControlCommand<RfLimits>>({
    {"Maximum RF Locations", takeLimit<&RfLimits::locations>},
    {"Maximum Points in Hyetograph", takeLimit<&RfLimits::points>},
});

// --- The second pass -------------------------------------------------------------------------------------------------

struct RfPass {
    RfSettings settings;
    RfHyetographs& hyetographs;
    RfPoints& points;
    bool namesMethod = false;
};

[[noreturn]] void failNumber(const ControlLine& line)
{
    fail("ERROR - Reading line number in rainfall control file: ", line.text);
}

template <auto number>
void readNumber(const ControlLine& line, RfPass& pass)
{
    if (!readFree(line.value, pass.settings.*number)) {
        failNumber(line);
    }
}

template <auto first, auto second>
void readPair(const ControlLine& line, RfPass& pass)
{
    FreeForm values(line.value);
    if (!values.take(pass.settings.*first) || !values.take(pass.settings.*second)) {
        failNumber(line);
    }
}

void readCell(const ControlLine& line, RfPass& pass)
{
    readNumber<&RfSettings::cell>(line, pass);
    if (pass.settings.cell < kLeastCell) {
        fail("ERROR - Invalud RF GRID CELL SIZE Option: ", line.value);
    }
}

void readSize(const ControlLine& line, RfPass& pass)
{
    if (FLAGEXISTS(line.command, "(X,Y)")) {
        readPair<&RfSettings::sizeX, &RfSettings::sizeY>(line, pass);
    } else if (FLAGEXISTS(line.command, "(N,M)")) {
        readPair<&RfSettings::rows, &RfSettings::columns>(line, pass);
    } else {
        fail("ERROR - Unregonised RF GRID SIZE Option. Expecting \"(X,Y)\" or \"(N,M)\"");
    }
}

void readFormat(const ControlLine& line, RfPass& pass)
{
    RfFormat& format = pass.settings.format;
    if (FLAGEXISTS(line.value, "ASC")) {
        format = RfFormat::asc;
    } else if (FLAGEXISTS(line.value, "FLT")) {
        format = RfFormat::flt;
    } else if (FLAGEXISTS(line.value, "NC")) {
        format = RfFormat::nc;
    } else {
        fail("ERROR - Unregonised RF GRID Format Option. Expecting \"ASC\", \"FLT\" or \"NC\"");
    }
}

void readMethod(const ControlLine& line, RfPass& pass)
{
    RfMethod& method = pass.settings.method;
    pass.namesMethod = true;
    if (FLAGEXISTS(line.value, "Poly")) {
        method = RfMethod::polygon;
    } else if (FLAGEXISTS(line.value, "TIN")) {
        method = RfMethod::tin;
    } else if (FLAGEXISTS(line.value, "IDW")) {
        method = RfMethod::idw;
    } else {
        say("ERROR - Unregonised RF Interpolation Method Option. Expecting \"POLY\", \"TIN\" or \"IDW\"");
        fail("    Found: ", line.value);
    }
}

void readNewHyetograph(const ControlLine& line, RfPass& pass)
{
    // The name is what stands after the first words of the command, even if the key stands later in it.
    constexpr std::size_t kNameColumn = std::string_view("Rainfall Hyetograph").size() + 1;
    addHyetograph(std::string(trimLeft(fromColumn(line, kNameColumn))), pass.hyetographs);
    say("New hyetogrpah :", pass.hyetographs.records.back().name);
    rf_read_hyetograph(line.value, pass.hyetographs);
}

void readPoints(const ControlLine& line, RfPass& pass)
{
    rf_read_points(line.value, pass.points);
}

void leaveToOtherPass(const ControlLine& /*line*/, RfPass& /*pass*/) {}

// In the order in which they are tried.
constexpr auto kCommands = std::to_array<ControlCommand<RfPass>>({
    {"RF GRID Cell Size", readCell},
    {"RF GRID Size", readSize},
    {"RF GRID Origin", readPair<&RfSettings::xOrigin, &RfSettings::yOrigin>},
    {"Read GIS RF Points", readPoints},
    {"RF Grid Format", readFormat},
    {"Rainfall Hyetograph", readNewHyetograph},
    {"RF Interpolation Method", readMethod},
    {"IDW Max Point", readNumber<&RfSettings::idwMaxPoints>},
    {"IDW Max Distance", readNumber<&RfSettings::idwMaxDistance>},
    {"IDW Exponent", readNumber<&RfSettings::idwExponent>},
    {"Maximum RF Locations", leaveToOtherPass},
    {"Maximum Points in Hyetograph", leaveToOtherPass},
    {"Read GIS RF Polygon", leaveToOtherPass},
    {"Read GIS RF Triangle", leaveToOtherPass},
});

constexpr ControlDialect kDialect{.blankCommands = true,
                                  .unknown = "ERROR - Unregonised Rainfall control file command: "};

} // namespace

void rf_scan_limits(const std::string& controlFile, RfLimits& limits)
{
    say("Scanning rainfaill control file to determine if maximum array sizes are defined...");
    Unit unit = 0;
    OPENER(unit, "I ", controlFile);
    runCommands(unit, {}, kLimitCommands, limits);
    CLOSER(unit);
    say("   Done.");
    say("Maximum number of rainfall locations: ", limits.locations);
    say("Maximum number of points in hyetograph: ", limits.points);
}

RfSettings readRfCommands(const std::string& controlFile, RfHyetographs& hyetographs, RfPoints& points)
{
    say("Opening rainfall control file file: ", controlFile);
    Unit unit = 0;
    OPENER(unit, "I ", controlFile);
    RfPass pass{{}, hyetographs, points};
    runCommands(unit, kDialect, kCommands, pass);
    say("Finished first processing rf control file.");
    CLOSER(unit);
    if (!pass.namesMethod) {
        fail("ERROR - Rainfall Interpolation method not specified.  Please use \"RF Interpolation Method == \"");
    }
    return pass.settings;
}

} // namespace gridforge::rainfall
