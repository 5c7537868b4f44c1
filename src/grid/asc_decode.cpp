#include "grid/asc_decode.h"

#include "core/worker_rooms.h"
#include "grid/asc_parse.h"
#include "host/line_pieces.h"
#include "host/threads.h"

#include <algorithm>
#include <atomic>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace gridforge::grid {

namespace {

// Cells are set to these bits first, which no text gives: a cell that still has them had an empty value.
constexpr std::uint32_t kUntouched = 0x7FA5C3E1U;

// Whole lines, each of them a row.
struct Lines {
    std::string_view text;
    std::span<const std::uint32_t> ends; // of each in the text, with its line end
};

// As many as there is room for: if there are more, some are too short for a row. The last line may lack its line end.
Lines linesOf(std::string_view text, std::span<std::uint32_t> ends)
{
    std::size_t lines = 0;
    std::size_t at = 0;
    while (at < text.size() && lines < ends.size()) {
        at = std::min(text.find('\n', at), text.size() - 1) + 1;
        ends[lines++] = static_cast<std::uint32_t>(at);
    }
    return {text, ends.first(lines)};
}

// More rows than can begin in so many bytes: each value takes two, one of them behind it.
std::size_t rowsIn(std::size_t bytes, const GridHeader& header)
{
    return bytes / (2 * static_cast<std::size_t>(header.ncols)) + 2;
}

// Gives pieces the numbers of their rows in the order of the text.
class RowTurns {
public:
    // The number of rows before those of the piece, which are `rows`. Waits for all earlier pieces, which have begun.
    std::size_t take(std::size_t piece, std::size_t rows)
    {
        turns_.await(piece);
        const std::size_t before = rows_;
        rows_ = before + rows;
        turns_.pass();
        return before;
    }
    std::size_t rows() const { return rows_; }

private:
    PieceTurns turns_;
    std::atomic<std::size_t> rows_ = 0;
};

// The turn of one piece, which later ones wait for: it is passed on at the latest when the piece ends, out of memory too.
class RowTurn {
public:
    RowTurn(RowTurns& turns, std::size_t piece) : turns_(turns), piece_(piece) {}
    ~RowTurn()
    {
        if (!taken_) {
            turns_.take(piece_, 0);
        }
    }
    RowTurn(const RowTurn&) = delete;
    RowTurn& operator=(const RowTurn&) = delete;

    std::size_t take(std::size_t rows)
    {
        taken_ = true;
        return turns_.take(piece_, rows);
    }

private:
    RowTurns& turns_;
    std::size_t piece_;
    bool taken_ = false;
};

// `mayBeEmpty`: values may be missing between commas. False if the line holds anything but the row.
bool parseLine(std::string_view line, bool mayBeEmpty, std::span<float> row)
{
    if (mayBeEmpty) {
        std::ranges::fill(row, std::bit_cast<float>(kUntouched));
    }
    AscRowState state;
    std::size_t consumed = 0;
    if (parseAscRow(state, line, true, consumed, row) != AscRow::done || consumed != line.size()) {
        return false;
    }
    return !mayBeEmpty ||
           std::ranges::none_of(row, [](float cell) { return std::bit_cast<std::uint32_t>(cell) == kUntouched; });
}

// Puts rows into the store: in place, or through a buffer for a few rows if the store is a file.
class Decoder {
public:
    Decoder(const GridHeader& header, CellStore& cells)
        : columns_(static_cast<std::size_t>(header.ncols)), rows_(static_cast<std::size_t>(header.nrows)),
          roomRows_(std::max<std::size_t>(1, kRoomCells / columns_)), cells_(cells)
    {
    }

    [[nodiscard]] bool takeRooms(std::size_t workers)
    {
        return rooms_.take(workers, cells_.isInFile() ? roomRows_ * columns_ : 0);
    }

    std::size_t rows() const { return rows_; }

    // Lines past the last row are of no interest.
    bool decode(const Lines& lines, std::size_t firstRow, std::size_t worker)
    {
        const bool inFile = cells_.isInFile();
        const bool mayBeEmpty = lines.text.find(',') != std::string_view::npos;
        const std::size_t end = std::min(firstRow + lines.ends.size(), rows_);
        std::size_t at = 0;
        for (std::size_t row = firstRow; row < end; row += roomRows_) {
            const std::size_t rows = std::min(roomRows_, end - row);
            const std::span<float> target = inFile ? rooms_.of(worker).first(rows * columns_)
                                                   : cells_.inMemory().subspan(row * columns_, rows * columns_);
            for (std::size_t i = 0; i < rows; ++i) {
                const std::size_t lineEnd = lines.ends[row - firstRow + i];
                if (!parseLine(lines.text.substr(at, lineEnd - at), mayBeEmpty,
                               target.subspan(i * columns_, columns_))) {
                    return false;
                }
                at = lineEnd;
            }
            if (inFile && !cells_.put(row * columns_, target)) {
                return false;
            }
        }
        return true;
    }

private:
    static constexpr std::size_t kRoomCells = std::size_t{1} << 16;

    std::size_t columns_;
    std::size_t rows_;
    std::size_t roomRows_;
    CellStore& cells_;
    WorkerRooms<float> rooms_;
};

} // namespace

bool decodeAsc(const GridLook& look, CellStore& cells)
{
    const auto lineBytes =
        static_cast<std::size_t>(look.size - look.cellsFrom) / static_cast<std::size_t>(look.header.nrows);
    LinePieces pieces(look.file, look.cellsFrom, look.size, lineBytes);
    Decoder decoder(look.header, cells);
    WorkerRooms<std::uint32_t> ends;
    const std::size_t workers = workersOf(pieces.count());
    if (!pieces.takeRooms() || !ends.take(workers, rowsIn(pieces.bytes(), look.header)) ||
        !decoder.takeRooms(workers)) {
        return false;
    }
    RowTurns turns;
    std::atomic<bool> good = true;
    parallelFor(pieces.count(), [&](std::size_t piece, std::size_t worker) {
        RowTurn turn(turns, piece);
        const bool wanted = good && turns.rows() < decoder.rows();
        const std::optional<std::string_view> text = wanted ? pieces.read(piece, worker) : std::string_view();
        const Lines lines = linesOf(text.value_or(std::string_view()), ends.of(worker));
        const std::size_t firstRow = turn.take(lines.ends.size());
        if (!text || (good && !decoder.decode(lines, firstRow, worker))) {
            good = false;
        }
    });
    return good && turns.rows() >= decoder.rows();
}

} // namespace gridforge::grid
