// The library's own dump and GDAL read the rainfall file that the tool writes.
#include "support/gdal.h"
#include "support/netcdf_witness.h"
#include "support/rainfall_files.h"

#include <gtest/gtest.h>
#include <string>

namespace gridforge::test {
namespace {

// One region over the two eastern columns.
void makeRainfall(ToolRun& run)
{
    giveRainfall(run, kRainfallGrid + kTwoHyetographs +
                          "RF Interpolation Method == Poly\nRead GIS RF Polygon == areas.mif\nRF Grid Format == NC\n");
    giveRainfallLayer(run, "areas", mifRectangle("110", "200", "130", "210") + mifRectangle("120", "210", "130", "220"),
                      "a,1.5,1\nb,1,1\n");
    run.start();
    ASSERT_EQ(run.error(), "");
}

TEST(RainfallWithNcdump, ShowsTheFileAsPromised)
{
    if (!hasNcdump()) {
        GTEST_SKIP() << "no ncdump (Debian: netcdf-bin)";
    }
    ToolRun run("-b -rf rain.rfc");
    makeRainfall(run);
    EXPECT_EQ(shownByNcdump(run, "rain.nc"), R"cdl(netcdf rain {
dimensions:
	x = 3 ;
	y = 2 ;
	time = UNLIMITED ; // (2 currently)
variables:
	double time(time) ;
		time:standard_name = "time" ;
		time:long_name = "time" ;
		time:units = "hours" ;
		time:axis = "T" ;
	double y(y) ;
		y:standard_name = "projection_y_coordinate" ;
		y:long_name = "y-coordinate in cartesian system" ;
		y:units = "m" ;
		y:axis = "Y" ;
	double x(x) ;
		x:standard_name = "projection_x_coordinate" ;
		x:long_name = "x-coordinate in cartesian system" ;
		x:units = "m" ;
		x:axis = "X" ;
	float rainfall_depth(time, y, x) ;
		rainfall_depth:_FillValue = -999.f ;
	float total_rainfall_depth(y, x) ;
		total_rainfall_depth:_FillValue = -999.f ;

// global attributes:
		:title = "Gridded Rainfall" ;
		:source = "gridforge utility" ;
		:references = "Not completed yet" ;
		:comment = "nothing yet" ;
		:_Format = "classic" ;
data:

 time = 0, 0.5 ;

 y = 205, 215 ;

 x = 105, 115, 125 ;

 rainfall_depth =
  _, 3, 3,
  _, _, 10,
  _, 6, 6,
  _, _, 20 ;

 total_rainfall_depth =
  0, 9, 9,
  0, 0, 30 ;
}
)cdl");
}

TEST(RainfallWithGdal, OpensTheStepsAndTheTotal)
{
    if (!hasGdalNetcdf()) {
        GTEST_SKIP() << "no Python with GDAL and its NetCDF driver (Debian: python3-gdal)";
    }
    ToolRun run("-b -rf rain.rfc");
    makeRainfall(run);
    // The coordinates are cell centres, so the north-west corner stands where it should.
    EXPECT_EQ(variablesByGdal(run, "rain.nc", {"rainfall_depth", "total_rainfall_depth"}),
              "rainfall_depth 2 100.0 10.0 0.0 220.0 0.0 -10.0\n"
              "-999.0 0\n-999.0 -999.0 10.0\n-999.0 3.0 3.0\n"
              "-999.0 0.5\n-999.0 -999.0 20.0\n-999.0 6.0 6.0\n"
              "total_rainfall_depth 1 100.0 10.0 0.0 220.0 0.0 -10.0\n"
              "-999.0 None\n0.0 0.0 30.0\n0.0 9.0 9.0\n");
}

// The grids of a run as another program sees them.
TEST(RainfallWithGdal, OpensTheGrids)
{
    if (!hasGdal()) {
        GTEST_SKIP() << "no Python with GDAL (Debian: python3-gdal)";
    }
    for (const std::string format : {"ASC", "FLT"}) {
        ToolRun run("-b -rf rain.rfc");
        giveRainfall(run, kRainfallGrid + kTwoHyetographs +
                              "RF Interpolation Method == Poly\nRead GIS RF Polygon == areas.mif\nRF Grid Format == " +
                              format + "\n");
        giveRainfallLayer(run, "areas", mifRectangle("110", "200", "130", "210"), "a,1.5,1\n");
        run.start();
        const GdalGrid grid = readByGdal(run, format == "ASC" ? "rain_t0.5.asc" : "rain_t0.5.flt");
        EXPECT_EQ(grid.cells, (Cells{{-999, -999, -999}, {-999, 6, 6}}));
        EXPECT_EQ(grid.xll, 100);
        EXPECT_EQ(grid.yll, 200);
        EXPECT_EQ(grid.cellsize, 10);
        EXPECT_EQ(grid.null, -999);
    }
}

} // namespace
} // namespace gridforge::test
