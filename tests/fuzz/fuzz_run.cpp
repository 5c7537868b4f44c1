#include "fuzz/fuzz_run.h"

#include "core/huge_array.h"
#include "gis/layer_table.h"
#include "host/console.h"
#include "host/ends.h"
#include "host/units.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string_view>
#include <utility>

namespace {

// More than this the runs cannot have: larger grids take long and find nothing new.
constexpr std::size_t kLargestBlock = std::size_t{1} << 24;
constexpr std::size_t kLargestPages = std::size_t{1} << 18;
constexpr std::int64_t kLargestOutput = std::int64_t{1} << 22;

bool running = false; // the fuzzer itself takes larger blocks

// The sanitizer maps a large block anew each time, which takes longer than most runs. So those that are released are kept.
struct KeptBlock {
    void* block = nullptr;
    std::size_t bytes = 0;
    bool used = false;
};
constexpr std::size_t kKeptFrom = std::size_t{1} << 16;
std::array<KeptBlock, 32> keptBlocks;

void* newBlock(std::size_t bytes)
{
    if (bytes < kKeptFrom) {
        return std::malloc(bytes);
    }
    KeptBlock* place = nullptr;
    for (KeptBlock& kept : keptBlocks) {
        if (kept.block != nullptr && !kept.used && kept.bytes == bytes) {
            kept.used = true;
            return kept.block;
        }
        if (place == nullptr && !kept.used) {
            place = &kept;
        }
    }
    void* const block = std::malloc(bytes);
    if (place != nullptr && block != nullptr) {
        std::free(place->block);
        *place = {block, bytes, true};
    }
    return block;
}

void releaseBlock(void* block)
{
    for (KeptBlock& kept : keptBlocks) {
        if (kept.used && kept.block == block) {
            kept.used = false;
            return;
        }
    }
    std::free(block);
}

void* takeBlock(std::size_t bytes)
{
    void* const block = running && bytes > kLargestBlock ? nullptr : newBlock(bytes);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}

} // namespace

// The sanitizer's own would report an absurd size as an error. The tool has a message for it.
void* operator new(std::size_t bytes)
{
    return takeBlock(bytes);
}
void* operator new[](std::size_t bytes)
{
    return takeBlock(bytes);
}
void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept
{
    return newBlock(bytes);
}
void* operator new[](std::size_t bytes, const std::nothrow_t&) noexcept
{
    return newBlock(bytes);
}
void operator delete(void* block) noexcept
{
    releaseBlock(block);
}
void operator delete[](void* block) noexcept
{
    releaseBlock(block);
}
void operator delete(void* block, const std::nothrow_t&) noexcept
{
    releaseBlock(block);
}
void operator delete[](void* block, const std::nothrow_t&) noexcept
{
    releaseBlock(block);
}
void operator delete(void* block, std::size_t) noexcept
{
    releaseBlock(block);
}
void operator delete[](void* block, std::size_t) noexcept
{
    releaseBlock(block);
}

// What keeps runs short: little memory that waits to be used again, and short traces of where it was taken.
extern "C" const char* __asan_default_options() // NOLINT: a name of the sanitizer
{
    return "quarantine_size_mb=16:malloc_context_size=6:detect_stack_use_after_return=0";
}

namespace gridforge::fuzz {

namespace {

struct EndOfRun {};

constexpr std::string_view kMustNotOccur = "Should not be here [";
// Except of a Shapefile without a label: the header of the result has no type for it.
constexpr std::string_view kOfCalibration = "Processing calibration points.";
constexpr std::string_view kWithoutLabel = "Should not be here [Unrecognised DBF field]";

void* takeSmallPages(std::size_t bytes)
{
    void* const pages = bytes > kLargestPages ? nullptr : newBlock(bytes);
    if (pages != nullptr) {
        std::memset(pages, 0, bytes);
    }
    return pages;
}

} // namespace

void prepareProcess()
{
    usePages({takeSmallPages, [](void* pages, std::size_t) { releaseBlock(pages); }});
    useSystem(smallSystem());
    replaceProcessEnd([] { throw EndOfRun(); });
}

const System& smallSystem()
{
    static const System system = [] {
        System small = memorySystem();
        small.write = [](SystemFile file, std::span<const char> bytes) {
            const auto facts = memorySystem().factsOfOpen(file);
            return facts && facts->size > kLargestOutput ? std::int64_t{-1} : memorySystem().write(file, bytes);
        };
        small.writeAt = [](SystemFile file, std::int64_t position, std::span<const char> bytes) {
            return position > kLargestOutput ? std::int64_t{-1} : memorySystem().writeAt(file, position, bytes);
        };
        small.setAside = [](SystemFile file, std::int64_t size) {
            return size <= kLargestOutput && memorySystem().setAside(file, size);
        };
        small.writeConsole = [](std::string_view text) { // which the run does not keep, so its memory does not count
            const bool ofRun = std::exchange(running, false);
            memorySystem().writeConsole(text);
            running = ofRun;
        };
        small.wait = [](std::int64_t) { throw EndOfRun(); }; // only runs without end wait
        small.truncate = [](SystemFile file, std::int64_t size) {
            return size <= kLargestOutput && memorySystem().truncate(file, size);
        };
        return small;
    }();
    return system;
}

void beginRun(const NamedFiles& input, const System& system)
{
    clearMemorySystem();
    useSystem(system);
    restartConsole();
    for (const NamedFile& file : input.files) {
        if (file.name == "console") {
            giveMemoryAnswers(file.bytes);
        } else {
            giveMemoryFile(std::string(file.name), file.bytes);
        }
    }
    startUnits(1000);
    gis::initialise();
}

std::string toItsEnd(const std::function<void()>& work)
{
    running = true;
    try {
        runToItsEnd(work);
    } catch (const EndOfRun&) {
    }
    running = false;
    try {
        closeAllUnits();
    } catch (const EndOfRun&) { // it could not be written
    }
    flushConsole();
    std::string console = takeMemoryConsole();
    // Not by a routine that the fuzzer watches, or it learns the words from it.
    const auto says = [&](std::string_view words) {
        return std::search(console.begin(), console.end(), words.begin(), words.end()) != console.end();
    };
    if (says(kMustNotOccur) && !(says(kOfCalibration) && says(kWithoutLabel))) {
        report("what must not occur", console);
    }
    return console;
}

void report(std::string_view what, std::string_view details)
{
    std::fprintf(stderr, "ERROR: %.*s\n%.*s\n", static_cast<int>(what.size()), what.data(),
                 static_cast<int>(details.size()), details.data());
    std::abort();
}

} // namespace gridforge::fuzz
