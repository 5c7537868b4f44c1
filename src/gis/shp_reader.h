// .shp files of points, polylines, polygons and multipoints, read from end to end. Every file is hostile until proved:
// counts are checked before they are used, and what a file does not hold ends the run with its message through gisFail.
#pragma once

#include "gis/records.h"

#include <cstdint>
#include <string_view>

namespace gridforge {

struct ShpFileHeader {
    std::int32_t code = 0;   // big-endian in the file, as is the length
    std::int32_t length = 0; // in 16-bit words
    std::int32_t version = 0;
    std::int32_t type = 0;
    double xmin = 0;
    double ymin = 0;
    double xmax = 0;
    double ymax = 0;
};
// Rewinds and reads the 100 bytes of the header; what is short or unreadable ends the run.
ShpFileHeader shpReadFileHeader(Unit unit);

// gisReadHeader of this family, on shpFiles[0] and dbfTable[0]: code and length with their console line (only when
// shpUnitBE is open), version, type and box with theirs (only when shpUnit is open), CLOSER on shpUnitBE,
// dbfReadHeader, currentRecord 0. Leaves shpUnit behind the header. Also serves gisGotoBeginningOfData, when shpUnitBE
// is closed already.
void shpReadHeader(Layer& layer);

// Reads the head of the next record into recordShapeType and the kind, parts and name of `gisO`, which the caller has
// cleared. Always true: the end of the file and what is not supported end the run.
bool shpObjectType(ShpFile& shp, GisO& gisO);

// Reads coordinates of that record: np, x, y and for regions `ir`, in the layout of GisCoordinates; for polylines one
// part a call. `maxVertices` is checked before anything is stored. Sets haveCoordinates. The caller derives centre,
// angle and length, and sets layerEnd from atEnd(shpUnit).
bool shpReadObject(ShpFile& shp, GisO& gisO, GisCoordinates& coordinates, std::int32_t maxVertices,
                   bool readCoordinates);

} // namespace gridforge
