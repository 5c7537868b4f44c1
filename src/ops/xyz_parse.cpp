#include "ops/xyz_parse.h"

#include "core/free_form.h"
#include "core/simd.h"
#include "core/text.h"
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

namespace {

// As lines of a file are read: a CR after a full line belongs to the line end.
std::string_view lineText(std::string_view line, std::size_t width)
{
    line = line.substr(0, width + 1);
    line.remove_suffix(line.ends_with('\r') ? 1 : 0);
    return trimRight(line.substr(0, width));
}

} // namespace

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

PlainPoints parseLines(std::string_view window, std::size_t width, std::span<double> x, std::span<double> y,
                       std::span<float> z)
{
    PlainPoints found;
    while (found.count < x.size()) {
        const PlainPoints plain = parsePlainPoints(window.substr(found.bytes), x.subspan(found.count),
                                                   y.subspan(found.count), z.subspan(found.count));
        found.bytes += plain.bytes;
        found.count += plain.count;
        const std::size_t groupEnd = std::min(found.count + kPointGroup, x.size());
        for (; found.count < groupEnd; ++found.count) {
            const std::string_view rest = window.substr(found.bytes);
            const std::size_t length = rest.find('\n');
            const std::size_t i = found.count;
            if (length == std::string_view::npos ||
                !parsePoint(lineText(rest.substr(0, length), width), x[i], y[i], z[i])) {
                return found;
            }
            found.bytes += length + 1;
        }
    }
    return found;
}

} // namespace gridforge::ops
