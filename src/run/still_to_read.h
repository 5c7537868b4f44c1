// The input grids that a run has not read yet, so that no output takes the place of one.
#pragma once

#include "grid/format.h"
#include "host/file_identity.h"
#include "run/inputs.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace gridforge::run {

struct InputGrid {
    std::string name;
    std::vector<FileIdentity> files; // the grid itself and its .hdr
};

InputGrid inputGrid(const std::string& name);
std::vector<InputGrid> inputGrids(const InputFileList& inputs);

// Is a file of the output grid `base` one of this grid?
bool replacesInput(grid::Format format, std::string_view base, const InputGrid& grid);

// Ends the run if a file of the output grid `base` is one of these grids. Call it before the output is opened.
void requireNoInput(grid::Format format, std::string_view base, std::span<const InputGrid> stillToRead);

} // namespace gridforge::run
