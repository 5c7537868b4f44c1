#include "ops/classify.h"

#include "core/names.h"
#include "core/rounding.h"
#include "host/ends.h"
#include "ops/class_table.h"
#include "ops/classified_asc.h"
#include "ops/classify_cells.h"
#include "run/cell_story.h"
#include "run/outputs.h"

#include <optional>
#include <string>
#include <vector>

namespace gridforge::ops {

namespace {

constexpr ClassWords kClassificationWords{
    .from = "Getting classifications from: ",
    .maximum = "Maximum number of classes: ",
    .tooMany = "ERROR - Number of classes exceeds maximum.",
    .found = "Number of classes found: ",
    .tooFew = "ERROR - Less than two classes found.",
};

void checkClassOrder(const ClassTable& table)
{
    for (std::size_t i = 1; i < table.size(); ++i) {
        if (!(table[i].limit >= table[i - 1].limit)) {
            fail("ERROR - Classes not in increasing order.");
        }
    }
}

// Shades of red, the darker the lower the class.
void shadeClasses(ClassTable& table)
{
    constexpr std::int32_t kSteps = 1000;
    constexpr double kFullRed = 255.0;
    const auto classes = static_cast<std::int32_t>(table.size()) + 1;
    std::int32_t i = 0;
    for (ClassRow& row : table) {
        ++i;
        const std::int32_t share = (i * kSteps) / classes;
        row.red = truncateToInt((static_cast<double>(share) * kFullRed) / static_cast<double>(kSteps));
        row.green = 0;
        row.blue = 0;
    }
}

std::string withAsc(const std::string& name)
{
    return FILEEXT(name) == ".asc" ? name : name + ".asc";
}

} // namespace

void runClassify(const run::Common& givenCommon, const ClassifyOptions& options, const run::InputFileList& inputs)
{
    run::Common common = givenCommon;
    say("Classifying  grid.");
    if (inputs.count() > 1) {
        fail("ERROR - Only a single grid file accepted for \"-classify\" option.");
    }
    if (options.rgb && !options.grc) {
        say("WARNING - Must specify \"-grc\" to get classified .asc grid.");
        // So the output is a .flt unless -asc is given too, on purpose: scripts rely on the name.
        common.format = common.format.value_or(grid::Format::flt);
    }

    const std::optional<std::vector<float>> looked = lookAtLimits(options.classFile, options.rgb);
    std::vector<float> limits = looked.value_or(std::vector<float>());
    const auto kernel = [&limits](const run::CellPiece& piece, run::InputPieces cells, run::OutputPieces classes) {
        classifyCells(cells[0], piece.nulls[0], limits, classes[0]);
    };
    run::CellStory story(common, inputs, {.ordinary = looked.has_value()}, kernel);
    const run::LoadedGrid loaded = story.load(
        1, {.opening = "Loading grid data...",
            .purpose = "storing input grid...",
            .prepare = [&](const GridHeader& lattice) { story.allocate(0, lattice, "storing output grid..."); },
            .reading = "Reading data...",
            .done = "   Done."});
    const GridHeader& header = loaded.header;

    ClassTable table = readClassTable(options.classFile, options.rgb, kClassificationWords);
    checkClassOrder(table);
    limits = risingLimits(table);
    story.compute("Processing Row:");
    say("   Done.");

    const std::string base = run::outputNameRule(common, inputs[1], "_classified");
    const grid::Format format = run::outputFormatRule(common, loaded.format);
    if (!options.grc) {
        say("Writing clssified grid to: ", base);
        story.write(0, format, base, header, loaded.projectionText, common.decimals);
        return;
    }
    if (format != grid::Format::asc) {
        fail("ERROR - \"-grc\" option only valid, if outputting to a .asc grid.");
    }
    if (!options.rgb) {
        shadeClasses(table);
    }
    writeClassifiedAsc(withAsc(base), header, story.cells(0), table);
}

} // namespace gridforge::ops
