// Work in pieces, by several threads at once.
#pragma once

#include <cstddef>
#include <functional>

namespace gridforge::inline host {

// GRIDFORGE_THREADS, or if that is no number above 0 the number of processors that the process may use.
std::size_t threadCount();

// How many workers share so many pieces: at least one.
std::size_t workersOf(std::size_t pieces);

// What is to be done with a piece. Calls for several pieces run at the same time, each with a worker number of its own
// below workersOf(pieces). A piece never prints, opens a unit or ends the run.
using PieceWork = std::function<void(std::size_t piece, std::size_t worker)>;

// Does all pieces below `pieces`, in no order, and returns when the last is done. If no thread can be started, the caller's
// does them all. Memory that a piece cannot have is missing in the calling thread too, by std::bad_alloc, as
// soon as no piece runs any more.
void parallelFor(std::size_t pieces, const PieceWork& work);

// The number of cells in a piece: GRIDFORGE_PIECE, or if that is not set `usual`.
std::size_t cellsPerPiece(std::size_t usual);

} // namespace gridforge::inline host
