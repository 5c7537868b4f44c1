// A text file in pieces of whole lines, read by several threads.
#pragma once

#include "core/worker_rooms.h"
#include "host/system.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace gridforge::inline host {

// The file is cut every so many bytes; a line belongs to the piece that it begins in.
class LinePieces {
public:
    // The bytes of `file`, as the system takes its name, from position `from` to `end`; a line has about `lineBytes` of them.
    LinePieces(const std::string& file, std::int64_t from, std::int64_t end, std::size_t lineBytes);
    ~LinePieces();
    LinePieces(const LinePieces&) = delete;
    LinePieces& operator=(const LinePieces&) = delete;

    // False if the file cannot be opened, or out of memory.
    [[nodiscard]] bool takeRooms();
    std::size_t count() const { return count_; }
    // So many bytes further the next piece begins.
    std::size_t bytes() const { return bytes_; }

    // The lines of a piece, with their ends; the last line of the file may lack its end. They stay in the room of the worker
    // until its next call. Nothing if the system refuses or a line is too long.
    std::optional<std::string_view> read(std::size_t piece, std::size_t worker);

private:
    struct TextWindow;

    bool readOn(TextWindow& window, std::size_t wanted) const;
    std::optional<std::size_t> endOfLine(TextWindow& window, std::size_t at) const;

    SystemFile file_;
    std::int64_t from_;
    std::int64_t end_;
    std::size_t bytes_ = 0;
    std::size_t usualReach_ = 0; // what is read past a piece for the rest of its last line
    std::size_t reach_ = 0;      // what a line may have past its piece
    std::size_t count_ = 0;
    WorkerRooms<char> text_;
};

} // namespace gridforge::inline host
