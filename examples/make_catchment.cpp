// Makes the sample catchment: a river valley that is nowhere, its ground, what six storms leave in it, and its buildings.
#include "buildings.h"
#include "grid_files.h"
#include "terrain.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace catchment {
namespace {

constexpr double kXll = 293000;
constexpr double kYll = 6178000;
constexpr int kCoarse = 5;        // cells of the fine level to a side of a coarse one
constexpr double kDrySkin = 0.02; // thinner water than this counts as dry

constexpr const char* kUsage = R"(usage: gridforge_make_catchment [options]
  --columns N    cells from west to east (480)
  --rows N       cells from south to north (360)
  --cell M       cell size in metres (5)
  --out FOLDER   where the grids go (.)
  --seed N       another number, another valley (1)
  --format F     asc, flt or both (both)
  --only KIND    ground, depth, level, velocity or buildings (all of them)
  --event NAME   one storm, such as 1pct_6h (all six)
  --detail N     nodes of the made ground from west to east (320); fewer are quicker
)";

struct Options {
    Place place{480, 360, kXll, kYll, 5};
    std::string folder = ".";
    std::uint64_t seed = 1;
    int detail = 320;
    std::string format = "both";
    std::string only;
    std::string event;
};

struct Storm {
    const char* name;
    double size;         // stage as a share of the 1 % flood
    double criticalArea; // as a share of the main river's
};

// Short storms are the worst for small streams, long ones for the river.
constexpr Storm kStorms[] = {
    {"1pct_1h", 1.0, 0.02},  {"1pct_6h", 1.0, 0.12},  {"1pct_24h", 1.0, 1.6},
    {"20pct_6h", 0.5, 0.12}, {"5pct_6h", 0.75, 0.12}, {"0p2pct_6h", 1.3, 0.12},
};

std::optional<Options> readOptions(int count, char** words)
{
    Options options;
    for (int i = 1; i + 1 < count; i += 2) {
        const std::string_view key = words[i];
        const char* const value = words[i + 1];
        if (key == "--columns") {
            options.place.columns = std::atol(value);
        } else if (key == "--rows") {
            options.place.rows = std::atol(value);
        } else if (key == "--cell") {
            options.place.cellsize = std::atof(value);
        } else if (key == "--out") {
            options.folder = value;
        } else if (key == "--seed") {
            options.seed = std::strtoull(value, nullptr, 10);
        } else if (key == "--detail") {
            options.detail = std::atoi(value);
        } else if (key == "--format") {
            options.format = value;
        } else if (key == "--only") {
            options.only = value;
        } else if (key == "--event") {
            options.event = value;
        } else {
            return std::nullopt;
        }
    }
    const bool goodFormat = options.format == "asc" || options.format == "flt" || options.format == "both";
    const bool goodPlace = options.place.columns > 0 && options.place.rows > 0 && options.place.cellsize > 0 &&
                           options.detail >= 20 && options.detail <= 5000;
    return count % 2 == 1 && goodFormat && goodPlace ? std::optional(options) : std::nullopt;
}

// A lattice field seen at cell centres, row by row. Cubic (Catmull-Rom) for the ground, which is to be smooth; linear
// for the water, which must not swing over.
class RowSampler {
public:
    RowSampler(const Field& field, const Place& place, bool cubic) : field_(field), place_(place), cubic_(cubic) {}

    void row(long rowFromSouth, std::vector<double>& cells)
    {
        line_.resize(static_cast<std::size_t>(field_.columns));
        const auto [j, t] = nodeBefore(rowFromSouth, place_.rows, field_.rows);
        const std::array<double, 4> weights = weightsAt(t);
        for (int c = 0; c < field_.columns; ++c) {
            double sum = 0;
            for (int k = 0; k < 4; ++k) {
                sum += weights[static_cast<std::size_t>(k)] * field_.at(c, std::clamp(j - 1 + k, 0, field_.rows - 1));
            }
            line_[static_cast<std::size_t>(c)] = sum;
        }
        cells.resize(static_cast<std::size_t>(place_.columns));
        for (long column = 0; column < place_.columns; ++column) {
            const auto [i, s] = nodeBefore(column, place_.columns, field_.columns);
            const std::array<double, 4> across = weightsAt(s);
            double sum = 0;
            for (int k = 0; k < 4; ++k) {
                sum += across[static_cast<std::size_t>(k)] *
                       line_[static_cast<std::size_t>(std::clamp(i - 1 + k, 0, field_.columns - 1))];
            }
            cells[static_cast<std::size_t>(column)] = sum;
        }
    }

private:
    static std::pair<int, double> nodeBefore(long cell, long cells, int nodes)
    {
        const double at = (static_cast<double>(cell) + 0.5) / static_cast<double>(cells) * (nodes - 1);
        const double whole = std::floor(at);
        return {static_cast<int>(whole), at - whole};
    }

    std::array<double, 4> weightsAt(double t) const
    {
        if (!cubic_) {
            return {0, 1 - t, t, 0};
        }
        const double t2 = t * t;
        const double t3 = t2 * t;
        return {0.5 * (-t3 + 2 * t2 - t), 0.5 * (3 * t3 - 5 * t2 + 2), 0.5 * (-3 * t3 + 4 * t2 + t), 0.5 * (t3 - t2)};
    }

    const Field& field_;
    Place place_;
    bool cubic_;
    std::vector<double> line_;
};

// The level on cells kCoarse times as big, from the same lower left corner: the mean of the wet cells in each.
class CoarseLevel {
public:
    CoarseLevel(const std::string& base, const Place& fine, bool asAsc, bool asFlt)
        : place_{(fine.columns + kCoarse - 1) / kCoarse, (fine.rows + kCoarse - 1) / kCoarse, fine.xll, fine.yll,
                 fine.cellsize * kCoarse},
          files_(base, place_, asAsc, asFlt), sums_(static_cast<std::size_t>(place_.columns)), counts_(sums_.size())
    {
    }

    void addRow(long rowFromSouth, const std::vector<double>& level)
    {
        for (std::size_t i = 0; i < level.size(); ++i) {
            if (level[i] != kNull) {
                sums_[i / kCoarse] += level[i];
                ++counts_[i / kCoarse];
            }
        }
        if (rowFromSouth % kCoarse == 0) {
            for (std::size_t i = 0; i < sums_.size(); ++i) {
                sums_[i] = counts_[i] > 0 ? sums_[i] / counts_[i] : kNull;
            }
            files_.writeRow(sums_);
            std::fill(sums_.begin(), sums_.end(), 0);
            std::fill(counts_.begin(), counts_.end(), 0);
        }
    }
    bool close() { return files_.close(); }

private:
    Place place_;
    GridFiles files_;
    std::vector<double> sums_;
    std::vector<int> counts_;
};

// Speed of flow by Manning's formula, the water surface sloping as the river does but steeper in the hills.
double speed(double depth, double ground, double roughness)
{
    const double slope = 0.0008 + 0.0002 * std::max(ground - 8, 0.0);
    return std::min(std::pow(depth, 2.0 / 3) * std::sqrt(slope) / roughness, 4.0);
}

bool writeGround(const Options& options, const Valley& valley, const std::string& base, bool asAsc, bool asFlt)
{
    GridFiles files(base, options.place, asAsc, asFlt);
    RowSampler ground(valley.ground, options.place, true);
    std::vector<double> cells;
    for (long row = options.place.rows - 1; row >= 0; --row) {
        ground.row(row, cells);
        files.writeRow(cells);
    }
    return files.close();
}

bool writeStorm(const Options& options, const Valley& valley, const Storm& storm, bool asAsc, bool asFlt)
{
    const Field water = floodLevel(valley, {storm.size, storm.criticalArea * mainRiverArea(valley)});
    RowSampler groundRows(valley.ground, options.place, true);
    RowSampler waterRows(water, options.place, false);
    RowSampler roughnessRows(valley.roughness, options.place, false);

    const auto wanted = [&](const char* kind) { return options.only.empty() || options.only == kind; };
    const auto base = [&](const char* kind) { return options.folder + "/" + kind + "_" + storm.name; };
    std::optional<GridFiles> depths;
    std::optional<GridFiles> levels;
    std::optional<CoarseLevel> coarse;
    std::optional<GridFiles> speeds;
    if (wanted("depth")) {
        depths.emplace(base("depth"), options.place, asAsc, asFlt);
    }
    if (wanted("level")) {
        levels.emplace(base("level"), options.place, asAsc, asFlt);
        coarse.emplace(base("level") + "_coarse", options.place, asAsc, asFlt);
    }
    if (wanted("velocity")) {
        speeds.emplace(base("velocity"), options.place, asAsc, asFlt);
    }

    std::vector<double> ground;
    std::vector<double> level;
    std::vector<double> roughness;
    std::vector<double> depth(static_cast<std::size_t>(options.place.columns));
    for (long row = options.place.rows - 1; row >= 0; --row) {
        groundRows.row(row, ground);
        waterRows.row(row, level);
        for (std::size_t i = 0; i < depth.size(); ++i) {
            const bool wet = level[i] - ground[i] > kDrySkin;
            depth[i] = wet ? level[i] - ground[i] : kNull;
            level[i] = wet ? level[i] : kNull;
        }
        if (depths) {
            depths->writeRow(depth);
        }
        if (levels) {
            levels->writeRow(level);
            coarse->addRow(row, level);
        }
        if (speeds) {
            roughnessRows.row(row, roughness);
            for (std::size_t i = 0; i < depth.size(); ++i) {
                depth[i] = depth[i] == kNull ? kNull : speed(depth[i], ground[i], roughness[i]);
            }
            speeds->writeRow(depth);
        }
    }
    const bool depthsGood = !depths || depths->close();
    const bool levelsGood = !levels || (levels->close() && coarse->close());
    const bool speedsGood = !speeds || speeds->close();
    return depthsGood && levelsGood && speedsGood;
}

bool writeBuildings(const Options& options, const Valley& valley)
{
    const auto level = [&valley](const Storm& storm) {
        return floodLevel(valley, {storm.size, storm.criticalArea * mainRiverArea(valley)});
    };
    return writeBuildings(options.folder + "/buildings", options.place, valley.ground, level(kStorms[3]),
                          level(kStorms[5]), options.seed);
}

bool make(const Options& options)
{
    const bool asAsc = options.format != "flt";
    const bool asFlt = options.format != "asc";
    const double shape = static_cast<double>(options.place.rows) / static_cast<double>(options.place.columns);
    const int latticeRows =
        static_cast<int>(std::clamp(std::round(options.detail * shape), 0.25 * options.detail, 2.0 * options.detail));
    const Valley valley = makeValley(options.detail, latticeRows, options.seed);

    std::filesystem::create_directories(options.folder);
    bool good = true;
    if (options.only.empty() || options.only == "ground") {
        good = writeGround(options, valley, options.folder + "/ground", asAsc, asFlt);
    }
    if (options.only.empty() || options.only == "buildings") {
        good = writeBuildings(options, valley) && good;
    }
    for (const Storm& storm : kStorms) {
        if (options.only != "ground" && options.only != "buildings" &&
            (options.event.empty() || options.event == storm.name)) {
            good = writeStorm(options, valley, storm, asAsc, asFlt) && good;
        }
    }
    return good;
}

} // namespace
} // namespace catchment

int main(int count, char** words)
{
    const auto options = catchment::readOptions(count, words);
    if (!options) {
        std::cerr << catchment::kUsage;
        return 2;
    }
    return catchment::make(*options) ? 0 : 1;
}
