// .shp files of points, polylines, polygons and multipoints, read from end to end. Every file is hostile until proved:
// counts are checked before they are used, and what a file does not hold ends the run with its message through gisFail.
#pragma once

#include "gis/layer_object.h"
#include "gis/layer_spec.h"
#include "gis/shp/records.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace gridforge::gis::shp {

struct ShpInput {
    ShpFile shp;
    DbfTable dbf;
};

struct FileHeader {
    std::int32_t code = 0;   // big-endian in the file, as is the length
    std::int32_t length = 0; // in 16-bit words
    std::int32_t version = 0;
    std::int32_t type = 0;
    Box box;
};
// Rewinds and reads the 100 bytes of the header; what is short or unreadable ends the run.
FileHeader readFileHeader(Unit unit);

// Opens the .shp, on two units, and the .dbf beside it.
ShpInput open(std::string_view fileName);
// Code and length with their console line (only while the big-endian unit is open, which is closed then), version, type
// and box with theirs, and the header of the .dbf. The reader stands at the first object.
void readHeader(ShpInput& input);
std::int32_t columnCount(const ShpInput& input);
// The columns as an output layer takes them.
std::vector<Column> columnsOf(const ShpInput& input);

// Reads the head of the next record: kind, parts and name of `object`, which the caller has cleared. Always true: the
// end of the file and what is not supported end the run.
bool readKind(ShpInput& input, LayerObject& object);
// The next record of the .dbf as one line, cut at `width`; `name` is not needed here. True at the end of the layer.
bool readRecord(ShpInput& input, std::string_view name, std::string& line, std::size_t width);
// Coordinates of the object whose head has been read; for polylines one part a call. `maxVertices` is checked before
// anything is stored. The centre is always left to be computed.
Centre readCoordinates(ShpInput& input, LayerObject& object, Coordinates& coordinates, std::int32_t maxVertices,
                       bool wanted);
// No object is left.
bool atObjectsEnd(const ShpInput& input);

void closeFiles(ShpInput& input);

// The record count in the header of the .dbf.
std::int32_t recordCount(const ShpInput& input);
// Back to the first object.
void rewind(ShpInput& input);
// Definitions of columns are for .mif alone; asking for them ends the run.
bool goToColumns(ShpInput& input, std::int32_t& count);
Column readColumn(ShpInput& input);

// The PROJCS line of the .prj beside a .shp, which must be there.
void takeProjection(std::string_view fileName, std::string& projection);

} // namespace gridforge::gis::shp
