// The IDW method: each cell takes the weights of all points, or of those nearest to it.
#pragma once

#include "core/huge_array.h"
#include "grid/grid.h"
#include "rainfall/control_file.h"
#include "rainfall/points.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace gridforge::rainfall {

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
};

// Settles, and says, which points are used.
RfIdwMethod settleIdwMethod(const RfSettings& settings, std::int32_t points, std::int32_t hyetographs);

// Says how much memory the weights take, and takes it; ends the run where it cannot be had.
void allocateTables(const GridHeader& grid, const RfIdwMethod& method, std::int32_t points, RfIdwTables& tables);

// Fills the tables.
void rf_idw_weights(const GridHeader& grid, const RfPoints& points, RfIdwTables& tables);

} // namespace gridforge::rainfall
