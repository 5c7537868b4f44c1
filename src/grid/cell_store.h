// Cells that wait for their turn in the story of a run: in memory as long as there is room, beyond that in a file without a
// name, which is gone when the run ends in whatever way.
#pragma once

#include "core/huge_array.h"
#include "host/system.h"

#include <cstddef>
#include <cstdint>
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

    // Gives up what it held and takes room for `cells` cells, in memory if GRIDFORGE_MEMORY, or a share of what is free,
    // allows; else in a file in GRIDFORGE_SCRATCH, in `folder` or in the temporary one. What is in them is unknown. False,
    // and empty, where there is no room.
    [[nodiscard]] bool take(std::size_t cells, const std::string& folder);
    // The same for cells of a binary grid that will be written in `folder`: they wait in a file there, which may then become
    // that of the grid.
    [[nodiscard]] bool takeForFile(std::size_t cells, const std::string& folder);
    void release();

    std::size_t size() const { return size_; }
    bool isInFile() const { return file_ != SystemFile::none; }
    // All cells, or none where they are in a file.
    std::span<float> inMemory() { return memory_.all(); }
    std::span<const float> inMemory() const { return memory_.all(); }

    // Cells from `first` on; several threads at once where no two write the same cells. False where the system refuses.
    [[nodiscard]] bool put(std::size_t first, std::span<const float> cells);
    [[nodiscard]] bool get(std::size_t first, std::span<float> cells) const;

    // The cells become the whole of the file `name`: the file, open, and the store is empty. None, and nothing has changed,
    // where that cannot be done at once: the cells must be copied.
    SystemFile becomeFile(const std::string& name);

private:
    bool takeMemory(std::size_t cells);
    bool takeFile(std::size_t cells, const std::string& folder);

    HugeArray<float> memory_;
    SystemFile file_ = SystemFile::none;
    std::size_t size_ = 0;
};

// How many bytes of cells may wait in memory.
std::uint64_t bytesThatMayWait();

// How many times cells went to a file in this process. For tests: nothing else shows it.
std::size_t filesOfCells();

} // namespace gridforge::grid
