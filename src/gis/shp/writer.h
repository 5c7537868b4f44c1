// Output of .shp, .shx, .prj and .dbf files. A write that fails ends the run with its message through gisFail.
#pragma once

#include "gis/feature.h"
#include "gis/layer_spec.h"
#include "gis/shp/records.h"

#include <array>
#include <string_view>

namespace gridforge::gis::shp {

// The files of one family of shapes.
struct OutputSet {
    ShpFile shp;
    DbfTable dbf;
};

// Points are set 1, lines set 2, regions set 3; those that the layer does not have stay closed.
struct ShpOutput {
    std::array<OutputSet, 3> sets;
};

// Creates a set of files for each letter of the families, and writes their headers. The units of .prj and the little-
// endian .shx are closed then.
ShpOutput create(std::string_view fileName, const LayerSpec& spec);
// Writes the object into the set of its kind; a text counts as a point, and an object without shape goes to all sets. A
// kind that has no place ends the run.
void writeObject(ShpOutput& output, const Feature& feature);
void writeObject(OutputSet& set, const Feature& feature);
void writeRecord(ShpOutput& output, const Feature& feature);
// Set by set, the .dbf first: completes the headers and closes. A set without records keeps its .shp and .shx open to
// the end of that. Rewriting a header shows no line on the console.
void closeFiles(ShpOutput& output);

// The 100 bytes at the start of the .shp or .shx that `unitLE` and `unitBE` stand for.
void writeFileHeader(ShpFile& shp, Unit unitLE, Unit unitBE);

} // namespace gridforge::gis::shp
