#include "grid/asc_write.h"

#include "core/number_text.h"
#include "core/worker_rooms.h"
#include "grid/asc_format.h"
#include "grid/reader.h"
#include "host/console.h"
#include "host/positions.h"
#include "host/threads.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <string_view>
#include <utility>
#include <vector>

namespace gridforge::grid {

namespace {

constexpr std::int32_t kWriteProgressRows = 1000;
constexpr std::size_t kPieceCells = std::size_t{1} << 17;
constexpr std::string_view kLineEnd = "\r\n";

std::span<const float> fetched(const CellSource& cells, std::size_t first, std::size_t count, std::span<float> room)
{
    const auto got = cells.get(first, count, room);
    if (!got) {
        failFetch(cells.isOnlyRead());
    }
    return *got;
}

// --- By position, in pieces of whole rows ----------------------------------------------------------------------------

struct RowPieces {
    std::size_t rows = 0; // of a piece; the last may have fewer
    std::size_t pieces = 0;
};

RowPieces pieceRows(const CellSource& cells)
{
    const auto nrows = static_cast<std::size_t>(cells.nrows());
    const std::size_t rows =
        std::clamp<std::size_t>(cellsPerPiece(kPieceCells) / static_cast<std::size_t>(std::max(cells.ncols(), 1)), 1,
                                std::max<std::size_t>(nrows, 1));
    return {rows, (nrows + rows - 1) / rows};
}

// Cells of a store that is a file must be fetched.
std::size_t fetchedCells(const CellSource& cells, std::size_t count)
{
    return cells.isInFile() ? count : 0;
}

class PositionWriter {
public:
    PositionWriter(const CellSource& cells, const RowText& row) : cells_(cells), row_(row), split_(pieceRows(cells)) {}

    // A single piece leaves nothing to do side by side.
    bool hasPieces() const { return split_.pieces > 1; }

    [[nodiscard]] bool takeRooms()
    {
        return fetched_.take(workersOf(split_.pieces), fetchedCells(cells_, split_.rows * columns())) &&
               text_.take(workersOf(split_.pieces), split_.rows * rowBytes());
    }

    std::int64_t bytes() const
    {
        return static_cast<std::int64_t>(rowBytes() * static_cast<std::size_t>(cells_.nrows()));
    }

    // False if a piece could not be fetched or written.
    bool write(SystemFile file, std::int64_t start)
    {
        std::atomic<bool> good = true;
        parallelFor(split_.pieces, [&](std::size_t piece, std::size_t worker) {
            if (good && !writePiece(file, start, piece, worker)) {
                good = false;
            }
        });
        return good;
    }

private:
    std::size_t columns() const { return static_cast<std::size_t>(cells_.ncols()); }
    std::size_t textBytes() const { return columns() * row_.fieldBytes; }
    std::size_t rowBytes() const { return textBytes() + kLineEnd.size(); }

    bool writePiece(SystemFile file, std::int64_t start, std::size_t piece, std::size_t worker)
    {
        const std::size_t firstRow = piece * split_.rows;
        const std::size_t rows = std::min(split_.rows, static_cast<std::size_t>(cells_.nrows()) - firstRow);
        const std::span<char> text = text_.of(worker).first(rows * rowBytes());
        const auto cells = cells_.get(firstRow * columns(), rows * columns(), fetched_.of(worker));
        if (!cells) {
            return false;
        }
        char* out = text.data();
        for (std::size_t row = 0; row < rows; ++row) {
            row_.format(cells->subspan(row * columns(), columns()), out);
            out = std::ranges::copy(kLineEnd, out + textBytes()).out;
        }
        return writeAllAt(file, start + static_cast<std::int64_t>(firstRow * rowBytes()), std::as_bytes(text));
    }

    const CellSource& cells_;
    const RowText& row_;
    RowPieces split_;
    WorkerRooms<float> fetched_;
    WorkerRooms<char> text_;
};

// False, with the unit where it was, if the rows must be written one after the other.
bool writeByPosition(Unit unit, const CellSource& cells, const RowText& row)
{
    constexpr std::size_t kMostOfRow = std::size_t{1} << 24;
    if (static_cast<std::size_t>(cells.ncols()) * row.fieldBytes > kMostOfRow) {
        return false;
    }
    PositionWriter writer(cells, row);
    const SystemFile file = writer.hasPieces() ? positionedFile(unit) : SystemFile::none;
    if (file == SystemFile::none || !writer.takeRooms()) {
        return false;
    }
    const std::int64_t start = position(unit);
    reserveBytes(unit, writer.bytes());
    if (!writer.write(file, start)) {
        seekTo(unit, start);
        truncateHere(unit);
        return false;
    }
    seekTo(unit, start + writer.bytes());
    return true;
}

// --- One after the other ---------------------------------------------------------------------------------------------

// Formats straight into the write buffer, in pieces if a row is longer than the buffer.
void writeRow(Unit unit, std::span<const float> row, const RowText& text)
{
    const std::size_t piece = kWriteRoom / text.fieldBytes;
    while (!row.empty()) {
        const std::size_t count = std::min(piece, row.size());
        const std::size_t bytes = count * text.fieldBytes;
        text.format(row.first(count), writeRoom(unit, bytes).data());
        wroteBytes(unit, bytes);
        row = row.subspan(count);
    }
    writeText(unit, kLineEnd);
}

} // namespace

std::optional<ValueRange> extremesOf(const CellSource& cells)
{
    constexpr std::size_t kHintedPieces = 16; // disks want to be read by some megabytes
    const std::size_t most = cellsPerPiece(kPieceCells);
    const std::size_t pieces = (cells.size() + most - 1) / most;
    std::vector<ValueRange> found(pieces);
    WorkerRooms<float> rooms;
    std::atomic<bool> good = rooms.take(workersOf(pieces), fetchedCells(cells, most));
    parallelFor(pieces, [&](std::size_t piece, std::size_t worker) {
        const std::size_t first = piece * most;
        if (piece % kHintedPieces == 0) {
            cells.willRead(first, std::min(kHintedPieces * most, cells.size() - first));
        }
        const auto got = good ? cells.get(first, std::min(most, cells.size() - first), rooms.of(worker)) : std::nullopt;
        if (got) {
            found[piece] = findExtremes(*got);
        } else {
            good = false;
        }
    });
    ValueRange extremes;
    for (const ValueRange& one : found) {
        extremes = joined(extremes, one);
    }
    return good ? std::optional<ValueRange>(extremes) : std::nullopt;
}

std::int32_t ascFieldWidth(const CellSource& cells, std::int32_t decimals)
{
    const std::optional<ValueRange> known = cells.extremes();
    const std::optional<ValueRange> extremes = known ? known : extremesOf(cells);
    if (!extremes) {
        failFetch(cells.isOnlyRead());
    }
    const float magnitude = std::max(extremes->largest, std::fabs(extremes->smallest));
    return decimals + static_cast<std::int32_t>(AREALD(magnitude, 0).size()) + 2;
}

RowWriter::RowWriter(Unit unit, const CellSource& cells, RowText text)
    : unit_(unit), cells_(cells), text_(std::move(text)), isWritten_(writeByPosition(unit, cells_, text_)),
      room_(isWritten_ ? 0 : fetchedCells(cells, static_cast<std::size_t>(cells.ncols())))
{
}

void RowWriter::write(std::int32_t row)
{
    if (!isWritten_) {
        const auto columns = static_cast<std::size_t>(cells_.ncols());
        writeRow(unit_, fetched(cells_, static_cast<std::size_t>(cells_.nrows() - row) * columns, columns, room_),
                 text_);
    }
}

void writeAscRows(Unit unit, const CellSource& cells, std::int32_t width, std::int32_t decimals)
{
    const auto format = [width, decimals](std::span<const float> row, char* out) {
        formatAscRow(row, width, decimals, out);
    };
    RowWriter rows(unit, cells, {static_cast<std::size_t>(width), format});
    for (std::int32_t row = cells.nrows(); row >= 1; --row) {
        if (row % kWriteProgressRows == 0) {
            progress(row);
        }
        rows.write(row);
    }
}

} // namespace gridforge::grid
