#include "run/still_to_read.h"

#include "grid/header.h"
#include "grid/writer.h"
#include "host/ends.h"

#include <algorithm>
#include <optional>

namespace gridforge::run {

InputGrid inputGrid(const std::string& name)
{
    InputGrid grid{name, {}};
    for (const std::string& file : grid::gridInputFiles(name)) {
        if (const std::optional<FileIdentity> identity = identityOfInput(file)) {
            grid.files.push_back(*identity);
        }
    }
    return grid;
}

std::vector<InputGrid> inputGrids(const InputFileList& inputs)
{
    std::vector<InputGrid> grids;
    for (std::int32_t i = 1; i <= inputs.count(); ++i) {
        grids.push_back(inputGrid(inputs[i]));
    }
    return grids;
}

bool replacesInput(grid::Format format, std::string_view base, const InputGrid& grid)
{
    return std::ranges::any_of(grid::gridOutputFiles(format, base), [&](const std::string& file) {
        const std::optional<FileIdentity> output = identityOfOutput(file);
        return output && std::ranges::find(grid.files, *output) != grid.files.end();
    });
}

void requireNoInput(grid::Format format, std::string_view base, std::span<const InputGrid> stillToRead)
{
    for (const std::string& file : grid::gridOutputFiles(format, base)) {
        const std::optional<FileIdentity> output = identityOfOutput(file);
        if (!output) {
            continue;
        }
        const auto found = std::ranges::find_if(stillToRead, [&](const InputGrid& grid) {
            return std::ranges::find(grid.files, *output) != grid.files.end();
        });
        if (found != stillToRead.end()) {
            fail("ERROR - Output file is also an input file: ", found->name);
        }
    }
}

} // namespace gridforge::run
