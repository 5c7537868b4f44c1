// Reads and writes open files by position. Several threads may do so at once.
#pragma once

#include "host/system.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace gridforge::inline host {

// All of the bytes. False if the file ends too early or the system refuses.
[[nodiscard]] bool readAllAt(SystemFile file, std::int64_t position, std::span<std::byte> target);
[[nodiscard]] bool writeAllAt(SystemFile file, std::int64_t position, std::span<const std::byte> bytes);

} // namespace gridforge::inline host
