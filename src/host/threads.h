// Work in pieces, by several threads at once.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>

namespace gridforge::inline host {

// The number of processors that the process may use, or GRIDFORGE_THREADS if that is less: more threads than processors would only
// take memory and read in more places. Where GRIDFORGE_PIECE is set, for tests, as many as GRIDFORGE_THREADS says.
std::size_t threadCount();

// How many workers share so many pieces: at least one.
std::size_t workersOf(std::size_t pieces);

// What is to be done with a piece. Calls for several pieces run at the same time, each with a worker number of its own
// below workersOf(pieces). A piece never prints, opens a unit or ends the run.
using PieceWork = std::function<void(std::size_t piece, std::size_t worker)>;

// Does all pieces below `pieces`, in no order, and returns when the last is done. If no thread can be started, the
// caller's does them all. If a piece runs out of memory, std::bad_alloc is thrown in the calling thread once all pieces
// have stopped.
void parallelFor(std::size_t pieces, const PieceWork& work);

// Lets pieces go on in their order: each waits for its turn and passes it on, so all below it must have begun.
class PieceTurns {
public:
    PieceTurns();
    ~PieceTurns();
    PieceTurns(const PieceTurns&) = delete;
    PieceTurns& operator=(const PieceTurns&) = delete;

    // Waits for the turn of this number, from 0.
    void await(std::size_t number);
    void pass();

private:
    struct Gate;
    std::unique_ptr<Gate> gate_;
};

// The number of cells in a piece: GRIDFORGE_PIECE, or if that is not set `usual`.
std::size_t cellsPerPiece(std::size_t usual);

} // namespace gridforge::inline host
