#include "grid/asc_decode.h"

#include "core/huge_array.h"
#include "core/worker_rooms.h"
#include "grid/asc_parse.h"
#include "host/file_stream.h"
#include "host/positions.h"
#include "host/threads.h"

#include <algorithm>
#include <atomic>
#include <bit>
#include <cstring>
#include <string_view>
#include <vector>

namespace gridforge::grid {

namespace {

constexpr std::size_t kWindowOfThread = std::size_t{1} << 20; // stays in the cache
constexpr std::size_t kLeastWindow = 2 * kWindowOfThread;
constexpr std::size_t kMostWindow = 16 * kWindowOfThread;
constexpr std::size_t kPieceBytes = std::size_t{1} << 18;
// Cells are set to these bits first, which no text gives: a cell that still has them had an empty value.
constexpr std::uint32_t kUntouched = 0x7FA5C3E1U;

// Whole lines of a window, each of them a row.
struct LinePiece {
    std::size_t firstRow = 0;
    std::vector<std::string_view> lines;
};

std::size_t windowBytes()
{
    return std::clamp(threadCount() * kWindowOfThread, kLeastWindow, kMostWindow);
}

// Text from a file, window after window, each ending with a whole line.
class Windows {
public:
    explicit Windows(const GridLook& look)
        : file_(look.file.empty() ? SystemFile::none : theSystem().open(look.file, OpenFor::reading)),
          next_(look.cellsFrom), end_(look.size),
          room_(std::clamp<std::size_t>(static_cast<std::size_t>(end_ - next_), 1, windowBytes()))
    {
    }
    ~Windows()
    {
        if (file_ != SystemFile::none) {
            theSystem().close(file_);
        }
    }
    Windows(const Windows&) = delete;
    Windows& operator=(const Windows&) = delete;

    [[nodiscard]] bool open() { return file_ != SystemFile::none && text_.allocate(room_) && spare_.allocate(room_); }
    bool atEnd() const { return next_ == end_; }
    // The lines of the window read last.
    std::string_view lines() const { return {text_.all().data(), whole_}; }

    // Reads more after the rest of the last window. False if the system refuses, or a line is too long.
    bool read()
    {
        const std::size_t left = filled_ - whole_;
        std::ranges::copy(text_.all().subspan(whole_, left), spare_.all().begin());
        const auto count = static_cast<std::size_t>(std::min(end_ - next_, static_cast<std::int64_t>(room_ - left)));
        const auto target = std::as_writable_bytes(spare_.all()).subspan(left, count);
        if (!readAllAt(file_, next_, target)) {
            return false;
        }
        spareFilled_ = left + count;
        next_ += static_cast<std::int64_t>(count);
        return true;
    }

    // Goes on to the bytes read last. False if they hold no whole line.
    bool turn()
    {
        std::swap(text_, spare_);
        filled_ = spareFilled_;
        const std::string_view text(text_.all().data(), filled_);
        whole_ = atEnd() ? filled_ : text.rfind('\n') + 1; // npos + 1 is 0
        return whole_ > 0;
    }

private:
    SystemFile file_;
    std::int64_t next_;
    std::int64_t end_;
    std::size_t room_; // of a window
    HugeArray<char> text_;
    HugeArray<char> spare_;
    std::size_t filled_ = 0;
    std::size_t spareFilled_ = 0;
    std::size_t whole_ = 0; // bytes of the text up to the end of its last line
};

// Splits lines into pieces; the last line may lack its line end.
std::vector<LinePiece> split(std::string_view text, std::size_t firstRow)
{
    std::vector<LinePiece> pieces;
    std::size_t left = 0; // bytes that the last piece may still take
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        const std::string_view line = text.substr(0, end == std::string_view::npos ? end : end + 1);
        if (left < line.size()) {
            pieces.push_back({firstRow, {}});
            left = std::max(kPieceBytes, line.size());
        }
        pieces.back().lines.push_back(line);
        left -= line.size();
        ++firstRow;
        text.remove_prefix(line.size());
    }
    return pieces;
}

// False if the line holds anything but the row.
bool parseLine(std::string_view line, std::span<float> row)
{
    const bool mayBeEmpty = line.find(',') != std::string_view::npos;
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

    [[nodiscard]] bool takeRooms() { return rooms_.take(threadCount(), cells_.isInFile() ? roomRows_ * columns_ : 0); }

    std::size_t rows() const { return rows_; }

    bool decode(const LinePiece& piece, std::size_t worker)
    {
        const std::size_t end = std::min(piece.firstRow + piece.lines.size(), rows_);
        for (std::size_t row = piece.firstRow; row < end; row += roomRows_) {
            const std::size_t rows = std::min(roomRows_, end - row);
            const bool inFile = cells_.isInFile();
            const std::span<float> target = inFile ? rooms_.of(worker).first(rows * columns_)
                                                   : cells_.inMemory().subspan(row * columns_, rows * columns_);
            const auto lines = std::span(piece.lines).subspan(row - piece.firstRow, rows);
            if (!parseLines(lines, target) || (inFile && !cells_.put(row * columns_, target))) {
                return false;
            }
        }
        return true;
    }

private:
    static constexpr std::size_t kRoomCells = std::size_t{1} << 16;

    bool parseLines(std::span<const std::string_view> lines, std::span<float> rows) const
    {
        for (std::size_t i = 0; i < lines.size(); ++i) {
            if (!parseLine(lines[i], rows.subspan(i * columns_, columns_))) {
                return false;
            }
        }
        return true;
    }

    std::size_t columns_;
    std::size_t rows_;
    std::size_t roomRows_;
    CellStore& cells_;
    WorkerRooms<float> rooms_;
};

} // namespace

bool decodeAsc(const GridLook& look, CellStore& cells)
{
    Windows windows(look);
    Decoder decoder(look.header, cells);
    if (!windows.open() || !decoder.takeRooms() || !windows.read()) {
        return false;
    }
    std::size_t firstRow = 0;
    std::atomic<bool> good = true;
    while (good && firstRow < decoder.rows()) {
        if (!windows.turn()) {
            return false;
        }
        const std::vector<LinePiece> pieces = split(windows.lines(), firstRow);
        const bool isLast = windows.atEnd();
        // Unless this was the last window, one thread reads the next while the others parse.
        const std::size_t reads = isLast ? 0 : 1;
        parallelFor(pieces.size() + reads, [&](std::size_t piece, std::size_t worker) {
            const bool done = piece < reads ? windows.read() : decoder.decode(pieces[piece - reads], worker);
            if (!done) {
                good = false;
            }
        });
        firstRow = pieces.back().firstRow + pieces.back().lines.size();
        if (isLast) {
            break;
        }
    }
    return good && firstRow >= decoder.rows();
}

} // namespace gridforge::grid
