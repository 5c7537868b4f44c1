#include "faults/whole_grids.h"

#include "support/tool_run.h"

#include <algorithm>

namespace gridforge::test {
namespace {

// Prints a line for each grid: what it holds, or nothing where it cannot be read whole.
constexpr const char* kRead = R"(
import hashlib, sys
try:
    import numpy
    from osgeo import gdal
except ImportError:
    print("no GDAL")
    sys.exit()
gdal.UseExceptions()
gdal.PushErrorHandler("CPLQuietErrorHandler")

def content(name):
    data = gdal.Open(name)
    band = data.GetRasterBand(1)
    cells = band.ReadAsArray(buf_type=gdal.GDT_Float64).tobytes()
    if gdal.GetLastErrorType() >= gdal.CE_Failure:
        return ""
    return repr((data.RasterXSize, data.RasterYSize, data.GetGeoTransform(), band.GetNoDataValue(), band.DataType,
                 hashlib.sha1(cells).hexdigest()))

for line in sys.stdin:
    gdal.ErrorReset()
    try:
        print(content(line.rstrip("\n")))
    except (RuntimeError, AttributeError):
        print("")
)";

void giveGrid(const ScratchFolder& folder, const std::string& base, const FoundGrid& grid, bool isFlt)
{
    folder.give(base + (isFlt ? ".flt" : ".asc"), grid.bytes);
    if (isFlt) {
        folder.give(base + ".hdr", grid.header);
    }
}

bool isFlt(const FoundGrid& grid)
{
    return grid.name.ends_with(".flt");
}

// The cells after an operation that does not change them.
std::string readByTool(const FoundGrid& grid)
{
    ToolRun run({"-b", "-max", "-src", isFlt(grid) ? "g.flt" : "g.asc", "-out", "whole.flt"});
    run.give(isFlt(grid) ? "g.flt" : "g.asc", grid.bytes);
    if (isFlt(grid)) {
        run.give("g.hdr", grid.header);
    }
    run.start();
    return run.reachedEnd() ? run.read("whole.hdr") + run.read("whole.flt") : "";
}

std::vector<std::string> readAllByGdal(const std::vector<FoundGrid>& grids)
{
    std::vector<std::string> readings(grids.size());
    if (grids.empty()) {
        return readings;
    }
    const ScratchFolder folder;
    ToolRun python({"-c", kRead});
    python.program("/usr/bin/python3");
    for (std::size_t i = 0; i < grids.size(); ++i) {
        const std::string base = std::to_string(i);
        giveGrid(folder, base, grids[i], isFlt(grids[i]));
        python.type((folder.path() / (base + (isFlt(grids[i]) ? ".flt" : ".asc"))).string());
    }
    python.start();
    EXPECT_EQ(python.status(), 0) << python.error();
    const std::vector<std::string> lines = python.consoleLines();
    if (lines == std::vector<std::string>{"no GDAL"}) {
        return readings;
    }
    EXPECT_EQ(lines.size(), grids.size());
    std::copy_n(lines.begin(), std::min(lines.size(), grids.size()), readings.begin());
    return readings;
}

} // namespace

std::vector<FoundGrid> gridsIn(const Files& files)
{
    std::vector<FoundGrid> grids;
    for (const auto& [name, bytes] : files) {
        if (name.ends_with(".asc")) {
            grids.push_back({name, bytes, ""});
        } else if (name.ends_with(".flt")) {
            const auto header = files.find(name.substr(0, name.size() - 4) + ".hdr");
            grids.push_back({name, bytes, header == files.end() ? "" : header->second});
        }
    }
    return grids;
}

std::vector<Reading> readGrids(const std::vector<FoundGrid>& grids, Readers readers)
{
    const std::vector<std::string> byGdal =
        readers == Readers::toolAndGdal ? readAllByGdal(grids) : std::vector<std::string>(grids.size());
    std::vector<Reading> readings;
    for (std::size_t i = 0; i < grids.size(); ++i) {
        readings.push_back({readByTool(grids[i]), byGdal[i]});
    }
    return readings;
}

GridsLeft::GridsLeft(const Files& before, const Files& finished)
{
    for (const Files& files : {before, finished}) {
        for (const FoundGrid& grid : gridsIn(files)) {
            good_[grid.name].push_back(grid);
        }
    }
}

void GridsLeft::add(const Files& files, const std::string& mission, const std::string& how)
{
    for (const FoundGrid& grid : gridsIn(files)) {
        const auto known = good_.find(grid.name);
        if (known == good_.end() || std::ranges::find(known->second, grid) == known->second.end()) {
            doubtful_.try_emplace(grid, WrongFile{how, mission});
        }
    }
}

std::vector<WrongFile> GridsLeft::wrong(Readers readers) const
{
    // A doubtful grid may hold the same as a good one, such as all except the last line end: both are read.
    std::vector<FoundGrid> all;
    std::vector<WrongFile> hows;
    for (const auto& [grid, how] : doubtful_) {
        all.push_back(grid);
        hows.push_back(how);
    }
    for (const auto& [name, grids] : good_) {
        all.insert(all.end(), grids.begin(), grids.end());
    }
    if (hows.empty()) {
        return {};
    }
    const std::vector<Reading> readings = readGrids(all, readers);
    const auto isGood = [&](std::size_t found, std::string Reading::*reader) {
        const std::string& content = readings[found].*reader;
        bool good = content.empty();
        for (std::size_t i = hows.size(); i < all.size() && !good; ++i) {
            good = all[i].name == all[found].name && readings[i].*reader == content;
        }
        return good;
    };
    std::vector<WrongFile> wrong;
    for (std::size_t i = 0; i < hows.size(); ++i) {
        const bool byTool = isGood(i, &Reading::byTool);
        if (!byTool || !isGood(i, &Reading::byGdal)) {
            const std::string reader = byTool ? "GDAL" : "the tool";
            wrong.push_back({all[i].name + " is read whole by " + reader + " after " + hows[i].what, hows[i].mission});
        }
    }
    return wrong;
}

} // namespace gridforge::test
