// The readers, one sort of file each. Where there are two ways to read it, both must find the same.
#include "damages/control_file.h"
#include "damages/curves.h"
#include "driver/scan.h"
#include "driver/validate.h"
#include "fuzz/fuzz_run.h"
#include "fuzz/kinds.h"
#include "gis/layer_reader.h"
#include "gis/point_look.h"
#include "grid/asc_decode.h"
#include "grid/reader.h"
#include "network/flc.h"
#include "network/nbc.h"
#include "ops/class_table.h"
#include "ops/xyz_parse.h"
#include "rainfall/control_file.h"
#include "rainfall/rainfall_grid.h"
#include "run/inputs.h"
#include "sampling/cp_config.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <optional>
#include <utility>
#include <vector>

namespace gridforge::fuzz {

namespace {

std::string nameOf(const NamedFiles& input)
{
    return input.files.empty() ? std::string("none") : std::string(input.files.front().name);
}

bool sameBits(std::span<const float> a, std::span<const float> b)
{
    return a.size() == b.size() && (a.empty() || std::memcmp(a.data(), b.data(), a.size_bytes()) == 0);
}

// --- Grids -----------------------------------------------------------------------------------------------------------

// The cells of a text grid as all threads read them.
std::optional<grid::CellStore> decodedCells(const std::string& name)
{
    const auto look = grid::lookAtGrid(name);
    grid::CellStore cells;
    if (!look || look->format != grid::Format::asc || !cells.take(look->header.cells(), ".") ||
        !grid::decodeAsc(*look, cells)) {
        return std::nullopt;
    }
    return cells;
}

void readGrid(const NamedFiles& input)
{
    const std::string name = nameOf(input);
    beginRun(input, smallSystem());
    std::optional<grid::CellStore> decoded;
    Grid cells;
    bool whole = false;
    const std::string console = toItsEnd([&] {
        decoded = decodedCells(name);
        grid::OpenGrid grid = grid::openGrid(name);
        if (cells.allocate(grid.header.nrows, grid.header.ncols)) {
            readCells(std::move(grid), cells);
            whole = true;
        }
    });
    if (decoded && !decoded->isInFile() && !(whole && sameBits(decoded->inMemory(), cells.cells()))) {
        report("a text grid has other cells when its rows are decoded at once", console);
    }
}

// --- Layers ----------------------------------------------------------------------------------------------------------

// The silent look at its points, which a run does not rely on, and the loop of the operations over a layer.
void readObjects(const std::string& name, bool coordinates)
{
    constexpr std::int32_t kMaxVertices = 10000;
    static_cast<void>(gis::lookAtPoints(name));
    gis::OpenLayer& layer = gis::openFiles(name);
    gis::readHeader(layer);
    gis::LayerObject object;
    gis::Coordinates vertices;
    std::string line;
    while (!layer.end) {
        if (gis::readKind(layer, object)) {
            gis::readRecord(layer, object.name, line);
            gis::readCoordinates(layer, object, vertices, kMaxVertices, coordinates);
        }
    }
    gis::close(layer);
}

void readLayer(const NamedFiles& input)
{
    for (const bool coordinates : {true, false}) {
        beginRun(input, smallSystem());
        toItsEnd([&] { readObjects(nameOf(input), coordinates); });
    }
}

void readProjection(const NamedFiles& input)
{
    beginRun(input, smallSystem());
    toItsEnd([&] {
        gis::Projection projection;
        gis::get_projection("l.shp", projection);
    });
}

// --- Tables ----------------------------------------------------------------------------------------------------------

void readClasses(const NamedFiles& input)
{
    constexpr ops::ClassWords kWords = {"from", "maximum", "too many", "found", "too few"};
    for (const bool coloured : {false, true}) {
        beginRun(input, smallSystem());
        std::optional<std::vector<float>> look;
        std::vector<float> limits;
        toItsEnd([&] {
            look = ops::lookAtLimits(nameOf(input), coloured);
            limits = ops::risingLimits(ops::readClassTable(nameOf(input), coloured, kWords));
        });
        if (look && !limits.empty() && !sameBits(*look, limits)) { // none: the run has ended at a row
            report("a class table has other limits than the look at it has found");
        }
    }
}

void readSymbols(const NamedFiles& input)
{
    beginRun(input, smallSystem());
    toItsEnd([&] {
        const auto thresholds = sampling::readSymbolThresholds(nameOf(input));
        static_cast<void>(sampling::symbolStyle(thresholds, 1));
    });
}

void readCurve(const NamedFiles& input)
{
    constexpr std::int32_t kMostPoints = 20;
    beginRun(input, smallSystem());
    toItsEnd([&] {
        damages::DmgCurve curve;
        damages::dmg_read_curve(nameOf(input), kMostPoints, curve);
    });
}

void readHyetograph(const NamedFiles& input)
{
    beginRun(input, smallSystem());
    toItsEnd([&] {
        rainfall::RfHyetographs hyetographs{.maxLocations = 3, .maxPoints = 20, .records = {}};
        rainfall::addHyetograph("a", hyetographs);
        rainfall::rf_read_hyetograph(nameOf(input), hyetographs);
    });
}

// Each line by itself, and all of them at once.
void parsePoints(std::string_view text)
{
    constexpr std::size_t kMostPoints = 64;
    constexpr std::size_t kWidth = 1000;
    std::array<double, kMostPoints> x{};
    std::array<double, kMostPoints> y{};
    std::array<float, kMostPoints> z{};
    const ops::PlainPoints all = ops::parseLines(text, kWidth, x, y, z);
    if (all.count > kMostPoints || all.bytes > text.size()) {
        report("more points than there is room for");
    }
    std::string_view rest = text.substr(0, all.bytes);
    for (std::size_t i = 0; i < all.count; ++i) {
        const std::size_t lineEnd = rest.find('\n');
        std::string_view line = rest.substr(0, lineEnd);
        rest.remove_prefix(std::min(rest.size(), line.size() + 1));
        line = line.substr(0, line.ends_with('\r') ? line.size() - 1 : line.size()).substr(0, kWidth);
        double oneX = 0;
        double oneY = 0;
        float oneZ = 0;
        if (!ops::parsePoint(line, oneX, oneY, oneZ) || !sameBits(std::array{oneZ}, std::array{z[i]}) ||
            std::bit_cast<std::uint64_t>(oneX) != std::bit_cast<std::uint64_t>(x[i]) ||
            std::bit_cast<std::uint64_t>(oneY) != std::bit_cast<std::uint64_t>(y[i])) {
            report("a point differs from the one that its line alone gives", line);
        }
    }
    if (!rest.empty()) {
        report("more lines than points");
    }
}

void readPoints(const NamedFiles& input)
{
    if (!input.files.empty()) {
        parsePoints(input.files.front().bytes);
    }
}

// --- Control files ---------------------------------------------------------------------------------------------------

void readNetwork(const NamedFiles& input)
{
    beginRun(input, smallSystem());
    toItsEnd([&] {
        run::InputFileList inputs;
        inputs.add(nameOf(input));
        network::runNbc(inputs);
    });
}

void readLosses(const NamedFiles& input)
{
    beginRun(input, smallSystem());
    toItsEnd([&] {
        network::NbcLines lines(2);
        lines[0].x = {1, 20};
        lines[0].y = {1, 20};
        lines[1].x = {3, 9};
        lines[1].y = {2, 9};
        network::nbc_read_flc(nameOf(input), lines);
    });
}

void readDamages(const NamedFiles& input)
{
    beginRun(input, smallSystem());
    toItsEnd([&] {
        damages::DmgLimits limits;
        damages::dmg_scan_limits(nameOf(input), limits);
        damages::readDamagesFile(nameOf(input), limits);
    });
}

void readRainfall(const NamedFiles& input)
{
    beginRun(input, smallSystem());
    toItsEnd([&] {
        rainfall::RfLimits limits;
        rainfall::rf_scan_limits(nameOf(input), limits);
        rainfall::RfHyetographs hyetographs{
            .maxLocations = limits.locations, .maxPoints = limits.points, .records = {}};
        rainfall::RfPoints points{.maxLocations = limits.locations, .records = {}};
        const rainfall::RfSettings settings = rainfall::readRfCommands(nameOf(input), hyetographs, points);
        rainfall::requireSameTimes(hyetographs);
        rainfall::rf_match_points(hyetographs, points);
        rainfall::settleRfGrid(settings);
    });
}

// --- The command line ------------------------------------------------------------------------------------------------

// A word for each line of the first file, so that words may have blanks.
void readCommandLine(const NamedFiles& input)
{
    beginRun(input, smallSystem());
    toItsEnd([&] {
        std::vector<std::string> words;
        std::string_view rest = input.files.empty() ? std::string_view() : input.files.front().bytes;
        while (!rest.empty()) {
            const std::size_t lineEnd = rest.find('\n');
            words.emplace_back(rest.substr(0, lineEnd));
            rest.remove_prefix(std::min(rest.size(), words.back().size() + 1));
        }
        driver::CommandLine line = driver::scanArguments(words);
        driver::validate(line);
        run::expandInputs(line.rawInputList);
    });
}

} // namespace

std::span<const Kind> readers()
{
    static constexpr Kind kReaders[] = {
        {"asc", readGrid},        {"flt", readGrid},       {"mif", readLayer},
        {"shp", readLayer},       {"prj", readProjection}, {"classes", readClasses},
        {"symbols", readSymbols}, {"curve", readCurve},    {"hyetograph", readHyetograph},
        {"xyz", readPoints},      {"nbc", readNetwork},    {"losses", readLosses},
        {"dmg", readDamages},     {"rfc", readRainfall},   {"command_line", readCommandLine},
    };
    return kReaders;
}

} // namespace gridforge::fuzz
