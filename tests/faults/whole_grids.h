// Whether a grid file that a run left can be read whole, and what it holds then, by the tool and by GDAL.
#pragma once

#include <map>
#include <string>
#include <vector>

namespace gridforge::test {

// Files of a folder, by name.
using Files = std::map<std::string, std::string>;

// An .asc, or a .flt with its .hdr.
struct FoundGrid {
    std::string name;
    std::string bytes;
    std::string header;                                 // of a .flt
    auto operator<=>(const FoundGrid&) const = default; // NOLINT(modernize-use-nullptr): there is no null
};

// Those of `files` that are .asc or .flt.
std::vector<FoundGrid> gridsIn(const Files& files);

// What a reader makes of a grid: "" where it cannot be read whole, else a text that differs for other contents.
struct Reading {
    std::string byTool;
    std::string byGdal; // "" also where it is not asked, or is missing
};

// The start of GDAL takes as long as many of the tool.
enum class Readers { tool, toolAndGdal };
// The readings, in the order of the grids.
std::vector<Reading> readGrids(const std::vector<FoundGrid>& grids, Readers readers);

// A grid that looks whole and is not.
struct WrongFile {
    std::string what;    // its name, its reader and the run
    std::string mission; // that repeats the run
};

// Collects the grids that runs left, and finds those that can be read whole and are neither those of the finished run nor
// those that were there before it.
class GridsLeft {
public:
    GridsLeft(const Files& before, const Files& finished);
    // The files after the run of `mission`; `how` describes it in what wrong() returns.
    void add(const Files& files, const std::string& mission, const std::string& how);
    std::vector<WrongFile> wrong(Readers readers) const;

private:
    std::map<std::string, std::vector<FoundGrid>> good_; // by name
    std::map<FoundGrid, WrongFile> doubtful_;            // with the first run that left them
};

} // namespace gridforge::test
