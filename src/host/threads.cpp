#include "host/threads.h"

#include "host/environment.h"
#include "host/system.h"

#include <algorithm>
#include <atomic>
#include <exception>
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
    const auto workThrough = [&](std::size_t worker) {
        for (std::size_t piece = next++; piece < pieces; piece = next++) {
            work(piece, worker);
        }
    };
    std::vector<std::jthread> others; // waits for them where it ends
    const std::size_t count = workersOf(pieces);
    others.reserve(count);
    try {
        for (std::size_t worker = 1; worker < count; ++worker) {
            others.emplace_back(workThrough, worker);
        }
    } catch (const std::exception&) { // as many as could be started
    }
    workThrough(0);
}

} // namespace gridforge::inline host
