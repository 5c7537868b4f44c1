// .mif and .mid files as a line scanner: objects are found by the keyword at the head of a line, all else is skipped.
#pragma once

#include "gis/layer_object.h"
#include "gis/layer_spec.h"
#include "host/units.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace gridforge::gis::mif {

struct MifInput {
    Unit mifUnit = 0;
    Unit midUnit = 0;
    std::vector<Column> definitions; // the columns with their types as written, as "Char(12)"
    std::string line;                // last object line read
    std::string rest;                // the text after its keyword
    LayerObject next;                // what the scan for the centre of a region runs into
};

// Opens <base>.mif and <base>.mid. A name without either extension is the base.
MifInput open(std::string_view fileName);
// Rewinds, reads the columns, which the console shows, and stands after "Data".
void readHeader(MifInput& input);
// A column definition, split at its first blank, the name cut at `nameWidth`.
Column splitDefinition(std::string_view line, std::size_t nameWidth);
std::int32_t columnCount(const MifInput& input);
// The columns as an output layer takes them.
std::vector<Column> columnsOf(const MifInput& input);

// Finds the next object and its kind. False at the end of the file.
bool readKind(MifInput& input, LayerObject& object);
// The next line of the .mid, cut at `width`, into `line`; `name` is that of its object, for messages. True at the end of
// the layer.
bool readRecord(MifInput& input, std::string_view name, std::string& line, std::size_t width);
// Coordinates of the object that readKind has found. More than `maxVertices` end the run. Where they are not `wanted`
// only the first vertex is read.
Centre readCoordinates(MifInput& input, LayerObject& object, Coordinates& coordinates, std::int32_t maxVertices,
                       bool wanted);
// No object is left.
bool atObjectsEnd(const MifInput& input);

void closeFiles(MifInput& input);

// Lines of the .mid, which is rewound.
std::int32_t recordCount(MifInput& input);
// Back to the first object.
void rewind(MifInput& input);
// Back to the column definitions; their count. False, with a warning and a pause, where it cannot be found.
bool goToColumns(MifInput& input, std::int32_t& count);
// The next column definition, its name cut at 256 and its type at 24.
Column readColumn(MifInput& input);

// The CoordSys line of a .mif, which must be there.
void takeProjection(std::string_view fileName, std::string& projection);

} // namespace gridforge::gis::mif
