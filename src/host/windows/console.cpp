#include "host/windows/console.h"

#include "host/windows/names.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <windows.h>

namespace gridforge::inline host {

namespace {

constexpr wchar_t kEndOfInput = 26; // Ctrl+Z, at the start of a line

bool isWindow(HANDLE stream)
{
    DWORD mode = 0;
    return GetConsoleMode(stream, &mode) != 0;
}

// What a person types, whatever the code page.
std::int64_t readTyped(HANDLE stream, std::span<char> target)
{
    constexpr std::size_t kMostBytesEach = 3;
    std::array<wchar_t, 256> typed = {};
    DWORD count = 0;
    const std::size_t wanted = std::min(typed.size(), target.size() / kMostBytesEach) - 1;
    if (ReadConsoleW(stream, typed.data(), static_cast<DWORD>(wanted), &count, nullptr) == 0 || count == 0 ||
        typed.front() == kEndOfInput) {
        return 0;
    }
    DWORD rest = 0;
    if (IS_HIGH_SURROGATE(typed.at(count - 1)) && ReadConsoleW(stream, &typed.at(count), 1, &rest, nullptr) != 0) {
        count += rest; // the other half of a character
    }
    const std::string text = narrow({typed.data(), count});
    std::copy(text.begin(), text.end(), target.begin());
    return static_cast<std::int64_t>(text.size());
}

} // namespace

// A closed or broken stream is at its end.
std::int64_t readFromConsole(std::span<char> target)
{
    const HANDLE stream = GetStdHandle(STD_INPUT_HANDLE);
    if (isWindow(stream)) {
        return readTyped(stream, target);
    }
    DWORD count = 0;
    const auto wanted = static_cast<DWORD>(std::min<std::size_t>(target.size(), MAXDWORD));
    return ReadFile(stream, target.data(), wanted, &count, nullptr) != 0 ? std::int64_t{count} : 0;
}

void writeToConsole(std::string_view text)
{
    constexpr std::size_t kMostAtOnce = 32768; // older consoles refuse more
    const HANDLE stream = GetStdHandle(STD_OUTPUT_HANDLE);
    while (!text.empty()) {
        DWORD count = 0;
        const auto wanted = static_cast<DWORD>(std::min(text.size(), kMostAtOnce));
        if (WriteFile(stream, text.data(), wanted, &count, nullptr) == 0 || count == 0) {
            return; // nobody reads the console any more; the run goes on for its files
        }
        text.remove_prefix(count);
    }
}

bool isConsoleWatched()
{
    return isWindow(GetStdHandle(STD_OUTPUT_HANDLE));
}

} // namespace gridforge::inline host
