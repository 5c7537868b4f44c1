#include "run/cells_ahead.h"

#include "core/names.h"
#include "core/per_worker.h"
#include "core/worker_rooms.h"
#include "grid/asc_decode.h"
#include "grid/asc_write.h"
#include "grid/lattice_check.h"
#include "host/file_system.h"
#include "host/threads.h"
#include "run/fill_ahead.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <utility>

namespace gridforge::run {

namespace {

constexpr std::size_t kLeastPiece = std::size_t{1} << 12;
constexpr std::size_t kMostOpenFiles = 64;

// Counts a way, and is the result where it leads to no outputs.
std::nullopt_t went(Way way)
{
    countWay(way);
    return std::nullopt;
}

std::size_t partsOf(std::size_t cells)
{
    return (cells + cellsOfPart() - 1) / cellsOfPart();
}

// --- Outputs ---------------------------------------------------------------------------------------------------------

std::optional<std::vector<grid::CellStore>> takeOutputs(std::size_t cells, const OutputWish& wish)
{
    std::vector<grid::CellStore> outputs(wish.grids);
    for (grid::CellStore& output : outputs) {
        if (!takeOutput(output, cells, wish)) {
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

using Inputs = std::vector<const grid::CellStore*>;

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
        for (std::size_t worker = 0; worker < rooms_.size(); ++worker) {
            WorkerRoom& room = rooms_[worker];
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
    Way walk(const Inputs& inputs, Work work)
    {
        std::atomic<Way> way = Way::ahead;
        parallelFor(partsOf(cells_), [&](std::size_t part, std::size_t worker) {
            const std::size_t start = part * cellsOfPart();
            const std::size_t end = std::min(cells_, start + cellsOfPart());
            for (const grid::CellStore* input : inputs) {
                input->willRead(start, end - start);
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
            for (std::size_t worker = 0; worker < rooms_.size(); ++worker) {
                tallies[i] += rooms_[worker].tallies[i];
            }
        }
    }

private:
    std::size_t cells_;
    std::vector<float> nulls_;
    std::size_t inputRooms_;
    std::span<grid::CellStore> outputs_;
    PerWorker<WorkerRoom> rooms_;
    WorkerRooms<float> memory_;
    std::size_t pieceCells_ = 0;
};

// Opens inputs from `first` on, and returns how many: as many binary ones as files may be open, or one text. `way` says why
// no more.
std::size_t openGroup(std::span<const grid::GridLook> looks, std::size_t first, const std::string& folder,
                      std::vector<grid::CellStore>& group, Way& way)
{
    const grid::Format format = looks[first].format;
    const std::size_t most = std::min(looks.size() - first, format == grid::Format::asc ? 1 : kMostOpenFiles);
    group.resize(most); // no file of the last group stays open
    std::size_t opened = 0;
    while (opened < most && looks[first + opened].format == format) {
        way = openCells(looks[first + opened], folder, group[opened]);
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

Way openCells(const grid::GridLook& look, const std::string& folder, grid::CellStore& cells)
{
    if (look.format == grid::Format::flt) {
        return cells.open(look.file, look.header.cells()) ? Way::ahead : Way::readRefused;
    }
    if (!cells.take(look.header.cells(), folder)) {
        return Way::noRoom;
    }
    return grid::decodeAsc(look, cells) ? Way::ahead : Way::oddText;
}

bool takeOutput(grid::CellStore& output, std::size_t cells, const OutputWish& wish)
{
    return wish.binary ? output.takeForFile(cells, wish.folder) : output.take(cells, wish.folder);
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

Inputs inputsIn(std::span<const grid::CellStore> stores)
{
    Inputs inputs;
    for (const grid::CellStore& store : stores) {
        inputs.push_back(&store);
    }
    return inputs;
}

std::vector<float> nullsOf(std::span<const grid::GridLook> looks)
{
    std::vector<float> nulls;
    for (const grid::GridLook& look : looks) {
        nulls.push_back(look.header.null);
    }
    return nulls;
}

std::optional<std::vector<grid::CellStore>> mapInputs(const Inputs& inputs, std::size_t cells, std::vector<float> nulls,
                                                      const OutputWish& wish, const MapKernel& kernel,
                                                      std::span<std::int64_t> tallies)
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
            const auto got = inputs[i]->get(piece.first, piece.count, pass.inputRoom(room, i));
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
    std::vector<grid::CellStore> inputs(looks.size());
    for (std::size_t i = 0; i < looks.size(); ++i) {
        if (const Way way = openCells(looks[i], wish.folder, inputs[i]); way != Way::ahead) {
            return went(way);
        }
    }
    return mapInputs(inputsIn(inputs), looks.front().header.cells(), nullsOf(looks), wish, kernel, tallies);
}

std::optional<std::vector<grid::CellStore>> mapStored(const grid::CellStore& input, const GridHeader& lattice,
                                                      const OutputWish& wish, const MapKernel& kernel)
{
    return mapInputs({&input}, lattice.cells(), {lattice.null}, wish, kernel, {});
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
    std::vector<grid::CellStore> group;
    for (std::size_t first = 0; first < looks.size();) {
        Way way = Way::ahead;
        const std::size_t count = openGroup(looks, first, wish.folder, group, way);
        if (count == 0) {
            return went(way);
        }
        const Inputs inputs = inputsIn(std::span(group).first(count));
        way = pass.walk(inputs, [&](const CellPiece& piece, WorkerRoom& room) {
            pass.openOutputs(piece, room);
            if (first > 0 && !pass.fetchOutputs(piece, room)) {
                return Way::noRoom;
            }
            for (std::size_t i = 0; i < inputs.size(); ++i) {
                const auto got = inputs[i]->get(piece.first, piece.count, pass.inputRoom(room, 0));
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

namespace {

// Where the cells become text they may stay in their file until then; all are read once before, for its width.
std::optional<std::vector<grid::CellStore>> textOfAhead(const grid::GridLook& look)
{
    std::vector<grid::CellStore> outputs(1);
    grid::CellStore& cells = outputs.front();
    if (!cells.open(look.file, look.header.cells())) {
        return went(Way::readRefused);
    }
    const auto extremes = grid::extremesOf({cells, look.header});
    if (!extremes) {
        return went(Way::readRefused);
    }
    cells.noteExtremes(*extremes);
    went(Way::ahead);
    return outputs;
}

} // namespace

std::optional<std::vector<grid::CellStore>> copyAhead(const grid::GridLook& look, const OutputWish& wish)
{
    if (look.format == grid::Format::flt) {
        return textOfAhead(look);
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
