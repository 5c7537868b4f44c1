#include "host/line_pieces.h"

#include "host/positions.h"
#include "host/threads.h"

#include <algorithm>
#include <span>

namespace gridforge::inline host {

namespace {

constexpr std::size_t kUsualPiece = std::size_t{1} << 19; // stays in the cache with what is made of it
// Less is not worth the turns that pieces take.
constexpr std::size_t kLeastPieceBytes = std::size_t{1} << 12;
constexpr std::size_t kHintedPieces = 8; // disks want to be read by some megabytes
constexpr std::size_t kLeastReach = std::size_t{1} << 18;
constexpr std::size_t kMostReach = std::size_t{1} << 24;

} // namespace

struct LinePieces::TextWindow {
    std::span<char> room;
    std::int64_t start; // in the file
    std::size_t filled;

    std::string_view text() const { return {room.data(), filled}; }
};

LinePieces::LinePieces(const std::string& file, std::int64_t from, std::int64_t end, std::size_t lineBytes)
    : file_(theSystem().open(file, OpenFor::reading)), from_(from), end_(end)
{
    const auto bytes = static_cast<std::size_t>(end_ - from_);
    // If a line took up much of a piece, many bytes would be read twice.
    bytes_ = std::max(kLeastPieceBytes, std::min(bytes, cellsPerPiece(std::max(kUsualPiece, 4 * lineBytes))));
    usualReach_ = lineBytes + lineBytes / 4;
    reach_ = std::clamp(4 * lineBytes, kLeastReach, kMostReach);
    count_ = (bytes + bytes_ - 1) / bytes_;
}

LinePieces::~LinePieces()
{
    if (file_ != SystemFile::none) {
        theSystem().close(file_);
    }
}

bool LinePieces::takeRooms()
{
    return file_ != SystemFile::none && text_.take(workersOf(count_), 1 + bytes_ + reach_);
}

std::optional<std::string_view> LinePieces::read(std::size_t piece, std::size_t worker)
{
    // The byte before the piece says whether a line begins with it.
    const std::size_t before = piece == 0 ? 0 : 1;
    const std::int64_t start = from_ + static_cast<std::int64_t>(piece * bytes_);
    const std::size_t length = before + std::min(bytes_, static_cast<std::size_t>(end_ - start));
    if (piece % kHintedPieces == 0) {
        theSystem().willRead(file_, start, static_cast<std::int64_t>(kHintedPieces * bytes_), ReadOf::all);
    }
    TextWindow window{text_.of(worker), start - static_cast<std::int64_t>(before), 0};
    if (!readOn(window, length + usualReach_)) {
        return std::nullopt;
    }
    const std::size_t head = piece == 0 ? 0 : window.text().substr(0, length - 1).find('\n') + 1;
    if (piece > 0 && head == 0) {
        return std::string_view(); // all of it belongs to a line that began before it
    }
    const std::optional<std::size_t> lastEnd = endOfLine(window, length - 1);
    return lastEnd ? std::optional(window.text().substr(head, *lastEnd - head)) : std::nullopt;
}

// Reads `wanted` more bytes, or what is left. False if the room is full or the system refuses.
bool LinePieces::readOn(TextWindow& window, std::size_t wanted) const
{
    const std::int64_t from = window.start + static_cast<std::int64_t>(window.filled);
    const std::size_t left = window.room.size() - window.filled;
    const std::size_t count = std::min({wanted, left, static_cast<std::size_t>(end_ - from)});
    const auto target = std::as_writable_bytes(window.room.subspan(window.filled, count));
    window.filled += count;
    return count > 0 && readAllAt(file_, from, target);
}

// Past the first line end from `at` on, or the end of the file.
std::optional<std::size_t> LinePieces::endOfLine(TextWindow& window, std::size_t at) const
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

} // namespace gridforge::inline host
