#include "rainfall/rainfall_grid.h"

#include "core/rounding.h"
#include "host/console.h"
#include "host/ends.h"

namespace gridforge::rainfall {

namespace {

constexpr float kRfNull = -999.0F;

} // namespace

GridHeader settleRfGrid(const RfSettings& settings)
{
    constexpr float kLeastSizeX = 0.001F;
    constexpr float kLeastSizeY = 1.0F;
    GridHeader grid;
    grid.nrows = settings.rows;
    grid.ncols = settings.columns;
    if (settings.rows > 0 && settings.sizeX > 0.0F) {
        fail("ERROR - Both \"Grid Size (X,Y) == \" and \"Grid Size (N,M) ==\" specified.");
    }
    if (settings.sizeX > kLeastSizeX && settings.sizeY > kLeastSizeY) {
        // X makes the rows and Y the columns, on purpose: control files of domains that are not square rely on it.
        say("Determining rainfall grid size.");
        grid.nrows = roundToInt(static_cast<double>(settings.sizeX / settings.cell));
        grid.ncols = roundToInt(static_cast<double>(settings.sizeY / settings.cell));
    }
    say("Rainfall Grid Dimensions (N,M): ", grid.nrows, ",", grid.ncols);
    // The size is required though the numbers would do: a file with "(N,M)" alone stops here, on purpose.
    if (grid.nrows <= 0 || grid.ncols <= 0 || !(settings.sizeX > 0.0F)) {
        fail("ERROR - Rainfall grid dimensions are invalid.");
    }
    grid.xll = settings.xOrigin;
    grid.yll = settings.yOrigin;
    grid.cellsize = settings.cell;
    grid.cellsize8 = static_cast<double>(settings.cell);
    grid.null = kRfNull;
    return grid;
}

} // namespace gridforge::rainfall
