// The methods of rainfall in their plain form, cell by cell: what the kernels are compared with.
#pragma once

#include "core/rounding.h"
#include "plane/geometry.h"
#include "rainfall/idw.h"
#include "rainfall/points.h"
#include "rainfall/polygons.h"
#include "rainfall/steps.h"
#include "rainfall/triangles.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <span>
#include <vector>

namespace gridforge::test {

inline GridHeader rainfallGrid(std::int32_t nrows, std::int32_t ncols, double xll, double yll, float cell)
{
    GridHeader grid;
    grid.nrows = nrows;
    grid.ncols = ncols;
    grid.xll = xll;
    grid.yll = yll;
    grid.cellsize = cell;
    grid.cellsize8 = static_cast<double>(cell);
    grid.null = -999.0F;
    return grid;
}

// What is computed without getting a number has the bits 7fc00000.
inline float withSettledBits(float value)
{
    return std::isnan(value) ? std::bit_cast<float>(0x7fc00000U) : value;
}

inline float powerOf(float base, float exponent)
{
    return static_cast<float>(std::pow(static_cast<double>(base), static_cast<double>(exponent)));
}

// Equal to the bit, not-a-number included.
template <typename Value>
bool sameBits(std::span<const Value> a, std::span<const Value> b)
{
    return a.size() == b.size() && (a.empty() || std::memcmp(a.data(), b.data(), a.size_bytes()) == 0);
}

template <typename Value>
bool sameCellBits(const CellArray<Value>& a, const CellArray<Value>& b)
{
    return sameBits<Value>(a.cells(), b.cells());
}

// --- Polygons --------------------------------------------------------------------------------------------------------

inline std::int64_t paintPlainly(const std::vector<double>& x, const std::vector<double>& y, const GridHeader& grid,
                                 std::int32_t hyetograph, float factor, rainfall::RfPolygonTables& tables)
{
    const auto np = static_cast<std::int32_t>(x.size());
    const std::array<std::int32_t, 1> ir{np - 1};
    const double xmin = *std::min_element(x.begin(), x.end());
    const double xmax = *std::max_element(x.begin(), x.end());
    const double ymin = *std::min_element(y.begin(), y.end());
    const double ymax = *std::max_element(y.begin(), y.end());
    const double cell = grid.cellsize8;
    const auto low = [&](double at, double origin) { return std::max(1, truncateToInt((at - origin) / cell) - 1); };
    const auto high = [&](double at, double origin, int n) {
        return std::min(n, truncateToInt((at - origin) / cell) + 1);
    };
    std::int64_t shared = 0;
    for (int r = low(ymin, grid.yll); r <= high(ymax, grid.yll, grid.nrows); ++r) {
        for (int c = low(xmin, grid.xll); c <= high(xmax, grid.xll, grid.ncols); ++c) {
            const double py = grid.yll + static_cast<double>(static_cast<float>(r) * grid.cellsize) -
                              static_cast<double>(0.5F * grid.cellsize);
            const double px = grid.xll + static_cast<double>(static_cast<float>(c) * grid.cellsize) -
                              static_cast<double>(0.5F * grid.cellsize);
            if (INSIDE_POLYGON_8(px, py, x, y, np, std::min(xmin, grid.xll), ir, 1)) {
                shared += tables.index(r, c) > 0 ? 1 : 0;
                tables.index(r, c) = hyetograph;
                tables.factor(r, c) = factor;
            }
        }
    }
    return shared;
}

// --- TIN -------------------------------------------------------------------------------------------------------------

// The scan line with its counts of crossings, column by column.
class PlainTin {
public:
    PlainTin(const GridHeader& grid, rainfall::RfTinTables& tables) : grid_(grid), tables_(tables) {}

    void paint(std::int32_t e, const rainfall::RfTriangle& triangle, const rainfall::RfTinPoints& points)
    {
        const double size = grid_.cellsize8;
        double cornerX[7];
        double cornerY[7];
        for (int v = 1; v <= 6; ++v) {
            const auto point = static_cast<std::size_t>(triangle[static_cast<std::size_t>((v - 1) % 3)] - 1);
            cornerX[v] = points.x[point] - grid_.xll;
            cornerY[v] = points.y[point] - grid_.yll;
        }
        const auto hair = static_cast<double>(1.0e-6F);
        double x[6];
        double y[6];
        for (int v = 1; v <= 3; ++v) {
            const double midX = (cornerX[v + 1] + cornerX[v + 2]) / 2;
            const double midY = (cornerY[v + 1] + cornerY[v + 2]) / 2;
            x[v] = cornerX[v] - hair * (midX - cornerX[v]) + 0.5 * size;
            y[v] = cornerY[v] - hair * (midY - cornerY[v]) + 0.5 * size;
        }
        x[4] = x[1];
        y[4] = y[1];
        x[5] = x[2];
        y[5] = y[2];
        const auto from = [size](double low) {
            return truncateToInt(low / size) < 0 ? 1 : truncateToInt(low / size) + 1;
        };
        const auto to = [size](double high, int n) { return std::min(n, truncateToInt(high / size) + 1); };
        const int rowFrom = from(std::min({y[1], y[2], y[3]}));
        const int rowTo = to(std::max({y[1], y[2], y[3]}), grid_.nrows);
        const int columnFrom = from(std::min({x[1], x[2], x[3]}));
        const int columnTo = to(std::max({x[1], x[2], x[3]}), grid_.ncols);
        if (rowFrom > rowTo || columnFrom > columnTo) {
            return;
        }
        std::vector<std::vector<int>> counts(static_cast<std::size_t>(grid_.nrows) + 1,
                                             std::vector<int>(static_cast<std::size_t>(grid_.ncols) + 1));
        for (int k = 1; k <= 3; ++k) {
            int r1 = std::clamp(truncateToInt(y[k] / size) + 1, rowFrom, rowTo + 1);
            int r2 = std::clamp(truncateToInt(y[k + 1] / size) + 1, rowFrom, rowTo + 1);
            if (r1 == r2) {
                continue;
            }
            int step = 1;
            if (r2 > r1) {
                r2 = r2 - 1;
            } else {
                r1 = r1 - 1;
                step = -1;
            }
            for (int r = r1; r != r2 + step; r += step) {
                const double level = size * r;
                double xc = x[k];
                if (std::fabs(x[k] - x[k + 1]) >= static_cast<double>(0.001F)) {
                    const double s = (y[k] - y[k + 1]) / (x[k] - x[k + 1]);
                    xc = ((s * x[k] - y[k]) + level) / s;
                }
                const int cc = truncateToInt(xc / size) + 1;
                if (cc < columnFrom) {
                    ++counts[static_cast<std::size_t>(r)][static_cast<std::size_t>(columnFrom)];
                } else if (cc <= columnTo) {
                    ++counts[static_cast<std::size_t>(r)][static_cast<std::size_t>(cc)];
                }
            }
        }
        for (int r = rowFrom; r <= rowTo; ++r) {
            bool outside = true;
            for (int c = columnFrom; c <= columnTo; ++c) {
                const bool odd = counts[static_cast<std::size_t>(r)][static_cast<std::size_t>(c)] % 2 != 0;
                if (odd && outside) {
                    set(e, r, c, x, y);
                    outside = false;
                } else if (odd) {
                    outside = true;
                } else if (!outside) {
                    set(e, r, c, x, y);
                }
            }
        }
    }

private:
    void set(std::int32_t e, int r, int c, const double* x, const double* y)
    {
        const double px = grid_.cellsize8 * c;
        const double py = grid_.cellsize8 * r;
        const auto close = static_cast<double>(0.001F);
        double ix = 0;
        double iy = 0;
        const double n = (y[2] - y[1]) / (x[2] - x[1]);
        const double m = (py - y[3]) / (px - x[3]);
        if (std::fabs(x[1] - x[2]) < close && std::fabs(x[3] - px) < close) {
            ix = x[1];
            iy = y[1];
        } else if (std::fabs(x[1] - x[2]) < close) {
            ix = x[1];
            iy = m * (ix - x[3]) + y[3];
        } else if (std::fabs(x[3] - px) < close) {
            ix = x[3];
            iy = n * (ix - x[1]) + y[1];
        } else {
            ix = ((((m * x[3]) - y[3]) + y[1]) - n * x[1]) / (m - n);
            iy = m * (ix - x[3]) + y[3];
        }
        const auto length = [](double dx, double dy) { return std::sqrt(dx * dx + dy * dy); };
        const auto least = static_cast<double>(1.0e-6F);
        const double edge = length(x[2] - x[1], y[2] - y[1]);
        const double whole = length(ix - x[3], iy - y[3]);
        tables_.ratioA(r, c) = edge < least ? 0.5F : static_cast<float>(length(ix - x[1], iy - y[1]) / edge);
        tables_.ratioB(r, c) = whole < least ? 0.5F : static_cast<float>(length(px - x[3], py - y[3]) / whole);
        tables_.triangle(r, c) = e;
    }

    const GridHeader& grid_;
    rainfall::RfTinTables& tables_;
};

// --- IDW -------------------------------------------------------------------------------------------------------------

// The tables by cell (row, column from 1) and place in the list, as wide as they are described.
struct PlainIdw {
    std::int32_t columns = 0;
    std::int32_t listLength = 0;
    std::vector<std::int32_t> count;
    std::vector<std::int32_t> pointNumber;
    std::vector<double> weight;
    std::vector<double> weightSum;

    std::size_t cell(std::int32_t row, std::int32_t column) const
    {
        return static_cast<std::size_t>(row - 1) * static_cast<std::size_t>(columns) +
               static_cast<std::size_t>(column - 1);
    }
    std::size_t place(std::int32_t row, std::int32_t column, std::int32_t k) const
    {
        return cell(row, column) * static_cast<std::size_t>(listLength) + static_cast<std::size_t>(k - 1);
    }
};

inline PlainIdw weighPlainly(const GridHeader& grid, const rainfall::RfPoints& points,
                             const rainfall::RfIdwMethod& method)
{
    PlainIdw plain;
    plain.columns = grid.ncols;
    plain.listLength = method.listLength;
    plain.count.assign(grid.cells(), 0);
    plain.pointNumber.assign(grid.cells() * static_cast<std::size_t>(method.listLength), 0);
    plain.weight.assign(grid.cells() * static_cast<std::size_t>(method.listLength), -999.0);
    plain.weightSum.assign(grid.cells(), 0.0);
    const bool limited = method.maxDistance > 0.001F;
    for (std::int32_t r = 1; r <= grid.nrows; ++r) {
        for (std::int32_t c = 1; c <= grid.ncols; ++c) {
            const double x =
                grid.xll + static_cast<double>(static_cast<float>(c)) * grid.cellsize8 - 0.5 * grid.cellsize8;
            const double y =
                grid.yll + static_cast<double>(static_cast<float>(r)) * grid.cellsize8 - 0.5 * grid.cellsize8;
            double& sum = plain.weightSum[plain.cell(r, c)];
            if (method.useAll) {
                for (std::int32_t p = 1; p <= method.listLength; ++p) {
                    const rainfall::RfPoint point =
                        p <= points.count() ? points.records[static_cast<std::size_t>(p - 1)] : rainfall::RfPoint();
                    const float d = DISTANCE_8(x, y, point.x, point.y);
                    double& weight = plain.weight[plain.place(r, c, p)];
                    weight = limited && d > method.maxDistance
                                 ? 0.0
                                 : static_cast<double>(1.0F / powerOf(d, method.exponent));
                    sum = sum + weight;
                }
                continue;
            }
            std::vector<float> d;
            for (const rainfall::RfPoint& point : points.records) {
                d.push_back(DISTANCE_8(x, y, point.x, point.y));
            }
            for (std::int32_t k = 1; k <= method.listLength; ++k) {
                std::size_t nearest = 0;
                float least = std::numeric_limits<float>::infinity();
                for (std::size_t p = 0; p < d.size(); ++p) {
                    if (d[p] < least) {
                        least = d[p];
                        nearest = p;
                    }
                }
                if (limited && d[nearest] > method.maxDistance) {
                    break;
                }
                const std::int32_t listed = ++plain.count[plain.cell(r, c)];
                plain.pointNumber[plain.place(r, c, listed)] = static_cast<std::int32_t>(nearest) + 1;
                const auto weight = static_cast<double>(1.0F / powerOf(d[nearest], method.exponent));
                plain.weight[plain.place(r, c, listed)] = weight;
                sum = sum + weight;
                d[nearest] = 9999999.0F;
            }
        }
    }
    return plain;
}

// --- Steps -----------------------------------------------------------------------------------------------------------

inline std::vector<float> plainValues(const rainfall::RfHyetographs& hyetographs, const rainfall::RfPoints& points,
                                      std::size_t t)
{
    std::vector<float> values(1 + static_cast<std::size_t>(std::max(points.count(), hyetographs.count())), 0.0F);
    for (std::size_t p = 1; p <= points.records.size(); ++p) {
        const rainfall::RfPoint& point = points.records[p - 1];
        const float depth = hyetographs.records[static_cast<std::size_t>(point.hyetograph - 1)].depth[t];
        values[p] = (depth * point.record.f1) * point.record.f2;
    }
    return values;
}

inline void stepPolygonPlainly(const rainfall::RfHyetographs& hyetographs, std::size_t t,
                               const rainfall::RfPolygonTables& tables, rainfall::RfGrids& grids)
{
    std::ranges::fill(grids.step.cells(), -999.0F);
    for (std::int32_t r = 1; r <= grids.step.nrows(); ++r) {
        for (std::int32_t c = 1; c <= grids.step.ncols(); ++c) {
            const std::int32_t k = tables.index(r, c);
            if (k > 0) {
                const float depth = hyetographs.records[static_cast<std::size_t>(k - 1)].depth[t];
                grids.step(r, c) = withSettledBits(depth * tables.factor(r, c));
                grids.cumulative(r, c) = withSettledBits(grids.cumulative(r, c) + grids.step(r, c));
            }
        }
    }
}

inline void stepTinPlainly(const rainfall::RfHyetographs& hyetographs, const rainfall::RfPoints& points, std::size_t t,
                           const std::vector<rainfall::RfTriangle>& triangles, const rainfall::RfTinTables& tables,
                           rainfall::RfGrids& grids)
{
    const std::vector<float> values = plainValues(hyetographs, points, t);
    std::ranges::fill(grids.step.cells(), -999.0F);
    for (std::int32_t r = 1; r <= grids.step.nrows(); ++r) {
        for (std::int32_t c = 1; c <= grids.step.ncols(); ++c) {
            const std::int32_t e = tables.triangle(r, c);
            if (e <= 0) {
                continue;
            }
            float z[4];
            for (std::size_t v = 1; v <= 3; ++v) {
                const std::int32_t point = triangles[static_cast<std::size_t>(e - 1)][v - 1];
                const std::int32_t h = points.records[static_cast<std::size_t>(point - 1)].hyetograph;
                z[v] = values[static_cast<std::size_t>(h)];
            }
            const float along = z[1] + ((z[2] - z[1]) * tables.ratioA(r, c));
            grids.step(r, c) = withSettledBits(z[3] + ((along - z[3]) * tables.ratioB(r, c)));
            grids.cumulative(r, c) = withSettledBits(grids.cumulative(r, c) + grids.step(r, c));
        }
    }
}

inline void stepIdwPlainly(const rainfall::RfHyetographs& hyetographs, const rainfall::RfPoints& points, std::size_t t,
                           const PlainIdw& plain, bool useAll, rainfall::RfGrids& grids)
{
    const std::vector<float> values = plainValues(hyetographs, points, t);
    for (std::int32_t r = 1; r <= grids.step.nrows(); ++r) {
        for (std::int32_t c = 1; c <= grids.step.ncols(); ++c) {
            double sum = 0.0;
            const std::int32_t last = useAll ? points.count() : plain.count[plain.cell(r, c)];
            for (std::int32_t k = 1; k <= last; ++k) {
                const std::int32_t p = useAll ? k : plain.pointNumber[plain.place(r, c, k)];
                sum =
                    sum + static_cast<double>(values[static_cast<std::size_t>(p)]) * plain.weight[plain.place(r, c, k)];
            }
            grids.step(r, c) = withSettledBits(static_cast<float>(sum / plain.weightSum[plain.cell(r, c)]));
            grids.cumulative(r, c) = withSettledBits(grids.cumulative(r, c) + grids.step(r, c));
        }
    }
}

} // namespace gridforge::test
