// Moves the bytes of a run and does nothing else: reads every input through one buffer, then writes as many bytes to each
// output, with their space reserved. What a run of the tool takes beyond this is its own cost.
//
// usage: move_bytes INPUT... [-o OUTPUT BYTES]...

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <string_view>
#include <sys/types.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr std::size_t kBuffer = std::size_t{1} << 20U;

[[noreturn]] void fail(const char* what, const char* name)
{
    std::fprintf(stderr, "move_bytes: cannot %s %s\n", what, name);
    std::exit(EXIT_FAILURE);
}

void readThrough(const char* name, std::vector<char>& buffer)
{
    const int file = open(name, O_RDONLY | O_CLOEXEC);
    ssize_t count = file < 0 ? -1 : 1;
    while (count > 0) {
        count = read(file, buffer.data(), buffer.size());
    }
    if (count < 0) {
        fail("read", name);
    }
    close(file);
}

void writeBytes(const char* name, off_t bytes, const std::vector<char>& buffer)
{
    const int file = open(name, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (file < 0) {
        fail("create", name);
    }
    if (bytes > 0) {
        // A hint: some file systems cannot reserve.
        [[maybe_unused]] const int ignored = fallocate(file, FALLOC_FL_KEEP_SIZE, 0, bytes);
    }
    while (bytes > 0) {
        const auto wanted =
            static_cast<std::size_t>(bytes) < buffer.size() ? static_cast<std::size_t>(bytes) : buffer.size();
        const ssize_t count = write(file, buffer.data(), wanted);
        if (count <= 0) {
            fail("write", name);
        }
        bytes -= count;
    }
    if (close(file) != 0) {
        fail("close", name);
    }
}

} // namespace

int main(int count, char** words)
{
    std::vector<char> buffer(kBuffer);
    for (int i = 1; i < count; ++i) {
        if (std::string_view(words[i]) != "-o") {
            readThrough(words[i], buffer);
        } else if (i + 2 < count) {
            writeBytes(words[i + 1], static_cast<off_t>(std::atoll(words[i + 2])), buffer);
            i += 2;
        }
    }
    return EXIT_SUCCESS;
}
