// The fast way of cells through a run. The console tells a run as if each grid were read whole, worked on whole and
// written whole. Where all inputs are ordinary, what the run will write is computed before that story is told, from
// pieces of rows of all inputs at a time and by all threads; the story then finds it ready. Anything odd, and the run
// goes step by step, which does the talking.
#pragma once

#include "grid/cell_store.h"
#include "grid/look.h"
#include "run/common.h"
#include "run/inputs.h"
#include "run/ways.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace gridforge::run {

// Inputs of one lattice, as a silent look found them. Nothing if one is out of the ordinary or of another lattice, or
// what else the run needs is not `ordinary`.
std::optional<std::vector<grid::GridLook>> lookAtInputs(const InputFileList& inputs, bool ordinary = true);

// Opens the cells of an input for reading by position: those of a binary grid in its file; a text is decoded into a store, in
// a file of `folder` if memory has no room. Returns Way::ahead on success.
Way openCells(const grid::GridLook& look, const std::string& folder, grid::CellStore& cells);

// Where the computed grids will be written, most likely. Another place or format costs only time.
struct OutputWish {
    std::string folder;
    bool binary = true;
    std::size_t grids = 1;
};

// By the options, and by the input that names and format are taken from where these say nothing.
OutputWish outputWish(const Common& common, std::string_view namedAfter, grid::Format format, std::size_t grids);

// Room for the cells of one. False if it cannot be had.
[[nodiscard]] bool takeOutput(grid::CellStore& output, std::size_t cells, const OutputWish& wish);

// A stretch of cells in the order of the files. A kernel is called for several at once.
struct CellPiece {
    std::size_t first = 0;
    std::size_t count = 0;
    std::span<const float> nulls = {};    // of all inputs
    std::span<std::int64_t> tallies = {}; // what is counted in the cells is added to these
    std::size_t worker = 0;               // below threadCount(); no two calls at a time have the same
};

using InputPieces = std::span<const std::span<const float>>;
using OutputPieces = std::span<const std::span<float>>;
// Cells of each input into those of each output.
using MapKernel = std::function<void(const CellPiece& piece, InputPieces inputs, OutputPieces outputs)>;
// Takes one input after the other: cells of input `index`, from 0, into outputs that hold what the call before left
// there, or anything before the first.
using FoldKernel =
    std::function<void(const CellPiece& piece, std::size_t index, std::span<const float> input, OutputPieces outputs)>;

// The outputs; none where a read was refused, the text of an input has odd rows, or there is no room. Only with outputs
// `tallies` has what was counted in all cells.
std::optional<std::vector<grid::CellStore>> mapAhead(std::span<const grid::GridLook> inputs, const OutputWish& wish,
                                                     const MapKernel& kernel, std::span<std::int64_t> tallies = {});
std::optional<std::vector<grid::CellStore>> foldAhead(std::span<const grid::GridLook> inputs, const OutputWish& wish,
                                                      const FoldKernel& kernel, std::span<std::int64_t> tallies = {});

// The same of cells that wait in a store.
std::optional<std::vector<grid::CellStore>> mapStored(const grid::CellStore& input, const GridHeader& lattice,
                                                      const OutputWish& wish, const MapKernel& kernel);

// The cells of an input as they are, on their way to the other format. Those of a binary grid stay in its file.
std::optional<std::vector<grid::CellStore>> copyAhead(const grid::GridLook& input, const OutputWish& wish);

} // namespace gridforge::run
