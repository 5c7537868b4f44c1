// What the console shows of the steps that operations on grids share, for tests that compare it whole.
#pragma once

#include <cstdio>
#include <initializer_list>
#include <string>
#include <vector>

namespace gridforge::test {

using Lines = std::vector<std::string>;

inline Lines joined(std::initializer_list<Lines> parts)
{
    Lines all;
    for (const Lines& part : parts) {
        all.insert(all.end(), part.begin(), part.end());
    }
    return all;
}

// The banner and the search for inputs, each named by itself.
inline Lines startOf(const Lines& inputs)
{
    Lines lines{"Build 2020-10-AA", "Checking for wildcards in filenames..."};
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
inline Lines headerOf(const std::string& file, const std::string& shape)
{
    return {"Trying to open file " + file + "...OK.", "Opened File Unit:1001",
            "External Grid Info: " + shape + " with 1. cell size."};
}

inline Lines ascCells()
{
    return {"Reading ASCII grid...", "", "...Closed File Unit:1001"};
}

inline Lines fltCellsOf(const std::string& file)
{
    return {"...Closed File Unit:1001", "Trying to open file " + file + "...OK.", "Opened File Unit:1001",
            "...Closed File Unit:1001"};
}

inline Lines writtenAsc(const std::string& base)
{
    return {"Trying to open file " + base + ".asc...OK.  File Unit:1001", "Writing ASC grid...",
            "Finished writing ASC grid.", "...Closed File Unit:1001"};
}

inline Lines writtenFlt(const std::string& base)
{
    return {"Trying to open file " + base + ".hdr...OK.  File Unit:1001",
            "...Closed File Unit:1001",
            "Trying to open file " + base + ".flt...OK.  File Unit:1001",
            "Writing FLT grid...",
            "Finished writing FLT grid.",
            "...Closed File Unit:1001"};
}

inline Lines writtenTable(const std::string& file)
{
    return {"Trying to open file " + file + "...OK.  File Unit:1001", "...Closed File Unit:1001"};
}

inline const std::string kFormatOfInputs = "Setting output format based on input grids.  To set use -asc or -flt.";

inline Lines normalEnd()
{
    return {"Finished.", "Enter command<CR> or <CR> to continue."};
}

// The end of a run that met an error with this text.
inline Lines errorEnd(const std::string& message)
{
    return {message, "", "Press Enter to Close"};
}

} // namespace gridforge::test
