#include "run/windows_ahead.h"

#include "core/worker_rooms.h"
#include "host/positions.h"
#include "host/threads.h"
#include "run/cells_ahead.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <span>
#include <utility>

namespace gridforge::run {

namespace {

// Windows whose first rows lie in the same band are read together.
constexpr std::int32_t kBandRows = 128;
constexpr std::size_t kPartCells = std::size_t{1} << 20;
// What asking for a stretch of a row costs, as the cells that could be read in that time.
constexpr std::size_t kCellsOfCall = 1024;

struct Part {
    CellWindow window;
    std::size_t firstObject = 0; // among the windows in the order of their places
    std::size_t objects = 0;
};

std::size_t rowsOf(const CellWindow& window)
{
    return static_cast<std::size_t>(window.lastRow - window.firstRow) + 1;
}

std::size_t columnsOf(const CellWindow& window)
{
    return static_cast<std::size_t>(window.lastColumn - window.firstColumn) + 1;
}

std::size_t cellsOf(const CellWindow& window)
{
    return rowsOf(window) * columnsOf(window);
}

std::size_t costOf(const CellWindow& window)
{
    return rowsOf(window) * (columnsOf(window) + kCellsOfCall);
}

std::int32_t bandOf(const ObjectWindow& window)
{
    return (window.window.firstRow - 1) / kBandRows;
}

// Takes the windows from `first` on that one part can hold, by band and by column.
Part partFrom(std::span<const ObjectWindow> windows, std::size_t first, std::size_t mostCells)
{
    Part part{windows[first].window, first, 1};
    for (std::size_t i = first + 1; i < windows.size() && bandOf(windows[i]) == bandOf(windows[first]); ++i) {
        const CellWindow with = joined(part.window, windows[i].window);
        if (cellsOf(with) > mostCells) {
            break;
        }
        part.window = with;
        ++part.objects;
    }
    return part;
}

// Windows far apart are read by themselves.
void addPart(std::span<const ObjectWindow> windows, const Part& part, std::int32_t ncols, std::vector<Part>& parts)
{
    std::size_t alone = 0;
    for (const ObjectWindow& window : windows.subspan(part.firstObject, part.objects)) {
        alone += costOf(window.window);
    }
    if (alone < costOf(part.window)) {
        for (std::size_t i = part.firstObject; i < part.firstObject + part.objects; ++i) {
            parts.push_back({windows[i].window, i, 1});
        }
        return;
    }
    parts.push_back(part);
    CellWindow& window = parts.back().window;
    if (4 * columnsOf(window) >= 3 * static_cast<std::size_t>(ncols)) { // whole rows lie together in the file
        window.firstColumn = 1;
        window.lastColumn = ncols;
    }
}

// By band and by column, as one number each, which sorts faster than the windows themselves.
void sortByPlace(std::vector<ObjectWindow>& windows)
{
    constexpr int kColumnBits = 32;
    std::vector<std::pair<std::int64_t, std::size_t>> order;
    order.reserve(windows.size());
    for (const ObjectWindow& window : windows) {
        order.emplace_back((std::int64_t{bandOf(window)} << kColumnBits) + window.window.firstColumn, order.size());
    }
    std::ranges::sort(order);
    std::vector<ObjectWindow> sorted;
    sorted.reserve(windows.size());
    for (const auto& [place, i] : order) {
        sorted.push_back(windows[i]);
    }
    windows = std::move(sorted);
}

std::vector<Part> partsOf(std::vector<ObjectWindow>& windows, std::int32_t ncols)
{
    sortByPlace(windows);
    const std::size_t mostCells = cellsPerPiece(kPartCells);
    std::vector<Part> parts;
    for (std::size_t first = 0; first < windows.size();) {
        const Part part = partFrom(windows, first, mostCells);
        addPart(windows, part, ncols, parts);
        first += part.objects;
    }
    return parts;
}

// Cells of a window, north row first.
bool readWindow(SystemFile file, const GridHeader& lattice, const CellWindow& window, std::span<float> cells)
{
    const auto ncols = static_cast<std::size_t>(lattice.ncols);
    const std::size_t columns = columnsOf(window);
    const std::size_t rowsAtOnce = columns == ncols ? rowsOf(window) : 1;
    std::size_t from = static_cast<std::size_t>(lattice.nrows - window.lastRow) * ncols +
                       static_cast<std::size_t>(window.firstColumn - 1);
    while (!cells.empty()) {
        const auto stretch = cells.first(rowsAtOnce * columns);
        if (!readAllAt(file, static_cast<std::int64_t>(from * sizeof(float)), std::as_writable_bytes(stretch))) {
            return false;
        }
        from += rowsAtOnce * ncols;
        cells = cells.subspan(stretch.size());
    }
    return true;
}

// A grid that windows are read from, and what is done with them.
struct Source {
    SystemFile file = SystemFile::none;
    const GridHeader& lattice;
    std::span<const ObjectWindow> windows;
    const PartWork& work;
};

// By as many threads as there are, as long as their rooms together hold no more than `mostCells`; by one at least.
Way workThrough(const Source& source, std::span<const Part> parts, std::size_t mostCells)
{
    const auto largest = std::ranges::max_element(parts, {}, [](const Part& part) { return cellsOf(part.window); });
    if (largest == parts.end()) {
        return Way::ahead;
    }
    const std::size_t roomCells = cellsOf(largest->window);
    const std::size_t workers = std::clamp<std::size_t>(mostCells / roomCells, 1, workersOf(parts.size()));
    WorkerRooms<float> rooms;
    if (!rooms.take(workers, roomCells)) {
        return Way::noRoom;
    }
    std::atomic<std::size_t> next = 0;
    std::atomic<Way> way = Way::ahead;
    parallelFor(workers, [&](std::size_t place, std::size_t worker) {
        for (std::size_t i = next++; i < parts.size() && way == Way::ahead; i = next++) {
            const Part& part = parts[i];
            const auto cells = rooms.of(place).first(cellsOf(part.window));
            if (readWindow(source.file, source.lattice, part.window, cells)) {
                source.work(CellPart(cells, part.window), source.windows.subspan(part.firstObject, part.objects),
                            worker);
            } else {
                way = Way::readRefused;
            }
        }
    });
    return way;
}

// Of a part that has whole rows in place of three quarters of them, unless a single window is larger.
std::size_t mostCellsOfUsualPart()
{
    return cellsPerPiece(kPartCells) * 3 / 2;
}

// Rooms for windows that are large each, as around a river or a whole town, would take many times the grid: those come by
// themselves, in no more room than the grid.
Way workThroughAll(const grid::GridLook& look, std::span<const ObjectWindow> windows, std::vector<Part>& parts,
                   const PartWork& work)
{
    const SystemFile file = theSystem().open(look.file, OpenFor::reading);
    if (file == SystemFile::none) {
        return Way::readRefused;
    }
    const std::size_t usual = mostCellsOfUsualPart();
    const auto large =
        std::partition(parts.begin(), parts.end(), [usual](const Part& part) { return cellsOf(part.window) <= usual; });
    const Source source{file, look.header, windows, work};
    Way way = workThrough(source, {parts.begin(), large}, threadCount() * usual);
    if (way == Way::ahead) {
        way = workThrough(source, {large, parts.end()}, look.header.cells());
    }
    theSystem().close(file);
    return way;
}

} // namespace

bool windowsAhead(const grid::GridLook& look, std::vector<ObjectWindow> windows, const PartWork& work)
{
    if (look.format != grid::Format::flt) {
        countWay(Way::textGrid);
        return false;
    }
    std::vector<Part> parts = partsOf(windows, look.header.ncols);
    std::size_t cells = 0;
    for (const Part& part : parts) {
        cells += cellsOf(part.window);
    }
    const Way way = cells > 2 * look.header.cells() ? Way::wideWindows : workThroughAll(look, windows, parts, work);
    countWay(way);
    return way == Way::ahead;
}

} // namespace gridforge::run
