#include "netcdf/nc.h"

#include "core/computed.h"
#include "core/names.h"
#include "core/product.h"
#include "grid/allocate.h"
#include "grid/reader.h"
#include "host/ends.h"
#include "netcdf/cell_writer.h"
#include "netcdf/check_netcdf.h"
#include "netcdf/kept_maximum.h"
#include "netcdf/laid_grids.h"
#include "netcdf/layout.h"
#include "netcdf/library.h"
#include "netcdf/netcdf_file.h"
#include "plane/cell_array.h"
#include "plane/grid_header.h"
#include "run/cells_ahead.h"
#include "run/load.h"
#include "run/outputs.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace gridforge::netcdf {

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
std::string outputName(const run::Common& common, const run::InputFileList& inputs)
{
    std::string name = run::outputNameRule(common, inputs[1], "");
    if (!common.out || !ASAME(FILEEXT(name), ".nc")) {
        name = cut(name + ".nc", kNameWidth);
    }
    return name;
}

SeriesFile openSeries(const NcOptions& options, const std::string& name)
{
    say("Using NetCDF Compression Level: ", options.compression);
    say("Using NetCDF Shuffle == ", options.shuffle ? 'T' : 'F');
    say("Opening output netcdf file: ", name);
    SeriesFile file;
    file.id = createNetcdf(name, NC_NETCDF4, "nf90_create");
    putNetcdfTexts(file.id, NC_GLOBAL, kFileTexts, "nf90_put_att");
    return file;
}

// The library itself judges the level; at 0 it leaves deflate off.
int definePacked(const NcOptions& options, int file, const NetcdfVariable& variable, std::string_view call)
{
    const int id = defineNetcdfVariable(file, variable, call);
    checkNetcdf(library().nc_def_var_deflate(file, id, options.shuffle ? 1 : 0, 1, options.compression), call);
    return id;
}

// A chunk is as high as thousands of rows, and the library's own cache may hold but one: each band of rows would have
// to unpack and pack all chunks along it anew. So the cache is given room for a row of chunks.
void cacheChunksOfRow(int file, int variable, std::size_t columns, std::string_view call)
{
    std::array<std::size_t, 3> chunk{1, 1, 1};
    int storage = NC_CONTIGUOUS;
    int dimensions = 0;
    checkNetcdf(library().nc_inq_varndims(file, variable, &dimensions), call);
    checkNetcdf(library().nc_inq_var_chunking(file, variable, &storage, chunk.data()), call);
    const auto d = static_cast<std::size_t>(dimensions);
    const std::size_t chunkRows = chunk[d - 2];
    const std::size_t chunkColumns = chunk[d - 1];
    const std::size_t chunksOfRow = (columns + chunkColumns - 1) / chunkColumns;

    std::size_t bytes = 0;
    std::size_t slots = 0;
    float preemption = 0;
    checkNetcdf(library().nc_get_var_chunk_cache(file, variable, &bytes, &slots, &preemption), call);
    bytes = std::max(bytes, chunksOfRow * chunkColumns * chunkRows * sizeof(float));
    slots = std::max(slots, chunksOfRow);
    checkNetcdf(library().nc_set_var_chunk_cache(file, variable, bytes, slots, preemption), call);
}

int defineCells(const NcOptions& options, int file, const NetcdfVariable& variable, const GridHeader& header)
{
    const int id = definePacked(options, file, variable, "nf90_def_var(data)");
    cacheChunksOfRow(file, id, static_cast<std::size_t>(header.ncols), "nf90_def_var(data)");
    defineNetcdfFill(file, id, header.null, "nf90_def_var_fill(data)");
    return id;
}

void defineSeries(const NcOptions& options, const GridHeader& header, SeriesFile& file)
{
    say("Processing 1st file - defining netcdf output file.");
    say("Defining dimensions in netcdf file:");
    const int x = defineNetcdfDimension(file.id, "x", static_cast<std::size_t>(header.ncols), "nf90_def_dim");
    const int y = defineNetcdfDimension(file.id, "y", static_cast<std::size_t>(header.nrows), "nf90_def_dim");
    const int time = defineNetcdfDimension(file.id, "time", NC_UNLIMITED, "nf90_def_dim");
    say("   Finished defining dimensions.");

    say("Defining variables in netcdf file:");
    file.time = definePacked(options, file.id, {"time", NC_DOUBLE, {&time, 1}}, "nf90_def_var(time)");
    putNetcdfTexts(file.id, file.time, kTimeTexts, "nf90_put_att");
    file.y = definePacked(options, file.id, {"y", NC_DOUBLE, {&y, 1}}, "nf90_def_var(y)");
    putNetcdfTexts(file.id, file.y, kYTexts, "nf90_put_att");
    file.x = definePacked(options, file.id, {"x", NC_DOUBLE, {&x, 1}}, "nf90_def_var(x)");
    putNetcdfTexts(file.id, file.x, kXTexts, "nf90_put_att");
    const std::array<int, 3> timeYX{time, y, x};
    const std::array<int, 2> yx{y, x};
    file.series = defineCells(options, file.id, {"data_temporal", NC_FLOAT, timeYX}, header);
    file.maximum = defineCells(options, file.id, {"data_max", NC_FLOAT, yx}, header);
    checkNetcdf(library().nc_enddef(file.id), "nf90_enddef");
    say("   Finished defining variables.");
}

// The far edges of the cells, not their centres, and one size for both axes: on purpose, since readers expect the file
// so.
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

// --- The run ---------------------------------------------------------------------------------------------------------

void writeTime(const SeriesFile& file, std::int32_t i)
{
    say("Writing time to netcdf file...");
    putNetcdfTime(file.id, file.time, i, static_cast<double>(i), "nf90_put_var (time)");
    say("   Done");
}

// The grids of a series on their way into the file.
class Series {
public:
    Series(const NcOptions& options, const run::InputFileList& inputs, const std::string& name)
        : options_(options), inputs_(inputs), layout_(options.part ? Layout::rows : Layout::block),
          file_(openSeries(options, name)), grids_(inputs, layout_, name)
    {
    }

    void load(std::int32_t i);
    void write(std::int32_t i);
    void close();

private:
    void prepare(std::int32_t i, bool ahead, const GridHeader& header);
    CellVariable variable(const char* name, int id) const { return {file_.id, id, name}; }
    std::string_view call() const { return layout_ == Layout::rows ? "nf90_put_var (rg)" : "nf90_put_var (rg2)"; }
    void writeMaximum();
    void sync() const { checkNetcdf(library().nc_sync(file_.id), "nf90_sync (rg)"); }

    const NcOptions& options_;
    const run::InputFileList& inputs_;
    Layout layout_;
    SeriesFile file_;
    LaidGrids grids_;
    GridHeader first_;
    Grid cells_; // of a grid that is read step by step
    KeptMaximum maximum_;
    std::optional<CellWriter> writer_;
};

void Series::prepare(std::int32_t i, bool ahead, const GridHeader& header)
{
    if (i == 1) {
        first_ = header;
        defineSeries(options_, first_, file_);
        writeCoordinates(file_, first_);
    }
    writeTime(file_, i);
    if (ahead) {
        grid::sayAllocation(first_, "external grid...");
    } else {
        grid::allocateGrid(cells_, first_, "external grid...");
    }
    if ((!ahead && !grids_.take(i, first_)) || (i == 1 && !maximum_.start(first_, grids_.folder()))) {
        failMemory();
    }
}

void Series::load(std::int32_t i)
{
    const run::Way way = grids_.layAhead(i, writer_ ? writer_->gridsTogether() : 1);
    run::countWay(way);
    const bool ahead = way == run::Way::ahead;
    say("Processing File: ", i, ": ", inputs_[i]);
    run::loadGrid(inputs_[i],
                  {.match = i > 1 ? &first_ : nullptr,
                   .prepare = [&](const GridHeader& header) { prepare(i, ahead, header); },
                   .ahead = ahead},
                  cells_);
    if (!ahead && !grids_.lay(cells_)) {
        failMemory();
    }
}

void Series::write(std::int32_t i)
{
    if (!writer_) {
        writer_.emplace(variable("data_temporal", file_.series), first_, static_cast<std::size_t>(inputs_.count()),
                        call());
    }
    writer_->write(i, grids_.from(i));
    sync();
    const grid::CellStore& laid = grids_.from(i).front();
    if (const run::Way way = maximum_.raise(laid); way != run::Way::ahead) {
        grid::failFetch(way == run::Way::readRefused && laid.isOnlyRead());
    }
    if (i == inputs_.count()) {
        writeMaximum();
    }
}

void Series::writeMaximum()
{
    writer_.reset(); // its memory serves the next
    CellWriter writer(variable("data_max", file_.maximum), first_, 1, call());
    writer.write(std::nullopt, {&maximum_.cells(), 1});
    sync();
}

void Series::close()
{
    closeNetcdf(file_.id, "nf90_close");
}

} // namespace

void runNc(const run::Common& common, const NcOptions& options, const run::InputFileList& inputs)
{
    say("Converting grid into netcdf format.");
    Series series(options, inputs, outputName(common, inputs));

    say("Processing ", inputs.count(), " input grids.");
    for (std::int32_t i = 1; i <= inputs.count(); ++i) {
        series.load(i);
        say("Writing data to netcdf file...");
        series.write(i);
        say("   Done");

        say("Deallocating memory..."); // kept for the next grid, which is announced and cleared as if it were fresh
        say("   Done.");
    }

    say("Closing netcdf file...");
    series.close();
    say("   Done.");
}

} // namespace gridforge::netcdf
