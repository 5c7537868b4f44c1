#include "rainfall/rainfall_nc.h"

#include "core/computed.h"
#include "core/huge_array.h"
#include "core/text.h"
#include "host/console.h"
#include "host/ends.h"
#include "netcdf/check_netcdf.h"
#include "netcdf/library.h"
#include "netcdf/netcdf_file.h"

#include <array>

namespace gridforge::rainfall {

namespace {

constexpr std::array<netcdf::NetcdfText, 4> kFileTexts{{{"title", "Gridded Rainfall"},
                                                        {"source", "gridforge utility"},
                                                        {"references", "Not completed yet"},
                                                        {"comment", "nothing yet"}}};
constexpr std::array<netcdf::NetcdfText, 4> kTimeTexts{
    {{"standard_name", "time"}, {"long_name", "time"}, {"units", "hours"}, {"axis", "T"}}};
constexpr std::array<netcdf::NetcdfText, 4> kYTexts{{{"standard_name", "projection_y_coordinate"},
                                                     {"long_name", "y-coordinate in cartesian system"},
                                                     {"units", "m"},
                                                     {"axis", "Y"}}};
constexpr std::array<netcdf::NetcdfText, 4> kXTexts{{{"standard_name", "projection_x_coordinate"},
                                                     {"long_name", "x-coordinate in cartesian system"},
                                                     {"units", "m"},
                                                     {"axis", "X"}}};

void defineDimensions(const GridHeader& grid, RfNcRecord& record)
{
    record.xDimension =
        netcdf::defineNetcdfDimension(record.file, "x", static_cast<std::size_t>(grid.ncols), "nf90_def_dim(x)");
    record.yDimension =
        netcdf::defineNetcdfDimension(record.file, "y", static_cast<std::size_t>(grid.nrows), "nf90_def_dim(y)");
    record.timeDimension = netcdf::defineNetcdfDimension(record.file, "time", NC_UNLIMITED, "nf90_def_dim(time)");
}

int defineAxis(int file, const char* name, int dimension, std::span<const netcdf::NetcdfText> texts,
               std::string_view defining, std::string_view describing)
{
    const std::array<int, 1> dimensions{dimension};
    const int variable = netcdf::defineNetcdfVariable(file, {name, NC_DOUBLE, dimensions}, defining);
    netcdf::putNetcdfTexts(file, variable, texts, describing);
    return variable;
}

int defineCells(int file, const char* name, std::span<const int> dimensions, float null)
{
    const int variable = netcdf::defineNetcdfVariable(file, {name, NC_FLOAT, dimensions}, "nf90_def_var(data)");
    netcdf::defineNetcdfFill(file, variable, null, "nf90_def_var_fill(data)");
    return variable;
}

void defineVariables(float null, RfNcRecord& record)
{
    const int file = record.file;
    record.time =
        defineAxis(file, "time", record.timeDimension, kTimeTexts, "nf90_def_var(time)", "nf90_put_att(time)");
    record.y = defineAxis(file, "y", record.yDimension, kYTexts, "nf90_def_var(y)", "nf90_put_att");
    record.x = defineAxis(file, "x", record.xDimension, kXTexts, "nf90_def_var(x)", "nf90_put_att");
    const std::array<int, 3> inTime{record.timeDimension, record.yDimension, record.xDimension};
    record.rainfallDepth = defineCells(file, "rainfall_depth", inTime, null);
    record.totalRainfallDepth = defineCells(file, "total_rainfall_depth", std::span(inTime).subspan(1), null);
}

// Cell centres along one axis.
void fillCentres(double origin, double size, std::span<double> centres)
{
    for (std::size_t i = 0; i < centres.size(); ++i) {
        centres[i] = stored(origin + static_cast<double>(i + 1) * size - 0.5 * size);
    }
}

void putCoordinates(const GridHeader& grid, const RfNcRecord& record)
{
    HugeArray<double> x;
    HugeArray<double> y;
    if (!x.allocate(static_cast<std::size_t>(grid.ncols)) || !y.allocate(static_cast<std::size_t>(grid.nrows))) {
        fail("ERROR ???? - Could not allocate temporary memory for netcdf coordinates.");
    }
    fillCentres(grid.xll, grid.cellsize8, x.all());
    fillCentres(grid.yll, grid.cellsize8, y.all());
    netcdf::putNetcdfValues(record.file, record.x, x.all(), "nf90_put_var (x)");
    netcdf::putNetcdfValues(record.file, record.y, y.all(), "nf90_put_var (y)");
}

} // namespace

void rf_nc_init(const std::string& fileName, RfNcRecord& record, const GridHeader& grid)
{
    say("Opening output .nc file: ", fileName);
    record.file = netcdf::createNetcdf(fileName, record.netcdf4 ? NC_NETCDF4 : NC_CLOBBER, "nf90_create");
    say("Created NETCDF file ", quoted(fileName));
    defineDimensions(grid, record);
    netcdf::putNetcdfTexts(record.file, NC_GLOBAL, kFileTexts, "nf90_put_att");
    defineVariables(grid.null, record);
    netcdf::checkNetcdf(netcdf::library().nc_enddef(record.file), "nf90_enddef");
    putCoordinates(grid, record);
    say("Finished initialising netcdf file.");
}

void putStep(const RfNcRecord& record, std::int32_t step, float time, const Grid& cells)
{
    netcdf::putNetcdfTime(record.file, record.time, step, static_cast<double>(time), "nf90_put_var (time)");
    for (std::int32_t row = 1; row <= cells.nrows(); ++row) {
        netcdf::putNetcdfRow(record.file, record.rainfallDepth, step, row, cells.row(row), "nf90_put_var (rf_val)");
    }
}

void putTotal(const RfNcRecord& record, const Grid& cells)
{
    for (std::int32_t row = 1; row <= cells.nrows(); ++row) {
        netcdf::putNetcdfRow(record.file, record.totalRainfallDepth, row, cells.row(row), "nf90_put_var (rf_cum)");
    }
}

void closeRainfallNc(RfNcRecord& record)
{
    netcdf::closeNetcdf(record.file, "nf90_close");
    record.file = 0;
}

} // namespace gridforge::rainfall
