#include "support/netcdf_witness.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <utility>

namespace gridforge::test {

namespace {

constexpr const char* kPython = "/usr/bin/python3";
constexpr const char* kNcdump = "/usr/bin/ncdump";

std::string printedBy(const char* program, std::vector<std::string> arguments)
{
    ToolRun witness(std::move(arguments));
    witness.program(program);
    witness.start();
    EXPECT_EQ(witness.status(), 0) << witness.error();
    return witness.console();
}

} // namespace

bool pythonRuns(const std::string& code)
{
    ToolRun python({"-c", code});
    python.program(kPython);
    python.start();
    return python.status() == 0;
}

std::string printedByPython(const ToolRun& run, std::string_view name, const std::string& code,
                            const std::vector<std::string>& further)
{
    std::vector<std::string> arguments = {"-c", code, (run.folder() / name).string()};
    arguments.insert(arguments.end(), further.begin(), further.end());
    return printedBy(kPython, std::move(arguments));
}

bool hasNcdump()
{
    return std::filesystem::exists(kNcdump);
}

std::string shownByNcdump(const ToolRun& run, std::string_view name)
{
    return printedBy(kNcdump, {"-s", (run.folder() / name).string()});
}

bool hasGdalNetcdf()
{
    return pythonRuns("from osgeo import gdal; import numpy; assert gdal.GetDriverByName('netCDF')");
}

std::string variablesByGdal(const ToolRun& run, std::string_view name, const std::vector<std::string>& variables)
{
    return printedByPython(run, name, R"(
import sys
from osgeo import gdal
gdal.UseExceptions()
for variable in sys.argv[2:]:
    data = gdal.Open('NETCDF:"' + sys.argv[1] + '":' + variable)
    print(variable, data.RasterCount, *(repr(v) for v in data.GetGeoTransform()))
    for i in range(data.RasterCount):
        band = data.GetRasterBand(i + 1)
        print(band.GetNoDataValue(), band.GetMetadataItem('NETCDF_DIM_time'))
        for row in band.ReadAsArray():
            print(*(repr(float(cell)) for cell in row))
)",
                           variables);
}

} // namespace gridforge::test
