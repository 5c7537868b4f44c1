// Text in a field of fixed width, padded with blanks: the form in records that programs outside share.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
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
        // Most of a wide field is padding, which goes in blocks.
        constexpr std::size_t kBlock = 256;
        static constexpr auto kBlanks = [] {
            std::array<char, kBlock> blanks{};
            blanks.fill(' ');
            return blanks;
        }();
        std::size_t count = width;
        while (count >= kBlock && std::memcmp(characters_.data() + count - kBlock, kBlanks.data(), kBlock) == 0) {
            count -= kBlock;
        }
        while (count > 0 && (characters_[count - 1] == ' ' || characters_[count - 1] == '\0')) {
            --count;
        }
        return {characters_.data(), count};
    }
    bool empty() const { return view().empty(); }
    void clear() { characters_.fill(' '); }

private:
    std::array<char, width> characters_;
};

} // namespace gridforge::inline core
