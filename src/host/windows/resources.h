// What the process may take, by the calls of Windows.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace gridforge::inline host {

std::size_t processorsToUse();
std::string folderForTemporaryFiles();
std::uint64_t memoryLeftToTake();

} // namespace gridforge::inline host
