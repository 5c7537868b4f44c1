// -trim cuts the window of a region out of a grid and empties the cells outside the region.
#include "sampling/trim.h"

#include "base/console.h"
#include "base/ends.h"
#include "base/names.h"
#include "base/numbers.h"
#include "base/product.h"
#include "base/region_rows.h"
#include "base/text.h"
#include "gis/layer_objects.h"
#include "gis/layers.h"
#include "gis/projection.h"
#include "grid/header.h"
#include "grid/reader.h"
#include "grid/writer.h"

#include <algorithm>
#include <array>
#include <limits>

namespace gridforge {

namespace {

constexpr std::size_t kMaxRegions = 100;
constexpr std::int32_t kMaxRegionVertices = 100;
constexpr std::int32_t kMaxReadVertices = 1000000;
constexpr std::size_t kRegionNameWidth = 250;
constexpr int kFileColumns = 3;

// --- The regions -----------------------------------------------------------------------------------------------------

std::string regionName(const std::string& dataLine)
{
    std::string name;
    const FreeValue got = FreeForm(dataLine).nextText(name, kRegionNameWidth);
    if (got == FreeValue::failure || got == FreeValue::end) {
        failDataLine(dataLine);
    }
    return name;
}

// A polygon of a Shapefile may have no vertices at all: its box then reaches nowhere.
TrimRegion regionFrom(const GisCoordinates& read)
{
    const auto count = static_cast<std::size_t>(read.np);
    TrimRegion region;
    region.xmin = region.ymin = std::numeric_limits<double>::max();
    region.xmax = region.ymax = std::numeric_limits<double>::lowest();
    for (std::size_t i = 0; i < count; ++i) {
        region.x.push_back(read.x[i]);
        region.y.push_back(read.y[i]);
        region.xmin = std::min(region.xmin, read.x[i]);
        region.xmax = std::max(region.xmax, read.x[i]);
        region.ymin = std::min(region.ymin, read.y[i]);
        region.ymax = std::max(region.ymax, read.y[i]);
    }
    return region;
}

void readRegion(std::int32_t gisID, GisO& gisO, const std::string& dataLine, GisCoordinates& read,
                std::vector<TrimRegion>& regions)
{
    if (gisO.nr > 1) {
        fail("ERROR - Multiple region objects not yet supported.  Please disaggregate / remove holes.");
    }
    gisReadObject(gisID, gisO, read, kMaxReadVertices);
    if (read.np > kMaxRegionVertices) {
        say("ERROR - Region objects contains too many vertices.  Please contact ", kSupportContact);
        fail("   Maximum vertices in a single region:", kMaxRegionVertices);
    }
    if (regions.size() == kMaxRegions) {
        fail("ERROR - Number of regions exceeds maximum: ", kMaxRegions);
    }
    say("Region ", regions.size() + 1, " with ", read.np, " nodes...");
    regions.push_back(regionFrom(read));
    regions.back().name = regionName(dataLine);
}

std::vector<TrimRegion> readRegions(const std::string& layerName)
{
    get_projection(layerName, gisCoordSysLine(), gisPrjLine());
    std::int32_t gisID = gisOpenLayer(layerName, "", "I ");
    gisReadHeader(gisID);
    say("Allocating memory for storing GIS regions...");
    std::vector<TrimRegion> regions;
    regions.reserve(kMaxRegions);
    say("   Done.");
    say("Searching for region objects...");
    GisCoordinates read;
    forEachObject(gisID, [&](GisO& gisO, const std::string& dataLine) {
        if (gisO.region) {
            readRegion(gisID, gisO, dataLine, read, regions);
        }
    });
    gisCloseLayer(gisID);
    return regions;
}

// --- The window ------------------------------------------------------------------------------------------------------

void reportOverhang(const TrimWindow& w, const GridHeader& header, const TrimRegion& region,
                    const std::string& gridName)
{
    // Named as it is, the test finds the regions that overhang both ends of an axis; batch files rely on its stop.
    if ((w.firstRow <= 0 && w.lastRow > header.nrows) || (w.firstColumn <= 0 && w.lastColumn > header.ncols)) {
        say("ERROR - Entire region is outside of grid, region name: ", region.name);
        fail("    Grid Name: ", gridName);
    }
    if (w.firstRow <= 0 || w.lastRow > header.nrows || w.firstColumn <= 0 || w.lastColumn > header.ncols) {
        say("WARNING - Part of region extends outside of grid, region name: ", region.name);
    }
}

TrimWindow clamped(const TrimWindow& w, const GridHeader& header)
{
    return {std::max(w.firstRow, 1), std::min(w.lastRow, header.nrows), std::max(w.firstColumn, 1),
            std::min(w.lastColumn, header.ncols)};
}

GridHeader windowHeader(const TrimWindow& w, const GridHeader& header)
{
    GridHeader output = header;
    output.nrows = w.lastRow - w.firstRow + 1;
    output.ncols = w.lastColumn - w.firstColumn + 1;
    output.xll = header.xll + static_cast<double>(static_cast<float>(w.firstColumn - 1)) * header.cellsize8;
    output.yll = header.yll + static_cast<double>(static_cast<float>(w.firstRow - 1)) * header.cellsize8;
    return output;
}

// --- The output ------------------------------------------------------------------------------------------------------

std::string outputName(const RunSettings& settings, const std::string& grid, const std::string& region, bool manyGrids,
                       bool manyRegions)
{
    const std::string& out = settings.outputName;
    if (!settings.outputNameGiven) {
        return join(region, "_", grid);
    }
    if (manyGrids && manyRegions) {
        say("WARNING - More than 1 grid file and region used in conjunction with \"-out\" flag.");
        say("   Appending grid and region name...");
        return join(out, "_", grid, "_", region);
    }
    if (manyGrids) {
        say("More than 1 grid file specified with output file name: ", quoted(out));
        say("   Appending grid name...");
        return join(out, "_", grid);
    }
    if (manyRegions) {
        say("More than region specified with output file name: ", quoted(out));
        say("   Appending grid name...");
        return join(out, "_", region);
    }
    say("Using specified output file name: ", quoted(out));
    return out;
}

// The default is .asc whatever the inputs are.
std::int32_t outputFormat(const RunSettings& settings)
{
    if (!settings.formatSpecified) {
        say("Setting output grid to .asc by default.  To set use -asc or -flt.");
        return kFormatAsc;
    }
    if (settings.ascWanted) {
        say("Using output format .asc as specified.");
        return kFormatAsc;
    }
    say("Using output format .flt as specified.");
    return kFormatFlt;
}

} // namespace

// --- The kernel ------------------------------------------------------------------------------------------------------

namespace {

// The y of the north side of a row.
double cornerNorth(std::int32_t row, const GridHeader& header)
{
    return header.yll + static_cast<double>(static_cast<float>(row)) * header.cellsize8;
}

// The x of the east sides of the window's columns.
std::vector<double> cornersEast(const TrimWindow& window, const GridHeader& header)
{
    std::vector<double> x;
    for (std::int32_t column = window.firstColumn; column <= window.lastColumn; ++column) {
        x.push_back(header.xll + static_cast<double>(static_cast<float>(column)) * header.cellsize8);
    }
    return x;
}

} // namespace

TrimWindow trimWindow(const TrimRegion& region, const GridHeader& header)
{
    const double dx = header.cellsize8;
    return {truncateToInt((region.ymin - header.yll) / dx), truncateToInt((region.ymax - header.yll) / dx + 1.0),
            truncateToInt((region.xmin - header.xll) / dx), truncateToInt((region.xmax - header.xll) / dx + 1.0)};
}

void copyInside(const TrimRegion& region, const GridHeader& header, const Grid& cells, const TrimWindow& window,
                Grid& output)
{
    const auto np = static_cast<std::int32_t>(region.x.size());
    const std::array<std::int32_t, 1> ir = {np - 1};
    PreparedRegion prepared;
    prepareRegion(region.x, region.y, np, region.xmin, ir, 1, prepared);
    const std::vector<double> x = cornersEast(window, header);
    std::vector<std::uint8_t> inside(x.size());
    for (std::int32_t row = window.firstRow; row <= window.lastRow; ++row) {
        insideRegionRow(prepared, cornerNorth(row, header), x, inside);
        const auto source = cells.row(row).subspan(static_cast<std::size_t>(window.firstColumn - 1), x.size());
        const auto target = output.row(row - window.firstRow + 1);
        for (std::size_t i = 0; i < x.size(); ++i) {
            target[i] = inside[i] != 0 ? source[i] : target[i];
        }
    }
}

// --- The run ---------------------------------------------------------------------------------------------------------

void runTrim(const RunSettings& settings, const InputFileList& inputs)
{
    say("Processing \"-trim\" option.");
    const std::vector<TrimRegion> regions = readRegions(settings.trimLayer);

    say("Processing ", inputs.count(), " input grids.");
    for (std::int32_t i = 1; i <= inputs.count(); ++i) {
        const std::string& gridName = inputs[i];
        say("Proecsing File:", integerField(i, kFileColumns), ": ", gridName);
        GridHeader header = readGridHeader(gridName);
        Grid cells;
        allocateGrid(cells, header, "external grid...");
        readGridCells(gridName, header, cells);

        for (const TrimRegion& region : regions) {
            const TrimWindow wanted = trimWindow(region, header);
            reportOverhang(wanted, header, region, gridName);
            const TrimWindow window = clamped(wanted, header);
            if (window.firstRow > window.lastRow || window.firstColumn > window.lastColumn) {
                say("WARNING - Region does not overlap grid, no output written, region name: ", region.name);
                continue;
            }
            const GridHeader outputHeader = windowHeader(window, header);
            Grid output;
            allocateGrid(output, outputHeader, "storing output grid...");
            std::ranges::fill(output.cells(), header.null);
            copyInside(region, header, cells, window, output);

            const std::string name =
                outputName(settings, FILENAMEPATH(gridName), region.name, inputs.count() > 1, regions.size() > 1);
            const std::int32_t format = outputFormat(settings);
            say("Writing output to: ", name);
            writeGrid(format, name, outputHeader, output, header.projectionText, settings.decimals);
        }
    }
}

} // namespace gridforge
