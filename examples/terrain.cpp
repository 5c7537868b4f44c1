// The ground is worn by running water until the streams have found their beds: the implicit scheme of Braun and Willett
// (2013) for the stream power law, on flow paths found by priority flood (Barnes and others, 2014). The main river and
// its flood plain are laid first and stay; the bends follow the sine-generated curve of Langbein and Leopold (1966).
#include "terrain.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <queue>
#include <utility>

namespace catchment {
namespace {

constexpr double kFall = 7;           // metres that the river falls from edge to edge
constexpr double kBankHeight = 2.4;   // of the flood plain over the river's bed
constexpr double kRiverArea = 4000;   // nodes drained where the river enters
constexpr double kStreamArea = 60;    // nodes drained where a stream begins
constexpr double kRiverHalfWidth = 2; // nodes
constexpr int kYears = 90;            // steps of wear

// A number in [0, 1) that depends on place and seed alone.
double hashed(std::int64_t column, std::int64_t row, std::uint64_t seed)
{
    std::uint64_t x = seed + 0x9E3779B97F4A7C15U * (static_cast<std::uint64_t>(column) +
                                                    0x100000001B3U * static_cast<std::uint64_t>(row));
    x = (x ^ (x >> 30U)) * 0xBF58476D1CE4E5B9U;
    x = (x ^ (x >> 27U)) * 0x94D049BB133111EBU;
    return static_cast<double>((x ^ (x >> 31U)) >> 11U) * 0x1p-53;
}

// Smooth noise of about -1 to 1, features about `length` across, in four octaves.
double noise(double x, double y, double length, std::uint64_t seed)
{
    double sum = 0;
    double weight = 0.5;
    for (std::uint64_t octave = 0; octave < 4; ++octave, length *= 0.5, weight *= 0.5) {
        const double u = x / length;
        const double v = y / length;
        const auto i = static_cast<std::int64_t>(std::floor(u));
        const auto j = static_cast<std::int64_t>(std::floor(v));
        const auto smooth = [](double t) { return t * t * (3 - 2 * t); };
        const double s = smooth(u - static_cast<double>(i));
        const double t = smooth(v - static_cast<double>(j));
        const double south = std::lerp(hashed(i, j, seed + octave), hashed(i + 1, j, seed + octave), s);
        const double north = std::lerp(hashed(i, j + 1, seed + octave), hashed(i + 1, j + 1, seed + octave), s);
        sum += weight * (2 * std::lerp(south, north, t) - 1);
    }
    return sum;
}

double smoothStep(double from, double to, double x)
{
    const double t = std::clamp((x - from) / (to - from), 0.0, 1.0);
    return t * t * (3 - 2 * t);
}

// --- The river -------------------------------------------------------------------------------------------------------

struct Point {
    double x = 0;
    double y = 0;
};

struct Plan {
    int columns = 0;
    int rows = 0;
    std::uint64_t seed = 0;

    // The middle of the flood plain and half its width, at an easting.
    double axis(double x) const
    {
        const double u = x / columns;
        return rows * (0.46 + 0.11 * std::sin(2 * std::numbers::pi * (0.75 * u + 0.1)) +
                       0.05 * noise(x, 0, 0.3 * columns, seed + 50));
    }
    double halfWidth(double x) const
    {
        return rows * (0.062 + 0.022 * (x / columns) + 0.025 * noise(x, 9, 0.25 * columns, seed + 60));
    }
};

std::vector<Point> riverCourse(const Plan& plan)
{
    constexpr double kStep = 0.25;
    const double wave = 0.30 * plan.rows; // length of a bend pair along the river

    std::vector<Point> course;
    Point at{-20, plan.axis(-20)};
    double phase = 0;
    while (at.x < plan.columns + 20 && course.size() < 1000000) {
        course.push_back(at);
        const double lean = std::atan2(plan.axis(at.x + 8) - plan.axis(at.x - 8), 16);
        const double back = 0.9 * (plan.axis(at.x) - at.y) / plan.halfWidth(at.x);
        const double swing = 1.2 + 0.7 * noise(at.x, 33, 0.1 * plan.columns, plan.seed + 70);
        const double heading = lean + std::clamp(back, -0.5, 0.5) + swing * std::sin(phase);
        at.x += kStep * std::cos(heading);
        at.y += kStep * std::sin(heading);
        phase +=
            kStep * 2 * std::numbers::pi / (wave * (1 + 0.7 * noise(at.x, 77, 0.1 * plan.columns, plan.seed + 80)));
    }
    return course;
}

struct River {
    Field distance; // nodes to the middle of the river, large far away
    Field bed;      // metres, where near
};

River layRiver(const Plan& plan)
{
    constexpr int kReach = 8;
    River river{Field(plan.columns, plan.rows, 1e9), Field(plan.columns, plan.rows)};
    const std::vector<Point> course = riverCourse(plan);
    for (std::size_t i = 0; i < course.size(); ++i) {
        const Point p = course[i];
        const double bed = kFall * (1 - static_cast<double>(i) / static_cast<double>(course.size()));
        const int column = static_cast<int>(std::lround(p.x));
        const int row = static_cast<int>(std::lround(p.y));
        for (int r = std::max(row - kReach, 0); r <= std::min(row + kReach, plan.rows - 1); ++r) {
            for (int c = std::max(column - kReach, 0); c <= std::min(column + kReach, plan.columns - 1); ++c) {
                const double distance = std::hypot(c - p.x, r - p.y);
                if (distance < river.distance.at(c, r)) {
                    river.distance.at(c, r) = distance;
                    river.bed.at(c, r) = bed;
                }
            }
        }
    }
    return river;
}

// --- Running water ---------------------------------------------------------------------------------------------------

struct Flow {
    std::vector<std::int32_t> order;    // from the river up
    std::vector<std::int32_t> receiver; // the next node downstream; a river node is its own
    std::vector<double> length;         // to the receiver, in nodes
};

template <typename Visit>
void forNeighbours(int columns, int rows, std::int32_t node, const Visit& visit)
{
    const int column = node % columns;
    const int row = node / columns;
    for (int dr = -1; dr <= 1; ++dr) {
        for (int dc = -1; dc <= 1; ++dc) {
            const int c = column + dc;
            const int r = row + dr;
            if ((dr != 0 || dc != 0) && c >= 0 && c < columns && r >= 0 && r < rows) {
                visit(r * columns + c, dr != 0 && dc != 0 ? std::numbers::sqrt2 : 1.0);
            }
        }
    }
}

Flow findFlow(const Field& ground, const std::vector<bool>& isRiver)
{
    const auto count = ground.values.size();
    Flow flow{{}, std::vector<std::int32_t>(count, -1), std::vector<double>(count, 1)};
    std::vector<bool> done(count);
    using Entry = std::pair<double, std::int32_t>;
    std::priority_queue<Entry, std::vector<Entry>, std::greater<>> open;
    for (std::size_t i = 0; i < count; ++i) {
        if (isRiver[i]) {
            flow.receiver[i] = static_cast<std::int32_t>(i);
            open.emplace(ground.values[i], static_cast<std::int32_t>(i));
        }
    }
    while (!open.empty()) {
        const double level = open.top().first;
        const std::int32_t node = open.top().second;
        open.pop();
        const auto at = static_cast<std::size_t>(node);
        if (done[at]) {
            continue;
        }
        done[at] = true;
        flow.order.push_back(node);
        double steepest = -std::numeric_limits<double>::infinity();
        forNeighbours(ground.columns, ground.rows, node, [&](std::int32_t other, double length) {
            const auto to = static_cast<std::size_t>(other);
            if (done[to] && !isRiver[at]) {
                const double slope = (ground.values[at] - ground.values[to]) / length;
                if (slope > steepest) {
                    steepest = slope;
                    flow.receiver[at] = other;
                    flow.length[at] = length;
                }
            } else if (!done[to] && !isRiver[to]) {
                // In a hollow the water stands up to its rim; the hair more keeps it moving outwards.
                open.emplace(std::max(ground.values[to], level + 1e-9), other);
            }
        });
    }
    return flow;
}

std::vector<double> drainedArea(const Flow& flow, const std::vector<bool>& isRiver)
{
    std::vector<double> area(flow.receiver.size(), 1);
    for (auto node = flow.order.rbegin(); node != flow.order.rend(); ++node) {
        const auto at = static_cast<std::size_t>(*node);
        const auto to = static_cast<std::size_t>(flow.receiver[at]);
        if (isRiver[at]) {
            area[at] = kRiverArea;
        } else if (!isRiver[to]) {
            area[to] += area[at];
        }
    }
    return area;
}

void wearDown(Field& ground, const Field& lift, const std::vector<bool>& isRiver)
{
    constexpr double kWear = 0.15;
    for (int year = 0; year < kYears; ++year) {
        const Flow flow = findFlow(ground, isRiver);
        const std::vector<double> area = drainedArea(flow, isRiver);
        for (const std::int32_t node : flow.order) {
            const auto at = static_cast<std::size_t>(node);
            if (isRiver[at]) {
                continue;
            }
            const double pull = kWear * std::pow(area[at], 0.42) / flow.length[at];
            const double below = ground.values[static_cast<std::size_t>(flow.receiver[at])];
            ground.values[at] = (ground.values[at] + lift.values[at] + pull * below) / (1 + pull);
        }
        // Slopes creep, which rounds the ridges.
        const Field before = ground;
        for (std::size_t i = 0; i < ground.values.size(); ++i) {
            if (isRiver[i]) {
                continue;
            }
            double sum = 0;
            int count = 0;
            forNeighbours(ground.columns, ground.rows, static_cast<std::int32_t>(i),
                          [&](std::int32_t other, double length) {
                              if (length == 1.0) {
                                  sum += before.values[static_cast<std::size_t>(other)];
                                  ++count;
                              }
                          });
            ground.values[i] += 0.22 * (sum / count - before.values[i]);
        }
    }
}

// The flood plain is laid over the worn ground, with beds for the streams that cross it.
void layFloodPlain(const Plan& plan, const River& river, Field& ground)
{
    for (int r = 0; r < plan.rows; ++r) {
        for (int c = 0; c < plan.columns; ++c) {
            const double width = plan.halfWidth(c);
            const double away = std::min(std::abs(r - plan.axis(c)) / width, 1.5);
            const double fall = kFall * (1 - static_cast<double>(c) / plan.columns);
            const double plain = fall + kBankHeight + 0.8 * away * away + 0.9 * noise(c, r, 14, plan.seed + 90);
            double& height = ground.at(c, r);
            height = std::lerp(plain, std::max(height, plain), smoothStep(0.75, 1.5, away));
            const double bank = smoothStep(kRiverHalfWidth - 1, kRiverHalfWidth + 1.5, river.distance.at(c, r));
            if (bank < 1) {
                height = std::lerp(river.bed.at(c, r), height, bank);
            }
        }
    }
}

void carveStreams(const Flow& flow, const std::vector<double>& area, const std::vector<bool>& isRiver, Field& ground)
{
    for (const std::int32_t node : flow.order) {
        const auto at = static_cast<std::size_t>(node);
        if (isRiver[at] || area[at] < kStreamArea) {
            continue;
        }
        const double bed = ground.values[at] - 0.25 * std::pow(area[at] / kStreamArea, 0.35);
        ground.values[at] = std::max(bed, ground.values[static_cast<std::size_t>(flow.receiver[at])] + 0.01);
    }
}

std::vector<std::int32_t> streamOfEach(const Flow& flow, const std::vector<double>& area)
{
    std::vector<std::int32_t> stream(flow.receiver.size());
    for (const std::int32_t node : flow.order) {
        const auto at = static_cast<std::size_t>(node);
        stream[at] = area[at] >= kStreamArea ? node : stream[static_cast<std::size_t>(flow.receiver[at])];
    }
    return stream;
}

} // namespace

Field::Field(int columnCount, int rowCount, double value)
    : columns(columnCount), rows(rowCount),
      values(static_cast<std::size_t>(columnCount) * static_cast<std::size_t>(rowCount), value)
{
}

double& Field::at(int column, int row)
{
    return values[static_cast<std::size_t>(row) * static_cast<std::size_t>(columns) + static_cast<std::size_t>(column)];
}

double Field::at(int column, int row) const
{
    return values[static_cast<std::size_t>(row) * static_cast<std::size_t>(columns) + static_cast<std::size_t>(column)];
}

Valley makeValley(int columns, int rows, std::uint64_t seed)
{
    const Plan plan{columns, rows, seed};
    const River river = layRiver(plan);

    Field ground(columns, rows);
    Field lift(columns, rows);
    std::vector<bool> isRiver(ground.values.size());
    for (int r = 0; r < rows; ++r) {
        for (int c = 0; c < columns; ++c) {
            const auto at =
                static_cast<std::size_t>(r) * static_cast<std::size_t>(columns) + static_cast<std::size_t>(c);
            const double away = std::abs(r - plan.axis(c)) / plan.halfWidth(c);
            isRiver[at] = river.distance.at(c, r) < 0.8;
            const double fall = kFall * (1 - static_cast<double>(c) / columns);
            ground.at(c, r) =
                isRiver[at] ? river.bed.at(c, r) : fall + 2 + away + 2 * noise(c, r, 40, seed) + hashed(c, r, seed);
            lift.at(c, r) = 0.75 * smoothStep(0.9, 2.2, away) * (1 + 0.7 * noise(c, r, 0.35 * columns, seed + 10));
        }
    }
    wearDown(ground, lift, isRiver);
    layFloodPlain(plan, river, ground);

    const Flow flow = findFlow(ground, isRiver);
    const std::vector<double> area = drainedArea(flow, isRiver);
    carveStreams(flow, area, isRiver, ground);

    Valley valley{ground, Field(columns, rows), Field(columns, rows, 0.06), Field(columns, rows, -1000),
                  streamOfEach(flow, area)};
    valley.drained.values = area;
    for (std::size_t i = 0; i < area.size(); ++i) {
        if (river.distance.values[i] < kRiverHalfWidth) {
            valley.roughness.values[i] = 0.03;
        }
        const int c = static_cast<int>(i) % columns;
        const int r = static_cast<int>(i) / columns;
        if (std::abs(r - plan.axis(c)) < 1.6 * plan.halfWidth(c)) {
            valley.riverBed.values[i] = kFall * (1 - static_cast<double>(c) / columns);
        }
    }
    return valley;
}

double mainRiverArea(const Valley& valley)
{
    return *std::max_element(valley.drained.values.begin(), valley.drained.values.end());
}

Field floodLevel(const Valley& valley, const Flood& flood)
{
    const Field& ground = valley.ground;
    const auto stage = [&](double area) {
        const double off = std::log(area / flood.criticalArea) / flood.breadth;
        return 0.42 * std::pow(area, 0.26) * flood.size * std::exp(-0.5 * off * off);
    };
    const double riverStage = stage(kRiverArea);
    Field level = ground;
    for (std::size_t i = 0; i < level.values.size(); ++i) {
        const auto stream = static_cast<std::size_t>(valley.stream[i]);
        level.values[i] = std::max(ground.values[stream] + stage(valley.drained.values[stream]),
                                   valley.riverBed.values[i] + riverStage);
    }
    // Water evens out where it is one surface.
    for (int pass = 0; pass < 40; ++pass) {
        const Field before = level;
        for (std::size_t i = 0; i < level.values.size(); ++i) {
            if (before.values[i] < ground.values[i] - 0.5) {
                continue;
            }
            double sum = before.values[i];
            int count = 1;
            forNeighbours(level.columns, level.rows, static_cast<std::int32_t>(i), [&](std::int32_t other, double) {
                const auto to = static_cast<std::size_t>(other);
                if (before.values[to] >= ground.values[to] - 0.5) {
                    sum += before.values[to];
                    ++count;
                }
            });
            level.values[i] = sum / count;
        }
    }
    return level;
}

} // namespace catchment
