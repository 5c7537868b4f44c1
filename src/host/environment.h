// Settings of the environment. They change no result, and one that cannot be used is ignored.
#pragma once

#include "host/system.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace gridforge::inline host {

// A whole number above 0.
std::optional<std::uint64_t> environmentNumber(const char* name);
// A text that is not blank.
std::optional<std::string> environmentText(const char* name);

// The folders in which a file without a name is tried, one after the other: that of GRIDFORGE_SCRATCH alone or, without it,
// `folder` and the temporary one of `system`.
std::vector<std::string> scratchFolders(const System& system, const std::string& folder);

} // namespace gridforge::inline host
