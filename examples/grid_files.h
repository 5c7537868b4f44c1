// Grid files written row by row, in the few lines it takes: independent of the tool, so that its tests can trust them.
#pragma once

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

namespace catchment {

constexpr double kNull = -9999;

struct Place {
    long columns = 0;
    long rows = 0;
    double xll = 0;
    double yll = 0;
    double cellsize = 0;
};

// One grid as <base>.asc, as <base>.flt with its .hdr, or as both, and its <base>.prj. Cells are rounded to three
// decimals, so that both forms hold the same numbers.
class GridFiles {
public:
    GridFiles(const std::string& base, const Place& place, bool asAsc, bool asFlt);
    // The next row, from north to south.
    void writeRow(const std::vector<double>& cells);
    // False where anything could not be written.
    bool close();

private:
    struct Closer {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };
    using File = std::unique_ptr<std::FILE, Closer>;

    File open(const std::string& name);
    void put(const File& file, const std::string& bytes);

    bool good_ = true;
    File asc_;
    File flt_;
    std::string line_;
};

} // namespace catchment
