#include "run/fill_ahead.h"

#include "core/worker_rooms.h"
#include "host/threads.h"

#include <algorithm>
#include <atomic>

namespace gridforge::run {

Way fillAhead(grid::CellStore& output, std::size_t pieceCells, const FillKernel& kernel)
{
    const std::size_t pieces = (output.size() + pieceCells - 1) / pieceCells;
    WorkerRooms<float> rooms;
    if (!rooms.take(workersOf(pieces), output.isInFile() ? std::min(pieceCells, output.size()) : 0)) {
        return Way::noRoom;
    }
    std::atomic<Way> way = Way::ahead;
    parallelFor(pieces, [&](std::size_t piece, std::size_t worker) {
        if (way != Way::ahead) {
            return;
        }
        const std::size_t first = piece * pieceCells;
        const std::size_t count = std::min(pieceCells, output.size() - first);
        const std::span<float> cells =
            output.isInFile() ? rooms.of(worker).first(count) : output.inMemory().subspan(first, count);
        Way gone = kernel(first, cells, worker);
        if (gone == Way::ahead && output.isInFile() && !output.put(first, cells)) {
            gone = Way::noRoom;
        }
        if (gone != Way::ahead) {
            way = gone;
        }
    });
    return way;
}

std::size_t cellsOfPart()
{
    constexpr std::size_t kPartCells = std::size_t{1} << 20;
    return cellsPerPiece(kPartCells);
}

} // namespace gridforge::run
