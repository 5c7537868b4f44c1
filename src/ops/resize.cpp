#include "ops/resize.h"

#include "core/numbers.h"
#include "grid/writer.h"
#include "host/ends.h"
#include "ops/resize_cells.h"
#include "run/load.h"
#include "run/outputs.h"
#include "run/rows.h"

#include <algorithm>
#include <string>

namespace gridforge::ops {

namespace {

void checkRequest(const ResizeOptions& options, const run::InputFileList& inputs)
{
    if (inputs.count() > 1) {
        fail("ERROR - More than one grid file specified with the resize option.");
    }
    if (options.factor < 1) {
        fail("ERROR - Resize factor must be 1 or more.");
    }
}

void saySizes(const GridHeader& header, std::int32_t factor, double newSize)
{
    constexpr int kWidth = 10;
    constexpr int kDecimals = 4;
    say("Current grid size = ", realField(header.cellsize8, kWidth, kDecimals));
    say("Resize factor     = ", integerField(factor, kWidth));
    say("New cell size (c) = ", realField(newSize, kWidth, kDecimals));
}

// The header of the coarser grid: the corner stays in place.
GridHeader resizedHeader(const GridHeader& header, const Tiling& tiling, double newSize)
{
    GridHeader resized = header;
    resized.nrows = tiling.rows;
    resized.ncols = tiling.columns;
    resized.cellsize = static_cast<float>(newSize);
    resized.cellsize8 = static_cast<double>(resized.cellsize);
    return resized;
}

} // namespace

void runResize(const run::Common& common, const ResizeOptions& options, const run::InputFileList& inputs)
{
    say("Resizing grid.");
    checkRequest(options, inputs);
    const std::int32_t factor = options.factor;

    Grid input;
    const run::LoadedGrid loaded =
        run::loadGrid(inputs[1], {.opening = "Loading grid data...", .purpose = "storing input grid..."}, input);
    const GridHeader& header = loaded.header;

    const double newSize = static_cast<double>(static_cast<float>(factor)) * header.cellsize8;
    const Tiling tiling = tilingOf(header.nrows, header.ncols, factor);
    const GridHeader resized = resizedHeader(header, tiling, newSize);
    saySizes(header, factor, newSize);
    Grid output;
    grid::allocateGrid(output, resized, "storing output grid...");

    const auto tilesOf = options.method == ResizeMethod::average   ? averageTiles
                         : options.method == ResizeMethod::minimum ? minimumTiles
                                                                   : maximumTiles;
    sayOpen("Processing Output Row:");
    for (std::int32_t done = 0; done < tiling.rows;) {
        const CellRows tileRows{done + 1, done + std::min(run::kProgressRows, tiling.rows - done)};
        const CellRows rows = tiledRows(tiling, tileRows);
        tilesOf(run::rowsOf(input, rows.first, rows.last), header.null, tiling, tileRows,
                run::rowsOf(output, tileRows.first, tileRows.last));
        done = tileRows.last;
        if (done % run::kProgressRows == 0) {
            progress(done);
        }
    }
    endLine();

    const std::string base = run::outputNameRule(common, inputs[1], join("_resize", factor));
    const grid::Format format = run::outputFormatRule(common, loaded.format);
    say("Writing resized grid to: ", base);
    grid::writeGrid(format, base, resized, output, loaded.projectionText, common.decimals);
}

} // namespace gridforge::ops
