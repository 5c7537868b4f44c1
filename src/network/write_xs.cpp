#include "network/write_xs.h"

#include "core/names.h"
#include "core/number_text.h"
#include "core/rounding.h"
#include "core/text.h"
#include "gis/layer_writer.h"
#include "host/console.h"
#include "host/ends.h"
#include "host/units.h"
#include "network/layer_names.h"
#include "network/layer_output.h"
#include "plane/geometry.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

namespace gridforge::network {

namespace {

constexpr std::string_view kCsvFolder = "csv\\";
constexpr std::string_view kCsvExtension = ".csv";

// --- The name of a section's table -----------------------------------------------------------------------------------

void addExtension(NbcSection& section)
{
    const std::string& source = section.source;
    const std::size_t tail = source.size() - std::min(source.size(), kCsvExtension.size());
    if (!ASAME(source.substr(tail), kCsvExtension)) {
        section.source = cut(source + std::string(kCsvExtension), kSourceWidth);
    }
}

// Gives a section without a source one after the branch that it meets; false if it meets none.
bool settleSource(NbcSection& section)
{
    constexpr std::int32_t kDecimals = 3;
    if (trim(section.source).empty()) {
        if (!section.snapped && !section.intersected) {
            return false;
        }
        section.source =
            cut(join(kCsvFolder, section.branchName, "_", AREALD(section.chainage, kDecimals), kCsvExtension),
                kSourceWidth);
    }
    addExtension(section);
    return true;
}

void reportNoSource(std::size_t place, std::string_view label)
{
    say("ERROR - Cross-section must either have a source specified or cross a branch.");
    say(label, place + 1);
}

// --- The layer -------------------------------------------------------------------------------------------------------

gis::LayerSpec sectionSpec(const gis::Projection& projection)
{
    gis::LayerSpec spec{.projection = projection, .families = "L"};
    spec.columns = {
        {"Source", "Char", kSourceWidth}, {"Type", "Char", kSectionTypeWidth}, {"Flags", "Char", kSectionFlagsWidth}};
    for (int i = 1; i <= 6; ++i) {
        spec.columns.push_back({join("Column_", i), "Char", kColumnWidth});
    }
    spec.columns.insert(spec.columns.end(), {{"Z_Increment", "Float"}, {"Z_Maximum", "Float"}, {"Skew", "Float"}});
    return spec;
}

std::string recordOf(const NbcSection& section)
{
    constexpr double kSkew = 0;
    std::string record =
        join(quotedValue(section.source), ",", quotedValue(section.type), ",", quotedValue(section.flags), ",");
    for (const std::string& column : section.column) {
        record += join(quotedValue(column), ",");
    }
    return record + join(threeDecimals(static_cast<double>(section.distance)), ",",
                         threeDecimals(static_cast<double>(section.zMaximum)), ",", threeDecimals(kSkew));
}

// A section that crosses a branch has the crossing among its vertices.
gis::Feature featureOf(const NbcSection& section)
{
    gis::Feature feature{.kind = gis::Kind::polyline, .x = section.x, .y = section.y, .record = recordOf(section)};
    if (section.intersected) {
        const auto before = static_cast<std::ptrdiff_t>(section.sectionVertex - 1);
        feature.x.insert(feature.x.begin() + before, section.meetingX);
        feature.y.insert(feature.y.begin() + before, section.meetingY);
    }
    return feature;
}

// The extracted sections that `belongs` picks, to a layer or, without a name, to none. Sections without a name for their
// table are all reported before they end the run.
template <typename Belongs>
void writeLayer(NbcSections& sections, const std::string* name, const gis::Projection& projection, Belongs belongs)
{
    std::optional<gis::LayerWriter> layer;
    if (name != nullptr) {
        layer = gis::createLayer(*name, sectionSpec(projection));
    }
    bool errors = false;
    for (std::size_t i = 0; i < sections.all.size(); ++i) {
        NbcSection& section = sections.all[i];
        if (!section.extract || !belongs(section)) {
            continue;
        }
        if (!settleSource(section)) {
            reportNoSource(i, "    Cross-section number  = ");
            errors = true;
        } else if (layer) {
            layer->write(featureOf(section));
        }
    }
    if (errors) {
        fail("ERRORs found - See above for further information.");
    }
    if (layer) {
        layer->close();
    }
}

// --- The table -------------------------------------------------------------------------------------------------------

std::string materialText(float material, MaterialNumber number)
{
    const auto value = static_cast<double>(material);
    return AINTEGER(number == MaterialNumber::rounded ? roundToInt(value) : truncateToInt(value));
}

std::string valueAt(const std::vector<float>& values, std::size_t i)
{
    return threeDecimals(i < values.size() ? static_cast<double>(values[i]) : 0.0);
}

} // namespace

void nbc_write_xs_single(NbcSections& sections, const std::string& name, const gis::Projection& projection)
{
    say("Writing 1d_xs file.");
    gis::LayerWriter layer = gis::createLayer(name, sectionSpec(projection));
    for (std::size_t i = 0; i < sections.all.size(); ++i) {
        NbcSection& section = sections.all[i];
        if (!section.extract) {
            continue;
        }
        if (!settleSource(section)) {
            reportNoSource(i, "Cross-section number  = ");
            EXITS();
        }
        layer.write(featureOf(section));
    }
    layer.close();
    say("Finished writing 1d_xs file.");
}

void nbc_write_xs(NbcSections& sections, const gis::Projection& projection, bool materials, bool writeFlag,
                  const std::string& outputName)
{
    if (materials) {
        for (NbcSection& section : sections.all) {
            section.flags = "M";
        }
    }
    if (!outputName.empty()) {
        say("Using user-specified output file: ", outputName);
        for (std::string& folder : sections.csvFolders) {
            folder = FILEFOLDERPATH(outputName);
        }
        writeLayer(sections, writeFlag ? &outputName : nullptr, projection, [](const NbcSection&) { return true; });
    } else {
        say("Writing ", sections.layerNames.size(), ", 1d_xs files.");
        for (std::size_t k = 0; k < sections.layerNames.size(); ++k) {
            const std::string name = xsLayerName(sections.layerNames[k]);
            const auto layer = static_cast<std::int32_t>(k + 1);
            writeLayer(sections, writeFlag ? &name : nullptr, projection,
                       [layer](const NbcSection& section) { return section.layer == layer; });
        }
    }
    say("Finished writing 1d_xs files.");
}

void writeSectionTable(const std::string& name, const NbcSection& section, bool materials, MaterialNumber number)
{
    Unit unit = 0;
    OPENER(unit, "O ", name);
    say("Writing cross-section data to: ", name);
    writeLine(unit, materials ? "\"Chainage\",\"Z\",\"Mat\"" : "\"Chainage\",\"Z\"");
    double chainage = 0;
    // A section without points has a first row all the same.
    const std::size_t rows = std::max(section.pointX.size(), std::size_t{1});
    for (std::size_t i = 0; i < rows; ++i) {
        if (i > 0) {
            chainage += static_cast<double>(
                DISTANCE_8(section.pointX[i - 1], section.pointY[i - 1], section.pointX[i], section.pointY[i]));
        }
        std::string row = join(threeDecimals(chainage), ",", valueAt(section.pointZ, i));
        if (materials) {
            const float material = i < section.pointMaterial.size() ? section.pointMaterial[i] : 0.0F;
            row += join(",", materialText(material, number));
        }
        writeLine(unit, row);
    }
    CLOSER(unit);
}

void nbc_write_csv(const NbcSections& sections, bool materials)
{
    for (const NbcSection& section : sections.all) {
        if (section.extract) {
            const std::string& folder = sections.csvFolders[static_cast<std::size_t>(section.layer - 1)];
            writeSectionTable(cut(folder + section.source, kNameWidth), section, materials, MaterialNumber::rounded);
        }
    }
}

void nbc_write_check(const NbcSections& sections, const gis::Projection& projection, bool materials,
                     const std::string& name)
{
    say("Writing GIS check file.");
    std::vector<gis::Column> columns = {{"Source", "Char", kSourceWidth}, {"Z", "Float"}};
    if (materials) {
        columns.push_back({"Mat", "Integer"});
    }
    gis::LayerWriter layer = gis::createLayer(name, {.columns = columns, .projection = projection, .families = "P"});
    gis::Feature point{.kind = gis::Kind::point};
    for (const NbcSection& section : sections.all) {
        for (std::size_t i = 0; i < section.pointX.size(); ++i) {
            std::string record = join(quotedValue(section.source), ",", valueAt(section.pointZ, i));
            if (materials) {
                record += join(",", materialText(section.pointMaterial[i], MaterialNumber::rounded));
            }
            point.x = {section.pointX[i]};
            point.y = {section.pointY[i]};
            point.record = std::move(record);
            layer.write(point);
        }
    }
    layer.close();
    say("Finished writing check file.");
}

} // namespace gridforge::network
