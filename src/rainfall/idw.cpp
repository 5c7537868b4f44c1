#include "rainfall/idw.h"

#include "core/computed.h"
#include "core/numbers.h"
#include "core/worker_rooms.h"
#include "host/console.h"
#include "host/ends.h"
#include "host/threads.h"
#include "plane/geometry.h"
#include "rainfall/memory_line.h"
#include "run/cell_window.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <vector>

namespace gridforge::rainfall {

namespace {

constexpr float kLeastDistance = 0.001F;
// What the distance of a point becomes when it has been listed.
constexpr float kListed = 9999999.0F;

std::vector<double> centresOfRow(const GridHeader& grid)
{
    std::vector<double> x(static_cast<std::size_t>(grid.ncols));
    for (std::int32_t column = 1; column <= grid.ncols; ++column) {
        x[static_cast<std::size_t>(column - 1)] = run::centreX(grid, column);
    }
    return x;
}

bool isBeyond(float distance, const RfIdwMethod& method)
{
    return method.maxDistance > kLeastDistance && distance > method.maxDistance;
}

// Infinite at the point itself, on purpose: such a cell becomes not-a-number.
float weightAt(float distance, const RfIdwMethod& method)
{
    return 1.0F / power(distance, method.exponent);
}

// --- All points ------------------------------------------------------------------------------------------------------

void weighAll(const GridHeader& grid, const RfPoints& points, RfIdwTables& tables)
{
    const RfIdwMethod& method = tables.method;
    const std::vector<double> x = centresOfRow(grid);
    std::vector<std::vector<float>> rooms(workersOf(static_cast<std::size_t>(grid.nrows)));
    parallelFor(static_cast<std::size_t>(grid.nrows), [&](std::size_t piece, std::size_t worker) {
        std::vector<float>& unlisted = rooms[worker];
        unlisted.resize(x.size());
        const auto row = static_cast<std::int32_t>(piece) + 1;
        const double y = run::centreY(grid, row);
        const std::span<float> rowWeights = tables.weight.all().subspan(tables.rowStart(row), tables.rowWeights());
        const std::span<double> sums = tables.weightSum.row(row);
        for (std::int32_t p = 0; p < method.listLength; ++p) {
            // Where hyetographs outnumber the points, records that no layer has filled enter at the origin of the
            // coordinates: they count in the sum of the weights, though never in the rain. On purpose: earlier results
            // have it so.
            const bool isPoint = p < tables.points;
            const RfPoint point = isPoint ? points.records[static_cast<std::size_t>(p)] : RfPoint();
            const std::span<float> weights =
                isPoint ? rowWeights.subspan(static_cast<std::size_t>(p) * x.size(), x.size()) : std::span(unlisted);
            for (std::size_t c = 0; c < x.size(); ++c) {
                const float distance = DISTANCE_8(x[c], y, point.x, point.y);
                weights[c] = isBeyond(distance, method) ? 0.0F : weightAt(distance, method);
                sums[c] += static_cast<double>(weights[c]);
            }
        }
    });
}

// --- The nearest points ----------------------------------------------------------------------------------------------

// The list of one cell.
class CellList {
public:
    CellList(RfIdwTables& tables, std::int32_t row, std::int32_t column)
        : method_(tables.method), count_(tables.count(row, column)), sum_(tables.weightSum(row, column))
    {
        const std::size_t start =
            tables.rowStart(row) + static_cast<std::size_t>(column - 1) * static_cast<std::size_t>(method_.listLength);
        weights_ = tables.weight.all().subspan(start, static_cast<std::size_t>(method_.listLength));
        numbers_ = tables.pointNumber.all().subspan(start, static_cast<std::size_t>(method_.listLength));
    }

    // False for a point beyond the limit, which closes the list.
    bool add(std::int32_t number, float distance)
    {
        if (isBeyond(distance, method_)) {
            return false;
        }
        const auto place = static_cast<std::size_t>(count_++);
        numbers_[place] = number;
        weights_[place] = weightAt(distance, method_);
        sum_ += static_cast<double>(weights_[place]);
        return true;
    }

private:
    const RfIdwMethod& method_;
    std::int32_t& count_;
    double& sum_;
    std::span<float> weights_;
    std::span<std::int32_t> numbers_;
};

// A square of cells, and the points that may be among the nearest of one of them.
class Neighbourhood {
public:
    Neighbourhood(const RfPoints& points, std::span<float> distances) : points_(points), distances_(distances) {}

    // The square has its centre at (x, y) and no cell centre further from it than `reach`.
    void moveTo(double x, double y, double reach, std::int32_t listLength)
    {
        near_.clear();
        away_.clear();
        for (const RfPoint& point : points_.records) {
            const double dx = point.x - x;
            const double dy = point.y - y;
            away_.push_back(std::sqrt(dx * dx + dy * dy));
        }
        // Without an order among the distances there is no short way.
        isPlain_ = std::ranges::any_of(away_, [](double distance) { return !std::isfinite(distance); });
        if (isPlain_) {
            return;
        }
        // Whoever is nearer to the centre than the K-th point is within `reach` more of each cell; whoever is further
        // by twice that cannot be among a cell's K. The margin covers the roundings to single precision.
        constexpr double kMargin = 1e-5;
        sorted_ = away_;
        const auto last = sorted_.begin() + (listLength - 1);
        std::nth_element(sorted_.begin(), last, sorted_.end());
        const double bound = (*last + 2 * reach) * (1 + kMargin) + kMargin;
        // A point so far off that a listed one would be taken again in its place: the plain way.
        isPlain_ = !(bound < static_cast<double>(kListed) / 2);
        if (isPlain_) {
            return;
        }
        for (std::size_t p = 0; p < away_.size(); ++p) {
            if (away_[p] <= bound) {
                near_.push_back(static_cast<std::int32_t>(p));
            }
        }
    }

    void listNearest(double x, double y, std::int32_t listLength, CellList& list)
    {
        if (isPlain_) {
            listPlainly(x, y, listLength, list);
            return;
        }
        // A distance is not negative, so its bits keep its order; of equal ones the first point comes first.
        keys_.clear();
        for (const std::int32_t p : near_) {
            const RfPoint& point = points_.records[static_cast<std::size_t>(p)];
            const auto bits = std::bit_cast<std::uint32_t>(DISTANCE_8(x, y, point.x, point.y));
            keys_.push_back(std::uint64_t{bits} << kIndexBits | static_cast<std::uint32_t>(p));
        }
        const auto end = keys_.begin() + listLength;
        std::partial_sort(keys_.begin(), end, keys_.end());
        for (auto key = keys_.begin(); key != end; ++key) {
            const auto number = static_cast<std::int32_t>(static_cast<std::uint32_t>(*key)) + 1;
            if (!list.add(number, std::bit_cast<float>(static_cast<std::uint32_t>(*key >> kIndexBits)))) {
                return;
            }
        }
    }

private:
    static constexpr int kIndexBits = 32;

    // One search over all points for each place of the list.
    void listPlainly(double x, double y, std::int32_t listLength, CellList& list)
    {
        std::ranges::transform(points_.records, distances_.begin(),
                               [&](const RfPoint& point) { return DISTANCE_8(x, y, point.x, point.y); });
        for (std::int32_t k = 0; k < listLength; ++k) {
            std::size_t nearest = 0;
            float least = std::numeric_limits<float>::infinity();
            for (std::size_t p = 0; p < distances_.size(); ++p) {
                if (distances_[p] < least) {
                    nearest = p;
                    least = distances_[p];
                }
            }
            if (!list.add(static_cast<std::int32_t>(nearest) + 1, distances_[nearest])) {
                return;
            }
            distances_[nearest] = kListed;
        }
    }

    const RfPoints& points_;
    std::span<float> distances_;
    std::vector<double> away_;
    std::vector<double> sorted_;
    std::vector<std::int32_t> near_;
    std::vector<std::uint64_t> keys_;
    bool isPlain_ = false;
};

constexpr std::int32_t kSide = 16; // of a square of cells that share a neighbourhood

// The squares whose southern row is `firstRow`.
void weighSquares(const GridHeader& grid, std::int32_t firstRow, Neighbourhood& neighbourhood, RfIdwTables& tables)
{
    const std::int32_t listLength = tables.method.listLength;
    const auto lastRow =
        static_cast<std::int32_t>(std::min<std::int64_t>(std::int64_t{firstRow} + kSide - 1, grid.nrows));
    for (std::int64_t west = 1; west <= grid.ncols; west += kSide) {
        const auto firstColumn = static_cast<std::int32_t>(west);
        const auto lastColumn = static_cast<std::int32_t>(std::min<std::int64_t>(west + kSide - 1, grid.ncols));
        const double x1 = run::centreX(grid, firstColumn);
        const double x2 = run::centreX(grid, lastColumn);
        const double y1 = run::centreY(grid, firstRow);
        const double y2 = run::centreY(grid, lastRow);
        neighbourhood.moveTo((x1 + x2) / 2, (y1 + y2) / 2, std::hypot(x2 - x1, y2 - y1) / 2, listLength);
        for (std::int32_t row = firstRow; row <= lastRow; ++row) {
            const double y = run::centreY(grid, row);
            for (std::int32_t column = firstColumn; column <= lastColumn; ++column) {
                CellList list(tables, row, column);
                neighbourhood.listNearest(run::centreX(grid, column), y, listLength, list);
            }
        }
    }
}

// False where the memory for distances cannot be had.
bool weighNearest(const GridHeader& grid, const RfPoints& points, RfIdwTables& tables)
{
    const std::size_t rowsOfSquares = (static_cast<std::size_t>(grid.nrows) + kSide - 1) / kSide;
    const std::size_t workers = workersOf(rowsOfSquares);
    WorkerRooms<float> distances;
    if (!distances.take(workers, points.records.size())) {
        return false;
    }
    std::vector<Neighbourhood> neighbourhoods;
    for (std::size_t worker = 0; worker < workers; ++worker) {
        neighbourhoods.emplace_back(points, distances.of(worker));
    }
    parallelFor(rowsOfSquares, [&](std::size_t piece, std::size_t worker) {
        weighSquares(grid, static_cast<std::int32_t>(piece) * kSide + 1, neighbourhoods[worker], tables);
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
    if (method.maxDistance < kLeastDistance) {
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
        weighAll(grid, points, tables);
    } else if (!weighNearest(grid, points, tables)) {
        fail("ERROR - Allocating RAM for storing IDW distances");
    }
    say("Done");
}

} // namespace gridforge::rainfall
