// The NetCDF file of a rainfall run.
#pragma once

#include "plane/cell_array.h"
#include "plane/grid_header.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace gridforge::rainfall {

struct RfNcRecord {
    int file = 0;
    int timeDimension = 0;
    int xDimension = 0;
    int yDimension = 0;
    int time = 0;
    int x = 0;
    int y = 0;
    int rainfallDepth = 0;
    int totalRainfallDepth = 0;
    bool netcdf4 = false; // rainfall files are classic
};

// Creates the file with its dimensions, variables and coordinates, and leaves it open.
void rf_nc_init(const std::string& fileName, RfNcRecord& record, const GridHeader& grid);

// The grid of one time step, counted from 1, and the total; one call for each row.
void putStep(const RfNcRecord& record, std::int32_t step, float time, const Grid& cells);
void putTotal(const RfNcRecord& record, const Grid& cells);
void closeRainfallNc(RfNcRecord& record);

} // namespace gridforge::rainfall
