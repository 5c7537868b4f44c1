// The library's own dump, Python's netCDF4 and GDAL read the series that the tool writes.
#include "support/grids.h"
#include "support/netcdf_witness.h"
#include "support/tool_run.h"

#include <gtest/gtest.h>
#include <regex>
#include <string>

namespace gridforge::test {
namespace {

const Cells kFirst{{121, 122, kNull}, {111, 112.5, 113}};
const Cells kSecond{{221, kNull, 223}, {kNull, 12, 13}};

void makeSeries(ToolRun& run)
{
    run.give("a.asc", ascGrid(kFirst, {.xll = 100, .yll = 200, .cellsize = 10}));
    run.give("b.asc", ascGrid(kSecond, {.xll = 100, .yll = 200, .cellsize = 10}));
    run.start();
    ASSERT_EQ(run.error(), "");
}

TEST(NcWithNcdump, ShowsTheFileAsPromised)
{
    if (!hasNcdump()) {
        GTEST_SKIP() << "no ncdump (Debian: netcdf-bin)";
    }
    ToolRun run("-b -nc -nc_part1 a.asc b.asc");
    makeSeries(run);
    // The versions of the libraries stand in this line alone.
    const std::string shown =
        std::regex_replace(shownByNcdump(run, "a.nc"), std::regex("\t\t:_NCProperties = .*\n"), "");
    EXPECT_EQ(shown, R"cdl(netcdf a {
dimensions:
	x = 3 ;
	y = 2 ;
	time = UNLIMITED ; // (2 currently)
variables:
	double time(time) ;
		time:standard_name = "time" ;
		time:long_name = "time" ;
		time:units = "hours since 2011-03-01 10:00:00" ;
		time:axis = "T" ;
		time:_Storage = "chunked" ;
		time:_ChunkSizes = 512 ;
		time:_Shuffle = "true" ;
		time:_DeflateLevel = 1 ;
		time:_Endianness = "little" ;
	double y(y) ;
		y:standard_name = "Y" ;
		y:long_name = "y-coordinate in Cartesian system" ;
		y:units = "m" ;
		y:axis = "Y" ;
		y:_Storage = "chunked" ;
		y:_ChunkSizes = 2 ;
		y:_Shuffle = "true" ;
		y:_DeflateLevel = 1 ;
		y:_Endianness = "little" ;
	double x(x) ;
		x:standard_name = "X" ;
		x:long_name = "x-coordinate in Cartesian system" ;
		x:units = "m" ;
		x:axis = "X" ;
		x:_Storage = "chunked" ;
		x:_ChunkSizes = 3 ;
		x:_Shuffle = "true" ;
		x:_DeflateLevel = 1 ;
		x:_Endianness = "little" ;
	float data_temporal(time, y, x) ;
		data_temporal:_FillValue = -9999.f ;
		data_temporal:_Storage = "chunked" ;
		data_temporal:_ChunkSizes = 1, 2, 3 ;
		data_temporal:_Shuffle = "true" ;
		data_temporal:_DeflateLevel = 1 ;
		data_temporal:_Endianness = "little" ;
	float data_max(y, x) ;
		data_max:_FillValue = -9999.f ;
		data_max:_Storage = "chunked" ;
		data_max:_ChunkSizes = 2, 3 ;
		data_max:_Shuffle = "true" ;
		data_max:_DeflateLevel = 1 ;
		data_max:_Endianness = "little" ;

// global attributes:
		:Conventions = "CF-1.6" ;
		:title = "Dummy Title" ;
		:institution = "ORVANE" ;
		:source = "Exported from KESTOR utility (gridforge)" ;
		:history = "to be implemented" ;
		:references = "To be compliant with FORECAST_SYSTEM_URL" ;
		:_SuperblockVersion = 2 ;
		:_IsNetcdf4 = 1 ;
		:_Format = "netCDF-4" ;
data:

 time = 1, 2 ;

 y = 210, 220 ;

 x = 110, 120, 130 ;

 data_temporal =
  111, 112.5, 113,
  121, 122, _,
  _, 12, 13,
  221, _, 223 ;

 data_max =
  111, 112.5, 113,
  221, 122, 223 ;
}
)cdl");
}

TEST(NcWithPython, ReadsCellsAndDatesThroughTheConventions)
{
    if (!pythonRuns("import netCDF4")) {
        GTEST_SKIP() << "no Python with netCDF4 (Debian: python3-netcdf4)";
    }
    ToolRun run("-b -nc -nc_part1 a.asc b.asc");
    makeSeries(run);
    const std::string printed = printedByPython(run, "a.nc", R"(
import sys
import netCDF4
data = netCDF4.Dataset(sys.argv[1])
time = data['time']
for moment in netCDF4.num2date(time[:], time.units):
    print(moment)
for cells in (data['data_temporal'][0], data['data_temporal'][1], data['data_max'][:]):
    for row in cells[::-1]:
        print(*('-' if cell is None else repr(cell) for cell in row.tolist()))
)");
    EXPECT_EQ(printed, "2011-03-01 11:00:00\n2011-03-01 12:00:00\n"
                       "121.0 122.0 -\n111.0 112.5 113.0\n"
                       "221.0 - 223.0\n- 12.0 13.0\n"
                       "221.0 122.0 223.0\n111.0 112.5 113.0\n");
}

TEST(NcWithGdal, OpensTheMaximumAndEachGridOfTheSeries)
{
    if (!hasGdalNetcdf()) {
        GTEST_SKIP() << "no Python with GDAL and its NetCDF driver (Debian: python3-gdal)";
    }
    ToolRun run("-b -nc -nc_part1 a.asc b.asc");
    makeSeries(run);
    // Its origin is half a cell off: it takes the coordinates for centres, and they are the north-east corners.
    EXPECT_EQ(variablesByGdal(run, "a.nc", {"data_temporal", "data_max"}),
              "data_temporal 2 105.0 10.0 0.0 225.0 0.0 -10.0\n"
              "-9999.0 1\n121.0 122.0 -9999.0\n111.0 112.5 113.0\n"
              "-9999.0 2\n221.0 -9999.0 223.0\n-9999.0 12.0 13.0\n"
              "data_max 1 105.0 10.0 0.0 225.0 0.0 -10.0\n"
              "-9999.0 None\n221.0 122.0 223.0\n111.0 112.5 113.0\n");
}

} // namespace
} // namespace gridforge::test
