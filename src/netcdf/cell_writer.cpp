#include "netcdf/cell_writer.h"

#include "grid/reader.h"
#include "host/threads.h"
#include "netcdf/check_netcdf.h"
#include "netcdf/layout.h"
#include "netcdf/library.h"

#include <algorithm>
#include <array>

namespace gridforge::netcdf {

namespace {

// More chunks than threads, so that no thread waits long for the last of them.
constexpr std::size_t kChunksPerThread = 2;

// What the library gets goes there in bands of rows that stay in the cache of the processor: more at once costs fresh memory,
// and less a call for every row of a narrow grid.
constexpr std::size_t kBandCells = 262'144;

} // namespace

CellWriter::CellWriter(const CellVariable& variable, const GridHeader& lattice, std::size_t grids,
                       std::string_view call)
    : variable_(variable), nrows_(static_cast<std::size_t>(lattice.nrows)),
      ncols_(static_cast<std::size_t>(lattice.ncols)), call_(call),
      dataset_(ChunkDataset::open(variable.file, variable.name))
{
    if (dataset_ && !takeRooms(grids)) {
        packers_.clear();
        packed_.clear();
    }
}

// As many chunks as keep the threads busy, may wait and will come; where memory is short after all, one.
bool CellWriter::takeRooms(std::size_t grids)
{
    const std::size_t threads = threadCount();
    const std::size_t wanted = threads == 1 ? 1 : std::min(threads * kChunksPerThread, grids * chunksOfGrid());
    const std::uint64_t bytesEach = 2 * std::uint64_t{dataset_->form().bytes()};
    const auto mayWait =
        static_cast<std::size_t>(std::min<std::uint64_t>(grid::bytesThatMayStillWait() / bytesEach, wanted));
    return takeRoomsOf(std::max<std::size_t>(mayWait, 1)) || takeRoomsOf(1);
}

bool CellWriter::takeRoomsOf(std::size_t chunks)
{
    packers_ = std::vector<ChunkPacker>(std::min(threadCount(), chunks));
    packed_ = std::vector<Packed>(chunks);
    for (ChunkPacker& packer : packers_) {
        if (!packer.take(dataset_->form())) {
            return false;
        }
    }
    rows_.assign(packers_.size(), std::vector<float>(std::min(dataset_->form().columns, ncols_)));
    return std::ranges::all_of(packed_,
                               [&](Packed& packed) { return packed.room.allocate(packers_.front().mostBytes()); });
}

std::size_t CellWriter::chunksAcross() const
{
    return (ncols_ + dataset_->form().columns - 1) / dataset_->form().columns;
}

std::size_t CellWriter::chunksOfGrid() const
{
    return chunksAcross() * ((nrows_ + dataset_->form().rows - 1) / dataset_->form().rows);
}

std::size_t CellWriter::gridsTogether() const
{
    return packsChunks() ? std::max<std::size_t>(packed_.size() / chunksOfGrid(), 1) : 1;
}

void CellWriter::write(std::optional<std::int32_t> position, std::span<const grid::CellStore> laid)
{
    if (packsChunks()) {
        writeChunks(position, laid);
    } else {
        writeBands(position, laid.front());
    }
}

void CellWriter::writeChunks(std::optional<std::int32_t> position, std::span<const grid::CellStore> laid)
{
    if (position) {
        checkNetcdf(dataset_->reach(*position), call_);
    }
    const std::size_t across = chunksAcross();
    for (std::size_t chunk = 0; chunk < chunksOfGrid(); ++chunk) {
        if (next_ == waiting_) {
            packFrom(chunk, laid);
        }
        const Packed& packed = packed_[next_++];
        if (packed.bytes == 0) {
            grid::failFetch(laid.front().isOnlyRead());
        }
        checkNetcdf(dataset_->write(position, chunk / across * dataset_->form().rows,
                                    chunk % across * dataset_->form().columns, packed.room.all().first(packed.bytes)),
                    call_);
    }
}

void CellWriter::packFrom(std::size_t chunk, std::span<const grid::CellStore> laid)
{
    const std::size_t ofGrid = chunksOfGrid();
    next_ = 0;
    waiting_ = std::min(packed_.size(), laid.size() * ofGrid - chunk);
    parallelFor(waiting_, [&](std::size_t piece, std::size_t worker) {
        const std::size_t n = chunk + piece;
        packed_[piece].bytes = packChunk(laid[n / ofGrid], n % ofGrid, worker, packed_[piece].room.all());
    });
}

std::size_t CellWriter::packChunk(const grid::CellStore& laid, std::size_t chunk, std::size_t worker,
                                  std::span<std::byte> target)
{
    const ChunkForm& form = dataset_->form();
    const std::size_t firstRow = chunk / chunksAcross() * form.rows;
    const std::size_t firstColumn = chunk % chunksAcross() * form.columns;
    const std::size_t lastRow = std::min(firstRow + form.rows, nrows_);
    const std::size_t columns = std::min(form.columns, ncols_ - firstColumn);
    ChunkPacker& packer = packers_[worker];
    packer.start(target);
    for (std::size_t row = firstRow; row < lastRow; ++row) {
        const auto cells = cellsOf(laid, row * ncols_ + firstColumn, std::span(rows_[worker]).first(columns));
        if (!cells) {
            return 0;
        }
        packer.add(*cells);
    }
    return packer.finish();
}

void CellWriter::writeBands(std::optional<std::int32_t> position, const grid::CellStore& laid) const
{
    const std::size_t rowsOfBand = std::clamp<std::size_t>(kBandCells / ncols_, 1, nrows_);
    std::vector<float> room(rowsOfBand * ncols_);
    const std::size_t skipped = position ? 0 : 1;
    for (std::size_t row = 0; row < nrows_; row += rowsOfBand) {
        const std::size_t taken = std::min(rowsOfBand, nrows_ - row);
        const auto cells = cellsOf(laid, row * ncols_, std::span(room).first(taken * ncols_));
        if (!cells) {
            grid::failFetch(laid.isOnlyRead());
        }
        const std::array<std::size_t, 3> start{static_cast<std::size_t>(position.value_or(1) - 1), row, 0};
        const std::array<std::size_t, 3> count{1, taken, ncols_};
        checkNetcdf(library().nc_put_vara_float(variable_.file, variable_.id, start.data() + skipped,
                                                count.data() + skipped, cells->data()),
                    call_);
    }
}

} // namespace gridforge::netcdf
