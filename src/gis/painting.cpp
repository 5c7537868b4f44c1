#include "gis/painting.h"

#include "core/huge_array.h"
#include "core/numbers.h"
#include "core/text.h"
#include "gis/layer_objects.h"
#include "gis/plane_ends.h"
#include "host/console.h"
#include "host/ends.h"
#include "host/messages.h"
#include "plane/geometry.h"
#include "plane/lattice_cells.h"

#include <algorithm>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace gridforge {

namespace {

constexpr std::int32_t kMaxPaintedVertices = 100000;
constexpr std::int32_t kMaxSegmentCells = 1000000;

struct Painter {
    const PaintedLattice& lattice;
    Grid& values;
    std::string_view places; // what the grid holds, for the messages
    double shift;            // of the axes against the lattice, in cells
    GisCoordinates read;
    std::vector<float> u;
    std::vector<float> v;
    std::vector<LatticeCell> cells;
    HugeArray<std::uint8_t> inside;

    void shiftVertices()
    {
        const auto np = static_cast<std::size_t>(read.np);
        u.resize(np);
        v.resize(np);
        GEO_SHIFT(std::span(read.x).first(np), std::span(read.y).first(np), lattice.x0, lattice.y0, lattice.angle, u,
                  v);
        const auto by = static_cast<float>(shift * static_cast<double>(lattice.size));
        for (std::size_t i = 0; i < np; ++i) {
            u[i] += by;
            v[i] += by;
        }
    }

    bool isOnGrid(const LatticeCell& cell) const
    {
        return cell.row >= 1 && cell.row <= values.nrows() && cell.column >= 1 && cell.column <= values.ncols();
    }

    std::int64_t paintRegion(const GisO& gisO, float value)
    {
        const LatticeWindow window = boundsWindow(u, v, lattice.size, values.nrows(), values.ncols(), lattice.margin);
        if (!inside.allocate(window.cells())) {
            fail("ERROR - Could not allocate memory (RAM) for Inside Region == Method B.");
        }
        const std::optional<std::int64_t> count =
            grid_inside_polygon(u, v, read.np, gisO.ir, gisO.nr, lattice.size, window, inside.all());
        if (!count) {
            failRings("grid_inside_polygon", 1);
        }
        std::size_t place = 0;
        for (std::int32_t row = window.firstRow; row <= window.lastRow && !window.empty(); ++row) {
            for (std::int32_t column = window.firstColumn; column <= window.lastColumn; ++column) {
                if (inside[place++] != 0) {
                    values(row, column) = value;
                }
            }
        }
        return *count;
    }

    // A point, or the cells along a line. The cell of a vertex that two segments share is counted once.
    std::int64_t paintLine(float value)
    {
        std::int64_t count = 0;
        LatticeCell before;
        const std::size_t last = u.empty() ? 0 : u.size() - 1;
        for (std::size_t i = 0; i < std::max(last, std::size_t{1}) && !u.empty(); ++i) {
            const std::size_t next = std::min(i + 1, last);
            cells.clear();
            requireGridline(gridline(u[i], v[i], u[next], v[next], lattice.size, kMaxSegmentCells, cells),
                            kMaxSegmentCells);
            for (const LatticeCell& cell : cells) {
                if (isOnGrid(cell) && cell != before) {
                    values(cell.row, cell.column) = value;
                    ++count;
                }
                before = cell;
            }
        }
        return count;
    }

    void paint(std::int32_t gisID, GisO& gisO, const std::string& dataLine)
    {
        float value = 0;
        if (!readFree(dataLine, value)) {
            DMESSAGES().line[1] = join("Data Line = ", dataLine);
            report("ERROR 2148 - Reading attribute data from data line below.");
            EXITS();
        }
        if (!gisO.point && !gisO.line && !gisO.pline && !gisO.region) {
            DMESSAGES().line[1] = join("GIS Object = ", gisO.name);
            report("WARNING 2073 - Object ignored.  Only Points, Lines, Polylines & Regions used.");
            return;
        }
        gisReadObject(gisID, gisO, read, kMaxPaintedVertices);
        shiftVertices();
        if (gisO.region) {
            const std::int64_t count = paintRegion(gisO, value);
            say("...GIS ", gisO.name, " (", read.np, " vertices /", gisO.nr, " polygons) assigned ", AREAL(value),
                " to ", count, " ", places);
        } else {
            const std::int64_t count = paintLine(value);
            say("...GIS ", gisO.name, " (", read.np, " vertices) assigned a value of ", AREAL(value), " to ", count,
                " ", places);
        }
    }
};

void paintLayer(std::int32_t gisID, const PaintedLattice& lattice, std::string_view places, double shift, Grid& values)
{
    Painter painter{lattice, values, places, shift, {}, {}, {}, {}, {}};
    forEachObject(gisID, [&](GisO& gisO, const std::string& dataLine) { painter.paint(gisID, gisO, dataLine); });
}

} // namespace

void gisPaintCells(std::int32_t gisID, const PaintedLattice& lattice, Grid& values)
{
    paintLayer(gisID, lattice, "cells", 0, values);
}

void gisPaintPoints(std::int32_t gisID, const PaintedLattice& lattice, Grid& values)
{
    paintLayer(gisID, lattice, "points", 0.5, values);
}

} // namespace gridforge
