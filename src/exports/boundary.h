// What all exported routines share: text in the form of outside callers, and no exception that leaves.
#pragma once

#include "core/text.h"
#include "host/ends.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>

namespace gridforge::exports {

// A text of a caller without its padding.
inline std::string_view content(const char* text, std::size_t length)
{
    return trimRight({text, length});
}

// Fills a caller's text: cut, or padded with blanks.
inline void put(std::string_view value, char* text, std::size_t length)
{
    const std::size_t count = std::min(value.size(), length);
    std::copy_n(value.begin(), count, text);
    std::fill_n(text + count, length - count, ' ');
}

// Runs `work` for a caller that may be of another language and cannot catch what is thrown.
template <typename Work>
auto answer(Work work) -> decltype(work())
{
    try {
        return work();
    } catch (const std::bad_alloc&) {
        failMemory();
    } catch (const std::length_error&) { // longer than a text can be
        failMemory();
    }
}

// Fills `result` with the text that `work` returns.
template <typename Work>
void give(char* result, std::size_t resultLength, Work work)
{
    answer([&] { put(work(), result, resultLength); });
}

// Runs a routine that changes its text in place and returns a logical.
inline std::int32_t askInPlace(bool (*routine)(std::string&), char* text, std::size_t length)
{
    return answer([&] {
        std::string value(content(text, length));
        const bool result = routine(value);
        put(value, text, length);
        return static_cast<std::int32_t>(result);
    });
}

} // namespace gridforge::exports
