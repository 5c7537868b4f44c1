#include "network/read_layers.h"

#include "core/names.h"
#include "core/text.h"
#include "gis/layer_objects.h"
#include "gis/layer_reader.h"
#include "gis/record_values.h"
#include "host/console.h"
#include "host/ends.h"
#include "plane/geometry.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace gridforge::network {

namespace {

constexpr std::int32_t kPlainBranchAttributes = 4;
constexpr std::int32_t kTabAttributes = 12;
constexpr float kLeastRoughness = 0.0001F;
constexpr std::size_t kFlagTextWidth = 12;
constexpr std::size_t kMethodWidth = 20;
constexpr std::string_view kUnreadableSection = "ERROR - Reading following line in 1d_xs file:";

// --- Attribute lines -------------------------------------------------------------------------------------------------

struct BranchAttributes {
    std::string name;
    float roughness = 0;
    std::string flag;
    float formLoss = 0;
    std::string type;
};

BranchAttributes parseBranch(const std::string& dataLine, bool withType)
{
    BranchAttributes read;
    gis::RecordValues values(dataLine);
    values.take(read.name, kLineWidth);
    values.take(read.roughness);
    values.take(read.flag, 1);
    values.take(read.formLoss);
    if (withType) {
        values.take(read.type, kTypeWidth);
    }
    if (trim(read.type).empty()) {
        read.type = "S";
    }
    return read;
}

bool isOneOf(std::string_view text, std::string_view letter1, std::string_view letter2)
{
    return ASAME(text, letter1) || ASAME(text, letter2);
}

void parseCutLine(const std::string& dataLine, NbcSection& section)
{
    std::string split;
    std::string extract;
    std::string extractionMethod;
    std::string bufferMethod;
    gis::RecordValues values(dataLine, kUnreadableSection);
    values.take(section.source, kSourceWidth);
    values.take(section.distance);
    values.take(split, kFlagTextWidth);
    values.take(extract, kFlagTextWidth);
    values.take(extractionMethod, kMethodWidth);
    values.take(bufferMethod, kMethodWidth);
    values.take(section.bufferDistance);
    // Only the single letters count: "False" stays true. On purpose: old layers hold such words.
    section.split = !isOneOf(split, "N", "F");
    section.extract = !isOneOf(extract, "N", "F");
    section.extraction = extractionFrom(extractionMethod);
    section.cells = sectionCellsFrom(bufferMethod);
}

// The skew after these values is not read.
void parseTabLine(const std::string& dataLine, NbcSection& section)
{
    gis::RecordValues values(dataLine, kUnreadableSection);
    values.take(section.source, kSourceWidth);
    values.take(section.type, kSectionTypeWidth);
    values.take(section.flags, kSectionFlagsWidth);
    for (std::string& column : section.column) {
        values.take(column, kColumnWidth);
    }
    values.take(section.distance);
    values.take(section.zMaximum);
}

// --- Vertices --------------------------------------------------------------------------------------------------------

void copyVertices(const gis::Coordinates& read, std::vector<double>& x, std::vector<double>& y)
{
    x.assign(read.vertexX().begin(), read.vertexX().end());
    y.assign(read.vertexY().begin(), read.vertexY().end());
}

void requirePolyline(const gis::Coordinates& read)
{
    if (read.np > kMaxPolylineVertices) {
        fail("ERROR - Number of vertices in polyline exceeds maximum: ", kMaxPolylineVertices);
    }
}

// --- Branches --------------------------------------------------------------------------------------------------------

void addConnector(const gis::Coordinates& read, std::int32_t layer, NbcConnectors& connectors)
{
    if (connectors.size() == static_cast<std::size_t>(kMaxConnectors)) {
        fail("ERROR - More than the allowed number of x connectors.  Maximmum: ", kMaxConnectors);
    }
    if (read.np > kMaxConnectorVertices) {
        fail("ERROR - Number of vertices in x connector exceeds maximum: ", kMaxConnectorVertices);
    }
    NbcConnector& connector = connectors.emplace_back();
    connector.layer = layer;
    copyVertices(read, connector.x, connector.y);
    say("Polyline ", connectors.size(), " is an \"x\" connector.");
}

void addBranch(const BranchAttributes& attributes, const gis::Coordinates& read, NbcBranches& branches)
{
    if (branches.all.size() == static_cast<std::size_t>(kMaxBranches)) {
        fail("ERROR - More than the allowed number of branches.  Maximmum branches: ", kMaxBranches);
    }
    NbcBranch& branch = branches.all.emplace_back();
    branch.name = cut(attributes.name, kBranchNameWidth);
    branch.roughness = attributes.roughness;
    if (branch.roughness < kLeastRoughness) {
        branch.roughness = 1.0F;
        say("WARNING - Branch Roughness less than or equal to 0 setting to 1.");
    }
    branch.flag = isOneOf(attributes.flag, "F", "N") ? 'F' : 'T';
    branch.formLoss = attributes.formLoss;
    branch.type = attributes.type;
    requirePolyline(read);
    copyVertices(read, branch.x, branch.y);
    branch.layer = static_cast<std::int32_t>(branches.layerNames.size());
    branches.mostVertices = std::max(branches.mostVertices, branch.vertices());
    say("Polyline ", branches.all.size(), " with name ", quoted(branch.name));
}

void measure(NbcBranches& branches)
{
    say("Extracting distances for branches...");
    for (NbcBranch& branch : branches.all) {
        branch.chainage.assign(branch.x.size(), 0.0F);
        for (std::size_t v = 1; v < branch.x.size(); ++v) {
            branch.chainage[v] =
                branch.chainage[v - 1] + DISTANCE_8(branch.x[v - 1], branch.y[v - 1], branch.x[v], branch.y[v]);
        }
    }
    say("    Done.");
    say("Extracting extents...");
    for (NbcBranch& branch : branches.all) {
        branch.extent = extentOf(branch.x, branch.y);
    }
    say("    Done.");
}

void announceCutLines()
{
    say("Less than 12 attributes, expecting cut lines with the following attribute:");
    say("    Name - Optional name for output file");
    say("    Distance - Optional distance along the line for sampling from grids");
    say("    Split_TF - True / False for splitting branch, set to false for centre sections");
    say("    Extract_TF- True / False for extracting section, set to false to skip");
    say("    Extraction_Method - min, max or average");
    say("    Buffer_Method - Optional method for extracting values from grid: point {default}, buffer and "
        "perpendicular");
    say("    Buffer_Dist - Distance for use with buffer or perpendicular options.");
}

} // namespace

NbcSections createSections()
{
    say("Initialising cross-section array...");
    say("   Done.");
    return {};
}

NbcBranches createBranches()
{
    say("Initialising branches...");
    say("   Done.");
    return {};
}

void nbc_read_branches(const std::string& layerName, NbcBranches& branches, NbcConnectors& connectors)
{
    branches.layerNames.push_back(layerName);
    const auto number = static_cast<std::int32_t>(branches.layerNames.size());
    say("Getting Branches from ", layerName);
    gis::LayerReader layer = gis::openLayer(layerName);
    const bool withType = layer.columnCount() > kPlainBranchAttributes;
    if (withType) {
        say("More than four attributes - assuming 5th attribute is channel type.");
        say("  This cahouls be a character attribute with a maximum of 4 characters.");
    }
    say("Searching for Lines and Polylines...");
    gis::Coordinates read;
    while (const gis::LayerObject* object = gis::nextLine(layer, read)) {
        const BranchAttributes attributes = parseBranch(object->record, withType);
        if (ASAME(attributes.name, "x")) {
            addConnector(read, number, connectors);
        } else {
            addBranch(attributes, read, branches);
        }
    }
    layer.close();
    measure(branches);
}

void nbc_read_sections(const std::string& layerName, NbcSections& sections)
{
    sections.layerNames.push_back(layerName);
    sections.csvFolders.push_back(FILEFOLDERPATH(layerName));
    say("Opening cross-section file ", layerName);
    gis::LayerReader layer = gis::openLayer(layerName);
    const bool isTab = layer.columnCount() >= kTabAttributes;
    if (isTab) {
        say("Found 12 or more attributes, expecting GIS layer to be in 1d_tab format.");
    } else {
        announceCutLines();
    }
    say("Loading cross-sections from ", layerName);
    say("Searching for Lines and Polylines...");
    gis::Coordinates read;
    while (const gis::LayerObject* object = gis::nextLine(layer, read)) {
        if (sections.all.size() == static_cast<std::size_t>(kMaxSections)) {
            fail("ERROR - More than the allowed number of sections of: ", kMaxSections);
        }
        NbcSection& section = sections.all.emplace_back();
        if (isTab) {
            parseTabLine(object->record, section);
        } else {
            parseCutLine(object->record, section);
        }
        requirePolyline(read);
        copyVertices(read, section.x, section.y);
        section.extent = extentOf(section.x, section.y);
        section.layer = static_cast<std::int32_t>(sections.layerNames.size());
    }
    say("Found ", sections.all.size(), " cross-sections.");
    layer.close();
}

} // namespace gridforge::network
