// The words of the console that many runs share, for tests that compare it: each text stands here alone.
#pragma once

#include <cstdio>
#include <initializer_list>
#include <string>
#include <vector>

namespace gridforge::test {

using Lines = std::vector<std::string>;

// --- Lines -----------------------------------------------------------------------------------------------------------

inline const std::string kBanner = "Build 2020-10-AA";
inline const std::string kWildcards = "Checking for wildcards in filenames...";
inline const std::string kFinished = "Finished.";
// The pauses: of a run that may go on, and of one that an error ends.
inline const std::string kEnter = "Enter command<CR> or <CR> to continue.";
inline const std::string kClose = "Press Enter to Close";
// An error's pause as it follows the line of the message, in a console that is one text.
inline const std::string kExits = "\n" + kClose + "\n";

inline Lines joined(std::initializer_list<Lines> parts)
{
    Lines all;
    for (const Lines& part : parts) {
        all.insert(all.end(), part.begin(), part.end());
    }
    return all;
}

// --- Files -----------------------------------------------------------------------------------------------------------

inline std::string opening(const std::string& file)
{
    return "Trying to open file " + file + "...";
}

inline std::string cannotOpen(const std::string& file)
{
    return opening(file) + "Can't Open";
}

inline std::string openedInput(const std::string& file)
{
    return opening(file) + "OK.";
}

inline std::string openedOutput(const std::string& file, int unit = 1001)
{
    return opening(file) + "OK.  File Unit:" + std::to_string(unit);
}

// The line after that of an input.
inline std::string openedUnit(int unit)
{
    return "Opened File Unit:" + std::to_string(unit);
}

inline std::string closedUnit(int unit)
{
    return "...Closed File Unit:" + std::to_string(unit);
}

// --- Steps of operations on grids ------------------------------------------------------------------------------------

// The banner and the search for inputs, each named by itself.
inline Lines startOf(const Lines& inputs)
{
    Lines lines{kBanner, kWildcards};
    int number = 0;
    for (const std::string& input : inputs) {
        char figure[4];
        std::snprintf(figure, sizeof figure, "%3d", ++number % 1000);
        lines.push_back("Input File" + std::string(figure) + ": " + input);
        lines.push_back("   File" + std::string(figure) + ": " + input);
    }
    return lines;
}

// A header being read; `file` is the .asc or the .hdr, `shape` as in "2 rows by 3 columns".
inline Lines headerOf(const std::string& file, const std::string& shape, int unit = 1001)
{
    return {openedInput(file), openedUnit(unit), "External Grid Info: " + shape + " with 1. cell size."};
}

inline Lines ascCells(int unit = 1001)
{
    return {"Reading ASCII grid...", "", closedUnit(unit)};
}

inline Lines fltCellsOf(const std::string& file)
{
    return {closedUnit(1001), openedInput(file), openedUnit(1001), closedUnit(1001)};
}

inline Lines writtenAsc(const std::string& base)
{
    return {openedOutput(base + ".asc"), "Writing ASC grid...", "Finished writing ASC grid.", closedUnit(1001)};
}

inline Lines writtenFlt(const std::string& base)
{
    return {openedOutput(base + ".hdr"),  closedUnit(1001), openedOutput(base + ".flt"), "Writing FLT grid...",
            "Finished writing FLT grid.", closedUnit(1001)};
}

inline Lines writtenTable(const std::string& file)
{
    return {openedOutput(file), closedUnit(1001)};
}

inline const std::string kFormatOfInputs = "Setting output format based on input grids.  To set use -asc or -flt.";

// --- Layers ----------------------------------------------------------------------------------------------------------

// The projection of the run, taken from <name>.mif.
inline Lines projectionOf(const std::string& name)
{
    return {"Getting Projection...",
            openedInput(name + ".mif"),
            openedUnit(1001),
            "Using " + name + ".mif for setting projection.",
            "mif Projection: CoordSys NonEarth Units \"m\"",
            closedUnit(1001)};
}

// <name>.mif as an input with this ID, whose files get this unit and the next one.
inline Lines openedMif(const std::string& name, int id = 1, int unit = 1001)
{
    return {"Opening GIS Layer: " + name + ".mif",
            "GIS Layer assigned ID of " + std::to_string(id),
            openedInput(name + ".mif"),
            openedUnit(unit),
            openedInput(name + ".mid"),
            openedUnit(unit + 1)};
}

inline Lines createdMif(const std::string& name, int id, int unit)
{
    return {"Opening GIS Layer: " + name + ".mif", "GIS Layer assigned ID of " + std::to_string(id),
            openedOutput(name + ".mif", unit), openedOutput(name + ".mid", unit + 1)};
}

inline Lines closedMif(const std::string& name, int id = 1, int unit = 1001)
{
    return {"Closing GIS Layer " + std::to_string(id) + " [" + name + ".mif]...", closedUnit(unit),
            closedUnit(unit + 1)};
}

// --- Ends ------------------------------------------------------------------------------------------------------------

inline Lines normalEnd()
{
    return {kFinished, kEnter};
}

// The end of a run that met an error with this message.
inline Lines errorEnd(const Lines& message)
{
    return joined({message, {"", kClose}});
}
template <typename... Text>
Lines errorEnd(const Text&... message)
{
    return errorEnd(Lines{message...});
}
// The same at the end of a text, after other lines.
inline std::string errorEndText(const std::string& message)
{
    return "\n" + message + "\n" + kExits;
}

// --- Whole consoles --------------------------------------------------------------------------------------------------

// A check of the command line ended the run: a pause without text of its own.
inline Lines refused(const Lines& lines)
{
    return joined({{kBanner}, lines, {kEnter}});
}

inline Lines failed(const Lines& lines)
{
    return joined({{kBanner}, errorEnd(lines)});
}

inline Lines finished(const Lines& lines)
{
    return joined({{kBanner}, lines, normalEnd()});
}

} // namespace gridforge::test
