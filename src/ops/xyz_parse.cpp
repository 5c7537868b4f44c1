#include "ops/xyz_parse.h"

#include "core/numbers.h"
#include "core/simd.h"
#include "ops/xyz_parse_avx2.h"

#include <algorithm>
#include <cassert>
#include <cstdint>

namespace gridforge::ops {

bool parsePoint(std::string_view line, double& x, double& y, float& z)
{
    FreeForm values(line);
    return values.take(x) && values.take(y) && values.take(z);
}

std::size_t countLineEnds(std::string_view text)
{
    constexpr std::size_t kPiece = 128; // its count fits a byte, and so the loop a vector of bytes
    std::size_t count = 0;
    for (; text.size() >= kPiece; text.remove_prefix(kPiece)) {
        std::uint8_t inPiece = 0;
        for (std::size_t i = 0; i < kPiece; ++i) {
            inPiece = static_cast<std::uint8_t>(inPiece + (text[i] == '\n' ? 1 : 0));
        }
        count += inPiece;
    }
    return count + static_cast<std::size_t>(std::ranges::count(text, '\n'));
}

PlainPoints parsePlainPoints(std::string_view window, std::span<double> x, std::span<double> y, std::span<float> z)
{
    assert(x.size() == y.size() && x.size() == z.size());
    return hasAvx2() ? parsePointGroups(window, x, y, z) : PlainPoints{};
}

} // namespace gridforge::ops
