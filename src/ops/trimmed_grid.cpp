#include "ops/trimmed_grid.h"

#include "grid/allocate.h"
#include "grid/reader.h"
#include "host/ends.h"
#include "ops/trim_cells.h"
#include "run/fill_ahead.h"
#include "run/inputs.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <utility>

namespace gridforge::ops {

namespace {

constexpr std::size_t kMostWaitingCuts = 16; // each may take an open file

std::size_t rowsOf(const CellWindow& window)
{
    return static_cast<std::size_t>(window.lastRow - window.firstRow) + 1;
}

GridHeader windowHeader(const CellWindow& w, const GridHeader& header)
{
    GridHeader output = header;
    output.nrows = w.lastRow - w.firstRow + 1;
    output.ncols = w.lastColumn - w.firstColumn + 1;
    output.xll = header.xll + static_cast<double>(static_cast<float>(w.firstColumn - 1)) * header.cellsize8;
    output.yll = header.yll + static_cast<double>(static_cast<float>(w.firstRow - 1)) * header.cellsize8;
    return output;
}

// To read on takes no longer than to jump over a few columns. Where the cut leaves out many, there is no hint.
void hintAt(const grid::CellStore& cells, const GridHeader& header, const CellWindow& window)
{
    constexpr std::size_t kWorthAJump = std::size_t{1} << 16;
    const auto columns = static_cast<std::size_t>(header.ncols);
    if (columns - window.columns() < kWorthAJump) {
        cells.willRead(placeOf(header, window.lastRow, 1), rowsOf(window) * columns,
                       window.columns() < columns ? ReadOf::parts : ReadOf::all);
    }
}

// The cells of the cut, by all threads, some rows each.
run::Way cutCells(const grid::CellStore& cells, const GridHeader& header, const Cut& cut, grid::CellStore& output)
{
    const std::size_t columns = cut.window.columns();
    const std::size_t rows =
        std::clamp<std::size_t>(std::min(run::kCachedCells, run::cellsOfPart()) / columns, 1, rowsOf(cut.window));
    const auto fill = [&](std::size_t first, std::span<float> target, std::size_t) {
        CellWindow some = cut.window;
        some.lastRow -= static_cast<std::int32_t>(first / columns);
        some.firstRow = some.lastRow - static_cast<std::int32_t>(target.size() / columns) + 1;
        hintAt(cells, header, some);
        bool good = true;
        copyInside(cut.region, header, some, target,
                   [&](std::size_t place, std::span<float> part) { good = good && cells.get(place, part); });
        return good ? run::Way::ahead : run::Way::readRefused;
    };
    return run::fillAhead(output, rows * columns, fill);
}

} // namespace

Cut cutOf(const SampledRegion& region, const GridHeader& header)
{
    const CellWindow wanted = regionWindow(region, header);
    Cut cut{region, wanted, withinGrid(wanted, header), header};
    if (!cut.window.empty()) {
        cut.header = windowHeader(cut.window, header);
    }
    return cut;
}

TrimmedGrid::TrimmedGrid(const std::string& name, const std::vector<TrimRegion>& regions, const run::OutputWish& wish)
    : name_(name), regions_(regions), wish_(wish)
{
    run::InputFileList input;
    input.add(name);
    const auto looks = run::lookAtInputs(input);
    if (!looks) {
        return;
    }
    const grid::GridLook& look = looks->front();
    if (look.format == grid::Format::flt && regions.size() > kMostWaitingCuts) {
        ahead_ = keepCells(look);
        return;
    }
    run::Way way = run::openCells(look, wish_.folder, kept_);
    if (way == run::Way::ahead && kept_.isOnlyRead()) {
        way = cutAll(look);
        kept_.release();
    }
    run::countWay(way);
    ahead_ = way == run::Way::ahead;
    if (!ahead_) {
        kept_.release();
        waiting_.clear();
    }
}

run::Way TrimmedGrid::cutAll(const grid::GridLook& look)
{
    waiting_.resize(regions_.size());
    for (std::size_t i = 0; i < regions_.size(); ++i) {
        const Cut cut = cutOf(regions_[i].region, look.header);
        if (cut.window.empty()) {
            continue;
        }
        if (!run::takeOutput(waiting_[i], cut.header.cells(), wish_)) {
            return run::Way::noRoom;
        }
        if (const run::Way way = cutCells(kept_, look.header, cut, waiting_[i]); way != run::Way::ahead) {
            return way;
        }
    }
    return run::Way::ahead;
}

// The console has begun to tell of this cut, so what fails now ends the run.
void TrimmedGrid::cutLate(const Cut& cut)
{
    run::Way way = run::Way::noRoom;
    if (run::takeOutput(output_, cut.header.cells(), wish_)) {
        way = cutCells(kept_, loaded_.header, cut, output_);
    }
    if (way == run::Way::readRefused) {
        grid::failCells();
    }
    if (way != run::Way::ahead) {
        failMemory();
    }
}

bool TrimmedGrid::keepCells(const grid::GridLook& look)
{
    const auto copy = [](const run::CellPiece&, run::InputPieces cells, run::OutputPieces kept) {
        std::ranges::copy(cells[0], kept[0].begin());
    };
    auto kept = run::mapAhead({&look, 1}, {.folder = wish_.folder, .binary = false, .grids = 1}, copy);
    if (kept) {
        kept_ = std::move(kept->front());
    }
    return kept.has_value();
}

const run::LoadedGrid& TrimmedGrid::load()
{
    loaded_ = run::loadGrid(name_, {.purpose = "external grid...", .ahead = ahead_}, plainCells_);
    return loaded_;
}

grid::CellSource TrimmedGrid::cells(std::size_t region, const Cut& cut)
{
    constexpr std::string_view kPurpose = "storing output grid...";
    if (!ahead_) {
        plainOutput_ = Grid();
        grid::allocateGrid(plainOutput_, cut.header, kPurpose);
        copyInside(cut.region, loaded_.header, cut.window, plainOutput_.cells(),
                   [&cells = std::as_const(plainCells_)](std::size_t place, std::span<float> part) {
                       std::ranges::copy(cells.cells().subspan(place, part.size()), part.begin());
                   });
        return plainOutput_;
    }
    grid::sayAllocation(cut.header, kPurpose);
    output_.release();
    if (!waiting_.empty()) {
        output_ = std::move(waiting_[region]);
    } else {
        cutLate(cut);
    }
    return {output_, cut.header};
}

} // namespace gridforge::ops
