// Settings of the environment. They change no result, and one that cannot be used is ignored.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace gridforge::inline host {

// A whole number above 0.
std::optional<std::uint64_t> environmentNumber(const char* name);
// A text that is not blank.
std::optional<std::string> environmentText(const char* name);

} // namespace gridforge::inline host
