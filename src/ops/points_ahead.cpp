#include "ops/points_ahead.h"

#include "host/line_pieces.h"
#include "host/quiet_input.h"
#include "host/threads.h"
#include "ops/xyz_parse.h"
#include "run/cells_ahead.h"

#include <atomic>
#include <cstddef>
#include <numeric>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace gridforge::ops {

namespace {

constexpr std::size_t kUsualPointLine = 64; // bytes

// The number of lines in the pieces before each one, and last that of all lines. Nothing if a piece cannot be read.
std::optional<std::vector<std::size_t>> countLinesBefore(LinePieces& pieces)
{
    std::vector<std::size_t> lines(pieces.count() + 1, 0);
    std::atomic<bool> good = true;
    parallelFor(pieces.count(), [&](std::size_t piece, std::size_t worker) {
        const std::optional<std::string_view> text = good ? pieces.read(piece, worker) : std::nullopt;
        if (!text) {
            good = false;
            return;
        }
        lines[piece] = countLineEnds(*text) + (!text->empty() && text->back() != '\n' ? 1 : 0);
    });
    std::exclusive_scan(lines.begin(), lines.end(), lines.begin(), std::size_t{0});
    return good ? std::optional(std::move(lines)) : std::nullopt;
}

// False unless each line is a point. The last line of the file may lack its end.
bool parseAll(std::string_view text, std::span<double> x, std::span<double> y, std::span<float> z)
{
    const PlainPoints found = parseLines(text, kPointLineWidth, x, y, z);
    if (found.count + 1 != x.size() || text.empty() || text.back() == '\n') {
        return found.count == x.size() && found.bytes == text.size();
    }
    const std::string last = std::string(text.substr(found.bytes)) + '\n';
    return parseLines(last, kPointLineWidth, x.last(1), y.last(1), z.last(1)).bytes == last.size();
}

run::Way readAhead(LinePieces& pieces, PointList& points)
{
    if (!pieces.takeRooms()) {
        return run::Way::noRoom;
    }
    const auto before = countLinesBefore(pieces);
    if (!before) {
        return run::Way::readRefused;
    }
    if (!points.allocate(before->back())) {
        return run::Way::noRoom;
    }
    std::atomic<run::Way> way = run::Way::ahead;
    parallelFor(pieces.count(), [&](std::size_t piece, std::size_t worker) {
        if (way != run::Way::ahead) {
            return;
        }
        const std::size_t first = (*before)[piece];
        const std::size_t count = (*before)[piece + 1] - first;
        const std::optional<std::string_view> text = pieces.read(piece, worker);
        if (!text) {
            way = run::Way::readRefused;
        } else if (!parseAll(*text, points.x.all().subspan(first, count), points.y.all().subspan(first, count),
                             points.z.all().subspan(first, count))) {
            way = run::Way::oddText;
        }
    });
    return way;
}

} // namespace

std::optional<PointList> pointsAhead(std::string_view name)
{
    const std::optional<QuietInput> input = findQuietly(name);
    if (!input || input->size == 0) { // some files of the system say nothing of their size
        run::countWay(run::Way::oddInput);
        return std::nullopt;
    }
    LinePieces pieces(input->name, 0, input->size, kUsualPointLine);
    PointList points;
    const run::Way way = readAhead(pieces, points);
    run::countWay(way);
    return way == run::Way::ahead ? std::optional(std::move(points)) : std::nullopt;
}

} // namespace gridforge::ops
