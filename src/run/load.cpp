#include "run/load.h"

#include "core/text.h"
#include "grid/allocate.h"
#include "grid/header.h"
#include "grid/lattice_check.h"
#include "grid/reader.h"
#include "host/console.h"

#include <utility>

namespace gridforge::run {

namespace {

void sayStep(const std::string& text)
{
    if (!text.empty()) {
        say(text);
    }
}

} // namespace

LoadedGrid loadGrid(const std::string& name, const LoadSteps& steps, Grid& cells)
{
    sayStep(steps.opening);
    grid::OpenGrid grid = grid::openGrid(name);
    LoadedGrid loaded{grid.header, grid.format, grid.projectionText};
    const GridHeader& header = loaded.header;
    if (steps.match != nullptr) {
        sayStep(steps.matching);
        grid::compareGridDimensions(*steps.match, header);
        sayStep(steps.matched);
    }
    if (!steps.purpose.empty() && steps.ahead) {
        grid::sayAllocation(header, steps.purpose);
    } else if (!steps.purpose.empty()) {
        grid::allocateGrid(cells, header, steps.purpose);
    }
    if (steps.prepare) {
        steps.prepare(header);
    }
    sayStep(steps.reading);
    if (steps.ahead) {
        grid::passCells(std::move(grid));
    } else {
        grid::readCells(std::move(grid), cells);
    }
    sayStep(steps.done);
    return loaded;
}

LoadedGrid loadEach(const InputFileList& inputs, const std::string& purpose,
                    const std::function<void(const GridHeader&)>& prepare, Grid& cells,
                    const std::function<void(std::int32_t, const GridHeader&)>& use, bool ahead)
{
    LoadedGrid first;
    for (std::int32_t i = 1; i <= inputs.count(); ++i) {
        const std::string announced = join("Processing: ", inputs[i]);
        if (i == 1) {
            first = loadGrid(inputs[i], {.purpose = purpose, .prepare = prepare, .reading = announced, .ahead = ahead},
                             cells);
            use(i, first.header);
        } else {
            const LoadedGrid next =
                loadGrid(inputs[i], {.opening = announced, .match = &first.header, .ahead = ahead}, cells);
            first.projectionText = next.projectionText;
            use(i, next.header);
        }
    }
    return first;
}

} // namespace gridforge::run
