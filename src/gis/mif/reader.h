// Reads .mif and .mid files line by line: a keyword at the start of a line begins an object, all else is skipped.
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
    LayerObject next;                // the object that the search for the centre of a region ends at
};

// Opens <base>.mif and <base>.mid. The name is the base or has either extension.
MifInput open(std::string_view fileName);
// Rewinds, reads the columns, which the console shows, and stops after "Data".
void readHeader(MifInput& input);
// Splits a column definition at its first blank and cuts the name at `nameWidth`.
Column splitDefinition(std::string_view line, std::size_t nameWidth);
std::int32_t columnCount(const MifInput& input);
// The columns in the form that an output layer needs.
std::vector<Column> columnsOf(const MifInput& input);

// Finds the next object and its kind. False at the end of the file.
bool readKind(MifInput& input, LayerObject& object);
// Reads the next line of the .mid, cut at `width`. Messages call its object `name`. True at the end of the layer.
bool readRecord(MifInput& input, std::string_view name, std::string& line, std::size_t width);
// Reads the coordinates of the object that readKind has found; only the first vertex if they are not `wanted`. More than
// `maxVertices` vertices end the run.
Centre readCoordinates(MifInput& input, LayerObject& object, Coordinates& coordinates, std::int32_t maxVertices,
                       bool wanted);
// No object is left.
bool atObjectsEnd(const MifInput& input);

void closeFiles(MifInput& input);

// The number of lines of the .mid, which is rewound.
std::int32_t recordCount(MifInput& input);
// Goes back to the first object.
void rewind(MifInput& input);
// Goes back to the column definitions and reads their count. False, with a warning and a pause, if it cannot be found.
bool goToColumns(MifInput& input, std::int32_t& count);
// Reads the next column definition, its name cut at 256 and its type at 24.
Column readColumn(MifInput& input);

// The CoordSys line of a .mif, which must be there.
void takeProjection(std::string_view fileName, std::string& projection);

} // namespace gridforge::gis::mif
