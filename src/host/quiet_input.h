// Inputs that are looked at before the story of a run opens them: without a word, and without a unit.
#pragma once

#include "host/file_stream.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace gridforge::inline host {

struct QuietInput {
    std::string name; // as the system takes it
    std::int64_t size = 0;
};

// None where the input is missing, or no plain file: what is read from a pipe is gone.
std::optional<QuietInput> findQuietly(std::string_view name);
// A text input, after a byte order mark; closed where it cannot be opened.
FileStream openQuietly(const QuietInput& input);

// All lines of a text input as units give them, at most `most`. None where there are more, or a read is refused.
std::optional<std::vector<std::string>> lookAtLines(std::string_view name, std::size_t most);

} // namespace gridforge::inline host
