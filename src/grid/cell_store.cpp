#include "grid/cell_store.h"

#include "host/environment.h"
#include "host/limits.h"
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
    const auto asked = environmentNumber("GRIDFORGE_MEMORY");
    return asked ? *asked : memoryToTake() / 2;
}

std::uint64_t bytesThatMayStillWait()
{
    const std::uint64_t most = bytesThatMayWait();
    return most - std::min<std::uint64_t>(waitingBytes(), most);
}

CellStore& CellStore::operator=(CellStore&& other) noexcept
{
    std::swap(memory_, other.memory_);
    std::swap(file_, other.file_);
    std::swap(size_, other.size_);
    std::swap(onlyRead_, other.onlyRead_);
    std::swap(columnsFromSouth_, other.columnsFromSouth_);
    std::swap(extremes_, other.extremes_);
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
    return std::ranges::any_of(scratchFolders(theSystem(), folder),
                               [&](const std::string& scratch) { return takeFile(cells, scratch); });
}

bool CellStore::takeForFile(std::size_t cells, const std::string& folder)
{
    release();
    return takeFile(cells, folder) || take(cells, folder);
}

bool CellStore::open(const std::string& file, std::size_t cells)
{
    release();
    file_ = theSystem().open(file, OpenFor::reading);
    size_ = isInFile() ? cells : 0;
    onlyRead_ = isInFile();
    return isInFile();
}

bool CellStore::openFromSouth(const std::string& file, std::size_t cells, std::size_t columns)
{
    if (!open(file, cells)) {
        return false;
    }
    columnsFromSouth_ = columns;
    return true;
}

bool CellStore::takeMemory(std::size_t cells)
{
    const std::uint64_t bytes = std::uint64_t{cells} * sizeof(float);
    if (bytes > bytesThatMayStillWait() || !memory_.allocate(cells)) {
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
    onlyRead_ = false;
    columnsFromSouth_ = 0;
    extremes_.reset();
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
    if (columnsFromSouth_ > 0) {
        return getFromSouth(first, cells);
    }
    if (isInFile()) {
        return readAllAt(file_, placeOf(first), std::as_writable_bytes(cells));
    }
    std::ranges::copy(memory_.all().subspan(first, cells.size()), cells.begin());
    return true;
}

// Whole rows are read at once, and then turned.
bool CellStore::getFromSouth(std::size_t first, std::span<float> cells) const
{
    const std::size_t columns = columnsFromSouth_;
    while (!cells.empty()) {
        const std::size_t column = first % columns;
        const std::size_t rows = column == 0 ? std::max<std::size_t>(cells.size() / columns, 1) : 1;
        const std::size_t count = std::min(rows * columns - column, cells.size());
        const std::size_t northRow = size_ / columns - first / columns - rows;
        if (!readAllAt(file_, placeOf(northRow * columns + column), std::as_writable_bytes(cells.first(count)))) {
            return false;
        }
        for (std::size_t row = 0; row < rows / 2; ++row) {
            std::ranges::swap_ranges(cells.subspan(row * columns, columns),
                                     cells.subspan((rows - 1 - row) * columns, columns));
        }
        first += count;
        cells = cells.subspan(count);
    }
    return true;
}

std::optional<std::span<const float>> CellStore::get(std::size_t first, std::size_t count, std::span<float> room) const
{
    if (!isInFile()) {
        return memory_.all().subspan(first, count);
    }
    const auto fetched = room.first(count);
    return get(first, fetched) ? std::optional<std::span<const float>>(fetched) : std::nullopt;
}

void CellStore::willRead(std::size_t first, std::size_t count, ReadOf of) const
{
    if (isInFile()) {
        theSystem().willRead(file_, placeOf(first), placeOf(count), of);
    }
}

SystemFile CellStore::becomeFile(const std::string& name)
{
    if (!isInFile() || onlyRead_ || !theSystem().truncate(file_, placeOf(size_)) ||
        !theSystem().giveName(file_, name)) {
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
