// Long profile: at vertices along a line, the lowest cell across it and the highest cell to each side.
#include "sampling/lp.h"

#include "core/names.h"
#include "core/number_text.h"
#include "core/text.h"
#include "gis/layer_name.h"
#include "gis/layer_objects.h"
#include "gis/layer_writer.h"
#include "gis/record_values.h"
#include "host/console.h"
#include "plane/line_points.h"
#include "sampling/line_vertices.h"
#include "sampling/lp_cells.h"
#include "sampling/sampled_layer.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace gridforge::sampling {

namespace {

constexpr std::int32_t kTextWidth = 250; // of the check layer
constexpr std::int32_t kMaxProfileVertices = 10000000;

// --- The profile of a line -------------------------------------------------------------------------------------------

struct ProfileVertex {
    float chainage = 0;
    float perpendicular = 0; // degrees
    FoundSample invert;
    FoundSample leftBank;
    FoundSample rightBank;
};

struct Profile {
    std::string label;
    LineVertices line;
    std::vector<ProfileVertex> vertices;
};

std::string chainageField(float chainage, int decimals)
{
    constexpr int kWidth = 12;
    return realField(static_cast<double>(chainage), kWidth, decimals);
}

// The record of an object of the check layer.
std::string checkRecord(float value, std::string_view type, const Profile& profile, float chainage)
{
    constexpr int kWidth = 9;
    constexpr int kDecimals = 3;
    return join(realField(static_cast<double>(value), kWidth, kDecimals), ",", quotedValue(type), ",",
                quotedValue(profile.label), ",", chainageField(chainage, kDecimals));
}

void placeVertices(Profile& profile)
{
    say("Pre process line information...");
    const std::size_t count = profile.line.count();
    for (std::size_t i = 0; i < count; ++i) {
        ProfileVertex& vertex = profile.vertices[i];
        vertex.perpendicular = perpendicularAngle(lineAngle(profile.line, i));
        if (i == 0) {
            continue;
        }
        const float before = profile.vertices[i - 1].chainage;
        const float distance = distanceBefore(profile.line, i);
        vertex.chainage = static_cast<float>(static_cast<double>(before) + static_cast<double>(distance));
        if (isDuplicate(profile.line, i)) {
            sayDuplicate();
            say("  Profile: ", profile.label, " Chainage: ", AREAL(before), " Calculated Distance: ", AREAL(distance));
        }
    }
    say("   Done.");
}

// The layer of -check. The style of its last object stays with it, for the search lines of the next profile too.
struct CheckLayer {
    gis::LayerWriter layer;
    gis::Style style;
};

void sampleVertices(Profile& profile, float searchDistance, const Terrain& terrain, std::optional<CheckLayer>& check)
{
    say("Extracting elevations...");
    const GridHeader& header = terrain.header;
    const std::int32_t half = samplesToSide(header, searchDistance, kBothSides);
    const std::int32_t full = samplesToSide(header, searchDistance, kOneSide);
    for (std::size_t i = 0; i < profile.line.count(); ++i) {
        ProfileVertex& vertex = profile.vertices[i];
        const AcrossLine across = acrossLine(header, profile.line.x[i], profile.line.y[i], vertex.perpendicular);
        const auto drawSearch = [&](std::int32_t from, std::int32_t to, std::string_view type) {
            if (check) {
                gis::Feature searched = searchLine(across, from, to);
                searched.record = checkRecord(kNoLowest, type, profile, vertex.chainage);
                searched.style = check->style;
                check->layer.write(searched);
            }
        };
        drawSearch(-half, half, "Invert");
        vertex.invert = lowestSample(across, header, terrain.cells, {-half, half});
        // Nothing stops the search for a bank at the first high point.
        drawSearch(0, full, "Left Bank");
        vertex.leftBank = highestSample(across, header, terrain.cells, {0, full});
        drawSearch(0, -full, "Right Bank");
        vertex.rightBank = highestSample(across, header, terrain.cells, {-full, 0});
    }
}

void writeProfile(const std::string& name, const Profile& profile)
{
    constexpr int kChainageDecimals = 2;
    constexpr int kWidth = 8;
    constexpr int kDecimals = 3;
    const auto level = [](const FoundSample& sample) {
        return realField(static_cast<double>(sample.value), kWidth, kDecimals);
    };
    Unit unit = 0;
    OPENER(unit, "O ", name);
    writeLine(unit, "\"Chainage\",\"Invert\",\"Left Bank\",\"Right Bank\"");
    for (const ProfileVertex& vertex : profile.vertices) {
        writeLine(unit, join(chainageField(vertex.chainage, kChainageDecimals), ",", level(vertex.invert), ",",
                             level(vertex.leftBank), ",", level(vertex.rightBank)));
    }
    CLOSER(unit);
}

// The cells found, as points.
void writeFoundPoints(const Profile& profile, CheckLayer& check)
{
    const auto write = [&](const FoundSample& sample, std::string_view style, std::string_view type, float chainage) {
        check.style.first = style;
        check.layer.write({.kind = gis::Kind::point,
                           .x = {sample.x},
                           .y = {sample.y},
                           .record = checkRecord(sample.value, type, profile, chainage),
                           .style = check.style});
    };
    for (const ProfileVertex& vertex : profile.vertices) {
        write(vertex.invert, "    Symbol (37,255,12)", "Invert", vertex.chainage);
    }
    for (const ProfileVertex& vertex : profile.vertices) {
        write(vertex.leftBank, "    Symbol (36,16711680,12)", "Left Bank", vertex.chainage);
        write(vertex.rightBank, "    Symbol (36,15774720,12)", "Right Bank", vertex.chainage);
    }
}

// --- Names and the check layer ---------------------------------------------------------------------------------------

std::string checkLayerName(const run::Common& common, const std::string& input)
{
    const std::string extension = FILEEXT(input);
    if (!common.out) {
        return FILENAMEPATH(input) + "_LP_check" + extension;
    }
    std::string name = *common.out;
    if (!gis::hasLayerExtension(name)) {
        name += extension;
        say("   Appending file extension - revised file: ", name);
    }
    return name;
}

CheckLayer createCheckLayer(const std::string& name, const gis::Projection& projection)
{
    const std::vector<gis::Column> columns = {
        {"Elevation", "Float"}, {"Type", "Char", kTextWidth}, {"Label", "Char", kTextWidth}, {"Chainage", "Float"}};
    return {gis::createLayer(name, {.columns = columns, .projection = projection, .families = "PL"}), {}};
}

std::string readLabel(const std::string& record)
{
    std::string label;
    gis::RecordValues(record).take(label, kLineWidth);
    return label;
}

// The line with its vertices inserted.
Profile prepareProfile(std::string label, const gis::Coordinates& read, float spacing)
{
    Profile profile;
    say("Inserting vertices...");
    profile.line = insertVertices(read, spacing, kMaxProfileVertices);
    say("   Done.");
    say("Allocate memory for processing of LP line: ", label);
    profile.label = std::move(label);
    profile.vertices.resize(profile.line.count());
    say("   Done.");
    return profile;
}

} // namespace

// --- The run ---------------------------------------------------------------------------------------------------------

void runLongProfile(const run::Common& common, const LpOptions& options, const run::InputFileList& inputs)
{
    say("Processing long profile extract.");
    say("Using a spacing along the line of ", AREAL(options.spacing));
    say("   Use -lpmd<distance> input argument to modify.");
    say("Using search distance of ", AREAL(options.searchDistance));
    say("   Use -cpsd<distance> input argument to modify.");
    say("Long Profile input file: ", options.layer);
    gis::ProjectedLayer input = gis::openWithProjection(options.layer);
    std::optional<CheckLayer> check;
    if (options.check) {
        check = createCheckLayer(checkLayerName(common, options.layer), input.projection);
    } else if (common.out) {
        say("Using specified output file: ", *common.out);
    }
    const std::string base = FILENAMEPATH(common.out.value_or(options.layer));
    const Terrain terrain = loadTerrain(inputs[1]);

    say("Searching for Lines and Polylines...");
    gis::Coordinates read;
    std::int32_t lines = 0;
    while (const gis::LayerObject* object = gis::nextLine(input.layer, read)) {
        std::string label = readLabel(object->record);
        say("Polyline ", ++lines, " with ", read.np, " nodes...");
        Profile profile = prepareProfile(std::move(label), read, options.spacing);
        placeVertices(profile);
        sampleVertices(profile, options.searchDistance, terrain, check);
        writeProfile(join(base, "_", profile.label, ".csv"), profile);
        if (check) {
            writeFoundPoints(profile, *check);
        }
        say("Deallocation of temporary memory.");
        say("   Done.");
    }
    input.layer.close();
    if (check) {
        check->layer.close();
    }
}

} // namespace gridforge::sampling
