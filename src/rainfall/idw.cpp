#include "rainfall/idw.h"

#include "core/number_text.h"
#include "core/per_worker.h"
#include "core/worker_rooms.h"
#include "host/console.h"
#include "host/ends.h"
#include "host/threads.h"
#include "plane/cell_window.h"
#include "rainfall/memory_line.h"

#include <algorithm>
#include <limits>
#include <vector>

namespace gridforge::rainfall {

namespace {

// Places that a kernel takes as spans.
struct Places {
    std::vector<double> x;
    std::vector<double> y;

    RfPlaces spans() const { return {x, y}; }
};

Places placesOf(const RfPoints& points)
{
    Places places;
    for (const RfPoint& point : points.records) {
        places.x.push_back(point.x);
        places.y.push_back(point.y);
    }
    return places;
}

Places centresOf(const GridHeader& grid)
{
    Places centres;
    for (std::int32_t column = 1; column <= grid.ncols; ++column) {
        centres.x.push_back(centreX(grid, column));
    }
    for (std::int32_t row = 1; row <= grid.nrows; ++row) {
        centres.y.push_back(centreY(grid, row));
    }
    return centres;
}

void weighAllRows(const GridHeader& grid, const RfPoints& points, RfIdwTables& tables)
{
    const Places places = placesOf(points);
    const Places centres = centresOf(grid);
    parallelFor(centres.y.size(), [&](std::size_t piece, std::size_t) {
        const auto row = static_cast<std::int32_t>(piece) + 1;
        weighAll(tables.method, places.spans(), centres.x, centres.y[piece], tables.weightsOf(row),
                 tables.weightSum.row(row));
    });
}

// False where the memory for distances cannot be had.
bool weighNearest(const GridHeader& grid, const RfPoints& points, RfIdwTables& tables)
{
    const std::size_t rowsOfSquares = (static_cast<std::size_t>(grid.nrows) + kIdwSide - 1) / kIdwSide;
    const std::size_t workers = workersOf(rowsOfSquares);
    WorkerRooms<float> distances;
    if (!distances.take(workers, points.records.size())) {
        return false;
    }
    const Places places = placesOf(points);
    const Places centres = centresOf(grid);
    PerWorker<NearestPoints> nearest;
    for (std::size_t worker = 0; worker < workers; ++worker) {
        nearest.add(places.spans(), distances.of(worker));
    }
    parallelFor(rowsOfSquares, [&](std::size_t piece, std::size_t worker) {
        nearest[worker].listRows(centres.spans(), static_cast<std::int32_t>(piece) * kIdwSide + 1, tables);
    });
    return true;
}

} // namespace

// --- The method and its memory ---------------------------------------------------------------------------------------

RfIdwMethod settleIdwMethod(const RfSettings& settings, std::int32_t points, std::int32_t hyetographs)
{
    RfIdwMethod method{true, settings.idwMaxPoints, settings.idwMaxDistance, settings.idwExponent};
    if (settings.idwMaxPoints <= 0) {
        method.listLength = std::max(points, hyetographs);
        say("Maximum number of points in IDW interpolation not specified, using all ", method.listLength, " points");
    } else if (settings.idwMaxPoints >= points) {
        method.listLength = points;
        say("Using all ", points, " points in IDW interpolation.");
    } else {
        method.useAll = false;
        say("Maximum points in IDW interpolation: ", method.listLength);
    }
    if (method.maxDistance < kLeastIdwDistance) {
        say("Not using maximum distance.");
    } else {
        say("Maximum distance for IDW interpolation: ", AREAL(method.maxDistance));
    }
    say("Exponent for IDW interpolation: ", AREAL(method.exponent));
    return method;
}

void allocateTables(const GridHeader& grid, const RfIdwMethod& method, std::int32_t points, RfIdwTables& tables)
{
    const auto k = static_cast<std::uint32_t>(method.listLength);
    // Of the weights as double and of all lists, as users know the figure.
    sayMethodMemory(grid, method.useAll ? (1U + k) * 8U : ((3U + k) + k * 2U) * 4U);
    tables.method = method;
    tables.points = points;
    const auto perCell = static_cast<std::size_t>(method.useAll ? points : method.listLength);
    const bool fits = perCell == 0 || grid.cells() <= std::numeric_limits<std::size_t>::max() / perCell;
    if (!fits || !tables.weightSum.allocate(grid.nrows, grid.ncols) ||
        !tables.weight.allocate(grid.cells() * perCell)) {
        failMemory();
    }
    if (!method.useAll &&
        (!tables.count.allocate(grid.nrows, grid.ncols) || !tables.pointNumber.allocate(grid.cells() * perCell))) {
        failMemory();
    }
}

void rf_idw_weights(const GridHeader& grid, const RfPoints& points, RfIdwTables& tables)
{
    say("Setting IDW weighting factors for rainfall grid");
    if (tables.method.useAll) {
        weighAllRows(grid, points, tables);
    } else if (!weighNearest(grid, points, tables)) {
        fail("ERROR - Allocating RAM for storing IDW distances");
    }
    say("Done");
}

} // namespace gridforge::rainfall
