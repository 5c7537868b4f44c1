// Numbers as .shp, .shx and .dbf hold them: little-endian, except for the words of a Shapefile that are big-endian.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace gridforge::gis::shp {

// The number whose bytes begin at `bytes`, in the given order.
template <typename Number, std::endian order = std::endian::little>
Number fromBytes(const std::byte* bytes)
{
    std::array<std::byte, sizeof(Number)> own;
    std::copy_n(bytes, own.size(), own.begin());
    if constexpr (order != std::endian::native) {
        std::reverse(own.begin(), own.end());
    }
    return std::bit_cast<Number>(own);
}

// Stores the bytes of `value` at `target`, in the given order, and returns the place after them.
template <std::endian order = std::endian::little, typename Number>
char* putBytes(char* target, Number value)
{
    auto own = std::bit_cast<std::array<char, sizeof(Number)>>(value);
    if constexpr (order != std::endian::native) {
        std::reverse(own.begin(), own.end());
    }
    return std::copy(own.begin(), own.end(), target);
}

} // namespace gridforge::gis::shp
