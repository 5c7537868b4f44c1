#include "run/cells_ahead.h"

#include "core/names.h"
#include "core/worker_rooms.h"
#include "grid/asc_decode.h"
#include "grid/writer.h"
#include "host/file_system.h"
#include "host/positions.h"
#include "host/threads.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <utility>

namespace gridforge::run {

namespace {

// A part is what one thread does at a time: large, as disks want to be read. Its pieces stay in the cache of a processor.
constexpr std::size_t kPartCells = std::size_t{1} << 20;
constexpr std::size_t kCachedCells = std::size_t{1} << 18;
constexpr std::size_t kLeastPiece = std::size_t{1} << 12;
constexpr std::size_t kMostOpenFiles = 64;

using WayCounts = std::array<std::size_t, static_cast<std::size_t>(Way::noRoom) + 1>;

WayCounts& wayCounts()
{
    static WayCounts counts{};
    return counts;
}

// Counts a way, and is the result where it leads to no outputs.
std::nullopt_t went(Way way)
{
    countWay(way);
    return std::nullopt;
}

std::size_t cellsOfPart()
{
    return cellsPerPiece(kPartCells);
}

std::size_t partsOf(std::size_t cells)
{
    return (cells + cellsOfPart() - 1) / cellsOfPart();
}

// --- Inputs ----------------------------------------------------------------------------------------------------------

// The cells of an input by position: those of a binary grid in its file, those of a text in a store.
class InputCells {
public:
    InputCells() = default;
    ~InputCells() { close(); }
    InputCells(InputCells&& other) noexcept
        : file_(std::exchange(other.file_, SystemFile::none)), store_(std::move(other.store_)),
          waiting_(std::exchange(other.waiting_, nullptr))
    {
    }
    explicit InputCells(const grid::CellStore& waiting) : waiting_(&waiting) {}
    InputCells& operator=(InputCells&&) = delete;
    InputCells(const InputCells&) = delete;
    InputCells& operator=(const InputCells&) = delete;

    // The way it went: ahead where the cells are there.
    Way open(const grid::GridLook& look, const std::string& folder)
    {
        close();
        if (look.format == grid::Format::flt) {
            file_ = theSystem().open(look.file, OpenFor::reading);
            return file_ == SystemFile::none ? Way::readRefused : Way::ahead;
        }
        if (!store_.take(look.header.cells(), folder)) {
            return Way::noRoom;
        }
        return grid::decodeAsc(look, store_) ? Way::ahead : Way::oddText;
    }

    void close()
    {
        if (file_ != SystemFile::none) {
            theSystem().close(std::exchange(file_, SystemFile::none));
        }
    }

    void willRead(std::size_t first, std::size_t count) const
    {
        if (file_ != SystemFile::none) {
            theSystem().willRead(file_, static_cast<std::int64_t>(first * sizeof(float)),
                                 static_cast<std::int64_t>(count * sizeof(float)));
        }
    }

    // The cells of a piece, in `room` where they must be fetched.
    std::optional<std::span<const float>> get(const CellPiece& piece, std::span<float> room) const
    {
        const grid::CellStore& store = waiting_ == nullptr ? store_ : *waiting_;
        if (file_ == SystemFile::none && !store.isInFile()) {
            return store.inMemory().subspan(piece.first, piece.count);
        }
        const auto fetched = room.first(piece.count);
        const bool good = file_ == SystemFile::none
                              ? store.get(piece.first, fetched)
                              : readAllAt(file_, static_cast<std::int64_t>(piece.first * sizeof(float)),
                                          std::as_writable_bytes(fetched));
        return good ? std::optional<std::span<const float>>(fetched) : std::nullopt;
    }

private:
    SystemFile file_ = SystemFile::none;
    grid::CellStore store_;
    const grid::CellStore* waiting_ = nullptr; // someone else's in place of both
};

// --- Outputs ---------------------------------------------------------------------------------------------------------

std::optional<std::vector<grid::CellStore>> takeOutputs(std::size_t cells, const OutputWish& wish)
{
    std::vector<grid::CellStore> outputs(wish.grids);
    for (grid::CellStore& output : outputs) {
        const bool taken = wish.binary ? output.takeForFile(cells, wish.folder) : output.take(cells, wish.folder);
        if (!taken) {
            return std::nullopt;
        }
    }
    return outputs;
}

// --- The pass --------------------------------------------------------------------------------------------------------

// Room of one worker for a piece of some inputs and all outputs.
struct WorkerRoom {
    std::span<float> cells;
    std::vector<std::span<const float>> inputs;
    std::vector<std::span<float>> outputs;
    std::vector<std::int64_t> tallies;
};

// One walk over all cells of some inputs, by parts, by as many threads as there are.
class Pass {
public:
    Pass(std::size_t cells, std::vector<float> nulls, std::size_t inputRooms, std::span<grid::CellStore> outputs,
         std::size_t tallies)
        : cells_(cells), nulls_(std::move(nulls)), inputRooms_(inputRooms), outputs_(outputs),
          rooms_(workersOf(partsOf(cells_)))
    {
        const std::size_t grids = inputRooms + outputs.size();
        const std::size_t cached = std::max(kLeastPiece, kCachedCells / std::max<std::size_t>(grids, 1));
        pieceCells_ = std::min(cached, cellsOfPart());
        for (WorkerRoom& room : rooms_) {
            room.inputs.resize(inputRooms);
            room.outputs.resize(outputs.size());
            room.tallies.resize(tallies);
        }
    }

    [[nodiscard]] bool takeRooms()
    {
        if (!memory_.take(rooms_.size(), (inputRooms_ + outputs_.size()) * pieceCells_)) {
            return false;
        }
        for (std::size_t worker = 0; worker < rooms_.size(); ++worker) {
            rooms_[worker].cells = memory_.of(worker);
        }
        return true;
    }

    // `work(piece, room)` for all pieces, until one goes another way than ahead.
    template <typename Work>
    Way walk(std::span<const InputCells> inputs, Work work)
    {
        std::atomic<Way> way = Way::ahead;
        parallelFor(partsOf(cells_), [&](std::size_t part, std::size_t worker) {
            const std::size_t start = part * cellsOfPart();
            const std::size_t end = std::min(cells_, start + cellsOfPart());
            for (const InputCells& input : inputs) {
                input.willRead(start, end - start);
            }
            for (std::size_t first = start; first < end && way == Way::ahead; first += pieceCells_) {
                WorkerRoom& room = rooms_[worker];
                const CellPiece piece{first, std::min(pieceCells_, end - first), nulls_, room.tallies, worker};
                if (const Way gone = work(piece, room); gone != Way::ahead) {
                    way = gone;
                }
            }
        });
        return way;
    }

    std::span<float> inputRoom(WorkerRoom& room, std::size_t i) const
    {
        return room.cells.subspan(i * pieceCells_, pieceCells_);
    }

    // Where the kernel writes: in the store itself if it is in memory.
    void openOutputs(const CellPiece& piece, WorkerRoom& room) const
    {
        for (std::size_t i = 0; i < outputs_.size(); ++i) {
            const std::span<float> memory = outputs_[i].inMemory();
            room.outputs[i] = outputs_[i].isInFile() ? inputRoom(room, inputRooms_ + i).first(piece.count)
                                                     : memory.subspan(piece.first, piece.count);
        }
    }

    bool fetchOutputs(const CellPiece& piece, WorkerRoom& room) const
    {
        for (std::size_t i = 0; i < outputs_.size(); ++i) {
            if (outputs_[i].isInFile() && !outputs_[i].get(piece.first, room.outputs[i])) {
                return false;
            }
        }
        return true;
    }

    bool storeOutputs(const CellPiece& piece, const WorkerRoom& room)
    {
        for (std::size_t i = 0; i < outputs_.size(); ++i) {
            if (outputs_[i].isInFile() && !outputs_[i].put(piece.first, room.outputs[i])) {
                return false;
            }
        }
        return true;
    }

    // What all workers have counted.
    void putTallies(std::span<std::int64_t> tallies) const
    {
        for (std::size_t i = 0; i < tallies.size(); ++i) {
            for (const WorkerRoom& room : rooms_) {
                tallies[i] += room.tallies[i];
            }
        }
    }

private:
    std::size_t cells_;
    std::vector<float> nulls_;
    std::size_t inputRooms_;
    std::span<grid::CellStore> outputs_;
    std::vector<WorkerRoom> rooms_;
    WorkerRooms<float> memory_;
    std::size_t pieceCells_ = 0;
};

// Opens inputs from `first` on, and returns how many: as many binary ones as files may be open, or one text. `way` says why
// no more.
std::size_t openGroup(std::span<const grid::GridLook> looks, std::size_t first, const std::string& folder,
                      std::vector<InputCells>& group, Way& way)
{
    const grid::Format format = looks[first].format;
    const std::size_t most = std::min(looks.size() - first, format == grid::Format::asc ? 1 : kMostOpenFiles);
    group.resize(std::max(most, group.size()));
    std::size_t opened = 0;
    while (opened < most && looks[first + opened].format == format) {
        way = group[opened].open(looks[first + opened], folder);
        if (way != Way::ahead) {
            break;
        }
        ++opened;
    }
    return opened;
}

} // namespace

OutputWish outputWish(const Common& common, std::string_view namedAfter, grid::Format format, std::size_t grids)
{
    const std::string_view name = common.out ? std::string_view(*common.out) : namedAfter;
    return {systemName(FILEFOLDERPATH(name)), common.format.value_or(format) == grid::Format::flt, grids};
}

void countWay(Way way)
{
    ++wayCounts()[static_cast<std::size_t>(way)];
}

std::size_t waysGone(Way way)
{
    return wayCounts()[static_cast<std::size_t>(way)];
}

std::optional<std::vector<grid::GridLook>> lookAtInputs(const InputFileList& inputs, bool ordinary)
{
    if (!ordinary) {
        return went(Way::oddInput);
    }
    std::vector<grid::GridLook> looks;
    for (std::int32_t i = 1; i <= inputs.count(); ++i) {
        std::optional<grid::GridLook> look = grid::lookAtGrid(inputs[i]);
        if (!look) {
            return went(Way::oddInput);
        }
        if (i > 1 && !grid::isSameLattice(looks.front().header, look->header)) {
            return went(Way::otherLattice);
        }
        looks.push_back(std::move(*look));
    }
    return looks;
}

namespace {

std::vector<float> nullsOf(std::span<const grid::GridLook> looks)
{
    std::vector<float> nulls;
    for (const grid::GridLook& look : looks) {
        nulls.push_back(look.header.null);
    }
    return nulls;
}

std::optional<std::vector<grid::CellStore>> mapInputs(std::span<const InputCells> inputs, std::size_t cells,
                                                      std::vector<float> nulls, const OutputWish& wish,
                                                      const MapKernel& kernel, std::span<std::int64_t> tallies)
{
    auto outputs = takeOutputs(cells, wish);
    if (!outputs) {
        return went(Way::noRoom);
    }
    Pass pass(cells, std::move(nulls), inputs.size(), *outputs, tallies.size());
    if (!pass.takeRooms()) {
        return went(Way::noRoom);
    }
    const Way way = pass.walk(inputs, [&](const CellPiece& piece, WorkerRoom& room) {
        for (std::size_t i = 0; i < inputs.size(); ++i) {
            const auto got = inputs[i].get(piece, pass.inputRoom(room, i));
            if (!got) {
                return Way::readRefused;
            }
            room.inputs[i] = *got;
        }
        pass.openOutputs(piece, room);
        kernel(piece, room.inputs, room.outputs);
        return pass.storeOutputs(piece, room) ? Way::ahead : Way::noRoom;
    });
    went(way);
    if (way != Way::ahead) {
        return std::nullopt;
    }
    pass.putTallies(tallies);
    return outputs;
}

} // namespace

std::optional<std::vector<grid::CellStore>> mapAhead(std::span<const grid::GridLook> looks, const OutputWish& wish,
                                                     const MapKernel& kernel, std::span<std::int64_t> tallies)
{
    std::vector<InputCells> inputs(looks.size());
    for (std::size_t i = 0; i < looks.size(); ++i) {
        if (const Way way = inputs[i].open(looks[i], wish.folder); way != Way::ahead) {
            return went(way);
        }
    }
    return mapInputs(inputs, looks.front().header.cells(), nullsOf(looks), wish, kernel, tallies);
}

std::optional<std::vector<grid::CellStore>> mapStored(const grid::CellStore& input, const GridHeader& lattice,
                                                      const OutputWish& wish, const MapKernel& kernel)
{
    const InputCells cells(input);
    return mapInputs(std::span(&cells, 1), lattice.cells(), {lattice.null}, wish, kernel, {});
}

std::optional<std::vector<grid::CellStore>> foldAhead(std::span<const grid::GridLook> looks, const OutputWish& wish,
                                                      const FoldKernel& kernel, std::span<std::int64_t> tallies)
{
    auto outputs = takeOutputs(looks.front().header.cells(), wish);
    if (!outputs) {
        return went(Way::noRoom);
    }
    Pass pass(looks.front().header.cells(), nullsOf(looks), 1, *outputs, tallies.size());
    if (!pass.takeRooms()) {
        return went(Way::noRoom);
    }
    std::vector<InputCells> group;
    for (std::size_t first = 0; first < looks.size();) {
        Way way = Way::ahead;
        const std::size_t count = openGroup(looks, first, wish.folder, group, way);
        if (count == 0) {
            return went(way);
        }
        const auto inputs = std::span(group).first(count);
        way = pass.walk(inputs, [&](const CellPiece& piece, WorkerRoom& room) {
            pass.openOutputs(piece, room);
            if (first > 0 && !pass.fetchOutputs(piece, room)) {
                return Way::noRoom;
            }
            for (std::size_t i = 0; i < inputs.size(); ++i) {
                const auto got = inputs[i].get(piece, pass.inputRoom(room, 0));
                if (!got) {
                    return Way::readRefused;
                }
                kernel(piece, first + i, *got, room.outputs);
            }
            return pass.storeOutputs(piece, room) ? Way::ahead : Way::noRoom;
        });
        if (way != Way::ahead) {
            return went(way);
        }
        first += count;
    }
    went(Way::ahead);
    pass.putTallies(tallies);
    return outputs;
}

std::optional<std::vector<grid::CellStore>> copyAhead(const grid::GridLook& look, const OutputWish& wish)
{
    if (look.format == grid::Format::flt) {
        return mapAhead(std::span(&look, 1), wish, [](const CellPiece&, InputPieces cells, OutputPieces copy) {
            std::ranges::copy(cells[0], copy[0].begin());
        });
    }
    auto outputs = takeOutputs(look.header.cells(), wish);
    if (!outputs) {
        return went(Way::noRoom);
    }
    if (!grid::decodeAsc(look, outputs->front())) {
        return went(Way::oddText);
    }
    went(Way::ahead);
    return outputs;
}

} // namespace gridforge::run
