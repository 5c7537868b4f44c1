// Output of .shp, .shx and .prj files. All sets of a layer that are open are written; a write that fails ends the run
// with its message through gisFail.
#pragma once

#include "gis/records.h"

#include <string_view>

namespace gridforge {

// gisWriteHeader of this family: for each open set the .prj line (the unit is then closed), the headers of .shp and
// .shx (the little-endian .shx unit is then closed), the starting box and offset, dbfWriteHeader, currentRecord 0.
void shpWriteHeader(Layer& layer, const GisOutputAttributes& attributes, std::string_view prjLine);
// The 100 bytes at the start of the .shp or .shx that `unitLE` and `unitBE` stand for.
void shpWriteFileHeader(ShpFile& shp, Unit unitLE, Unit unitBE);

// The sets of the layer that take an object of this kind, as indexes of shpFiles and dbfTable in `index`; how many
// there are. A text counts as a point. A kind that has no place ends the run with "Should not be here [<place>]. Please
// contact ...".
std::size_t shpRoute(const Layer& layer, const GisO& gisO, std::string_view place, std::array<std::size_t, 3>& index);

// gisWriteObject of this family: routes (a text becomes a point) and writes. The parts in `ir` have been checked to
// rise.
void shpWriteLayerObject(Layer& layer, GisO& gisO, const GisOutputCoordinates& coordinates);
void shpWriteObject(GisO& gisO, ShpFile& shp, const GisOutputCoordinates& coordinates);

// gisWriteRecord of this family: routes and writes `line` through dbfdataline, or dbfdatalinelarge when `large`.
void shpWriteLayerRecord(Layer& layer, const GisO& gisO, std::string_view line, bool large);

// gisWriteEoF of this family, set by set, the .dbf first: completes the headers and closes with CLOSER; a set without
// records keeps its .shp and .shx units open for gisCloseLayer. Rewriting a header shows no line on the console.
void shpWriteEoF(Layer& layer);

} // namespace gridforge
