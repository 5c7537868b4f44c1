#include "grid/asc_decode.h"

#include "core/worker_rooms.h"
#include "grid/asc_parse.h"
#include "host/positions.h"
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

constexpr std::size_t kChunkBytes = std::size_t{1} << 19; // stays in the cache with its cells
// Chunks take turns, and waiting for one costs more than a few cells.
constexpr std::size_t kLeastChunk = std::size_t{1} << 12;
constexpr std::size_t kHintedChunks = 8; // disks want to be read by some megabytes
constexpr std::size_t kLeastReach = std::size_t{1} << 21;
constexpr std::size_t kMostReach = std::size_t{1} << 24;
// Cells are set to these bits first, which no text gives: a cell that still has them had an empty value.
constexpr std::uint32_t kUntouched = 0x7FA5C3E1U;

// Whole lines, each of them a row.
struct Lines {
    std::string_view text;
    std::span<const std::uint32_t> ends; // of each in the text, with its line end
};

// The text of the cells, cut every so many bytes. A line belongs to the chunk that it begins in.
class Chunks {
public:
    explicit Chunks(const GridLook& look)
        : file_(theSystem().open(look.file, OpenFor::reading)), from_(look.cellsFrom), end_(look.size)
    {
        const auto bytes = static_cast<std::size_t>(end_ - from_);
        const std::size_t line = bytes / static_cast<std::size_t>(look.header.nrows);
        // If a line took up much of a chunk, many bytes would be read twice.
        bytes_ = std::max(kLeastChunk, std::min(bytes, cellsPerPiece(std::max(kChunkBytes, 4 * line))));
        usualReach_ = line + line / 4;
        reach_ = std::clamp(4 * line, kLeastReach, kMostReach);
        count_ = (bytes + bytes_ - 1) / bytes_;
    }
    ~Chunks()
    {
        if (file_ != SystemFile::none) {
            theSystem().close(file_);
        }
    }
    Chunks(const Chunks&) = delete;
    Chunks& operator=(const Chunks&) = delete;

    [[nodiscard]] bool takeRooms()
    {
        return file_ != SystemFile::none && text_.take(workersOf(count_), 1 + bytes_ + reach_) &&
               ends_.take(workersOf(count_), bytes_);
    }
    std::size_t count() const { return count_; }

    // The lines stay in the room of the worker until its next call. Nothing if the system refuses or a line is too long.
    std::optional<Lines> read(std::size_t chunk, std::size_t worker)
    {
        // The byte before the chunk says whether a line begins with it.
        const std::size_t before = chunk == 0 ? 0 : 1;
        const std::int64_t start = from_ + static_cast<std::int64_t>(chunk * bytes_);
        const std::size_t length = before + std::min(bytes_, static_cast<std::size_t>(end_ - start));
        if (chunk % kHintedChunks == 0) {
            theSystem().willRead(file_, start, static_cast<std::int64_t>(kHintedChunks * bytes_));
        }
        TextWindow window{text_.of(worker), start - static_cast<std::int64_t>(before), 0};
        if (!readOn(window, length + usualReach_)) {
            return std::nullopt;
        }
        const std::size_t head = chunk == 0 ? 0 : window.text().substr(0, length - 1).find('\n') + 1;
        if (chunk > 0 && head == 0) {
            return Lines(); // all of it belongs to a line that began before it
        }
        const std::span<std::uint32_t> ends = ends_.of(worker);
        std::size_t lines = 0;
        std::size_t at = head;
        while (at < length) {
            const std::optional<std::size_t> lineEnd = endOfLine(window, at);
            if (!lineEnd) {
                return std::nullopt;
            }
            at = *lineEnd;
            ends[lines++] = static_cast<std::uint32_t>(at - head);
        }
        return Lines{window.text().substr(head, at - head), ends.first(lines)};
    }

private:
    struct TextWindow {
        std::span<char> room;
        std::int64_t start; // in the file
        std::size_t filled;

        std::string_view text() const { return {room.data(), filled}; }
    };

    // Reads `wanted` more bytes, or what is left. False if the room is full or the system refuses.
    bool readOn(TextWindow& window, std::size_t wanted) const
    {
        const std::int64_t from = window.start + static_cast<std::int64_t>(window.filled);
        const std::size_t left = window.room.size() - window.filled;
        const std::size_t count = std::min({wanted, left, static_cast<std::size_t>(end_ - from)});
        const auto target = std::as_writable_bytes(window.room.subspan(window.filled, count));
        window.filled += count;
        return count > 0 && readAllAt(file_, from, target);
    }

    // The last line may lack its line end.
    std::optional<std::size_t> endOfLine(TextWindow& window, std::size_t at) const
    {
        std::size_t found = window.text().find('\n', at);
        while (found == std::string_view::npos) {
            const std::size_t sought = window.filled;
            if (window.start + static_cast<std::int64_t>(sought) == end_) {
                return sought;
            }
            if (!readOn(window, sought)) {
                return std::nullopt;
            }
            found = window.text().find('\n', sought);
        }
        return found + 1;
    }

    SystemFile file_;
    std::int64_t from_;
    std::int64_t end_;
    std::size_t bytes_ = 0;
    std::size_t usualReach_ = 0; // what is read past a chunk for the rest of its last line
    std::size_t reach_ = 0;      // what a line may have past its chunk
    std::size_t count_ = 0;
    WorkerRooms<char> text_;
    WorkerRooms<std::uint32_t> ends_;
};

// Gives chunks the numbers of their rows in the order of the text.
class RowTurns {
public:
    // The number of rows before those of the chunk, which are `rows`. Waits for all earlier chunks: each of them has begun, and
    // must make this call.
    std::size_t take(std::size_t chunk, std::size_t rows)
    {
        turns_.await(chunk);
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
    Chunks chunks(look);
    Decoder decoder(look.header, cells);
    if (!chunks.takeRooms() || !decoder.takeRooms(workersOf(chunks.count()))) {
        return false;
    }
    RowTurns turns;
    std::atomic<bool> good = true;
    parallelFor(chunks.count(), [&](std::size_t chunk, std::size_t worker) {
        const bool wanted = good && turns.rows() < decoder.rows();
        const std::optional<Lines> lines = wanted ? chunks.read(chunk, worker) : Lines();
        const std::size_t firstRow = turns.take(chunk, lines ? lines->ends.size() : 0);
        if (!lines || (good && !decoder.decode(*lines, firstRow, worker))) {
            good = false;
        }
    });
    return good && turns.rows() >= decoder.rows();
}

} // namespace gridforge::grid
