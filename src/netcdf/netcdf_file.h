// The steps that a NetCDF file of grids is written in. Each goes through checkNetcdf, under the name of the call that the
// writer gives it. The dimensions of cells are (time, y, x) or (y, x), the slowest first as the library takes them;
// positions and rows count from 1, row 1 in the south.
#pragma once

#include <cstddef>
#include <cstdint>
#include <netcdf.h>
#include <span>
#include <string_view>

namespace gridforge::netcdf {

// Creates the file `name`, in place of one that is there, and gives its id. `mode` is NC_CLOBBER (classic) or NC_NETCDF4.
int createNetcdf(std::string_view name, int mode, std::string_view call);

struct NetcdfText {
    const char* name;
    const char* value;
};

// Attributes of a variable, or of the file for NC_GLOBAL.
void putNetcdfTexts(int file, int variable, std::span<const NetcdfText> texts, std::string_view call);

// `length` may be NC_UNLIMITED. Gives the id.
int defineNetcdfDimension(int file, const char* name, std::size_t length, std::string_view call);

struct NetcdfVariable {
    const char* name;
    nc_type type;
    std::span<const int> dimensions;
};
int defineNetcdfVariable(int file, const NetcdfVariable& variable, std::string_view call);

// What cells read as that are never written; also the attribute _FillValue.
void defineNetcdfFill(int file, int variable, float null, std::string_view call);

// All values of a variable of one dimension.
void putNetcdfValues(int file, int variable, std::span<const double> values, std::string_view call);

// The value at one position of the unlimited dimension.
void putNetcdfTime(int file, int variable, std::int32_t position, double time, std::string_view call);

// One row of cells, whole, of a variable (time, y, x).
void putNetcdfRow(int file, int variable, std::int32_t position, std::int32_t row, std::span<const float> cells,
                  std::string_view call);
// One row of cells, whole, of a variable (y, x).
void putNetcdfRow(int file, int variable, std::int32_t row, std::span<const float> cells, std::string_view call);

// Closes the file. A fault of the library in it counts as a refusal.
void closeNetcdf(int file, std::string_view call);

} // namespace gridforge::netcdf
