#include "remap/growth.h"

#include <cassert>
#include <utility>

namespace gridforge::remap {

namespace {

struct Sweep {
    CellStates& states;
    const Grid& levels;
    const Grid& ground;
    float groundThreshold;
    std::vector<CellPosition> later; // for the sweep after this one
    std::int64_t extra = 0;

    bool isUntouched(CellPosition cell) const
    {
        return cell.row >= 1 && cell.row <= states.nrows() && cell.column >= 1 && cell.column <= states.ncols() &&
               states(cell.row, cell.column) == CellState::untouched;
    }

    // Tests an untouched cell. The sweep has passed its southern and western neighbours.
    bool becomesWet(CellPosition cell)
    {
        const float level = levels(cell.row, cell.column);
        const float floor = ground(cell.row, cell.column);
        const bool wet = level >= floor && floor > groundThreshold;
        states(cell.row, cell.column) = wet ? CellState::wet : CellState::dry;
        if (!wet) {
            return false;
        }
        ++extra;
        for (const CellPosition passed : {CellPosition{cell.row - 1, cell.column}, {cell.row, cell.column - 1}}) {
            if (isUntouched(passed)) {
                later.push_back(passed);
            }
        }
        return true;
    }
};

void sweepAll(Sweep& sweep)
{
    const CellStates& states = sweep.states;
    for (std::int32_t row = 1; row <= states.nrows(); ++row) {
        // A neighbour off the terrain is the cell itself, which is not wet.
        const auto here = states.row(row);
        const auto south = states.row(row == 1 ? row : row - 1);
        const auto north = states.row(row == states.nrows() ? row : row + 1);
        const std::size_t last = here.size() - 1;
        for (std::size_t c = 0; c <= last; ++c) {
            if (here[c] != CellState::untouched) {
                continue;
            }
            const bool beside = here[c == 0 ? c : c - 1] == CellState::wet ||
                                here[c == last ? c : c + 1] == CellState::wet || south[c] == CellState::wet ||
                                north[c] == CellState::wet;
            if (beside) {
                sweep.becomesWet({row, static_cast<std::int32_t>(c) + 1});
            }
        }
    }
}

// The order within the sweep does not count: what it wets to the south and west waits for the next one.
void sweepFront(Sweep& sweep, std::vector<CellPosition> cells)
{
    while (!cells.empty()) {
        const CellPosition cell = cells.back();
        cells.pop_back();
        if (!sweep.isUntouched(cell) || !sweep.becomesWet(cell)) {
            continue;
        }
        for (const CellPosition ahead : {CellPosition{cell.row + 1, cell.column}, {cell.row, cell.column + 1}}) {
            if (sweep.isUntouched(ahead)) {
                cells.push_back(ahead);
            }
        }
    }
}

} // namespace

std::int64_t growWetArea(GrowthFront& front, CellStates& states, const Grid& levels, const Grid& ground,
                         float groundNull)
{
    assert(levels.cells().size() == states.cells().size() && ground.cells().size() == states.cells().size());
    Sweep sweep{states, levels, ground, groundNull + kGroundAboveNull, {}, 0};
    if (front.begun) {
        sweepFront(sweep, std::move(front.cells));
    } else {
        sweepAll(sweep);
    }
    front.begun = true;
    front.cells = std::move(sweep.later);
    return sweep.extra;
}

} // namespace gridforge::remap
