#include "host/file_stream.h"

#include "core/text.h"
#include "host/file_system.h"

#include <algorithm>
#include <cassert>
#include <cstring>
#include <optional>

namespace gridforge::inline host {

namespace {

constexpr std::size_t kBufferSize = std::size_t{1} << 20;
// Where a device gives bytes without end, the run ends.
constexpr std::int64_t kLongestLine = std::int64_t{1} << 28;
// A byte that no header begins with.
constexpr char kUnfinishedByte = '?';

// A run mostly opens one file after the other, so one buffer, whose pages are in memory already, is kept for the next.
std::unique_ptr<char[]>& spareBuffer()
{
    static std::unique_ptr<char[]> spare;
    return spare;
}

} // namespace

FileStream::FileStream(SystemFile file, Direction direction, std::string name)
    : file_(file), direction_(direction), name_(std::move(name))
{
}

FileStream::~FileStream()
{
    [[maybe_unused]] const bool closed = close();
}

FileStream::FileStream(FileStream&& other) noexcept
{
    *this = std::move(other);
}

FileStream& FileStream::operator=(FileStream&& other) noexcept
{
    std::swap(file_, other.file_);
    std::swap(direction_, other.direction_);
    std::swap(name_, other.name_);
    std::swap(buffer_, other.buffer_);
    std::swap(capacity_, other.capacity_);
    std::swap(begin_, other.begin_);
    std::swap(end_, other.end_);
    std::swap(bufferOffset_, other.bufferOffset_);
    std::swap(textStart_, other.textStart_);
    std::swap(lineStart_, other.lineStart_);
    std::swap(unreadable_, other.unreadable_);
    std::swap(unfinished_, other.unfinished_);
    std::swap(firstByte_, other.firstByte_);
    return *this;
}

std::optional<FileIdentity> FileStream::identity() const
{
    const std::optional<FileFacts> facts = isOpen() ? theSystem().factsOfOpen(file_) : std::nullopt;
    return facts ? std::optional(facts->identity) : std::nullopt;
}

bool FileStream::close()
{
    if (!isOpen()) {
        return true;
    }
    bool good = direction_ == Direction::in || flush();
    if (!theSystem().close(file_)) {
        good = good && direction_ == Direction::in;
    }
    file_ = SystemFile::none;
    if (capacity_ == kBufferSize) {
        spareBuffer() = std::move(buffer_);
    }
    buffer_.reset();
    capacity_ = 0;
    return good;
}

void FileStream::takeBuffer()
{
    if (capacity_ == 0) {
        buffer_ = spareBuffer() ? std::move(spareBuffer()) : std::make_unique_for_overwrite<char[]>(kBufferSize);
        capacity_ = kBufferSize;
    }
}

// --- Reading ---------------------------------------------------------------------------------------------------------

void FileStream::skipByteOrderMark()
{
    const auto buffered = [this] { return std::string_view(buffer_.get(), end_); };
    while (end_ < kByteOrderMark.size() && kByteOrderMark.starts_with(buffered()) && fill()) {
    }
    if (buffered().starts_with(kByteOrderMark)) {
        begin_ = kByteOrderMark.size();
        textStart_ = position();
    }
}

bool FileStream::fill()
{
    takeBuffer();
    if (begin_ > 0) {
        std::memmove(buffer_.get(), buffer_.get() + begin_, end_ - begin_);
        bufferOffset_ += static_cast<std::int64_t>(begin_);
        end_ -= begin_;
        begin_ = 0;
    }
    if (end_ == capacity_ || unreadable_) {
        return false;
    }
    const std::int64_t got = theSystem().read(file_, {buffer_.get() + end_, capacity_ - end_});
    if (got <= 0) {
        unreadable_ = got < 0;
        return false;
    }
    end_ += static_cast<std::size_t>(got);
    return true;
}

bool FileStream::hasByte()
{
    return begin_ != end_ || fill();
}

bool FileStream::atEnd()
{
    return !hasByte() && !unreadable_;
}

bool FileStream::readLine(std::string& line, std::size_t width)
{
    line.clear();
    lineStart_ = position();
    if (!hasByte()) {
        return false;
    }
    bool ended = false;
    while (!ended && hasByte()) {
        const std::string_view bytes = ready();
        const std::size_t newline = bytes.find('\n');
        ended = newline != std::string_view::npos;
        const std::string_view piece = ended ? bytes.substr(0, newline) : bytes;
        // One character more than the width, so that a CR after a full line is seen as such.
        line += piece.substr(0, width + 1 - std::min(line.size(), width + 1));
        take(piece.size() + (ended ? 1 : 0));
        unreadable_ = unreadable_ || position() - lineStart_ > kLongestLine;
    }
    if (line.ends_with('\r')) {
        line.pop_back();
    }
    line.resize(trimRight(std::string_view(line).substr(0, width)).size());
    return ended || !unreadable_; // a line that a failed read cuts short is not returned
}

void FileStream::stepBack()
{
    [[maybe_unused]] const bool found = seek(lineStart_); // a failure shows at the next read
}

std::string_view FileStream::ready()
{
    if (begin_ == end_) {
        fill();
    }
    return {buffer_.get() + begin_, end_ - begin_};
}

std::string_view FileStream::more()
{
    fill();
    return {buffer_.get() + begin_, end_ - begin_};
}

bool FileStream::readBytes(std::span<std::byte> target)
{
    const std::size_t buffered = std::min(end_ - begin_, target.size());
    if (buffered > 0) {
        std::memcpy(target.data(), buffer_.get() + begin_, buffered);
        begin_ += buffered;
        target = target.subspan(buffered);
    }
    if (target.size() < kBufferSize) {
        // Records of a few bytes come out of the buffer.
        while (!target.empty()) {
            if (!hasByte()) {
                return false;
            }
            const std::size_t count = std::min(end_ - begin_, target.size());
            std::memcpy(target.data(), buffer_.get() + begin_, count);
            begin_ += count;
            target = target.subspan(count);
        }
        return true;
    }
    bufferOffset_ += static_cast<std::int64_t>(end_);
    begin_ = 0;
    end_ = 0;
    while (!target.empty()) {
        if (unreadable_) {
            return false;
        }
        const std::int64_t got = theSystem().read(file_, {reinterpret_cast<char*>(target.data()), target.size()});
        if (got <= 0) {
            unreadable_ = got < 0;
            return false;
        }
        bufferOffset_ += got;
        target = target.subspan(static_cast<std::size_t>(got));
    }
    return true;
}

// --- Writing ---------------------------------------------------------------------------------------------------------

bool FileStream::writeOut(const char* bytes, std::size_t count)
{
    while (count > 0) {
        const std::int64_t written = theSystem().write(file_, {bytes, count});
        if (written <= 0) {
            return false;
        }
        bytes += written;
        count -= static_cast<std::size_t>(written);
        bufferOffset_ += written;
    }
    return true;
}

bool FileStream::flush()
{
    // Drops what could not be written, so that the end of the run does not fail at it again.
    const std::size_t count = std::exchange(end_, 0);
    if (unfinished_ && bufferOffset_ == 0 && count > 0) {
        firstByte_ = std::exchange(buffer_[0], kUnfinishedByte);
    }
    return count == 0 || writeOut(buffer_.get(), count);
}

bool FileStream::write(std::string_view bytes)
{
    if (bytes.size() >= kBufferSize) {
        assert(!unfinished_ || position() > 0); // the first byte goes through the buffer
        return flush() && writeOut(bytes.data(), bytes.size());
    }
    if (!room(bytes.size())) {
        return false;
    }
    if (bytes.empty()) {
        return true; // an empty view may be null; memcpy must not see it
    }
    std::memcpy(buffer_.get() + end_, bytes.data(), bytes.size());
    end_ += bytes.size();
    return true;
}

bool FileStream::room(std::size_t count)
{
    takeBuffer();
    return capacity_ - end_ >= count || flush();
}

std::span<char> FileStream::roomLeft()
{
    return {buffer_.get() + end_, capacity_ - end_};
}

bool FileStream::truncateHere()
{
    return flush() && theSystem().truncate(file_, bufferOffset_);
}

void FileStream::reserve(std::int64_t count)
{
    theSystem().reserve(file_, position(), count);
}

void FileStream::markUnfinished()
{
    const std::optional<FileIdentity> file = identity();
    unfinished_ = file && file->regular;
}

bool FileStream::markFinished()
{
    if (!unfinished_) {
        return true;
    }
    if (!flush()) {
        return false;
    }
    unfinished_ = false;
    return bufferOffset_ == 0 || theSystem().writeAt(file_, 0, {&firstByte_, 1}) == 1;
}

// --- Both ------------------------------------------------------------------------------------------------------------

std::int64_t FileStream::position() const
{
    return bufferOffset_ + static_cast<std::int64_t>(direction_ == Direction::in ? begin_ : end_);
}

bool FileStream::seek(std::int64_t position)
{
    if (position == 0) {
        position = textStart_;
    }
    if (direction_ == Direction::out) {
        if (!flush()) {
            return false;
        }
    } else if (position >= bufferOffset_ && position <= bufferOffset_ + static_cast<std::int64_t>(end_)) {
        begin_ = static_cast<std::size_t>(position - bufferOffset_);
        return true;
    }
    const bool moved = theSystem().seek(file_, position);
    if (direction_ == Direction::in && !moved) {
        unreadable_ = true;
    }
    bufferOffset_ = position;
    begin_ = 0;
    end_ = 0;
    return moved || direction_ == Direction::in;
}

} // namespace gridforge::inline host
