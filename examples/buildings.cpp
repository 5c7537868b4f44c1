#include "buildings.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <numbers>
#include <random>
#include <utility>
#include <vector>

namespace catchment {
namespace {

constexpr double kLot = 9;            // cells from one lot to the next
constexpr double kMargin = 4;         // cells to the edge
constexpr double kOnDryGround = 0.3;  // metres above the frequent flood
constexpr double kFreeOfFlood = 1;    // metres above the rare flood from where nobody counts buildings
constexpr double kStandardArea = 150; // square metres that a curve is made for

struct Corner {
    double x = 0;
    double y = 0;
};

// The field at a place of the grid, linear between its nodes.
double valueAt(const Field& field, const Place& place, Corner at)
{
    const auto along = [](double share, int nodes) {
        const double node = std::clamp(share, 0.0, 1.0) * (nodes - 1);
        const int before = std::min(static_cast<int>(node), nodes - 2);
        return std::pair(before, node - before);
    };
    const auto [i, s] =
        along((at.x - place.xll) / (place.cellsize * static_cast<double>(place.columns)), field.columns);
    const auto [j, t] = along((at.y - place.yll) / (place.cellsize * static_cast<double>(place.rows)), field.rows);
    return std::lerp(std::lerp(field.at(i, j), field.at(i + 1, j), s),
                     std::lerp(field.at(i, j + 1), field.at(i + 1, j + 1), s), t);
}

class BuildingFiles {
public:
    explicit BuildingFiles(const std::string& base)
        : mif_(base + ".mif", std::ios::binary), mid_(base + ".mid", std::ios::binary)
    {
        mif_ << "Version 300\r\nCharset \"WindowsLatin1\"\r\nDelimiter \",\"\r\n"
                "CoordSys Earth Projection 8, 116, \"m\", 153, 0, 0.9996, 500000, 10000000\r\nColumns 4\r\n"
                "  Prop_Type Char(20)\r\n  Prop_ID Char(12)\r\n  FFL Float\r\n  Multiplier Float\r\nData\r\n\r\n";
    }

    void point(Corner at) { mif_ << "Point " << text(at) << "\r\n    Symbol (35,0,12)\r\n"; }

    void outline(const std::vector<Corner>& corners)
    {
        mif_ << "Region  1\r\n  " << corners.size() + 1 << "\r\n";
        for (const Corner& corner : corners) {
            mif_ << text(corner) << "\r\n";
        }
        mif_ << text(corners.front()) << "\r\n    Pen (1,2,0)\r\n    Brush (1,0,16777215)\r\n";
    }

    void record(const char* type, char letter, double floor, double multiplier)
    {
        std::array<char, 80> line{};
        std::snprintf(line.data(), line.size(), "\"%s\",\"%c%04d\",%.2f,%.2f\r\n", type, letter, ++count_, floor,
                      multiplier);
        mid_ << line.data();
    }

    bool close()
    {
        mif_.close();
        mid_.close();
        return mif_.good() && mid_.good();
    }

private:
    static std::string text(Corner at)
    {
        std::array<char, 80> line{};
        std::snprintf(line.data(), line.size(), "%.3f %.3f", at.x, at.y);
        return line.data();
    }

    std::ofstream mif_;
    std::ofstream mid_;
    int count_ = 0;
};

// A rectangle or, cut at one corner, an L, turned about its middle.
std::vector<Corner> outlineOf(Corner middle, double length, double width, bool cut, double turn)
{
    const double a = length / 2;
    const double b = width / 2;
    std::vector<Corner> corners = {{-a, -b}, {a, -b}, {a, b}, {-a, b}};
    if (cut) {
        corners = {{-a, -b}, {a, -b}, {a, 0.2 * b}, {0.1 * a, 0.2 * b}, {0.1 * a, b}, {-a, b}};
    }
    for (Corner& corner : corners) {
        corner = {middle.x + corner.x * std::cos(turn) - corner.y * std::sin(turn),
                  middle.y + corner.x * std::sin(turn) + corner.y * std::cos(turn)};
    }
    return corners;
}

// Of a ring that runs against the clock, seen from its first corner so that far coordinates cost no digits.
double areaOf(const std::vector<Corner>& corners)
{
    const Corner& first = corners.front();
    double twice = 0;
    for (std::size_t i = 2; i < corners.size(); ++i) {
        const Corner& from = corners[i - 1];
        const Corner& to = corners[i];
        twice += (from.x - first.x) * (to.y - first.y) - (to.x - first.x) * (from.y - first.y);
    }
    return twice / 2;
}

} // namespace

bool writeBuildings(const std::string& base, const Place& place, const Field& ground, const Field& frequent,
                    const Field& rare, std::uint64_t seed)
{
    BuildingFiles files(base);
    std::mt19937_64 random(seed);
    // Not std::uniform_real_distribution, whose numbers are each library's own.
    const auto between = [&random](double low, double high) {
        return low + (high - low) * (static_cast<double>(random() >> 11U) * 0x1p-53);
    };
    for (double row = kMargin + kLot / 2; row < static_cast<double>(place.rows) - kMargin - kLot / 2; row += kLot) {
        for (double column = kMargin + kLot / 2; column < static_cast<double>(place.columns) - kMargin - kLot / 2;
             column += kLot) {
            const Corner at = {place.xll + place.cellsize * (column + between(-2, 2)),
                               place.yll + place.cellsize * (row + between(-2, 2))};
            const bool shop = between(0, 1) < 0.12;
            const bool known = between(0, 1) < 0.8; // of the others only the place is known
            const double length = shop ? between(22, 30) : between(12, 18);
            const double width = shop ? between(14, 20) : between(8, 12);
            const double turn = between(0, std::numbers::pi);
            const bool cut = between(0, 1) < 0.3;
            const double height = valueAt(ground, place, at);
            const double floor = height + (shop ? 0.1 : between(0.2, 0.6));
            if (height < valueAt(frequent, place, at) + kOnDryGround ||
                height > valueAt(rare, place, at) + kFreeOfFlood || between(0, 1) < 0.5) {
                continue;
            }
            double multiplier = 0; // stands for 1
            if (known) {
                const std::vector<Corner> corners = outlineOf(at, length, width, cut, turn);
                files.outline(corners);
                multiplier = areaOf(corners) / kStandardArea;
            } else {
                files.point(at);
            }
            files.record(shop ? "Commercial" : "Residential", shop ? 'C' : 'R', floor, multiplier);
        }
    }
    return files.close();
}

} // namespace catchment
