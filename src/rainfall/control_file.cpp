#include "rainfall/control_file.h"

#include "core/numbers.h"
#include "host/console.h"
#include "host/ends.h"

#include <string_view>

namespace gridforge::rainfall {

namespace {

constexpr float kLeastCell = 0.001F;
constexpr float kRfNull = -999.0F;

[[noreturn]] void failNumber(const ControlLine& line)
{
    fail("ERROR - Reading line number in rainfall control file: ", line.text);
}

template <typename Number>
void readNumber(const ControlLine& line, Number& target)
{
    if (!readFree(line.value, target)) {
        failNumber(line);
    }
}

template <typename Number>
void readPair(const ControlLine& line, Number& first, Number& second)
{
    const auto isRead = [](FreeValue found) { return found == FreeValue::value || found == FreeValue::empty; };
    FreeForm values(line.value);
    if (!isRead(values.next(first)) || !isRead(values.next(second))) {
        failNumber(line);
    }
}

void readCell(const ControlLine& line, RfSettings& settings)
{
    readNumber(line, settings.cell);
    if (settings.cell < kLeastCell) {
        fail("ERROR - Invalud RF GRID CELL SIZE Option: ", line.value);
    }
}

void readSize(const ControlLine& line, RfSettings& settings)
{
    if (FLAGEXISTS(line.command, "(X,Y)")) {
        readPair(line, settings.sizeX, settings.sizeY);
    } else if (FLAGEXISTS(line.command, "(N,M)")) {
        readPair(line, settings.rows, settings.columns);
    } else {
        fail("ERROR - Unregonised RF GRID SIZE Option. Expecting \"(X,Y)\" or \"(N,M)\"");
    }
}

void readFormat(const ControlLine& line, RfSettings& settings)
{
    if (FLAGEXISTS(line.value, "ASC")) {
        settings.format = RfFormat::asc;
    } else if (FLAGEXISTS(line.value, "FLT")) {
        settings.format = RfFormat::flt;
    } else if (FLAGEXISTS(line.value, "NC")) {
        settings.format = RfFormat::nc;
    } else {
        fail("ERROR - Unregonised RF GRID Format Option. Expecting \"ASC\", \"FLT\" or \"NC\"");
    }
}

void readMethod(const ControlLine& line, RfSettings& settings)
{
    if (FLAGEXISTS(line.value, "Poly")) {
        settings.method = RfMethod::polygon;
    } else if (FLAGEXISTS(line.value, "TIN")) {
        settings.method = RfMethod::tin;
    } else if (FLAGEXISTS(line.value, "IDW")) {
        settings.method = RfMethod::idw;
    } else {
        say("ERROR - Unregonised RF Interpolation Method Option. Expecting \"POLY\", \"TIN\" or \"IDW\"");
        fail("    Found: ", line.value);
    }
}

void readNewHyetograph(const ControlLine& line, RfHyetographs& hyetographs)
{
    // The name is what stands after the first words of the command, even if the key stands later in it.
    constexpr std::size_t kNameStart = std::string_view("Rainfall Hyetograph").size();
    addHyetograph(std::string(trimLeft(std::string_view(line.command).substr(kNameStart))), hyetographs);
    say("New hyetogrpah :", hyetographs.records.back().name);
    rf_read_hyetograph(line.value, hyetographs);
}

// These are taken by the other passes.
bool isOfOtherPass(const std::string& command)
{
    return FLAGEXISTS(command, "Maximum RF Locations") || FLAGEXISTS(command, "Maximum Points in Hyetograph") ||
           FLAGEXISTS(command, "Read GIS RF Polygon") || FLAGEXISTS(command, "Read GIS RF Triangle");
}

// The first key that the command holds decides.
void takeCommand(const ControlLine& line, RfSettings& settings, RfHyetographs& hyetographs, RfPoints& points)
{
    const auto is = [&line](std::string_view key) { return FLAGEXISTS(line.command, key); };
    if (is("RF GRID Cell Size")) {
        readCell(line, settings);
    } else if (is("RF GRID Size")) {
        readSize(line, settings);
    } else if (is("RF GRID Origin")) {
        readPair(line, settings.xOrigin, settings.yOrigin);
    } else if (is("Read GIS RF Points")) {
        rf_read_points(line.value, points);
    } else if (is("RF Grid Format")) {
        readFormat(line, settings);
    } else if (is("Rainfall Hyetograph")) {
        readNewHyetograph(line, hyetographs);
    } else if (is("RF Interpolation Method")) {
        readMethod(line, settings);
    } else if (is("IDW Max Point")) {
        readNumber(line, settings.idwMaxPoints);
    } else if (is("IDW Max Distance")) {
        readNumber(line, settings.idwMaxDistance);
    } else if (is("IDW Exponent")) {
        readNumber(line, settings.idwExponent);
    } else if (!isOfOtherPass(line.command)) {
        fail("ERROR - Unregonised Rainfall control file command: ", line.text);
    }
}

} // namespace

void rf_scan_limits(const std::string& controlFile, std::int32_t& maxLocations, std::int32_t& maxPoints)
{
    say("Scanning rainfaill control file to determine if maximum array sizes are defined...");
    Unit unit = 0;
    OPENER(unit, "I ", controlFile);
    const auto readLimit = [](const ControlLine& line, std::int32_t& limit) {
        if (!readFree(line.value, limit)) {
            say("ERROR - Extracting maximum arrays size as parameter on following line in rainfall control file:");
            fail(line.text);
        }
    };
    forEachCommand(unit, [&](const ControlLine& line) {
        if (FLAGEXISTS(line.command, "Maximum RF Locations")) {
            readLimit(line, maxLocations);
        } else if (FLAGEXISTS(line.command, "Maximum Points in Hyetograph")) {
            readLimit(line, maxPoints);
        }
    });
    CLOSER(unit);
    say("   Done.");
    say("Maximum number of rainfall locations: ", maxLocations);
    say("Maximum number of points in hyetograph: ", maxPoints);
}

RfSettings readRfCommands(const std::string& controlFile, RfHyetographs& hyetographs, RfPoints& points)
{
    say("Opening rainfall control file file: ", controlFile);
    Unit unit = 0;
    OPENER(unit, "I ", controlFile);
    RfSettings settings;
    forEachCommand(unit, [&](const ControlLine& line) { takeCommand(line, settings, hyetographs, points); });
    say("Finished first processing rf control file.");
    CLOSER(unit);
    if (settings.method == RfMethod::none) {
        fail("ERROR - Rainfall Interpolation method not specified.  Please use \"RF Interpolation Method == \"");
    }
    return settings;
}

GridHeader settleRfGrid(const RfSettings& settings)
{
    constexpr float kLeastSizeX = 0.001F;
    constexpr float kLeastSizeY = 1.0F;
    GridHeader grid;
    grid.nrows = settings.rows;
    grid.ncols = settings.columns;
    if (settings.rows > 0 && settings.sizeX > 0.0F) {
        fail("ERROR - Both \"Grid Size (X,Y) == \" and \"Grid Size (N,M) ==\" specified.");
    }
    if (settings.sizeX > kLeastSizeX && settings.sizeY > kLeastSizeY) {
        // X makes the rows and Y the columns, on purpose: control files of domains that are not square rely on it.
        say("Determining rainfall grid size.");
        grid.nrows = roundToInt(static_cast<double>(settings.sizeX / settings.cell));
        grid.ncols = roundToInt(static_cast<double>(settings.sizeY / settings.cell));
    }
    say("Rainfall Grid Dimensions (N,M): ", grid.nrows, ",", grid.ncols);
    // The size is required though the numbers would do: a file with "(N,M)" alone stops here, on purpose.
    if (grid.nrows <= 0 || grid.ncols <= 0 || !(settings.sizeX > 0.0F)) {
        fail("ERROR - Rainfall grid dimensions are invalid.");
    }
    grid.xll = settings.xOrigin;
    grid.yll = settings.yOrigin;
    grid.cellsize = settings.cell;
    grid.cellsize8 = static_cast<double>(settings.cell);
    grid.null = kRfNull;
    return grid;
}

} // namespace gridforge::rainfall
