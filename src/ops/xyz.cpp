// -xyz turns a text file of points on a lattice into a grid.
#include "ops/xyz.h"

#include "core/names.h"
#include "core/number_text.h"
#include "core/rounding.h"
#include "core/text.h"
#include "grid/writer.h"
#include "host/console.h"
#include "host/ends.h"
#include "host/units.h"
#include "ops/points_ahead.h"
#include "ops/xyz_cells.h"
#include "ops/xyz_parse.h"
#include "run/outputs.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>

namespace gridforge::ops {

namespace {

// --- The points ------------------------------------------------------------------------------------------------------

constexpr std::string_view kUnreadable = "ERROR - Reading following line in classes file:";

std::size_t countLines(Unit unit)
{
    std::string line;
    std::size_t lines = 0;
    while (readLine(unit, line, 0)) {
        ++lines;
    }
    return lines;
}

std::size_t countPoints(Unit unit, const std::optional<PointList>& ahead)
{
    const std::size_t count = ahead ? ahead->z.all().size() : countLines(unit);
    if (readFailed(unit)) {
        failLine(kUnreadable, "");
    }
    return count;
}

PointList allocatePoints(std::size_t count)
{
    PointList points;
    if (!points.allocate(count)) {
        failMemory();
    }
    return points;
}

void readPoints(Unit unit, PointList& points)
{
    const std::span<double> x = points.x.all();
    const std::span<double> y = points.y.all();
    const std::span<float> z = points.z.all();
    std::string line;
    for (std::size_t i = 0; i < x.size();) {
        const PlainPoints plain =
            parseLines(readyBytes(unit), kPointLineWidth, x.subspan(i), y.subspan(i), z.subspan(i));
        takeBytes(unit, plain.bytes);
        i += plain.count;
        if (i < x.size()) {
            if (!readLine(unit, line, kPointLineWidth) || !parsePoint(line, x[i], y[i], z[i])) {
                failLine(kUnreadable, line);
            }
            ++i;
        }
    }
}

PointList readPointFile(const std::string& name)
{
    say("Opening input .xyz file: ", name);
    say("Scanning to determine size...");
    std::optional<PointList> ahead = pointsAhead(name);
    Unit unit = 0;
    OPENER(unit, "I ", name);
    const std::size_t count = countPoints(unit, ahead);
    say("   Done.");
    say("Total number of points: ", count);
    say("Allocating memory for processing of input...");
    PointList points = ahead ? std::move(*ahead) : allocatePoints(count);
    say("   Done.");
    say("Rewinding input file...");
    seekTo(unit, 0);
    say("   Done.");
    if (!ahead) {
        readPoints(unit, points);
    }
    say("   Done.");
    CLOSER(unit);
    return points;
}

// --- The grid --------------------------------------------------------------------------------------------------------

void reportExtents(const PointExtents& extents)
{
    say("X Minimum: ", AREAL8(extents.box.xmin));
    say("X Maximum: ", AREAL8(extents.box.xmax));
    say("Y Minimum: ", AREAL8(extents.box.ymin));
    say("Y Maximum: ", AREAL8(extents.box.ymax));
    say("dx:        ", AREAL(extents.dx));
    say("dy:        ", AREAL(extents.dy));
}

void requireSquareCells(const PointExtents& extents)
{
    constexpr float kMost = 0.5F;
    // One-sided, and meant to be: a dy above dx by any amount passes.
    if (extents.dx - extents.dy > kMost) {
        fail("ERROR - Detected dx and dy not the same.");
    }
}

// The grid's header, announced by the number of its rows and columns less one.
GridHeader gridHeader(const PointExtents& extents)
{
    constexpr float kPointNull = -999.0F;

    GridHeader header;
    const std::int32_t r =
        truncateToInt(std::abs(extents.box.ymax - extents.box.ymin) / static_cast<double>(extents.dy));
    const std::int32_t c =
        truncateToInt(std::abs(extents.box.xmax - extents.box.xmin) / static_cast<double>(extents.dx));
    say("number rows: ", r);
    say("number cols: ", c);
    const bool inRange = r >= 0 && c >= 0 && std::max(r, c) < std::numeric_limits<std::int32_t>::max();
    header.nrows = inRange ? r + 1 : 0; // without points, or with such far off, there is no grid
    header.ncols = inRange ? c + 1 : 0;
    header.cellsize = extents.dx;
    header.cellsize8 = static_cast<double>(extents.dx);
    header.xll = extents.box.xmin - 0.5 * header.cellsize8;
    header.yll = extents.box.ymin - 0.5 * header.cellsize8;
    header.null = kPointNull;
    return header;
}

Grid allocateCells(const GridHeader& header)
{
    say("Allocating memory for output grid...");
    Grid cells;
    if (header.nrows == 0 || !cells.allocate(header.nrows, header.ncols)) {
        failMemory();
    }
    say("   Done.");
    return cells;
}

// Points that are no farther apart than this say nothing of the spacing.
constexpr float kNoSeparation = 0.5F;

std::string outputName(const run::Common& common, const std::string& input)
{
    if (common.out) {
        say("Using specified output file name: ", quoted(*common.out));
        return *common.out;
    }
    return cut(join(FILENAMEPATH(input), "_xyz_to_grid"), kNameWidth);
}

} // namespace

// --- The run ---------------------------------------------------------------------------------------------------------

void runXyz(const run::Common& common, const run::InputFileList& inputs)
{
    say("Processing \"-xyz\" option.");
    const PointList points = readPointFile(inputs[1]);

    say("Determing extents...");
    const PointExtents extents = findExtents(points.x.all(), points.y.all(), kNoSeparation, kNoSeparation);
    say("   Done");
    reportExtents(extents);
    requireSquareCells(extents);

    const GridHeader header = gridHeader(extents);
    Grid cells = allocateCells(header);
    say("Initialising grids...");
    std::ranges::fill(cells.cells(), header.null);
    say("Sorting data into grid...");
    sortIntoCells(points.x.all(), points.y.all(), points.z.all(), extents, cells);
    say("   Done");

    const std::string name = outputName(common, inputs[1]);
    const grid::Format format = run::ascUnlessSpecified(common);
    say("Writing output to: ", name);
    grid::writeGrid(format, name, header, cells, "", common.decimals);
}

} // namespace gridforge::ops
