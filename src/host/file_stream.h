// The open file of a unit: a file of the system and a buffer that either reads ahead or collects what is written.
#pragma once

#include "host/system.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>

namespace gridforge::inline host {

enum class Direction { in, out };

class FileStream {
public:
    FileStream() = default;
    FileStream(SystemFile file, Direction direction, std::string name);
    ~FileStream();
    FileStream(FileStream&& other) noexcept;
    FileStream& operator=(FileStream&& other) noexcept;
    FileStream(const FileStream&) = delete;
    FileStream& operator=(const FileStream&) = delete;

    bool isOpen() const { return file_ != SystemFile::none; }
    SystemFile file() const { return file_; }
    const std::string& name() const { return name_; }
    bool isOutput() const { return direction_ == Direction::out; }
    // Nothing when closed.
    std::optional<FileIdentity> identity() const;
    // Writes what is buffered and closes; false when either fails.
    [[nodiscard]] bool close();

    // For text that has not been read yet: skips its byte order mark, if it has one. Position 0 is then the byte after
    // the mark.
    void skipByteOrderMark();

    // Reading. False and empty results mean the end of the file or a failed read. atEnd is false after a failed read.
    bool atEnd();
    bool failed() const { return unreadable_; }
    bool readLine(std::string& line, std::size_t width);
    void stepBack();
    std::string_view ready();
    std::string_view more();
    void take(std::size_t count) { begin_ += count; }
    bool readBytes(std::span<std::byte> target);

    // Writing. False when the file could not be written.
    [[nodiscard]] bool write(std::string_view bytes);
    [[nodiscard]] bool room(std::size_t count);
    std::span<char> roomLeft();
    void wrote(std::size_t count) { end_ += count; }
    [[nodiscard]] bool flush();
    [[nodiscard]] bool truncateHere();
    void reserve(std::int64_t count);
    // Until markFinished a regular file begins with another byte than the first one written, so that the file that a killed
    // run leaves does not look whole.
    void markUnfinished();
    [[nodiscard]] bool markFinished();

    std::int64_t position() const;
    // An input that cannot be moved there fails its next read.
    [[nodiscard]] bool seek(std::int64_t position);

private:
    void takeBuffer();
    bool hasByte(); // reads on if the buffer is used up
    bool fill();    // reads more after the buffered bytes; false if nothing came
    bool writeOut(const char* bytes, std::size_t count);

    SystemFile file_ = SystemFile::none;
    Direction direction_ = Direction::in;
    std::string name_;
    std::unique_ptr<char[]> buffer_;
    std::size_t capacity_ = 0;
    std::size_t begin_ = 0;         // reading: next byte to take
    std::size_t end_ = 0;           // end of the bytes in the buffer
    std::int64_t bufferOffset_ = 0; // position in the file of the first byte of the buffer
    std::int64_t textStart_ = 0;    // position of the first byte after a byte order mark
    std::int64_t lineStart_ = 0;    // position of the last line read
    bool unreadable_ = false;       // the system refused a read or a position
    bool unfinished_ = false;
    char firstByte_ = 0; // of an unfinished file
};

} // namespace gridforge::inline host
