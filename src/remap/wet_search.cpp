// On purpose in this search, since earlier results have it so: the corner cells of a ring lie on two of its sides and
// are listed twice; the outermost rows and columns are never the side of a ring, so cells there are found in the first
// window or at the end of a side; of cells at one distance the earliest listed is nearest.
#include "remap/wet_search.h"

#include "core/computed.h"
#include "core/rounding.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <cstring>
#include <limits>
#include <span>

namespace gridforge::remap {

namespace {

// A picked cell takes this distance in the list, so where all others are farther still it is picked again.
constexpr float kPickedDistance = 99999.0F;

struct Window {
    std::int32_t south = 0;
    std::int32_t north = 0;
    std::int32_t west = 0;
    std::int32_t east = 0;
};

// One search: where it stands and what it lists.
struct Search {
    std::int32_t row;
    std::int32_t column;
    const WetIndex& wet;
    const Grid& levels;
    ListedCells& listed;

    void list(std::int32_t r, std::int32_t c)
    {
        const auto rowsApart = static_cast<float>(row - r);
        const auto columnsApart = static_cast<float>(column - c);
        listed.push_back({std::sqrt(rowsApart * rowsApart + columnsApart * columnsApart), levels(r, c), listed.size()});
    }
};

// Calls `found` with each place from `from` to `to` (from 1) that holds a 1.
template <typename Found>
void eachSet(std::span<const std::uint8_t> flags, std::int32_t from, std::int32_t to, Found&& found)
{
    const std::uint8_t* const start = flags.data();
    const std::uint8_t* at = start + (from - 1);
    const std::uint8_t* const end = start + to;
    while (at < end) {
        at = static_cast<const std::uint8_t*>(std::memchr(at, 1, static_cast<std::size_t>(end - at)));
        if (at == nullptr) {
            return;
        }
        found(static_cast<std::int32_t>(at - start) + 1);
        ++at;
    }
}

void listRow(Search& search, std::int32_t r, std::int32_t from, std::int32_t to)
{
    eachSet(search.wet.rows->row(r), from, to, [&](std::int32_t c) { search.list(r, c); });
}

void listColumn(Search& search, std::int32_t c, std::int32_t from, std::int32_t to)
{
    eachSet(search.wet.columns.row(c), from, to, [&](std::int32_t r) { search.list(r, c); });
}

void listWindow(Search& search, const Window& window)
{
    for (std::int32_t r = window.south; r <= window.north; ++r) {
        listRow(search, r, window.west, window.east);
    }
}

void listRing(Search& search, const Window& window, std::int32_t k)
{
    const std::int32_t nrows = search.levels.nrows();
    const std::int32_t ncols = search.levels.ncols();
    const Window ring{std::max(1, window.south - k), std::min(nrows, window.north + k), std::max(1, window.west - k),
                      std::min(ncols, window.east + k)};
    if (window.south - k > 1) {
        listRow(search, ring.south, ring.west, ring.east);
    }
    if (window.west - k > 1) {
        listColumn(search, ring.west, ring.south, ring.north);
    }
    if (window.north + k < nrows) {
        listRow(search, ring.north, ring.west, ring.east);
    }
    if (window.east + k < ncols) {
        listColumn(search, ring.east, ring.south, ring.north);
    }
}

// The window and as many rings as it takes; false where no further ring has a side.
bool listEnough(Search& search, std::size_t points)
{
    const std::int32_t nrows = search.levels.nrows();
    const std::int32_t ncols = search.levels.ncols();
    const std::int32_t half = truncateToInt(static_cast<double>(std::sqrt(static_cast<float>(points))));
    const Window window{std::max(1, search.row - half), std::min(nrows, search.row + half),
                        std::max(1, search.column - half), std::min(ncols, search.column + half)};
    const std::int32_t lastRing =
        std::max({window.south - 2, window.west - 2, nrows - 1 - window.north, ncols - 1 - window.east});
    const std::int32_t reach = search.wet.reach(search.row, search.column);

    search.listed.clear();
    if (reach <= half) {
        listWindow(search, window);
    }
    // The sides of ring k are all half + k away, so rings nearer than the nearest wet cell hold none.
    for (std::int32_t k = std::max(1, reach - half); search.listed.size() < points; ++k) {
        if (k > lastRing) {
            return false;
        }
        listRing(search, window, k);
    }
    return true;
}

bool isNearer(const ListedCell& a, const ListedCell& b)
{
    return a.distance != b.distance ? a.distance < b.distance : a.order < b.order;
}

// Where the nearest that are left lie beyond the distance of picked cells, the earliest listed at that distance is
// picked over and over.
void repeatPicked(std::span<ListedCell> picks)
{
    const auto far = std::ranges::find_if(picks, [](const ListedCell& c) { return c.distance >= kPickedDistance; });
    if (far == picks.end()) {
        return;
    }
    auto next = far;
    if (far == picks.begin()) {
        ++next; // nothing had been picked before it
    }
    const auto candidates = far->distance == kPickedDistance ? far + 1 : next;
    ListedCell again = *std::min_element(picks.begin(), candidates,
                                         [](const ListedCell& a, const ListedCell& b) { return a.order < b.order; });
    again.distance = kPickedDistance;
    std::fill(next, picks.end(), again);
}

// The `points` nearest to the head of the list, in the order of picking.
std::span<const ListedCell> pickNearest(ListedCells& listed, std::size_t points)
{
    const auto end = listed.begin() + static_cast<std::ptrdiff_t>(points);
    if (points < listed.size()) {
        std::nth_element(listed.begin(), end, listed.end(), isNearer);
    }
    std::sort(listed.begin(), end, isNearer);
    const std::span<ListedCell> picks(listed.data(), points);
    repeatPicked(picks);
    return picks;
}

// Passes of the distance to the nearest wet cell: from the cell's neighbours that the pass has left.
void relax(CellArray<std::int32_t>& reach, std::int32_t row, std::int32_t column, std::int32_t behind)
{
    std::int32_t least = reach(row, column);
    const auto look = [&](std::int32_t r, std::int32_t c) {
        if (r >= 1 && r <= reach.nrows() && c >= 1 && c <= reach.ncols()) {
            least = std::min(least, reach(r, c) + 1);
        }
    };
    look(row, column + behind);
    for (std::int32_t c = column - 1; c <= column + 1; ++c) {
        look(row + behind, c);
    }
    reach(row, column) = least;
}

} // namespace

bool indexWetCells(const CellFlags& wetFlags, WetIndex& index)
{
    const std::int32_t nrows = wetFlags.nrows();
    const std::int32_t ncols = wetFlags.ncols();
    index.rows = &wetFlags;
    if (!index.columns.allocate(ncols, nrows) || !index.reach.allocate(nrows, ncols)) {
        return false;
    }
    constexpr std::int32_t kFar = std::numeric_limits<std::int32_t>::max() / 2;
    for (std::int32_t row = 1; row <= nrows; ++row) {
        for (std::int32_t column = 1; column <= ncols; ++column) {
            index.columns(column, row) = wetFlags(row, column);
            index.reach(row, column) = wetFlags(row, column) != 0 ? 0 : kFar;
            relax(index.reach, row, column, -1);
        }
    }
    for (std::int32_t row = nrows; row >= 1; --row) {
        for (std::int32_t column = ncols; column >= 1; --column) {
            relax(index.reach, row, column, +1);
        }
    }
    return true;
}

std::optional<float> idwPoint(std::int32_t points, std::int32_t row, std::int32_t column, const WetIndex& wet,
                              const Grid& levels, ListedCells& listed, float exponent)
{
    assert(points > 0 && (*wet.rows)(row, column) == 0);
    Search search{row, column, wet, levels, listed};
    const auto wanted = static_cast<std::size_t>(points);
    if (!listEnough(search, wanted)) {
        return std::nullopt;
    }
    float weights = 0;
    float weighted = 0;
    for (const ListedCell& cell : pickNearest(listed, wanted)) {
        const float weight = 1.0F / power(cell.distance, exponent);
        weights += weight;
        weighted += weight * cell.level;
    }
    return stored(weighted / weights);
}

} // namespace gridforge::remap
