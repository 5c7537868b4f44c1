#include "plane/region_rows.h"

#include "plane/geometry.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <numbers>
#include <random>
#include <vector>

namespace gridforge {
namespace {

using Random = std::mt19937_64;

// A region in the layout of the plain routine.
struct Rings {
    std::vector<double> x;
    std::vector<double> y;
    std::vector<std::int32_t> ir;
    double xmin = std::numeric_limits<double>::infinity();

    std::int32_t np() const { return static_cast<std::int32_t>(x.size()); }
    std::int32_t nr() const { return static_cast<std::int32_t>(ir.size()); }

    // A ring of open vertices: its closing vertex and the slot behind are added.
    void add(const std::vector<std::array<double, 2>>& vertices)
    {
        for (std::size_t i = 0; i < vertices.size() + 2; ++i) {
            const auto& vertex = vertices[i % vertices.size()];
            x.push_back(vertex[0]);
            y.push_back(vertex[1]);
            xmin = std::min(xmin, vertex[0]);
        }
        ir.push_back(np() - 1);
    }
};

bool plain(const Rings& rings, double px, double py)
{
    return INSIDE_POLYGON_8(px, py, rings.x, rings.y, rings.np(), rings.xmin, rings.ir, rings.nr());
}

PreparedRegion prepared(const Rings& rings)
{
    PreparedRegion region;
    EXPECT_TRUE(prepareRegion(rings.x, rings.y, rings.np(), rings.xmin, rings.ir, rings.nr(), region));
    return region;
}

// The places of the runs as flags; runs that touch or fall are shown as 9.
std::vector<std::uint8_t> flagsOf(const std::vector<RowRun>& runs, std::size_t places)
{
    std::vector<std::uint8_t> flags(places, 0);
    std::size_t least = 0;
    for (const RowRun& run : runs) {
        const bool apart = run.from >= least && run.from < run.to && run.to <= places;
        if (!apart) {
            return std::vector<std::uint8_t>(places, 9);
        }
        std::fill(flags.begin() + static_cast<std::ptrdiff_t>(run.from),
                  flags.begin() + static_cast<std::ptrdiff_t>(run.to), std::uint8_t{1});
        least = run.to + 1;
    }
    return flags;
}

// The prepared forms give what the plain one gives, at every px of every row.
testing::AssertionResult agrees(const Rings& rings, const std::vector<double>& rows, const std::vector<double>& px)
{
    const PreparedRegion region = prepared(rings);
    std::vector<std::uint8_t> flags(px.size(), 7);
    std::vector<RowRun> runs;
    for (const double py : rows) {
        insideRegionRow(region, py, px, flags);
        insideRegionRuns(region, py, px, runs);
        const std::vector<std::uint8_t> inRuns = flagsOf(runs, px.size());
        for (std::size_t i = 0; i < px.size(); ++i) {
            const int want = plain(rings, px[i], py) ? 1 : 0;
            const int alone = insideRegion(region, px[i], py) ? 1 : 0;
            if (flags[i] != want || inRuns[i] != want || alone != want) {
                return testing::AssertionFailure()
                       << "at " << px[i] << ", " << py << ": plain " << want << ", row " << int{flags[i]} << ", runs "
                       << int{inRuns[i]} << ", point " << alone;
            }
        }
    }
    return testing::AssertionSuccess();
}

std::vector<double> steps(double from, double step, int count)
{
    std::vector<double> values;
    for (int i = 0; i < count; ++i) {
        values.push_back(from + static_cast<double>(static_cast<float>(i)) * step);
    }
    return values;
}

double whole(Random& random, int most)
{
    return static_cast<double>(std::uniform_int_distribution<int>(0, most)(random));
}

// Rings of whole coordinates in a small square meet rows, each other and themselves in every degenerate way.
Rings randomRings(Random& random, int most, double scale, double xShift, double yShift)
{
    Rings rings;
    const int count = 1 + static_cast<int>(whole(random, 2));
    for (int k = 0; k < count; ++k) {
        std::vector<std::array<double, 2>> vertices(3 + static_cast<std::size_t>(whole(random, 9)));
        for (std::size_t i = 0; i < vertices.size(); ++i) {
            vertices[i] = {xShift + scale * whole(random, most), yShift + scale * whole(random, most)};
            if (i > 0 && whole(random, 4) == 0) {
                vertices[i] = vertices[i - 1]; // a doubled vertex
            } else if (i > 1 && whole(random, 5) == 0) {
                vertices[i] = vertices[i - 2]; // a spike
            } else if (i > 0 && whole(random, 3) == 0) {
                vertices[i][1] = vertices[i - 1][1]; // a level edge
            }
        }
        rings.add(vertices);
    }
    return rings;
}

TEST(RegionRows, AgreeOnDegenerateRings)
{
    Random random(1);
    for (int round = 0; round < 1000; ++round) {
        const Rings rings = randomRings(random, 6, 1, -3, -3);
        // From beyond the start of the ray, which is at -13 at the least, over all vertices.
        ASSERT_TRUE(agrees(rings, steps(-4, 0.5, 17), steps(-15, 0.5, 40))) << "round " << round;
    }
}

// A ray that starts between the vertices meets some edges up to a place instead of from it.
TEST(RegionRows, AgreeWhereverTheRayStarts)
{
    Random random(8);
    for (int round = 0; round < 500; ++round) {
        Rings rings = randomRings(random, 6, 1, -3, -3);
        rings.xmin += whole(random, 40) - 20;
        ASSERT_TRUE(agrees(rings, steps(-4, 0.5, 17), steps(-35, 0.5, 80))) << "round " << round;
    }
}

TEST(RegionRows, AgreeWhereSinglePrecisionIsCoarse)
{
    Random random(2);
    for (const double scale : {0.1, 1.0 / 3, 1e-3, 1e4, 123456.789}) {
        for (int round = 0; round < 60; ++round) {
            const Rings rings = randomRings(random, 5, scale, 498765.4321, 7654321.0123);
            const double least = *std::min_element(rings.y.begin(), rings.y.end());
            std::vector<double> rows = rings.y;
            for (const double y : rings.y) {
                rows.push_back(std::nextafter(y, 0));
                rows.push_back(std::nextafter(y, 1e9));
            }
            rows.push_back(least + 0.37 * scale);
            // Points a last bit to either side of each vertex and of the rounded crossings between them.
            std::vector<double> px = steps(rings.xmin - scale, scale * 0.25, 30);
            for (const double x : rings.x) {
                px.insert(px.end(), {x, std::nextafter(x, 0), std::nextafter(x, 1e9)});
            }
            std::sort(px.begin(), px.end());
            ASSERT_TRUE(agrees(rings, rows, px)) << "round " << round << ", scale " << scale;
        }
    }
}

// An edge that is long and nearly level turns the signs of rounded products far from it.
TEST(RegionRows, AgreeOnLongNearlyLevelEdges)
{
    Random random(3);
    for (int round = 0; round < 100; ++round) {
        Rings rings;
        std::vector<std::array<double, 2>> vertices;
        for (int i = 0; i < 8; ++i) {
            vertices.push_back({whole(random, 4) * 2.5e8 + whole(random, 50), 1.0 + whole(random, 9) * 1e-3});
        }
        rings.add(vertices);
        std::vector<double> px = steps(rings.xmin - 30, 1.7, 40);
        for (const double x : rings.x) {
            for (int i = -5; i <= 5; ++i) {
                px.push_back(x + i * 3.0);
            }
        }
        std::sort(px.begin(), px.end());
        std::vector<double> rows = steps(0.999, 0.0005, 25);
        for (const double y : rings.y) { // where an edge ends the products cancel
            for (const double step : {1e-13, 1e-12, 1e-11, 1e-10}) {
                rows.push_back(y - step);
                rows.push_back(y + step);
            }
        }
        ASSERT_TRUE(agrees(rings, rows, px)) << "round " << round;
    }
}

TEST(RegionRows, AgreeWhereProductsVanishInSinglePrecision)
{
    Random random(4);
    for (const double scale : {1e-12, 1e-20, 1e-25, 1e-38, 1e-44, 1e-60, 1e-310}) {
        for (int round = 0; round < 100; ++round) {
            const Rings rings = randomRings(random, 4, scale, 0, 0);
            std::vector<double> px = steps(-20, 0.5, 50);
            for (const double step : {scale, 1e-3, 1e-9, 1e-15}) {
                for (int i = -6; i < 7; ++i) {
                    px.push_back(i * step);
                    px.push_back(rings.xmin - 10 + i * step);
                }
            }
            std::sort(px.begin(), px.end());
            ASSERT_TRUE(agrees(rings, steps(-2 * scale, scale * 0.5, 14), px)) << "round " << round << ", " << scale;
        }
    }
}

TEST(RegionRows, AgreeOnCoordinatesThatAreNoNumbersOrTooLarge)
{
    Random random(5);
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    for (const double odd : {kInfinity, -kInfinity, std::numeric_limits<double>::quiet_NaN(), 1e20, 1e39, -1e300}) {
        for (int round = 0; round < 100; ++round) {
            Rings rings = randomRings(random, 6, 1, 0, 0);
            auto& axis = round % 2 == 0 ? rings.x : rings.y;
            axis[static_cast<std::size_t>(whole(random, rings.np() - 1))] = odd;
            ASSERT_TRUE(agrees(rings, {-1, 0, 1, 2.5, 3, 1e20, odd}, steps(-12, 0.5, 50))) << round << ", " << odd;
        }
    }
    // Where all of them are too large, products are infinite and their differences no numbers.
    for (const double scale : {1e16, 1e19, 1e20, 1e25, 1e38, 1e100}) {
        for (int round = 0; round < 100; ++round) {
            const Rings rings = randomRings(random, 6, scale, scale, scale);
            ASSERT_TRUE(agrees(rings, steps(0.75 * scale, 0.25 * scale, 28), steps(0.75 * scale, 0.25 * scale, 28)))
                << round << ", " << scale;
        }
    }
    // To a place beyond single precision the ray meets the vertex at (4, 0) and no other edge.
    Rings house;
    house.add({{5, -1}, {15, -1}, {15, 1}, {5, 1}, {4, 0}});
    EXPECT_TRUE(plain(house, 1e300, 0));
    EXPECT_TRUE(agrees(house, {0, 0.5}, {0, 10, 20, 1e300}));
    // To such a place in the west no edge either, not even of those between it and the start of the ray, here at 10.
    house.xmin = 20;
    EXPECT_FALSE(plain(house, -1e300, 0.5));
    EXPECT_TRUE(agrees(house, {0, 0.5}, {-1e300, 0, 7, 12}));
    const Rings rings = randomRings(random, 6, 1, 0, 0);
    EXPECT_TRUE(agrees(rings, {0, 3, 1e16, 1e300, kInfinity}, {-kInfinity, -1e300, 0, 3, 1e16, 1e300, kInfinity}));
    EXPECT_FALSE(insideRegion(prepared(rings), std::numeric_limits<double>::quiet_NaN(), 3));
}

TEST(RegionRows, AgreeWhateverTheRingEnds)
{
    Random random(6);
    for (int round = 0; round < 1000; ++round) {
        Rings rings = randomRings(random, 6, 1, 0, 0);
        for (std::int32_t& end : rings.ir) {
            end = static_cast<std::int32_t>(whole(random, rings.np() + 3)) - 1;
        }
        // One more ring than the others can leave over, so that the walk comes to an end.
        rings.ir.resize(rings.ir.size() + static_cast<std::size_t>(rings.np()), rings.np());
        ASSERT_TRUE(agrees(rings, steps(-1, 0.5, 17), steps(-2, 0.5, 20))) << "round " << round;
    }
}

// The plain routine counts an edge far above the row when the ray has no length and the edge's line runs through it.
TEST(RegionRows, AgreeAtTheStartOfTheRay)
{
    Rings rings;
    rings.add({{0, 0}, {1, 1}, {0, 1}});
    EXPECT_TRUE(plain(rings, -10, -10));
    EXPECT_TRUE(agrees(rings, {-10, -9, 0, 0.5}, {-11, -10, -9, 0, 0.25}));
}

TEST(RegionRows, AgreeOnManyVertices)
{
    constexpr int kVertices = 100000;
    Random random(7);
    std::uniform_real_distribution<double> jitter(0.5, 1);
    Rings star;
    std::vector<std::array<double, 2>> vertices;
    for (int i = 0; i < kVertices; ++i) {
        const double angle = 2 * std::numbers::pi * i / kVertices;
        const double radius = 5000 * jitter(random);
        vertices.push_back({400000 + radius * std::cos(angle), 6000000 + radius * std::sin(angle)});
    }
    star.add(vertices);
    EXPECT_TRUE(agrees(star, {5994999, 5997000.5, vertices[777][1]}, steps(394990, 100, 100)));
    // A saw that every row crosses at each of its teeth.
    Rings saw;
    vertices.clear();
    for (int i = 0; i < kVertices; ++i) {
        vertices.push_back({static_cast<double>(i), i % 2 == 0 ? 0.0 : 100.0});
    }
    vertices.push_back({kVertices, -1});
    vertices.push_back({0, -1});
    saw.add(vertices);
    EXPECT_TRUE(agrees(saw, {-1, 0, 50, 100}, steps(-20, 1333.25, 77)));
}

TEST(RegionRows, TellInsideFromOutside)
{
    Rings rings;
    rings.add({{0, 0}, {10, 0}, {10, 10}, {0, 10}});
    rings.add({{4, 4}, {4, 6}, {6, 6}, {6, 4}});
    const PreparedRegion region = prepared(rings);
    std::vector<std::uint8_t> flags(7, 7);
    insideRegionRow(region, 5, std::vector<double>{-1, 1, 3, 5, 7, 9, 11}, flags);
    EXPECT_THAT(flags, testing::ElementsAre(0, 1, 1, 0, 1, 1, 0));
    insideRegionRow(region, 8, std::vector<double>{-1, 1, 3, 5, 7, 9, 11}, flags);
    EXPECT_THAT(flags, testing::ElementsAre(0, 1, 1, 1, 1, 1, 0));
    insideRegionRow(region, 11, std::vector<double>{-1, 1, 3, 5, 7, 9, 11}, flags);
    EXPECT_THAT(flags, testing::Each(0));
    insideRegionRow(region, 5, {}, {});
    std::vector<RowRun> runs(1);
    insideRegionRuns(region, 5, std::vector<double>{-1, 1, 3, 5, 7, 9, 11}, runs);
    ASSERT_EQ(runs.size(), 2U);
    EXPECT_EQ(runs[0].from, 1U);
    EXPECT_EQ(runs[0].to, 3U);
    EXPECT_EQ(runs[1].from, 4U);
    EXPECT_EQ(runs[1].size(), 2U);
    insideRegionRuns(region, 5, {}, runs);
    EXPECT_TRUE(runs.empty());
}

TEST(RegionRows, ServeOneRegionAfterAnother)
{
    Rings large;
    large.add({{0, 0}, {10, 0}, {10, 10}, {5, 12}, {0, 10}});
    Rings small;
    small.add({{2, 2}, {3, 2}, {3, 3}});
    PreparedRegion region = prepared(large);
    EXPECT_TRUE(insideRegion(region, 5, 5));
    prepareRing(small.x, small.y, small.xmin, region);
    EXPECT_FALSE(insideRegion(region, 5, 5));
    EXPECT_TRUE(insideRegion(region, 2.75, 2.5));
    EXPECT_TRUE(prepareRegion({}, {}, 0, 0, {}, 0, region));
    EXPECT_FALSE(insideRegion(region, 2.75, 2.5));
}

TEST(RegionRows, RingsThatEndBeforeTheVerticesAreReported)
{
    Rings rings;
    rings.add({{0, 0}, {10, 0}, {10, 10}});
    rings.add({{4, 4}, {4, 6}, {6, 6}});
    rings.ir.pop_back();
    PreparedRegion region;
    EXPECT_FALSE(prepareRegion(rings.x, rings.y, rings.np(), rings.xmin, rings.ir, rings.nr(), region));
    // The vertices after the last ring do not count: at (7, 5) the first ring alone has the point inside.
    EXPECT_TRUE(insideRegion(region, 7, 5));
    EXPECT_FALSE(insideRegion(region, 3, 5));
}

} // namespace
} // namespace gridforge
