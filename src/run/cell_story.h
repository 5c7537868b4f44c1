// The story of a run over cells of one lattice: told as if the grids were read, worked on and written one after the other,
// which they are unless what the run writes could be computed ahead. An operation is one text for both ways.
#pragma once

#include "grid/cell_source.h"
#include "grid/cell_store.h"
#include "grid/format.h"
#include "plane/cell_array.h"
#include "plane/grid_header.h"
#include "run/cells_ahead.h"
#include "run/common.h"
#include "run/inputs.h"
#include "run/load.h"
#include "run/rows.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace gridforge::run {

// What a run makes of its inputs: so many grids, and so many counts.
struct CellPlan {
    std::size_t grids = 1;
    std::size_t tallies = 0;
    std::string_view namedAfter = {}; // the input that names the output; the first where it is blank
    bool ordinary = true;             // what else the cells depend on; if not, the run goes step by step
};

class CellStory {
public:
    // Of a kernel that takes the cells of all inputs at once.
    CellStory(const Common& common, const InputFileList& inputs, const CellPlan& plan, MapKernel kernel);
    // Of one that takes one input after the other.
    CellStory(const Common& common, const InputFileList& inputs, const CellPlan& plan, FoldKernel kernel);

    // Of none: the one input is written in its other format.
    CellStory(const Common& common, const InputFileList& input);

    bool isAhead() const { return ahead_; }

    // As loadGrid, of input `i` from 1; it has memory of its own for a MapKernel, all have the same for a FoldKernel.
    LoadedGrid load(std::int32_t i, LoadSteps steps);
    // As loadEach.
    LoadedGrid loadEach(const std::string& purpose, const std::function<void(const GridHeader&)>& prepare,
                        const std::function<void(std::int32_t)>& use);
    // As allocateGrid, for the cells of input `i` from 1, and for grid `i` from 0 of those that are made. Without their
    // memory where they are ready.
    void allocateInput(std::int32_t i, const GridHeader& header, std::string_view purpose);
    void allocate(std::size_t i, const GridHeader& header, std::string_view purpose);

    // Row by row as overRows reports it: all cells, or those of input `i`.
    void compute(std::string_view heading);
    void take(std::int32_t i, std::string_view heading);
    // The same without a word.
    void take(std::int32_t i);

    std::span<const std::int64_t> tallies() const { return tallies_; }
    // Grid `i` on its way to a file of its own kind.
    grid::CellSource cells(std::size_t i);
    // Grid `i` is written, and its cells are gone where they waited.
    void write(std::size_t i, grid::Format format, std::string_view base, const GridHeader& header,
               std::string_view projectionText, std::int32_t decimals);

private:
    void keep(std::optional<std::vector<grid::CellStore>> grids);
    void note(std::int32_t i, const GridHeader& header);
    Grid& inputGrid(std::int32_t i);
    void allocateUnlessAhead(Grid& grid, const GridHeader& header, std::string_view purpose) const;
    void work(const CellBlock& block, std::int32_t i);

    InputFileList names_;
    MapKernel mapKernel_;
    FoldKernel foldKernel_; // one of the two
    bool ahead_ = false;
    std::vector<grid::CellStore> ready_; // the grids that were computed ahead
    std::vector<Grid> inputs_;           // those of the other way: one for each input, or one for all
    std::vector<Grid> outputs_;
    std::vector<float> nulls_; // of the inputs
    std::vector<std::int64_t> tallies_;
    GridHeader lattice_;
};

} // namespace gridforge::run
