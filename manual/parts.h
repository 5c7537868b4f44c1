// Lists that rows of the tables hold as one text.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <vector>

namespace gridforge {

// The parts of a text between `separator`; none of an empty text.
inline std::vector<std::string_view> partsOf(std::string_view words, char separator)
{
    std::vector<std::string_view> parts;
    while (!words.empty()) {
        const std::size_t end = std::min(words.find(separator), words.size());
        parts.push_back(words.substr(0, end));
        words.remove_prefix(std::min(end + 1, words.size()));
    }
    return parts;
}

} // namespace gridforge
