// A folder of real grids and layers, and their grids read by plain lines of their own.
#pragma once

#include "support/paths.h"
#include "support/tool_run.h"

#include <cstddef>
#include <filesystem>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

namespace gridforge::test {

struct RealGrid {
    double xll = 0;
    double yll = 0;
    double cellsize = 0; // as the tool holds it
    double null = 0;
    std::vector<std::vector<double>> rows; // from the south
};

class RealFolder {
public:
    explicit RealFolder(const char* name) : path_(std::filesystem::path(dataFolder()) / name) {}

    const std::filesystem::path& path() const { return path_; }
    std::string bytesOf(const std::string& name) const { return readWhole(path_ / name); }

    // Gives a run the files of a layer, empty ones where it has none.
    void giveLayer(ToolRun& run, const std::string& name) const
    {
        for (const char* extension : {".mif", ".mid", ".shp", ".shx", ".dbf", ".prj"}) {
            run.give(name + extension, bytesOf(name + extension));
        }
    }

    RealGrid readGrid(const std::string& name) const
    {
        std::istringstream text(bytesOf(name));
        RealGrid grid;
        std::size_t columns = 0;
        std::size_t rows = 0;
        std::string word;
        text >> word >> columns >> word >> rows >> word >> grid.xll >> word >> grid.yll >> word >> grid.cellsize >>
            word >> grid.null;
        grid.rows.resize(rows, std::vector<double>(columns));
        for (std::size_t row = rows; row > 0; --row) {
            for (double& cell : grid.rows[row - 1]) {
                text >> cell;
            }
        }
        EXPECT_TRUE(text) << name;
        grid.cellsize = static_cast<double>(static_cast<float>(grid.cellsize));
        return grid;
    }

private:
    std::filesystem::path path_;
};

} // namespace gridforge::test
