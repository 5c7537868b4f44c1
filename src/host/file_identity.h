// Which file a name leads to: links, "./" and, for inputs, letter case give one file several names.
#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string_view>

namespace gridforge {

struct FileIdentity {
    std::uint64_t device = 0;
    std::uint64_t number = 0;
    bool regular = false; // keeps what is written to it, unlike a pipe or a device

    auto operator<=>(const FileIdentity&) const = default;
};

// Nothing if there is no such file yet.
std::optional<FileIdentity> identityOf(int descriptor);
// The file that an output of this name replaces.
std::optional<FileIdentity> identityOfOutput(std::string_view name);
// The file that is read under this name.
std::optional<FileIdentity> identityOfInput(std::string_view name);

} // namespace gridforge
