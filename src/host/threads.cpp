#include "host/threads.h"

#include "host/environment.h"
#include "host/system.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <new>
#include <thread>
#include <vector>

namespace gridforge::inline host {

std::size_t threadCount()
{
    constexpr std::uint64_t kMostThreads = 1024;
    const std::uint64_t processors = theSystem().processors();
    const std::uint64_t most = environmentNumber("GRIDFORGE_PIECE") ? kMostThreads : std::min(processors, kMostThreads);
    return static_cast<std::size_t>(std::min(environmentNumber("GRIDFORGE_THREADS").value_or(processors), most));
}

std::size_t workersOf(std::size_t pieces)
{
    return std::clamp<std::size_t>(pieces, 1, threadCount());
}

std::size_t cellsPerPiece(std::size_t usual)
{
    constexpr std::uint64_t kMostCells = std::uint64_t{1} << 40; // so that no sum with it overflows
    return static_cast<std::size_t>(std::min(environmentNumber("GRIDFORGE_PIECE").value_or(usual), kMostCells));
}

void parallelFor(std::size_t pieces, const PieceWork& work)
{
    std::atomic<std::size_t> next = 0;
    std::atomic<bool> memoryFailed = false;
    const auto workThrough = [&](std::size_t worker) {
        try {
            // Once its number is taken a piece begins, as others may wait for its turn.
            while (!memoryFailed) {
                const std::size_t piece = next++;
                if (piece >= pieces) {
                    return;
                }
                work(piece, worker);
            }
        } catch (const std::bad_alloc&) {
            memoryFailed = true;
        }
    };
    std::vector<std::jthread> others;
    const std::size_t count = workersOf(pieces);
    others.reserve(count);
    try {
        for (std::size_t worker = 1; worker < count; ++worker) {
            others.emplace_back(workThrough, worker);
        }
    } catch (const std::exception&) { // as many as could be started
    }
    workThrough(0);
    others.clear(); // waits for them
    if (memoryFailed) {
        throw std::bad_alloc();
    }
}

// Not an atomic number that is waited for: where the system itself has no such wait, g++ 12 sleeps through a change now and then,
// as on Windows.
struct PieceTurns::Gate {
    std::mutex mutex;
    std::condition_variable passed;
    std::size_t next = 0;
};

PieceTurns::PieceTurns() : gate_(std::make_unique<Gate>()) {}

PieceTurns::~PieceTurns() = default;

void PieceTurns::await(std::size_t number)
{
    std::unique_lock lock(gate_->mutex);
    gate_->passed.wait(lock, [&] { return gate_->next == number; });
}

void PieceTurns::pass()
{
    const std::scoped_lock lock(gate_->mutex);
    ++gate_->next;
    gate_->passed.notify_all();
}

} // namespace gridforge::inline host
