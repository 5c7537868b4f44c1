#include "host/threads.h"

#include "host/environment.h"
#include "host/system.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <new>
#include <thread>
#include <vector>

namespace gridforge::inline host {

std::size_t threadCount()
{
    constexpr std::uint64_t kMostThreads = 1024;
    const std::uint64_t wanted = environmentNumber("GRIDFORGE_THREADS").value_or(theSystem().processors());
    return static_cast<std::size_t>(std::min(wanted, kMostThreads));
}

std::size_t workersOf(std::size_t pieces)
{
    return std::clamp<std::size_t>(pieces, 1, threadCount());
}

std::size_t cellsPerPiece(std::size_t usual)
{
    return static_cast<std::size_t>(environmentNumber("GRIDFORGE_PIECE").value_or(usual));
}

void parallelFor(std::size_t pieces, const PieceWork& work)
{
    std::atomic<std::size_t> next = 0;
    std::atomic<bool> memoryFailed = false;
    const auto workThrough = [&](std::size_t worker) {
        try {
            for (std::size_t piece = next++; piece < pieces && !memoryFailed; piece = next++) {
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

} // namespace gridforge::inline host
