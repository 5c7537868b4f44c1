// The searches and loops of the remap in their plain form, which the fast kernels must equal to the last bit. They share
// nothing with the tool.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace gridforge::test::plain {

// Rows and columns from 1.
template <typename Value>
struct Array {
    Array(int rows, int columns, Value value = {})
        : nrows(rows), ncols(columns), values(static_cast<std::size_t>(rows) * static_cast<std::size_t>(columns), value)
    {
    }
    Value& operator()(int r, int c) { return values[at(r, c)]; }
    const Value& operator()(int r, int c) const { return values[at(r, c)]; }
    std::size_t at(int r, int c) const
    {
        return static_cast<std::size_t>(r - 1) * static_cast<std::size_t>(ncols) + static_cast<std::size_t>(c - 1);
    }

    int nrows;
    int ncols;
    std::vector<Value> values;
};

using Flags = Array<std::uint8_t>;
using Reals = Array<float>;
using Integers = Array<std::int32_t>;

struct Counts {
    std::int64_t wet = 0;
    std::int64_t buffered = 0;
};

inline float apart(int a, int b, int c, int d)
{
    const auto x = static_cast<float>(a - b);
    const auto y = static_cast<float>(c - d);
    return std::sqrt(x * x + y * y);
}

// A window of flags for every dry cell.
inline Counts bufferExtent(const Flags& wet, float dx, float b, Flags& extent)
{
    Counts counts;
    const int radius = static_cast<int>(std::trunc(b / dx)) + 1;
    for (int r = 1; r <= wet.nrows; ++r) {
        for (int c = 1; c <= wet.ncols; ++c) {
            extent(r, c) = wet(r, c);
            counts.wet += wet(r, c);
            if (wet(r, c) == 1) {
                continue;
            }
            for (int i = std::max(1, r - radius); i <= std::min(wet.nrows, r + radius); ++i) {
                for (int j = std::max(1, c - radius); j <= std::min(wet.ncols, c + radius); ++j) {
                    if (wet(i, j) == 1 && dx * apart(c, j, r, i) <= b && extent(r, c) == 0) {
                        extent(r, c) = 1;
                        ++counts.buffered;
                    }
                }
            }
        }
    }
    return counts;
}

// The cells that the search by rings lists, in their order.
struct Listing {
    std::vector<float> distances;
    std::vector<float> values;
    bool enough = false;
};

inline Listing listByRings(int p, int r, int c, const Flags& wet, const Reals& levels)
{
    Listing listing;
    const auto look = [&](int i, int j) {
        if (wet(i, j) == 1) {
            listing.distances.push_back(apart(r, i, c, j));
            listing.values.push_back(levels(i, j));
        }
    };
    const int h = static_cast<int>(std::trunc(std::sqrt(static_cast<float>(p))));
    const int a = std::max(1, r - h);
    const int b = std::min(wet.nrows, r + h);
    const int e = std::max(1, c - h);
    const int f = std::min(wet.ncols, c + h);
    for (int i = a; i <= b; ++i) {
        for (int j = e; j <= f; ++j) {
            look(i, j);
        }
    }
    for (int k = 1; listing.values.size() < static_cast<std::size_t>(p); ++k) {
        const bool south = a - k > 1;
        const bool west = e - k > 1;
        const bool north = b + k < wet.nrows;
        const bool east = f + k < wet.ncols;
        if (!south && !west && !north && !east) {
            return listing;
        }
        for (int j = std::max(1, e - k); south && j <= std::min(wet.ncols, f + k); ++j) {
            look(a - k, j);
        }
        for (int i = std::max(1, a - k); west && i <= std::min(wet.nrows, b + k); ++i) {
            look(i, e - k);
        }
        for (int j = std::max(1, e - k); north && j <= std::min(wet.ncols, f + k); ++j) {
            look(b + k, j);
        }
        for (int i = std::max(1, a - k); east && i <= std::min(wet.nrows, b + k); ++i) {
            look(i, f + k);
        }
    }
    listing.enough = true;
    return listing;
}

// The level by p passes over the list; nothing where no ring has a side any more.
inline std::optional<float> idwPoint(int p, int r, int c, const Flags& wet, const Reals& levels, float exponent)
{
    Listing listing = listByRings(p, r, c, wet, levels);
    if (!listing.enough) {
        return std::nullopt;
    }
    float weights = 0;
    float weighted = 0;
    for (int pick = 0; pick < p; ++pick) {
        const auto best = static_cast<std::size_t>(
            std::min_element(listing.distances.begin(), listing.distances.end()) - listing.distances.begin());
        const float weight = 1.0F / static_cast<float>(std::pow(static_cast<double>(listing.distances[best]),
                                                                static_cast<double>(exponent)));
        weights += weight;
        weighted += weight * listing.values[best];
        listing.distances[best] = 99999.0F;
    }
    return weighted / weights;
}

struct Lattice {
    double xll = 0;
    double yll = 0;
    double size = 1;

    double x(int c) const { return xll + (c - 1) * size + 0.5 * size; }
    double y(int r) const { return yll + (r - 1) * size + 0.5 * size; }
};

inline float apex(double px, double py, double x1, double y1, double x2, double y2, double x3, double y3, float z1,
                  float z2, float z3)
{
    const double m = (py - y3) / (px - x3);
    const double n = (y2 - y1) / (x2 - x1);
    double ix = 0;
    double iy = 0;
    if (x1 == x2 && x3 == px) {
        ix = x1;
        iy = y1;
    } else if (x1 == x2) {
        ix = x1;
        iy = m * (ix - x3) + y3;
    } else if (x3 == px) {
        ix = x3;
        iy = n * (ix - x1) + y1;
    } else {
        ix = ((((m * x3) - y3) + y1) - n * x1) / (m - n);
        iy = m * (ix - x3) + y3;
    }
    const auto distance = [](double xa, double ya, double xb, double yb) {
        return std::sqrt((xb - xa) * (xb - xa) + (yb - ya) * (yb - ya));
    };
    const auto limit = static_cast<double>(1.0e-6F);
    const double a = distance(ix, iy, x1, y1);
    const double length = distance(x1, y1, x2, y2);
    const float zi = length < limit ? z1 + (z2 - z1) * 0.5F : z1 + (z2 - z1) * static_cast<float>(a / length);
    const double b = distance(px, py, x3, y3);
    const double e = distance(ix, iy, x3, y3);
    return e < limit ? z3 + (zi - z3) * 0.5F : z3 + (zi - z3) * static_cast<float>(b / e);
}

inline float side(double ax, double ay, double bx, double by, double gx, double gy)
{
    return static_cast<float>((bx - ax) * (gy - ay) - (gx - ax) * (by - ay));
}

// The level of the TIN in the quad of coarse cell (j, i).
inline float tinLevel(double x, double y, int j, int i, const Reals& w, const Lattice& coarse)
{
    const double d = coarse.size;
    const double x1 = coarse.x(i);
    const double y1 = coarse.y(j);
    const double x3 = x1 + d;
    const double y3 = y1 + d;
    const double x5 = x1 + 0.5 * d;
    const double y5 = y1 + 0.5 * d;
    const float w1 = w(j, i);
    const float w2 = w(j + 1, i);
    const float w3 = w(j + 1, i + 1);
    const float w4 = w(j, i + 1);
    const float centre = 0.25F * (((w1 + w2) + w3) + w4);
    const float other = side(x1, y3, x3, y1, x, y);
    if (side(x1, y1, x3, y3, x, y) > 0) {
        return other < 0 ? apex(x, y, x1, y1, x1, y3, x5, y5, w1, w2, centre)
                         : apex(x, y, x1, y3, x3, y3, x5, y5, w2, w3, centre);
    }
    return other > 0 ? apex(x, y, x3, y3, x3, y1, x5, y5, w3, w4, centre)
                     : apex(x, y, x3, y1, x1, y1, x5, y5, w4, w1, centre);
}

// Levels, states and depths of the TIN method on the fine lattice.
inline void tin(const Reals& model, const Reals& extended, const Lattice& coarse, float null, float freeboard,
                const Reals& ground, const Lattice& fine, Reals& levels, Integers& states, Reals& depths)
{
    const double dx = coarse.size;
    std::fill(levels.values.begin(), levels.values.end(), null);
    std::fill(depths.values.begin(), depths.values.end(), null);
    std::fill(states.values.begin(), states.values.end(), static_cast<std::int32_t>(null));
    for (int row = 1; row <= ground.nrows; ++row) {
        for (int col = 1; col <= ground.ncols; ++col) {
            const double x = fine.x(col);
            const double y = fine.y(row);
            const int i = static_cast<int>(((x - coarse.xll) + 0.5 * dx) / dx);
            const int j = static_cast<int>(((y - coarse.yll) + 0.5 * dx) / dx);
            if (i < 1 || i > extended.ncols - 1 || j < 1 || j > extended.nrows - 1) {
                continue;
            }
            levels(row, col) = tinLevel(x, y, j, i, extended, coarse);
            const double fx = (x - coarse.x(i)) / dx;
            const double fy = (y - coarse.y(j)) / dx;
            const float corner = fx <= 0.5 ? (fy <= 0.5 ? model(j, i) : model(j + 1, i))
                                           : (fy > 0.5 ? model(j + 1, i + 1) : model(j, i + 1));
            if (corner > (null + freeboard) + 0.1F) {
                states(row, col) = 1;
            }
        }
    }
    for (int row = 1; row <= ground.nrows; ++row) {
        for (int col = 1; col <= ground.ncols; ++col) {
            if (states(row, col) == 1 && levels(row, col) >= ground(row, col)) {
                depths(row, col) = levels(row, col) - ground(row, col);
            } else {
                levels(row, col) = null;
            }
        }
    }
}

struct Corners {
    float s1;
    float s2;
    float s3;
    float s4;
};

// The table of corners, row by row.
inline Corners sampleCorners(int ib, int jb, const Reals& v)
{
    const int nrows = v.nrows;
    const int ncols = v.ncols;
    if (ib == 0 && jb == 0) {
        return {v(1, 1), v(1, 1), v(1, 1), v(1, 1)};
    }
    if (ib == 0 && jb == ncols) {
        return {v(1, jb), v(1, jb), v(1, jb), v(1, jb)};
    }
    if (ib == 0) {
        return {v(1, jb), v(1, jb + 1), v(1, jb + 1), v(1, jb)};
    }
    if (jb == 0 && ib == nrows) {
        return {v(ib, 1), v(ib, 1), v(ib, 1), v(ib, 1)};
    }
    if (jb == 0) {
        return {v(ib, 1), v(ib, 1), v(ib + 1, 1), v(ib + 1, 1)};
    }
    if (ib == nrows && jb == ncols) {
        return {v(ib, jb), v(ib, jb), v(ib, jb), v(ib, jb)};
    }
    if (ib == nrows) {
        return {v(ib, jb), v(ib, jb + 1), v(ib, jb + 1), v(ib, jb)};
    }
    if (jb == ncols) {
        return {v(ib, jb), v(ib, jb), v(ib + 1, jb), v(ib + 1, jb)};
    }
    return {v(ib, jb), v(ib, jb + 1), v(ib + 1, jb + 1), v(ib + 1, jb)};
}

// The level at a place.
inline float sample(double x, double y, const Lattice& lattice, const Reals& v, float null)
{
    const double dx = lattice.size;
    const double dy = lattice.size;
    const double a1 = dx / 10000;
    const double a2 = (0.5 * dx) / 10000;
    const double a3 = dy / 10000;
    const double a4 = (0.5 * dy) / 10000;
    const double rx = x - lattice.xll;
    const double ry = y - lattice.yll;
    const double tx = rx / dx;
    const double ty = ry / dy;
    const auto isNull = [&](float z) { return std::abs(z - null) <= 0.001F; };
    const int ib = static_cast<int>(ty) + (ty - static_cast<int>(ty) >= 0.5 ? 1 : 0);
    const int jb = static_cast<int>(tx) + (tx - static_cast<int>(tx) >= 0.5 ? 1 : 0);
    const int ic = static_cast<int>(ty) + 1;
    const int jc = static_cast<int>(tx) + 1;
    if (ib < 0 || jb < 0 || ib > v.nrows || jb > v.ncols || ic <= 0 || jc <= 0 ||
        isNull(v(std::min(ic, v.nrows), std::min(jc, v.ncols)))) {
        return null;
    }
    const double cx = dx * static_cast<double>(static_cast<float>(jb - 1)) + 0.5 * dx;
    const double cy = dy * static_cast<double>(static_cast<float>(ib - 1)) + 0.5 * dy;
    const double u = rx - cx;
    const double w = ry - cy;
    const double over = dy - w;
    const Corners s = sampleCorners(ib, jb, v);

    // South.
    Corners z = s;
    double x1 = cx - a1;
    double y1 = cy - a4;
    double x2 = cx + dx + a1;
    double y2 = cy - a4;
    double x3 = cx + 0.5 * dx;
    double y3 = cy + 0.5 * dy + a4;
    if (w <= u && over < u) { // east
        x1 = cx + dx + a2;
        y1 = cy - a3;
        x2 = cx + dx + a2;
        y2 = cy + dy + a3;
        x3 = cx + 0.5 * dx - a2;
        y3 = cy + 0.5 * dy;
        z = {s.s2, s.s3, s.s4, s.s1};
    } else if (w > u && over >= u) { // west
        x1 = cx - a2;
        y1 = cy + dy + a3;
        x2 = cx - a2;
        y2 = cy - a3;
        x3 = cx + 0.5 * dx + a2;
        y3 = cy + 0.5 * dy;
        z = {s.s4, s.s1, s.s2, s.s3};
    } else if (w > u) { // north
        x1 = cx + dx + a1;
        y1 = cy + dy + a4;
        x2 = cx - a1;
        y2 = cy + dy + a4;
        x3 = cx + 0.5 * dx;
        y3 = cy + 0.5 * dy - a4;
        z = {s.s3, s.s4, s.s1, s.s2};
    }
    if (isNull(z.s1) && isNull(z.s2)) {
        return null;
    }
    if (isNull(z.s2)) {
        z.s2 = z.s1;
    } else if (isNull(z.s1)) {
        z.s1 = z.s2;
    }
    float middle = (z.s1 + z.s2) * 0.5F;
    if (!isNull(z.s3) && !isNull(z.s4)) {
        middle = (((z.s1 + z.s2) + z.s3) + z.s4) * 0.25F;
    } else if (!isNull(z.s3)) {
        middle = (z.s1 + z.s3) * 0.5F;
    } else if (!isNull(z.s4)) {
        middle = (z.s2 + z.s4) * 0.5F;
    }
    return apex(rx, ry, x1, y1, x2, y2, x3, y3, z.s1, z.s2, middle);
}

// One sweep of the growth over every cell.
inline std::int64_t sweep(Integers& states, const Reals& levels, const Reals& ground, float groundNull)
{
    std::int64_t extra = 0;
    for (int row = 1; row <= states.nrows; ++row) {
        for (int col = 1; col <= states.ncols; ++col) {
            if (states(row, col) == 1 || states(row, col) == -1) {
                continue;
            }
            const bool beside =
                states(row, std::max(col - 1, 1)) == 1 || states(row, std::min(col + 1, states.ncols)) == 1 ||
                states(std::max(row - 1, 1), col) == 1 || states(std::min(row + 1, states.nrows), col) == 1;
            if (!beside) {
                continue;
            }
            if (levels(row, col) >= ground(row, col) && ground(row, col) > groundNull + 0.1F) {
                states(row, col) = 1;
                ++extra;
            } else {
                states(row, col) = -1;
            }
        }
    }
    return extra;
}

} // namespace gridforge::test::plain
