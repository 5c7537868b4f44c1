#include "netcdf/laid_grids.h"

#include "core/names.h"
#include "core/worker_rooms.h"
#include "grid/lattice_check.h"
#include "host/file_system.h"
#include "host/threads.h"

#include <algorithm>
#include <atomic>
#include <cassert>

namespace gridforge::netcdf {

LaidGrids::LaidGrids(const run::InputFileList& inputs, Layout layout, const std::string& output)
    : inputs_(inputs), layout_(layout), folder_(systemName(FILEFOLDERPATH(output))), output_(identityOfOutput(output))
{
}

grid::CellStore& LaidGrids::nextStore()
{
    if (stores_.size() == count_) {
        stores_.emplace_back();
    }
    return stores_[count_];
}

run::Way LaidGrids::layAhead(std::int32_t i, std::size_t together)
{
    if (i >= first_ && static_cast<std::size_t>(i - first_) < count_) {
        return run::Way::ahead;
    }
    first_ = i;
    count_ = 0;
    const auto left = static_cast<std::size_t>(inputs_.count() - i) + 1;
    while (count_ < std::min(left, together)) {
        const run::Way way = layNext(i + static_cast<std::int32_t>(count_));
        if (way != run::Way::ahead) {
            return count_ == 0 ? way : run::Way::ahead;
        }
        ++count_;
    }
    return run::Way::ahead;
}

run::Way LaidGrids::layNext(std::int32_t i)
{
    const std::optional<grid::GridLook> look = grid::lookAtGrid(inputs_[i]);
    const std::optional<FileFacts> facts = look ? factsOf(look->file) : std::nullopt;
    if (!facts || look->header.cells() == 0 || facts->identity == output_) {
        return run::Way::oddInput;
    }
    if (lattice_ && !grid::isSameLattice(*lattice_, look->header)) {
        return run::Way::otherLattice;
    }
    const run::Way way = layAsItIs(*look, nextStore());
    if (way == run::Way::ahead && !lattice_) {
        lattice_ = look->header;
    }
    return way;
}

namespace {

// One that cannot be read must be known before its story is told.
bool canBeRead(const grid::CellStore& cells)
{
    constexpr std::size_t kPiece = std::size_t{1} << 18;
    const std::size_t most = cellsPerPiece(kPiece);
    const std::size_t pieces = (cells.size() + most - 1) / most;
    WorkerRooms<float> rooms;
    std::atomic<bool> good = rooms.take(workersOf(pieces), most);
    parallelFor(pieces, [&](std::size_t piece, std::size_t worker) {
        const std::size_t first = piece * most;
        if (good && !cells.get(first, rooms.of(worker).first(std::min(most, cells.size() - first)))) {
            good = false;
        }
    });
    return good;
}

} // namespace

// Rows of a binary grid are taken from its file as they are packed, unless they are so narrow that a read for each costs more.
run::Way LaidGrids::layAsItIs(const grid::GridLook& look, grid::CellStore& laid)
{
    constexpr std::int32_t kNarrow = 16;
    const std::size_t cells = look.header.cells();
    if (layout_ == Layout::rows && look.format == grid::Format::flt && look.header.ncols >= kNarrow) {
        const bool good =
            laid.openFromSouth(look.file, cells, static_cast<std::size_t>(look.header.ncols)) && canBeRead(laid);
        return good ? run::Way::ahead : run::Way::readRefused;
    }
    if (!laid.take(cells, folder_)) {
        return run::Way::noRoom;
    }
    if (const run::Way way = run::openCells(look, folder_, cells_); way != run::Way::ahead) {
        return way;
    }
    const grid::GetCells source = [&](std::size_t first, std::span<float> some) { return cells_.get(first, some); };
    if (layCells(source, layout_, look.header, laid)) {
        return run::Way::ahead;
    }
    return cells_.isOnlyRead() ? run::Way::readRefused : run::Way::noRoom;
}

bool LaidGrids::take(std::int32_t i, const GridHeader& header)
{
    if (!lattice_) {
        lattice_ = header;
    }
    first_ = i;
    count_ = 0;
    if (!nextStore().take(header.cells(), folder_)) {
        return false;
    }
    count_ = 1;
    return true;
}

bool LaidGrids::lay(const Grid& grid)
{
    const grid::GetCells source = [&](std::size_t first, std::span<float> cells) {
        std::ranges::copy(grid.cells().subspan(first, cells.size()), cells.begin());
        return true;
    };
    return layCells(source, layout_, *lattice_, stores_.front());
}

std::span<const grid::CellStore> LaidGrids::from(std::int32_t i) const
{
    assert(i >= first_);
    return std::span(stores_).first(count_).subspan(static_cast<std::size_t>(i - first_));
}

} // namespace gridforge::netcdf
