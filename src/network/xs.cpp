#include "network/xs.h"

#include "core/names.h"
#include "gis/layer_name.h"
#include "gis/projection.h"
#include "grid/header.h"
#include "host/console.h"
#include "host/ends.h"
#include "host/units.h"
#include "network/extract.h"
#include "network/insert_vertices.h"
#include "network/layer_names.h"
#include "network/match.h"
#include "network/read_layers.h"
#include "network/records.h"
#include "network/split.h"
#include "network/write_nwk.h"
#include "network/write_xs.h"

#include <optional>
#include <string>

namespace gridforge::network {

namespace {

void buildNetwork(const std::string& branchLayer, const gis::Projection& projection, NbcSections& sections)
{
    NbcBranches branches = createBranches();
    NbcConnectors connectors;
    nbc_read_branches(branchLayer, branches, connectors);
    nbc_match_sections(branches, sections);
    const NbcLines lines = createLines(branches, connectors);
    nbc_write_nwk_single(lines, nwkLayerName(branchLayer), projection);
}

void describeSections(bool materials, NbcSections& sections)
{
    for (NbcSection& section : sections.all) {
        section.type = "XZ";
        if (materials) {
            section.flags = "M";
        }
    }
}

// Puts points along the sections, a cell of the first grid apart.
void placePoints(std::optional<float> defaultN, const std::string& firstGrid, NbcSections& sections)
{
    say("Loading header information from 1st elevation grid...");
    grid::OpenGrid grid = grid::openGrid(firstGrid);
    CLOSER(grid.unit);
    nbc_insert_vertices(sections, grid.header.cellsize, defaultN);
}

void sampleGrid(const std::string& name, std::string_view purpose, PointValue target, NbcSections& sections)
{
    Grid cells;
    const GridHeader header = readSectionGrid(name, purpose, cells);
    say("Extracting sections from grid...");
    samplePoints(header, cells, target, sections);
    say("   Done");
    say("Deallocating grid memory...");
    cells.release();
    say("   Done");
}

void checkMaterialsFile(const std::string& name)
{
    if (gis::hasMifExtension(name)) {
        fail("ERROR - Vector materials not yet supported...");
    }
    const std::string extension = FILEEXT(name);
    if (extension != ".flt" && extension != ".asc") {
        say("WARNING - Unable to determine extension of file: ", name);
        say("   Assuming .asc grid.");
    }
}

} // namespace

void runXs(const XsOptions& options, const run::InputFileList& inputs)
{
    const bool materials = !options.materialGrids.empty();
    say("Processing -xs option... ");
    gis::Projection projection;
    get_projection(options.sectionLayer, projection);
    NbcSections sections = createSections();
    nbc_read_sections(options.sectionLayer, sections);
    if (!options.branchLayer.empty()) {
        buildNetwork(options.branchLayer, projection, sections);
    }
    describeSections(materials, sections);
    nbc_write_xs_single(sections, xsLayerName(options.sectionLayer), projection);

    placePoints(options.defaultN, inputs[1], sections);
    for (std::int32_t i = 1; i <= inputs.count(); ++i) {
        say("Loading elevation grid data...");
        sampleGrid(inputs[i], "storing elevation grid...", PointValue::elevation, sections);
    }
    for (const std::string& name : options.materialGrids) {
        checkMaterialsFile(name);
        say("Loading materials grid data...");
        sampleGrid(name, "storing materials grid...", PointValue::material, sections);
    }
    for (const NbcSection& section : sections.all) {
        if (section.extract) {
            writeSectionTable(section.source, section, materials, MaterialNumber::truncated);
        }
    }
}

} // namespace gridforge::network
