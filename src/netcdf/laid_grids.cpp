#include "netcdf/laid_grids.h"

#include "core/names.h"
#include "grid/asc_decode.h"
#include "grid/writer.h"
#include "host/file_system.h"
#include "host/positions.h"

#include <algorithm>
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
    grid::CellStore& laid = nextStore();
    if (!laid.take(look->header.cells(), folder_)) {
        return run::Way::noRoom;
    }
    const run::Way way = look->format == grid::Format::flt ? layBinary(*look, laid) : layText(*look, laid);
    if (way == run::Way::ahead && !lattice_) {
        lattice_ = look->header;
    }
    return way;
}

run::Way LaidGrids::layBinary(const grid::GridLook& look, grid::CellStore& laid) const
{
    const SystemFile file = theSystem().open(look.file, OpenFor::reading);
    if (file == SystemFile::none) {
        return run::Way::readRefused;
    }
    const auto position = [](std::size_t cell) { return static_cast<std::int64_t>(cell * sizeof(float)); };
    const GetCells source = [&](std::size_t first, std::span<float> cells) {
        return readAllAt(file, position(first), std::as_writable_bytes(cells));
    };
    const bool good = layCells(source, layout_, look.header, laid);
    theSystem().close(file);
    return good ? run::Way::ahead : run::Way::readRefused;
}

run::Way LaidGrids::layText(const grid::GridLook& look, grid::CellStore& laid)
{
    if (!decoded_.take(look.header.cells(), folder_)) {
        return run::Way::noRoom;
    }
    if (!grid::decodeAsc(look, decoded_)) {
        return run::Way::oddText;
    }
    const GetCells source = [&](std::size_t first, std::span<float> cells) { return decoded_.get(first, cells); };
    return layCells(source, layout_, look.header, laid) ? run::Way::ahead : run::Way::noRoom;
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
    const GetCells source = [&](std::size_t first, std::span<float> cells) {
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
