#include "netcdf/kept_maximum.h"

#include "core/worker_rooms.h"
#include "host/threads.h"
#include "netcdf/layout.h"
#include "netcdf/maximum_cells.h"

#include <algorithm>
#include <atomic>
#include <cassert>
#include <span>

namespace gridforge::netcdf {

namespace {

// So many stay in the cache of a processor.
constexpr std::size_t kPieceCells = std::size_t{1} << 17;

// Calls `work(first, cells, room)` for pieces of the store, by all threads: `cells` are what is kept, to be changed, and
// `room` is as large. False where the system refuses, or a call has returned false.
template <typename Work>
bool overPieces(grid::CellStore& store, Work work)
{
    const std::size_t usual = cellsPerPiece(kPieceCells);
    const std::size_t pieces = (store.size() + usual - 1) / usual;
    const std::size_t most = std::min(usual, store.size());
    WorkerRooms<float> rooms;
    if (!rooms.take(std::min(threadCount(), pieces), 2 * most)) {
        return false;
    }
    std::atomic<bool> good = true;
    parallelFor(pieces, [&](std::size_t piece, std::size_t worker) {
        const std::size_t first = piece * usual;
        const std::size_t count = std::min(usual, store.size() - first);
        const std::span<float> room = rooms.of(worker);
        const std::span<float> kept = store.isInFile() ? room.first(count) : store.inMemory().subspan(first, count);
        if (!good || (store.isInFile() && !store.get(first, kept)) || !work(first, kept, room.subspan(most, count)) ||
            (store.isInFile() && !store.put(first, kept))) {
            good = false;
        }
    });
    return good;
}

} // namespace

bool KeptMaximum::start(const GridHeader& lattice, const std::string& folder)
{
    null_ = lattice.null;
    return cells_.take(lattice.cells(), folder) &&
           overPieces(cells_, [&](std::size_t, std::span<float> kept, std::span<float>) {
               std::ranges::fill(kept, null_);
               return true;
           });
}

run::Way KeptMaximum::raise(const grid::CellStore& laid)
{
    assert(laid.size() == cells_.size());
    std::atomic<bool> refused = false;
    const bool good = overPieces(cells_, [&](std::size_t first, std::span<float> kept, std::span<float> room) {
        const auto cells = cellsOf(laid, first, room);
        if (!cells) {
            refused = true;
            return false;
        }
        raiseMaximum(*cells, null_, kept);
        return true;
    });
    if (good) {
        return run::Way::ahead;
    }
    return refused ? run::Way::readRefused : run::Way::noRoom;
}

} // namespace gridforge::netcdf
