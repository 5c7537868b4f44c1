#include "rainfall/idw_cells.h"

#include "core/computed.h"
#include "plane/geometry.h"

#include <algorithm>
#include <bit>
#include <cassert>
#include <cmath>
#include <limits>

namespace gridforge::rainfall {

namespace {

// What the distance of a point becomes when it has been listed.
constexpr float kListed = 9999999.0F;

bool isBeyond(float distance, const RfIdwMethod& method)
{
    return method.maxDistance > kLeastIdwDistance && distance > method.maxDistance;
}

// Infinite at the point itself, on purpose: such a cell becomes not-a-number.
float weightAt(float distance, const RfIdwMethod& method)
{
    return 1.0F / power(distance, method.exponent);
}

float limitedWeight(float distance, const RfIdwMethod& method)
{
    return isBeyond(distance, method) ? 0.0F : weightAt(distance, method);
}

} // namespace

// --- All points ------------------------------------------------------------------------------------------------------

void weighAll(const RfIdwMethod& method, const RfPlaces& points, std::span<const double> x, double y,
              std::span<float> weights, std::span<double> sums)
{
    assert(points.x.size() == points.y.size() && sums.size() == x.size());
    assert(weights.size() == points.x.size() * x.size());
    for (std::size_t p = 0; p < points.x.size(); ++p) {
        const std::span<float> ofPoint = weights.subspan(p * x.size(), x.size());
        for (std::size_t c = 0; c < x.size(); ++c) {
            ofPoint[c] = limitedWeight(DISTANCE_8(x[c], y, points.x[p], points.y[p]), method);
            sums[c] += static_cast<double>(ofPoint[c]);
        }
    }
    // Where hyetographs outnumber the points, records that no layer has filled enter at the origin of the coordinates:
    // they count in the sum of the weights, though never in the rain. On purpose: earlier results have it so.
    for (auto p = static_cast<std::int64_t>(points.x.size()); p < method.listLength; ++p) {
        for (std::size_t c = 0; c < x.size(); ++c) {
            sums[c] += static_cast<double>(limitedWeight(DISTANCE_8(x[c], y, 0, 0), method));
        }
    }
}

// --- The nearest points ----------------------------------------------------------------------------------------------

// The list of one cell.
class NearestPoints::CellList {
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

// To a square with its centre at (x, y) and no cell centre further from it than `reach`.
void NearestPoints::moveTo(double x, double y, double reach, std::int32_t listLength)
{
    near_.clear();
    away_.clear();
    for (std::size_t p = 0; p < points_.x.size(); ++p) {
        const double dx = points_.x[p] - x;
        const double dy = points_.y[p] - y;
        away_.push_back(std::sqrt(dx * dx + dy * dy));
    }
    // Without an order among the distances there is no short way.
    isPlain_ = std::ranges::any_of(away_, [](double distance) { return !std::isfinite(distance); });
    if (isPlain_) {
        return;
    }
    // By the triangle inequality, a point farther from the centre than the K-th nearest to it by more than 2 * reach is
    // never among a cell's K nearest. The margin covers the roundings to single precision.
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

void NearestPoints::listNearest(double x, double y, std::int32_t listLength, CellList& list)
{
    if (isPlain_) {
        listPlainly(x, y, listLength, list);
        return;
    }
    constexpr int kIndexBits = 32;
    // A distance is not negative, so its bits keep its order; of equal ones the first point comes first.
    keys_.clear();
    for (const std::int32_t p : near_) {
        const auto at = static_cast<std::size_t>(p);
        const auto bits = std::bit_cast<std::uint32_t>(DISTANCE_8(x, y, points_.x[at], points_.y[at]));
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

// One search over all points for each place of the list.
void NearestPoints::listPlainly(double x, double y, std::int32_t listLength, CellList& list)
{
    for (std::size_t p = 0; p < distances_.size(); ++p) {
        distances_[p] = DISTANCE_8(x, y, points_.x[p], points_.y[p]);
    }
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

void NearestPoints::listRows(const RfPlaces& centres, std::int32_t firstRow, RfIdwTables& tables)
{
    const std::int32_t listLength = tables.method.listLength;
    const std::size_t south = static_cast<std::size_t>(firstRow) - 1;
    const std::size_t north = std::min(south + kIdwSide, centres.y.size()) - 1;
    for (std::size_t west = 0; west < centres.x.size(); west += kIdwSide) {
        const std::size_t east = std::min(west + kIdwSide, centres.x.size()) - 1;
        const double x1 = centres.x[west];
        const double x2 = centres.x[east];
        const double y1 = centres.y[south];
        const double y2 = centres.y[north];
        moveTo((x1 + x2) / 2, (y1 + y2) / 2, std::hypot(x2 - x1, y2 - y1) / 2, listLength);
        for (std::size_t row = south; row <= north; ++row) {
            for (std::size_t column = west; column <= east; ++column) {
                CellList list(tables, static_cast<std::int32_t>(row) + 1, static_cast<std::int32_t>(column) + 1);
                listNearest(centres.x[column], centres.y[row], listLength, list);
            }
        }
    }
}

} // namespace gridforge::rainfall
