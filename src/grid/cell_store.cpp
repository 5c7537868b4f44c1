#include "grid/cell_store.h"

#include "host/environment.h"
#include "host/positions.h"

#include <algorithm>
#include <atomic>
#include <utility>

namespace gridforge::grid {

namespace {

// Bytes of all stores in memory.
std::atomic<std::uint64_t>& waitingBytes()
{
    static std::atomic<std::uint64_t> bytes = 0;
    return bytes;
}

std::size_t& filesTaken()
{
    static std::size_t files = 0;
    return files;
}

std::int64_t placeOf(std::size_t cell)
{
    return static_cast<std::int64_t>(cell * sizeof(float));
}

} // namespace

// The other half is for the buffers of the run and the system's cache of its files.
std::uint64_t bytesThatMayWait()
{
    static const std::uint64_t share = theSystem().memoryLeft() / 2;
    return environmentNumber("GRIDFORGE_MEMORY").value_or(share);
}

CellStore& CellStore::operator=(CellStore&& other) noexcept
{
    std::swap(memory_, other.memory_);
    std::swap(file_, other.file_);
    std::swap(size_, other.size_);
    return *this;
}

bool CellStore::take(std::size_t cells, const std::string& folder)
{
    if (memory_.size() == cells && cells > 0) {
        return true; // reused pages are cheaper than new ones
    }
    release();
    if (takeMemory(cells)) {
        return true;
    }
    if (const auto scratch = environmentText("GRIDFORGE_SCRATCH")) {
        return takeFile(cells, *scratch);
    }
    return takeFile(cells, folder) || takeFile(cells, theSystem().temporaryFolder());
}

bool CellStore::takeForFile(std::size_t cells, const std::string& folder)
{
    release();
    return takeFile(cells, folder) || take(cells, folder);
}

bool CellStore::takeMemory(std::size_t cells)
{
    const std::uint64_t bytes = std::uint64_t{cells} * sizeof(float);
    if (waitingBytes() + bytes > bytesThatMayWait() || !memory_.allocate(cells)) {
        return false;
    }
    waitingBytes() += bytes;
    size_ = cells;
    return true;
}

bool CellStore::takeFile(std::size_t cells, const std::string& folder)
{
    file_ = theSystem().openUnnamed(folder);
    if (file_ == SystemFile::none) {
        return false;
    }
    ++filesTaken();
    size_ = cells;
    if (!theSystem().setAside(file_, placeOf(cells))) {
        release();
        return false;
    }
    return true;
}

void CellStore::release()
{
    if (file_ != SystemFile::none) {
        theSystem().close(std::exchange(file_, SystemFile::none)); // nobody will read it
    }
    waitingBytes() -= std::uint64_t{memory_.size()} * sizeof(float);
    memory_.release();
    size_ = 0;
}

bool CellStore::put(std::size_t first, std::span<const float> cells)
{
    if (isInFile()) {
        return writeAllAt(file_, placeOf(first), std::as_bytes(cells));
    }
    std::ranges::copy(cells, memory_.all().subspan(first, cells.size()).begin());
    return true;
}

bool CellStore::get(std::size_t first, std::span<float> cells) const
{
    if (isInFile()) {
        return readAllAt(file_, placeOf(first), std::as_writable_bytes(cells));
    }
    std::ranges::copy(memory_.all().subspan(first, cells.size()), cells.begin());
    return true;
}

SystemFile CellStore::becomeFile(const std::string& name)
{
    if (!isInFile() || !theSystem().truncate(file_, placeOf(size_)) || !theSystem().giveName(file_, name)) {
        return SystemFile::none;
    }
    size_ = 0;
    return std::exchange(file_, SystemFile::none);
}

std::size_t filesOfCells()
{
    return filesTaken();
}

} // namespace gridforge::grid
