// -damages reads curves, buildings and the list of results grids by a control file, samples the grids at the buildings
// and writes the damage of each building by each grid.
#include "damages/damages.h"

#include "core/names.h"
#include "core/text.h"
#include "damages/buildings.h"
#include "damages/calculation.h"
#include "damages/control_file.h"
#include "damages/frequency.h"
#include "damages/output.h"
#include "gis/layer_name.h"
#include "host/console.h"
#include "host/ends.h"

#include <optional>
#include <utility>

namespace gridforge::damages {

namespace {

constexpr std::size_t kExtensionWidth = 10;

// The memory is taken as it is filled; the lines stay as users know them.
void sayAllocated(std::string_view announcement)
{
    say(announcement);
    say("   Done");
}

std::vector<DmgBuilding> readAllBuildings(const DmgControl& control, const DmgLimits& limits)
{
    std::vector<DmgBuilding> dmg_building;
    say("Total number of building GIS files to read: ", control.buildingFiles.size());
    for (const std::string& name : control.buildingFiles) {
        say("Reading GIS File: ", name);
        dmg_read_buildings(name, limits, control.curves, dmg_building);
    }
    for (DmgBuilding& building : dmg_building) {
        building.damage.resize(control.results.size());
    }
    return dmg_building;
}

std::vector<DmgRes> sortResults(const std::vector<DmgRes>& listed)
{
    say("Sorting results grids by frequency: ");
    std::optional<std::vector<DmgRes>> sorted = sortByFrequency(listed);
    if (!sorted) {
        fail("ERROR - No results grid has an AEP above -9999.");
    }
    say("   Done");
    say("Ordered Grids: ");
    for (std::size_t i = 0; i < sorted->size(); ++i) {
        say("Grid ", i + 1, " is: ", (*sorted)[i].file);
    }
    return std::move(*sorted);
}

void calculate(const DmgControl& control, const std::vector<DmgRes>& results, std::vector<DmgBuilding>& buildings)
{
    say("Extracting Results from grids:");
    float level = 0; // of the building before, from grid to grid
    for (std::size_t i = 1; i <= results.size(); ++i) {
        dmg_calc_res(buildings, control.curves, results, static_cast<std::int32_t>(i), control.method, level);
    }
    say("Done extracting results from grids");
}

} // namespace

DamageNames damageNames(const run::Common& common, std::string_view firstLayer)
{
    if (!common.out) {
        const std::string base = FILENAMEPATH(firstLayer) + "_Damages";
        const std::string extension = cut(FILEEXT(firstLayer), kExtensionWidth);
        return {cut(base + extension, kNameWidth), cut(base + ".csv", kNameWidth)};
    }
    const std::string& out = *common.out;
    if (gis::hasLayerExtension(out)) {
        return {out, cut(FILENAMEPATH(out) + ".csv", kNameWidth)};
    }
    // With any other name both are the same, whatever the layer can make of it, on purpose: its message names it.
    return {out, out};
}

void runDamages(const run::Common& common, const run::InputFileList& inputs)
{
    say("Damage Calculation.");
    if (inputs.count() > 1) {
        fail("ERROR - Only one .dmg file can be specified.");
    }
    DmgLimits limits;
    dmg_scan_limits(inputs[1], limits);
    sayAllocated("Allocating memory for damage curves...");
    const DmgControl control = readDamagesFile(inputs[1], limits);
    say("Debug - dmg_curve_%ncurve: ", control.curves.size());
    say("Debug - dmg_res_%nRes: ", 0); // none are in the sorted list yet
    sayAllocated("Allocating memory for GIS data...");
    std::vector<DmgBuilding> dmg_building = readAllBuildings(control, limits);
    say("Total number of grid files to read: ", 0); // a count that nothing keeps; the line stays as users know it
    sayAllocated("Allocating memory for damage curves...");

    const std::vector<DmgRes> dmg_res = sortResults(control.results);
    calculate(control, dmg_res, dmg_building);

    if (common.out) {
        say("Using specified output file.");
    }
    const DamageNames names = damageNames(common, control.buildingFiles.empty() ? "" : control.buildingFiles.front());
    say("Output GIS File: ", names.gis);
    say("Output CSV File: ", names.csv);
    dmg_write_gis(names, control.projection, dmg_building, dmg_res, control.curves);
}

} // namespace gridforge::damages
