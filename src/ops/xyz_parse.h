// Points out of the lines of an .xyz file: x, y and z free-form, whatever follows them on the line. No input or
// output here.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>

namespace gridforge::ops {

inline constexpr std::size_t kPointLineWidth = 1000; // what follows is cut

// One line, without its line end. An empty value (two commas, or a comma at the head) leaves its target. False where a
// value is missing or no number.
bool parsePoint(std::string_view line, double& x, double& y, float& z);

struct PlainPoints {
    std::size_t count = 0; // points found
    std::size_t bytes = 0; // what their lines take, line ends included
};

// Takes lines from the head of `window`, a group of kPointGroup after the other, for as long as they are short and hold
// plain decimals: the points are those of parsePoint. Stops at the first group that is not, or does not lie in the
// window as a whole, or no longer has room in the targets, which are of one size. What follows goes to parsePoint.
PlainPoints parsePlainPoints(std::string_view window, std::span<double> x, std::span<double> y, std::span<float> z);

inline constexpr std::size_t kPointGroup = 4;

// The same, and takes lines of any other form between the groups too, cut at `width`. Stops at the first line that parsePoint
// refuses or that has no end.
PlainPoints parseLines(std::string_view window, std::size_t width, std::span<double> x, std::span<double> y,
                       std::span<float> z);

// How many lines end in `text`.
std::size_t countLineEnds(std::string_view text);

} // namespace gridforge::ops
