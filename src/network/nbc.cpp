#include "network/nbc.h"

#include "core/number_text.h"
#include "core/text.h"
#include "gis/layer_name.h"
#include "gis/projection.h"
#include "host/console.h"
#include "host/control_commands.h"
#include "host/ends.h"
#include "host/units.h"
#include "network/extract.h"
#include "network/flc.h"
#include "network/insert_vertices.h"
#include "network/match.h"
#include "network/read_layers.h"
#include "network/records.h"
#include "network/split.h"
#include "network/write_nwk.h"
#include "network/write_xs.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace gridforge::network {

namespace {

// What the control file has set and read so far.
struct Build {
    NbcSections sections;
    NbcBranches branches;
    NbcConnectors connectors;
    std::vector<std::string> flcFiles;
    std::int32_t gisInputs = 0;
    gis::Projection projection; // of the first layer, for the outputs

    bool materials = false;
    bool bendiness = false;
    bool writeXs = true;
    bool writeNwk = true;
    bool writeCheck = false;
    std::string outputNwk; // blank: a layer for each branch layer
    std::string outputXs;
    float bufferDistance = 0; // without further use
    float flcPerUnitLength = 0;
};

float readReal(const ControlLine& line)
{
    float value = 0;
    readValue(line, "ERROR - Reading following line in .nbc file:", value);
    return value;
}

// --- Commands that read layers ---------------------------------------------------------------------------------------

void countGisInput(const std::string& layerName, Build& build)
{
    if (++build.gisInputs == 1) {
        get_projection(layerName, build.projection);
    } else {
        say("Projection check not yet implemented.");
    }
}

void readBranches(const ControlLine& line, Build& build)
{
    countGisInput(line.value, build);
    nbc_read_branches(line.value, build.branches, build.connectors);
}

void readSections(const ControlLine& line, Build& build)
{
    countGisInput(line.value, build);
    nbc_read_sections(line.value, build.sections);
}

void keepFlcFile(const ControlLine& line, Build& build)
{
    if (build.flcFiles.size() == static_cast<std::size_t>(kMaxFlcFiles)) {
        fail("ERROR - More than ", kMaxFlcFiles, " FLC files specified.");
    }
    build.flcFiles.push_back(line.value);
}

// --- Commands on the points of the sections --------------------------------------------------------------------------

void requireSections(const Build& build)
{
    if (build.sections.all.empty()) {
        fail("ERROR - Set XS used before any cross-sections have been read.");
    }
}

void setSpacing(const ControlLine& line, Build& build)
{
    requireSections(build);
    const float spacing = readReal(line);
    say("nbc>> - Read default xs vertex spacing of ", AREAL(spacing));
    nbc_insert_vertices(build.sections, spacing, {});
}

void setMaterial(const ControlLine& line, Build& build)
{
    build.materials = true;
    requireSections(build);
    const float material = readReal(line);
    say("nbc>> - Setting material value for all ", build.sections.all.size(), " sections to ", AREAL(material));
    for (NbcSection& section : build.sections.all) {
        std::ranges::fill(section.pointMaterial, material);
    }
    say("   Done.");
}

void setElevation(const ControlLine& line, Build& build)
{
    requireSections(build);
    const float elevation = readReal(line);
    say("nbc>> - Setting elevations for all ", build.sections.all.size(), " sections to ", AREAL(elevation));
    for (NbcSection& section : build.sections.all) {
        std::ranges::fill(section.pointZ, elevation);
    }
    say("   Done.");
}

void readElevations(const ControlLine& line, Build& build)
{
    nbc_read_grid(line.value, build.sections, PointValue::elevation);
}

void readMaterials(const ControlLine& line, Build& build)
{
    build.materials = true;
    nbc_read_grid(line.value, build.sections, PointValue::material);
}

// --- The control file ------------------------------------------------------------------------------------------------

// In the order in which they are tried. Unknown commands are ignored without a message.
constexpr auto kCommands = std::to_array<ControlCommand<Build>>({
    {"Read GIS Branch", readBranches},
    {"Read MI Branch", readBranches},
    {"Read GIS XS", readSections},
    {"Read MI XS", readSections},
    {"Read GIS FLC", keepFlcFile},
    {"Read MI FLC", keepFlcFile},
    {"Set XS dx", setSpacing},
    {"Set XS Mat", setMaterial},
    {"Set XS Z", setElevation},
    {"Read Grid Z", readElevations},
    {"Read Grid Mat", readMaterials},
    {"Branch Bendiness",
     [](const ControlLine& line, Build& build) { build.bendiness = build.bendiness || ASAME(line.value, "On"); }},
    {"Write XS",
     [](const ControlLine& line, Build& build) { build.writeXs = build.writeXs && !ASAME(line.value, "Off"); }},
    {"Write NWK",
     [](const ControlLine& line, Build& build) { build.writeNwk = build.writeNwk && !ASAME(line.value, "Off"); }},
    {"Output Nwk", [](const ControlLine& line, Build& build) { build.outputNwk = line.value; }},
    {"Output XS", [](const ControlLine& line, Build& build) { build.outputXs = line.value; }},
    {"Set XS Buffer Distance", [](const ControlLine& line, Build& build) { build.bufferDistance = readReal(line); }},
    {"FLC per Unit Length", [](const ControlLine& line, Build& build) { build.flcPerUnitLength = readReal(line); }},
    {"Write Check",
     [](const ControlLine& line, Build& build) { build.writeCheck = build.writeCheck || ASAME(line.value, "On"); }},
});

void readControlFile(const std::string& name, Build& build)
{
    say("Opening input .nbc file: ", name);
    Unit unit = 0;
    OPENER(unit, "I ", name);
    runCommands(unit, {}, kCommands, build);
    CLOSER(unit);
}

void writeSections(const std::string& controlFile, Build& build)
{
    nbc_match_sections(build.branches, build.sections);
    nbc_write_xs(build.sections, build.projection, build.materials, build.writeXs, build.outputXs);
    if (build.writeXs) {
        nbc_write_csv(build.sections, build.materials);
    }
    if (build.writeCheck) {
        nbc_write_check(build.sections, build.projection, build.materials,
                        cut(join(controlFile, "_check", gis::kMifExtension), kNameWidth));
    }
}

void writeNetwork(Build& build)
{
    NbcLines lines = createLines(build.branches, build.connectors);
    for (const std::string& flcFile : build.flcFiles) {
        nbc_read_flc(flcFile, lines);
    }
    // No length enters, in spite of the command's name: readers of the layer take the value as it stands.
    if (build.flcPerUnitLength > 0.0F) {
        for (NbcLine& line : lines) {
            line.exitLoss = build.flcPerUnitLength;
        }
    }
    if (build.writeNwk) {
        nbc_write_nwk(lines, build.branches, build.projection, build.bendiness, build.outputNwk);
    }
}

} // namespace

void runNbc(const run::InputFileList& inputs)
{
    say("Processing .nbc File... ");
    if (inputs.count() > 1) {
        fail("ERROR - Only one .nbc file can be specified.");
    }
    Build build;
    build.sections = createSections();
    build.branches = createBranches();
    readControlFile(inputs[1], build);
    writeSections(inputs[1], build);
    writeNetwork(build);
}

} // namespace gridforge::network
