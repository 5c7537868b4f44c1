// The region test as any textbook has it, for tests that want a second opinion.
#pragma once

#include <cmath>
#include <cstddef>
#include <vector>

namespace gridforge::test {

// Even-odd crossings of the ring x1, y1, x2, y2 ..., which is closed, in double; and whether the point is too near to an
// edge for that to be the last word.
struct Verdict {
    bool inside = false;
    bool near = false;
};

inline Verdict verdict(const std::vector<double>& ring, double x, double y)
{
    Verdict v;
    for (std::size_t i = 0; i + 3 < ring.size(); i += 2) {
        const double x1 = ring[i];
        const double y1 = ring[i + 1];
        const double x2 = ring[i + 2];
        const double y2 = ring[i + 3];
        const double length = std::hypot(x2 - x1, y2 - y1);
        if (length > 0) {
            const double along = ((x - x1) * (x2 - x1) + (y - y1) * (y2 - y1)) / length;
            const double across = std::abs((x - x1) * (y2 - y1) - (y - y1) * (x2 - x1)) / length;
            v.near = v.near || (across < 0.01 && along > -0.01 && along < length + 0.01);
        }
        if ((y1 > y) != (y2 > y) && x < x1 + (y - y1) / (y2 - y1) * (x2 - x1)) {
            v.inside = !v.inside;
        }
    }
    return v;
}

} // namespace gridforge::test
