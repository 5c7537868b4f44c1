// Cells that are computed before the run comes to writing them. They wait in memory while there is room, otherwise in a file
// without a name, which is gone however the run ends.
#pragma once

#include "core/huge_array.h"
#include "grid/asc_format.h"
#include "host/system.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace gridforge::grid {

class CellStore {
public:
    CellStore() = default;
    ~CellStore() { release(); }
    CellStore(CellStore&& other) noexcept { *this = std::move(other); }
    CellStore& operator=(CellStore&& other) noexcept;
    CellStore(const CellStore&) = delete;
    CellStore& operator=(const CellStore&) = delete;

    // Releases what it held and takes room for `cells` cells, not cleared: in memory if GRIDFORGE_MEMORY, or else a share
    // of the free memory, allows it; otherwise in a file in GRIDFORGE_SCRATCH, in `folder` or in the temporary folder.
    // False, and empty, if there is no room.
    [[nodiscard]] bool take(std::size_t cells, const std::string& folder);
    // The same for cells of a binary grid that will be written in `folder`: they wait in a file there, which can become the
    // file of the grid.
    [[nodiscard]] bool takeForFile(std::size_t cells, const std::string& folder);
    // The cells of a binary grid where they are, to be read only. False where the system refuses.
    [[nodiscard]] bool open(const std::string& file, std::size_t cells);
    // The same for rows of so many columns, the south row first.
    [[nodiscard]] bool openFromSouth(const std::string& file, std::size_t cells, std::size_t columns);
    void release();

    std::size_t size() const { return size_; }
    bool isInFile() const { return file_ != SystemFile::none; }
    bool isOnlyRead() const { return onlyRead_; }
    // All cells; empty if they are in a file.
    std::span<float> inMemory() { return memory_.all(); }
    std::span<const float> inMemory() const { return memory_.all(); }

    // Cells from `first` on, by several threads if no two write the same cells. False if the system refuses.
    [[nodiscard]] bool put(std::size_t first, std::span<const float> cells);
    [[nodiscard]] bool get(std::size_t first, std::span<float> cells) const;
    // `count` cells from `first` on; in `room`, which has as many, where they must be fetched.
    std::optional<std::span<const float>> get(std::size_t first, std::size_t count, std::span<float> room) const;
    // The extremes of all cells, noted by whoever has found them and valid until a cell changes. Nothing if nobody has.
    void noteExtremes(const ValueRange& extremes) { extremes_ = extremes; }
    const std::optional<ValueRange>& extremes() const { return extremes_; }
    // A hint that these, or some of them, will be read soon.
    void willRead(std::size_t first, std::size_t count, ReadOf of = ReadOf::all) const;

    // Makes the cells the whole of the file `name`. Returns that file, open, and leaves the store empty. None, and nothing
    // has changed, if that cannot be done in one step: then the cells must be copied.
    SystemFile becomeFile(const std::string& name);

private:
    bool getFromSouth(std::size_t first, std::span<float> cells) const;
    bool takeMemory(std::size_t cells);
    bool takeFile(std::size_t cells, const std::string& folder);

    HugeArray<float> memory_;
    SystemFile file_ = SystemFile::none;
    std::size_t size_ = 0;
    bool onlyRead_ = false;
    std::size_t columnsFromSouth_ = 0; // of rows that stand in the file the other way round, else 0
    std::optional<ValueRange> extremes_;
};

// How many bytes of cells may wait in memory.
std::uint64_t bytesThatMayWait();
// Of these, what no store has taken yet.
std::uint64_t bytesThatMayStillWait();

// How many times cells went to a file in this process. For tests: nothing else shows it.
std::size_t filesOfCells();

} // namespace gridforge::grid
