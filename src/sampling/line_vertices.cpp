#include "sampling/line_vertices.h"

#include "plane/geometry.h"
#include "plane/line_points.h"

#include <algorithm>

namespace gridforge::sampling {

namespace {

std::int32_t insertedBefore(const gis::Coordinates& read, std::size_t i, float spacing)
{
    return pointsToInsert(read.x[i - 1], read.y[i - 1], read.x[i], read.y[i], spacing);
}

} // namespace

std::optional<LineVertices> withVertices(const gis::Coordinates& read, float spacing, std::int32_t most)
{
    const auto np = static_cast<std::size_t>(std::max(read.np, 0));
    auto count = static_cast<std::int64_t>(np);
    for (std::size_t i = 1; i < np && count <= most; ++i) {
        count += insertedBefore(read, i, spacing);
    }
    if (count > most) {
        return std::nullopt;
    }

    LineVertices line;
    line.x.reserve(static_cast<std::size_t>(count));
    line.y.reserve(static_cast<std::size_t>(count));
    const auto add = [&](double x, double y) {
        line.x.push_back(x);
        line.y.push_back(y);
    };
    for (std::size_t i = 1; i < np; ++i) {
        const std::int32_t inserted = insertedBefore(read, i, spacing);
        const double x = read.x[i - 1];
        const double y = read.y[i - 1];
        add(x, y);
        for (std::int32_t q = 1; q <= inserted; ++q) {
            const double share = static_cast<double>(q) / (static_cast<double>(inserted) + 1.0);
            add(x + (read.x[i] - x) * share, y + (read.y[i] - y) * share);
        }
    }
    if (np > 0) {
        add(read.x[np - 1], read.y[np - 1]);
    }
    return line;
}

float distanceBefore(const LineVertices& line, std::size_t i)
{
    return DISTANCE_8(line.x[i - 1], line.y[i - 1], line.x[i], line.y[i]);
}

bool isDuplicate(const LineVertices& line, std::size_t i)
{
    constexpr float kNearest = 0.0001F;
    return i > 0 && i + 1 < line.count() && distanceBefore(line, i) < kNearest;
}

float lineAngle(const LineVertices& line, std::size_t i)
{
    const std::size_t from = i > 0 ? i - 1 : 0;
    const std::size_t to = std::min(i + 1, line.count() - 1);
    return static_cast<float>(atan2d(line.y[to] - line.y[from], line.x[to] - line.x[from]));
}

} // namespace gridforge::sampling
