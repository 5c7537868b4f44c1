#include "netcdf/nc.h"

#include "core/computed.h"
#include "core/names.h"
#include "core/product.h"
#include "host/ends.h"
#include "netcdf/check_netcdf.h"
#include "netcdf/netcdf_file.h"
#include "run/load.h"
#include "run/outputs.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace gridforge::netcdf {

// --- Kernels ---------------------------------------------------------------------------------------------------------

void cellsByRows(const Grid& grid, std::int32_t firstRow, std::span<float> band)
{
    const auto columns = static_cast<std::size_t>(grid.ncols());
    assert(band.size() % columns == 0);
    for (std::int32_t row = firstRow; !band.empty(); ++row) {
        std::ranges::copy(grid.row(row), band.begin());
        band = band.subspan(columns);
    }
}

namespace {

// As many columns are taken together as fill a line of the processor's cache.
constexpr std::int32_t kColumnsTogether = 16;

// The cells of some columns, rows `firstRow` to `lastRow`, each from the south.
void turnColumns(const Grid& grid, std::int32_t firstColumn, std::int32_t count, std::int32_t firstRow,
                 std::int32_t lastRow, float* out)
{
    const std::size_t rows = static_cast<std::size_t>(lastRow) - static_cast<std::size_t>(firstRow) + 1;
    const auto c = static_cast<std::size_t>(firstColumn - 1);
    const auto columns = static_cast<std::size_t>(count);
    for (std::int32_t row = firstRow; row <= lastRow; ++row, ++out) {
        const float* const cells = grid.row(row).data() + c;
        if (count == kColumnsTogether) { // known ahead, so the loop is unrolled
            for (std::size_t i = 0; i < kColumnsTogether; ++i) {
                out[i * rows] = cells[i];
            }
        } else {
            for (std::size_t i = 0; i < columns; ++i) {
                out[i * rows] = cells[i];
            }
        }
    }
}

} // namespace

void cellsByColumns(const Grid& grid, std::size_t first, std::span<float> band)
{
    assert(first + band.size() <= grid.cells().size());
    const auto rows = static_cast<std::size_t>(grid.nrows());
    while (!band.empty()) {
        const auto column = static_cast<std::int32_t>(first / rows) + 1;
        const std::size_t below = first % rows; // cells of this column that stand ahead of the band
        std::size_t taken = std::min(rows - below, band.size());
        std::int32_t together = 1;
        if (taken == rows) {
            together = std::min(kColumnsTogether, static_cast<std::int32_t>(band.size() / rows));
            taken *= static_cast<std::size_t>(together);
        }
        const std::size_t ofEach = taken / static_cast<std::size_t>(together);
        turnColumns(grid, column, together, static_cast<std::int32_t>(below) + 1,
                    static_cast<std::int32_t>(below + ofEach), band.data());
        first += taken;
        band = band.subspan(taken);
    }
}

void raiseMaximum(std::span<const float> cells, float null, std::span<float> maximum)
{
    assert(cells.size() == maximum.size());
    const float above = null + 0.01F;
    // No branches on cells, so that the loop vectorises.
    for (std::size_t i = 0; i < cells.size(); ++i) {
        const float cell = cells[i];
        maximum[i] = ((cell > above) & (cell > maximum[i])) ? cell : maximum[i];
    }
}

// --- The file --------------------------------------------------------------------------------------------------------

namespace {

constexpr std::int32_t kMaxSide = 1'000'000;

// Ids of the file and of its variables.
struct SeriesFile {
    int id = 0;
    int time = 0;
    int y = 0;
    int x = 0;
    int series = 0;
    int maximum = 0;
};

constexpr std::array<NetcdfText, 6> kFileTexts{{{"Conventions", "CF-1.6"},
                                                {"title", "Dummy Title"},
                                                {"institution", "ORVANE"},
                                                {"source", "Exported from KESTOR utility (gridforge)"},
                                                {"history", "to be implemented"},
                                                {"references", "To be compliant with FORECAST_SYSTEM_URL"}}};
constexpr std::array<NetcdfText, 4> kTimeTexts{
    {{"standard_name", "time"}, {"long_name", "time"}, {"units", "hours since 2011-03-01 10:00:00"}, {"axis", "T"}}};
constexpr std::array<NetcdfText, 4> kYTexts{
    {{"standard_name", "Y"}, {"long_name", "y-coordinate in Cartesian system"}, {"units", "m"}, {"axis", "Y"}}};
constexpr std::array<NetcdfText, 4> kXTexts{
    {{"standard_name", "X"}, {"long_name", "x-coordinate in Cartesian system"}, {"units", "m"}, {"axis", "X"}}};

// The name of -out, or that of the first grid, with the extension .nc.
std::string outputName(const run::RunSettings& settings, const run::InputFileList& inputs)
{
    std::string name = run::outputNameRule(settings, inputs[1], "");
    if (!settings.outputNameGiven || !ASAME(FILEEXT(name), ".nc")) {
        name = cut(name + ".nc", kNameWidth);
    }
    return name;
}

SeriesFile openSeries(const run::RunSettings& settings, const std::string& name)
{
    say("Using NetCDF Compression Level: ", settings.ncCompression);
    say("Using NetCDF Shuffle == ", settings.ncShuffle ? 'T' : 'F');
    say("Opening output netcdf file: ", name);
    SeriesFile file;
    file.id = createNetcdf(name, NC_NETCDF4, "nf90_create");
    putNetcdfTexts(file.id, NC_GLOBAL, kFileTexts, "nf90_put_att");
    return file;
}

// The library itself judges the level; at 0 it leaves deflate off.
int definePacked(const run::RunSettings& settings, int file, const NetcdfVariable& variable, std::string_view call)
{
    const int id = defineNetcdfVariable(file, variable, call);
    checkNetcdf(nc_def_var_deflate(file, id, settings.ncShuffle ? 1 : 0, 1, settings.ncCompression), call);
    return id;
}

// A chunk is as high as thousands of rows, and the library's own cache may hold but one: each band of rows would have to
// unpack and pack all chunks along it anew. So the cache is given room for a row of chunks.
void cacheChunksOfRow(int file, int variable, std::size_t columns, std::string_view call)
{
    std::array<std::size_t, 3> chunk{1, 1, 1};
    int storage = NC_CONTIGUOUS;
    int dimensions = 0;
    checkNetcdf(nc_inq_varndims(file, variable, &dimensions), call);
    checkNetcdf(nc_inq_var_chunking(file, variable, &storage, chunk.data()), call);
    const auto d = static_cast<std::size_t>(dimensions);
    const std::size_t chunkRows = chunk[d - 2];
    const std::size_t chunkColumns = chunk[d - 1];
    const std::size_t chunksOfRow = (columns + chunkColumns - 1) / chunkColumns;

    std::size_t bytes = 0;
    std::size_t slots = 0;
    float preemption = 0;
    checkNetcdf(nc_get_var_chunk_cache(file, variable, &bytes, &slots, &preemption), call);
    bytes = std::max(bytes, chunksOfRow * chunkColumns * chunkRows * sizeof(float));
    slots = std::max(slots, chunksOfRow);
    checkNetcdf(nc_set_var_chunk_cache(file, variable, bytes, slots, preemption), call);
}

int defineCells(const run::RunSettings& settings, int file, const NetcdfVariable& variable, const GridHeader& header)
{
    const int id = definePacked(settings, file, variable, "nf90_def_var(data)");
    cacheChunksOfRow(file, id, static_cast<std::size_t>(header.ncols), "nf90_def_var(data)");
    defineNetcdfFill(file, id, header.null, "nf90_def_var_fill(data)");
    return id;
}

void defineSeries(const run::RunSettings& settings, const GridHeader& header, SeriesFile& file)
{
    say("Processing 1st file - defining netcdf output file.");
    say("Defining dimensions in netcdf file:");
    const int x = defineNetcdfDimension(file.id, "x", static_cast<std::size_t>(header.ncols), "nf90_def_dim");
    const int y = defineNetcdfDimension(file.id, "y", static_cast<std::size_t>(header.nrows), "nf90_def_dim");
    const int time = defineNetcdfDimension(file.id, "time", NC_UNLIMITED, "nf90_def_dim");
    say("   Finished defining dimensions.");

    say("Defining variables in netcdf file:");
    file.time = definePacked(settings, file.id, {"time", NC_DOUBLE, {&time, 1}}, "nf90_def_var(time)");
    putNetcdfTexts(file.id, file.time, kTimeTexts, "nf90_put_att");
    file.y = definePacked(settings, file.id, {"y", NC_DOUBLE, {&y, 1}}, "nf90_def_var(y)");
    putNetcdfTexts(file.id, file.y, kYTexts, "nf90_put_att");
    file.x = definePacked(settings, file.id, {"x", NC_DOUBLE, {&x, 1}}, "nf90_def_var(x)");
    putNetcdfTexts(file.id, file.x, kXTexts, "nf90_put_att");
    const std::array<int, 3> timeYX{time, y, x};
    const std::array<int, 2> yx{y, x};
    file.series = defineCells(settings, file.id, {"data_temporal", NC_FLOAT, timeYX}, header);
    file.maximum = defineCells(settings, file.id, {"data_max", NC_FLOAT, yx}, header);
    checkNetcdf(nc_enddef(file.id), "nf90_enddef");
    say("   Finished defining variables.");
}

// The far edges of the cells, not their centres, and one size for both axes; deliberate, readers know the file so.
std::vector<double> farEdges(double corner, double cellsize, std::int32_t count)
{
    std::vector<double> edges(static_cast<std::size_t>(count));
    for (std::size_t k = 0; k < edges.size(); ++k) {
        edges[k] = stored(corner + static_cast<double>(k + 1) * cellsize);
    }
    return edges;
}

void requireSide(std::int32_t count, std::string_view what)
{
    if (count > kMaxSide) {
        fail("ERROR - Greater than ", kMaxSide, ' ', what, " in grid.  Contact ", kSupportContact);
    }
}

void writeCoordinates(const SeriesFile& file, const GridHeader& header)
{
    say("Writing coordinates to netcdf file...");
    requireSide(header.ncols, "columns");
    putNetcdfValues(file.id, file.x, farEdges(header.xll, header.cellsize8, header.ncols), "nf90_put_var (x)");
    requireSide(header.nrows, "rows");
    putNetcdfValues(file.id, file.y, farEdges(header.yll, header.cellsize8, header.nrows), "nf90_put_var (y)");
    say("   Done.");
}

// --- Cells into the file ---------------------------------------------------------------------------------------------

// Cells go to the library in bands of rows of the file that stay in the cache of the processor: more at once costs fresh
// memory, and less a call for every row of a narrow grid.
constexpr std::size_t kBandCells = 262'144;

// How the cells of a grid lie in the file. As a block they stand column after column in the places that the file has for
// rows, so those of a grid that is not square do not lie at their x and y. Deliberate: readers of such files of old expect
// it, and -nc_part puts every row in its place.
enum class Layout { block, rows };

void fillBand(const Grid& grid, Layout layout, std::int32_t firstRow, std::span<float> band)
{
    if (layout == Layout::rows) {
        cellsByRows(grid, firstRow, band);
    } else {
        cellsByColumns(grid, static_cast<std::size_t>(firstRow - 1) * static_cast<std::size_t>(grid.ncols()), band);
    }
}

// Writes the grid to a variable (time, y, x) at `position`, or (y, x) for none, and all that is pending to the disk.
void writeCells(int file, int variable, std::optional<std::int32_t> position, const Grid& grid, Layout layout)
{
    const std::string_view call = layout == Layout::rows ? "nf90_put_var (rg)" : "nf90_put_var (rg2)";
    const auto columns = static_cast<std::size_t>(grid.ncols());
    const auto rows = static_cast<std::size_t>(grid.nrows());
    const std::size_t rowsOfBand = std::clamp<std::size_t>(kBandCells / columns, 1, rows);
    std::vector<float> band(rowsOfBand * columns);
    const std::size_t skipped = position ? 0 : 1;
    for (std::size_t row = 0; row < rows; row += rowsOfBand) {
        const std::size_t taken = std::min(rowsOfBand, rows - row);
        const std::array<std::size_t, 3> start{static_cast<std::size_t>(position.value_or(1) - 1), row, 0};
        const std::array<std::size_t, 3> count{1, taken, columns};
        fillBand(grid, layout, static_cast<std::int32_t>(row + 1), std::span(band).first(taken * columns));
        checkNetcdf(nc_put_vara_float(file, variable, start.data() + skipped, count.data() + skipped, band.data()),
                    call);
    }
    checkNetcdf(nc_sync(file), "nf90_sync (rg)");
}

// --- The run ---------------------------------------------------------------------------------------------------------

void writeTime(const SeriesFile& file, std::int32_t i)
{
    say("Writing time to netcdf file...");
    putNetcdfTime(file.id, file.time, i, static_cast<double>(i), "nf90_put_var (time)");
    say("   Done");
}

void startMaximum(const GridHeader& header, Grid& maximum)
{
    if (!maximum.allocate(header.nrows, header.ncols)) {
        failMemory();
    }
    std::ranges::fill(maximum.cells(), header.null);
}

} // namespace

void runNc(const run::RunSettings& settings, const run::InputFileList& inputs)
{
    say("Converting grid into netcdf format.");
    SeriesFile file = openSeries(settings, outputName(settings, inputs));

    say("Processing ", inputs.count(), " input grids.");
    const Layout layout = settings.ncPart ? Layout::rows : Layout::block;
    GridHeader first;
    Grid cells;
    Grid maximum;
    for (std::int32_t i = 1; i <= inputs.count(); ++i) {
        say("Processing File: ", i, ": ", inputs[i]);
        const auto prepare = [&](const GridHeader& header) {
            if (i == 1) {
                first = header;
                defineSeries(settings, first, file);
                writeCoordinates(file, first);
            }
            writeTime(file, i);
            grid::allocateGrid(cells, first, "external grid...");
            if (i == 1) {
                startMaximum(first, maximum);
            }
        };
        run::loadGrid(inputs[i], {.match = i > 1 ? &first : nullptr, .prepare = prepare}, cells);
        say("Writing data to netcdf file...");
        writeCells(file.id, file.series, i, cells, layout);
        raiseMaximum(cells.cells(), first.null, maximum.cells());
        if (i == inputs.count()) {
            writeCells(file.id, file.maximum, std::nullopt, maximum, layout);
        }
        say("   Done");

        say("Deallocating memory..."); // kept for the next grid, which is announced and cleared as if it were fresh
        say("   Done.");
    }

    say("Closing netcdf file...");
    closeNetcdf(file.id, "nf90_close");
    say("   Done.");
}

} // namespace gridforge::netcdf
