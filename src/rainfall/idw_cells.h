// The weights of the IDW method: of all points, or of those nearest to a cell.
#pragma once

#include "core/huge_array.h"
#include "plane/cell_array.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace gridforge::rainfall {

inline constexpr float kLeastIdwDistance = 0.001F; // a limit below it is none

// How a run weighs its points.
struct RfIdwMethod {
    bool useAll = true;
    std::int32_t listLength = 0; // K
    float maxDistance = -99.0F;  // no limit below 0.001
    float exponent = 2.0F;
};

// The weights are single precision all along, so they are kept so; sums are double. With all points, the weights of a
// row lie point by point, each from west to east. With a subset, every cell has a list of up to listLength points, the
// nearest first.
struct RfIdwTables {
    RfIdwMethod method;
    std::int32_t points = 0;
    HugeArray<float> weight;
    HugeArray<std::int32_t> pointNumber; // from 1; subset only
    CellArray<std::int32_t> count;       // of the list; subset only
    CellArray<double> weightSum;

    // Where the weights of a row begin and how many there are.
    std::size_t rowWeights() const
    {
        return static_cast<std::size_t>(weightSum.ncols()) *
               static_cast<std::size_t>(method.useAll ? points : method.listLength);
    }
    std::size_t rowStart(std::int32_t row) const { return static_cast<std::size_t>(row - 1) * rowWeights(); }
    std::span<float> weightsOf(std::int32_t row) { return weight.all().subspan(rowStart(row), rowWeights()); }
    std::span<const float> weightsOf(std::int32_t row) const
    {
        return weight.all().subspan(rowStart(row), rowWeights());
    }
    std::span<const std::int32_t> pointsOf(std::int32_t row) const
    {
        return pointNumber.all().subspan(rowStart(row), rowWeights());
    }
};

// Where points lie, or the centres of columns and rows.
struct RfPlaces {
    std::span<const double> x;
    std::span<const double> y;
};

// The weights of all points, point by point, in a row of cells with their centres at `x` and `y`, and the sum of them that
// each cell has. A point beyond the limit has the weight 0, one at the centre an infinite one.
void weighAll(const RfIdwMethod& method, const RfPlaces& points, std::span<const double> x, double y,
              std::span<float> weights, std::span<double> sums);

inline constexpr std::int32_t kIdwSide = 16; // of a square of cells whose points are sought together

// Finds the nearest points of cells, square by square. Its memory stays from one square to the next.
class NearestPoints {
public:
    // `distances` has room for one value a point.
    NearestPoints(const RfPlaces& points, std::span<float> distances) : points_(points), distances_(distances) {}

    // Fills the lists of the cells from row `firstRow`, from 1, kIdwSide rows or as many as are left.
    void listRows(const RfPlaces& centres, std::int32_t firstRow, RfIdwTables& tables);

private:
    class CellList;

    void moveTo(double x, double y, double reach, std::int32_t listLength);
    void listNearest(double x, double y, std::int32_t listLength, CellList& list);
    void listPlainly(double x, double y, std::int32_t listLength, CellList& list);

    RfPlaces points_;
    std::span<float> distances_;
    std::vector<double> away_; // of each point from the centre of the square
    std::vector<double> sorted_;
    std::vector<std::int32_t> near_; // the points that may be among the nearest of one of its cells
    std::vector<std::uint64_t> keys_;
    bool isPlain_ = false;
};

} // namespace gridforge::rainfall
