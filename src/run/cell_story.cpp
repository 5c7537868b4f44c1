#include "run/cell_story.h"

#include "core/names.h"
#include "grid/allocate.h"
#include "grid/reader.h"
#include "grid/writer.h"
#include "host/ends.h"
#include "host/file_system.h"
#include "run/rows.h"
#include "run/still_to_read.h"

#include <algorithm>
#include <utility>

namespace gridforge::run {

namespace {

OutputWish wishOf(const Common& common, const InputFileList& inputs, const CellPlan& plan,
                  const std::vector<grid::GridLook>& looks)
{
    const std::string_view name = plan.namedAfter.empty() ? std::string_view(inputs[1]) : plan.namedAfter;
    return outputWish(common, name, looks.front().format, plan.grids);
}

// Ends the run where there is no room for them, or they can no longer be read.
void copyCells(const grid::CellStore& from, grid::CellStore& to)
{
    constexpr std::size_t kPiece = std::size_t{1} << 18;
    std::vector<float> room(kPiece);
    for (std::size_t first = 0; first < from.size(); first += kPiece) {
        const auto got = from.get(first, std::min(kPiece, from.size() - first), room);
        if (!got) {
            grid::failFetch(from.isOnlyRead());
        }
        if (!to.put(first, *got)) {
            failMemory();
        }
    }
}

// Cells that are still in the file of the input find other room where that file is about to be replaced.
void moveFromOutput(grid::CellStore& cells, const std::string& input, grid::Format format, std::string_view base)
{
    if (!replacesInput(format, base, inputGrid(input))) {
        return;
    }
    grid::CellStore moved;
    if (!moved.take(cells.size(), systemName(FILEFOLDERPATH(base)))) {
        failMemory();
    }
    copyCells(cells, moved);
    cells = std::move(moved);
}

} // namespace

CellStory::CellStory(const Common& common, const InputFileList& inputs, const CellPlan& plan, MapKernel kernel)
    : names_(inputs), mapKernel_(std::move(kernel)), inputs_(static_cast<std::size_t>(inputs.count())),
      nulls_(static_cast<std::size_t>(inputs.count())), tallies_(plan.tallies)
{
    if (const auto looks = lookAtInputs(inputs, plan.ordinary)) {
        keep(mapAhead(*looks, wishOf(common, inputs, plan, *looks), mapKernel_, tallies_));
    }
}

CellStory::CellStory(const Common& common, const InputFileList& inputs, const CellPlan& plan, FoldKernel kernel)
    : names_(inputs), foldKernel_(std::move(kernel)), inputs_(1), nulls_(static_cast<std::size_t>(inputs.count())),
      tallies_(plan.tallies)
{
    if (const auto looks = lookAtInputs(inputs, plan.ordinary)) {
        keep(foldAhead(*looks, wishOf(common, inputs, plan, *looks), foldKernel_, tallies_));
    }
}

CellStory::CellStory(const Common& common, const InputFileList& input) : names_(input), inputs_(1), nulls_(1)
{
    if (const auto looks = lookAtInputs(input)) {
        const grid::GridLook& look = looks->front();
        OutputWish wish = outputWish(common, input[1], look.format, 1);
        wish.binary = look.format == grid::Format::asc;
        keep(copyAhead(look, wish));
    }
}

void CellStory::keep(std::optional<std::vector<grid::CellStore>> grids)
{
    ahead_ = grids.has_value();
    if (ahead_) {
        ready_ = std::move(*grids);
    }
}

Grid& CellStory::inputGrid(std::int32_t i)
{
    return foldKernel_ ? inputs_.front() : inputs_[static_cast<std::size_t>(i - 1)];
}

void CellStory::note(std::int32_t i, const GridHeader& header)
{
    nulls_[static_cast<std::size_t>(i - 1)] = header.null;
    if (i == 1) {
        lattice_ = header;
    }
}

LoadedGrid CellStory::load(std::int32_t i, LoadSteps steps)
{
    steps.ahead = ahead_;
    LoadedGrid loaded = loadGrid(names_[i], steps, inputGrid(i));
    note(i, loaded.header);
    return loaded;
}

LoadedGrid CellStory::loadEach(const std::string& purpose, const std::function<void(const GridHeader&)>& prepare,
                               const std::function<void(std::int32_t)>& use)
{
    const auto noteAndUse = [&](std::int32_t i, const GridHeader& header) {
        note(i, header);
        use(i);
    };
    return run::loadEach(names_, purpose, prepare, inputs_.front(), noteAndUse, ahead_);
}

void CellStory::allocateInput(std::int32_t i, const GridHeader& header, std::string_view purpose)
{
    allocateUnlessAhead(inputGrid(i), header, purpose);
}

void CellStory::allocate(std::size_t i, const GridHeader& header, std::string_view purpose)
{
    outputs_.resize(std::max(outputs_.size(), i + 1));
    allocateUnlessAhead(outputs_[i], header, purpose);
}

void CellStory::allocateUnlessAhead(Grid& grid, const GridHeader& header, std::string_view purpose) const
{
    if (ahead_) {
        grid::sayAllocation(header, purpose);
    } else {
        grid::allocateGrid(grid, header, purpose);
    }
}

void CellStory::work(const CellBlock& block, std::int32_t i)
{
    if (ahead_) {
        return;
    }
    const CellPiece piece{.first = block.start, .count = block.count, .nulls = nulls_, .tallies = tallies_};
    std::vector<std::span<float>> outputs;
    for (Grid& grid : outputs_) {
        outputs.push_back(cellsOf(grid, block));
    }
    if (foldKernel_) {
        foldKernel_(piece, static_cast<std::size_t>(i - 1), cellsOf(inputs_.front(), block), outputs);
        return;
    }
    std::vector<std::span<const float>> inputs;
    for (const Grid& grid : inputs_) {
        inputs.push_back(cellsOf(grid, block));
    }
    mapKernel_(piece, inputs, outputs);
}

void CellStory::compute(std::string_view heading)
{
    take(1, heading);
}

void CellStory::take(std::int32_t i, std::string_view heading)
{
    overRows(heading, lattice_.nrows, lattice_.ncols, [&](const CellBlock& block) { work(block, i); });
}

void CellStory::take(std::int32_t i)
{
    work({.start = 0, .count = lattice_.cells()}, i);
}

grid::CellSource CellStory::cells(std::size_t i)
{
    if (ahead_) {
        return {ready_[i], lattice_};
    }
    return outputs_.empty() ? inputs_.front() : outputs_[i];
}

void CellStory::write(std::size_t i, grid::Format format, std::string_view base, const GridHeader& header,
                      std::string_view projectionText, std::int32_t decimals)
{
    if (ahead_ && ready_[i].isOnlyRead()) {
        moveFromOutput(ready_[i], names_[1], format, base);
    }
    grid::writeGrid(format, base, header, cells(i), projectionText, decimals);
    if (ahead_) {
        ready_[i].release();
    }
}

} // namespace gridforge::run
