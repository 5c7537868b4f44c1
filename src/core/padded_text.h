// Text in a field of fixed width, padded with blanks: the form in records that programs outside share.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

namespace gridforge::inline core {

template <std::size_t width>
class PaddedText {
public:
    constexpr PaddedText() { characters_.fill(' '); }

    // Cut at the width.
    PaddedText& operator=(std::string_view text)
    {
        const std::size_t count = std::min(text.size(), width);
        std::copy_n(text.begin(), count, characters_.begin());
        std::fill(characters_.begin() + static_cast<std::ptrdiff_t>(count), characters_.end(), ' ');
        return *this;
    }

    // Without the padding, in which zero bytes count as blanks.
    std::string_view view() const
    {
        constexpr std::string_view kPadding(" \0", 2);
        const std::string_view all(characters_.data(), width);
        return all.substr(0, all.find_last_not_of(kPadding) + 1);
    }
    bool empty() const { return view().empty(); }
    void clear() { characters_.fill(' '); }

private:
    std::array<char, width> characters_;
};

} // namespace gridforge::inline core
