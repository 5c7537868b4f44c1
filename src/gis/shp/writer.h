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
    ShpTarget shp;
    DbfTable dbf;
};

// Points are set 1, lines set 2, regions set 3; sets that the layer does not have stay closed.
struct ShpOutput {
    std::array<OutputSet, 3> sets;
};

// Creates a set of files for each letter of the families, and writes their headers. The units of .prj and the little-
// endian .shx are closed then.
ShpOutput create(std::string_view fileName, const LayerSpec& spec);
// Writes the object into the set of its kind. A text counts as a point, an object without shape goes to all sets, and a kind
// without a set ends the run.
void writeObject(ShpOutput& output, const Feature& feature);
void writeObject(OutputSet& set, const Feature& feature);
void writeRecord(ShpOutput& output, const Feature& feature);
// Completes the headers and closes set by set, the .dbf first. The .shp and .shx of a set without records are closed last.
// Rewriting a header shows no line on the console.
void closeFiles(ShpOutput& output);

// Writes the 100 bytes at the start of the .shp or .shx that is open on `unitLE` and `unitBE`.
void writeFileHeader(ShpTarget& shp, Unit unitLE, Unit unitBE);

} // namespace gridforge::gis::shp
