// Inputs that are read before the run opens them: nothing is said, and no unit is used.
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

// Nothing if the input is missing, or no plain file: what is read from a pipe is gone.
std::optional<QuietInput> findQuietly(std::string_view name);
// A text input, after its byte order mark; closed if it cannot be opened.
FileStream openQuietly(const QuietInput& input);

// All lines of a text input as units return them. Nothing if there are more than `most`, or a read is refused.
std::optional<std::vector<std::string>> lookAtLines(std::string_view name, std::size_t most);

} // namespace gridforge::inline host
