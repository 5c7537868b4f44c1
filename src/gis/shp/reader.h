// Reads .shp files of points, polylines, polygons and multipoints from start to end. No file is trusted: counts are checked
// before they are used, and data missing from a file end the run with a message through gisFail.
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
    ShpSource shp;
    DbfTable dbf;
};

// Opens the .shp, on two units, and the .dbf beside it.
ShpInput open(std::string_view fileName);
// Reads the header and shows it on the console: code and length (only while the big-endian unit is open, which is then
// closed), version and type, and the header of the .dbf. Stops at the first object.
void readHeader(ShpInput& input);
std::int32_t columnCount(const ShpInput& input);
// The columns in the form that an output layer needs.
std::vector<Column> columnsOf(const ShpInput& input);

// Reads the head of the next record: kind, parts and name of `object`, which the caller has cleared. Always true: at the end
// of the file and at unsupported shapes the run ends.
bool readKind(ShpInput& input, LayerObject& object);
// Reads the next record of the .dbf as one line, cut at `width`; `name` is unused. True at the end of the layer.
bool readRecord(ShpInput& input, std::string_view name, std::string& line, std::size_t width);
// Reads the coordinates of the object whose head has been read; of polylines one part in each call. `maxVertices` is checked
// before anything is stored. The caller always computes the centre.
Centre readCoordinates(ShpInput& input, LayerObject& object, Coordinates& coordinates, std::int32_t maxVertices,
                       bool wanted);
// No object is left.
bool atObjectsEnd(const ShpInput& input);

void closeFiles(ShpInput& input);

// The record count in the header of the .dbf.
std::int32_t recordCount(const ShpInput& input);
// Goes back to the first object.
void rewind(ShpInput& input);
// Definitions of columns are for .mif alone; asking for them ends the run.
bool goToColumns(ShpInput& input, std::int32_t& count);
Column readColumn(ShpInput& input);

// The PROJCS line of the .prj beside a .shp, which must be there.
void takeProjection(std::string_view fileName, std::string& projection);

} // namespace gridforge::gis::shp
