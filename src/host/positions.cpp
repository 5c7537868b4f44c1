#include "host/positions.h"

namespace gridforge::inline host {

namespace {

// Repeats the call until all is done: it may do less than asked.
template <typename Bytes, typename Call>
bool doAll(std::int64_t position, Bytes bytes, Call call)
{
    while (!bytes.empty()) {
        const std::int64_t done = call(position, bytes);
        if (done <= 0) {
            return false;
        }
        position += done;
        bytes = bytes.subspan(static_cast<std::size_t>(done));
    }
    return true;
}

} // namespace

bool readAllAt(SystemFile file, std::int64_t position, std::span<std::byte> target)
{
    const std::span<char> chars{reinterpret_cast<char*>(target.data()), target.size()};
    return doAll(position, chars,
                 [file](std::int64_t at, std::span<char> rest) { return theSystem().readAt(file, at, rest); });
}

bool writeAllAt(SystemFile file, std::int64_t position, std::span<const std::byte> bytes)
{
    const std::span<const char> chars{reinterpret_cast<const char*>(bytes.data()), bytes.size()};
    return doAll(position, chars,
                 [file](std::int64_t at, std::span<const char> rest) { return theSystem().writeAt(file, at, rest); });
}

} // namespace gridforge::inline host
