// The console by the calls of Windows.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace gridforge::inline host {

std::int64_t readFromConsole(std::span<char> target);
void writeToConsole(std::string_view text);
bool isConsoleWatched();

} // namespace gridforge::inline host
