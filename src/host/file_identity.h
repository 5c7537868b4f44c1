// Which file a name leads to: links, "./" and, for inputs, letter case give one file several names.
#pragma once

#include "host/system.h"

#include <optional>
#include <string_view>

namespace gridforge::inline host {

// The file that an output of this name replaces; nothing if it does not exist yet.
std::optional<FileIdentity> identityOfOutput(std::string_view name);
// The file that is read under this name.
std::optional<FileIdentity> identityOfInput(std::string_view name);

} // namespace gridforge::inline host
