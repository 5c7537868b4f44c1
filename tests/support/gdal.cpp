#include "support/gdal.h"

#include <sstream>
#include <vector>

namespace gridforge::test {
namespace {

// Debian's own Python, whatever else comes first on the path.
constexpr const char* kPython = "/usr/bin/python3";

constexpr const char* kRead = R"(
import sys
from osgeo import gdal, osr
gdal.UseExceptions()
data = gdal.Open(sys.argv[1])
band = data.GetRasterBand(1)
x, dx, _, top, _, dy = data.GetGeoTransform()
system = data.GetSpatialRef()
print(data.RasterXSize, data.RasterYSize)
print(repr(x), repr(top + dy * data.RasterYSize), repr(dx), repr(-dy), repr(band.GetNoDataValue()))
print(system.GetName() if system else "")
for row in band.ReadAsArray(buf_type=gdal.GDT_Float32):
    print(*(repr(float(cell)) for cell in row))
)";

// The rows come on standard input, the north row first.
constexpr const char* kWrite = R"(
import sys
import numpy
from osgeo import gdal
gdal.UseExceptions()
driver, name, xll, yll, size, null = sys.argv[1], sys.argv[2], *map(float, sys.argv[3:7])
cells = numpy.array([[float(cell) for cell in line.split()] for line in sys.stdin], dtype=numpy.float32)
rows, columns = cells.shape
made = gdal.GetDriverByName("MEM").Create("", columns, rows, 1, gdal.GDT_Float32)
made.SetGeoTransform((xll, size, 0, yll + rows * size, 0, -size))
made.GetRasterBand(1).SetNoDataValue(null)
made.GetRasterBand(1).WriteArray(cells)
gdal.GetDriverByName(driver).CreateCopy(name, made).FlushCache()
)";

std::string exact(double value)
{
    std::ostringstream text;
    text.precision(17);
    text << value;
    return text.str();
}

std::string pathIn(const ToolRun& run, std::string_view name)
{
    return (run.folder() / name).string();
}

} // namespace

bool hasGdal()
{
    static const bool there = [] {
        ToolRun python({"-c", "from osgeo import gdal; import numpy; print('yes')"});
        python.program(kPython);
        python.start();
        return python.console() == "yes\n";
    }();
    return there;
}

GdalGrid readByGdal(const ToolRun& run, std::string_view name)
{
    ToolRun python({"-c", kRead, pathIn(run, name)});
    python.program(kPython);
    python.start();
    EXPECT_EQ(python.status(), 0) << python.error();
    run.expectFile(name);

    GdalGrid grid;
    std::istringstream in(python.console());
    double cellHeight = 0;
    in >> grid.ncols >> grid.nrows >> grid.xll >> grid.yll >> grid.cellsize >> cellHeight >> grid.null >> std::ws;
    EXPECT_EQ(grid.cellsize, cellHeight);
    std::vector<std::string> lines = python.consoleLines();
    if (lines.size() < 3) {
        return grid;
    }
    grid.projection = lines[2];
    for (std::size_t i = 3; i < lines.size(); ++i) {
        std::istringstream row(lines[i]);
        auto& cells = grid.cells.emplace_back();
        for (double cell = 0; row >> cell;) {
            cells.push_back(cell);
        }
    }
    return grid;
}

void writeByGdal(const ToolRun& run, std::string_view driver, std::string_view name, const Cells& cells,
                 const GridOptions& options)
{
    ToolRun python({"-c", kWrite, std::string(driver), pathIn(run, name), exact(options.xll), exact(options.yll),
                    exact(options.cellsize), exact(options.null)});
    python.program(kPython);
    for (const auto& row : cells) {
        std::string line;
        for (const double cell : row) {
            line += exact(cell) + " ";
        }
        python.type(line);
    }
    python.start();
    EXPECT_EQ(python.status(), 0) << python.error();
    EXPECT_TRUE(std::filesystem::exists(pathIn(run, name))) << python.error();
}

} // namespace gridforge::test
