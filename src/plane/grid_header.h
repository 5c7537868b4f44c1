// The lattice that the cells of a grid lie on.
#pragma once

#include <cstddef>
#include <cstdint>

namespace gridforge::inline plane {

inline constexpr float kDefaultNull = -9999.0F;
inline constexpr double kUnsetCorner = -99999.0;

struct GridHeader {
    std::int32_t ncols = 0;
    std::int32_t nrows = 0;
    double xll = kUnsetCorner; // lower left corner of the lower left cell
    double yll = kUnsetCorner;
    float cellsize = -1.0F;
    double cellsize8 = -1.0; // the same widened, for coordinates
    float null = kDefaultNull;

    std::size_t cells() const { return static_cast<std::size_t>(nrows) * static_cast<std::size_t>(ncols); }
    // Centre of a cell.
    double x(std::int32_t column) const { return xll + (static_cast<double>(column) - 0.5) * cellsize8; }
    double y(std::int32_t row) const { return yll + (static_cast<double>(row) - 0.5) * cellsize8; }
};

} // namespace gridforge::inline plane
