// .mif and .mid files as a line scanner: objects are found by the keyword at the head of a line, all else is passed
// over.
#pragma once

#include "gis/records.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace gridforge {

// Reads the columns and stands behind "Data". A layer without .mif has no header.
void mifReadHeader(MifLayer& mif);
// Passes over the lines up to and with the one that holds "Columns"; false when there is none.
bool mifFindColumns(Unit unit, std::string& line, std::size_t width);
// Passes over the lines up to and with the one that holds "Data"; no such line ends the run.
void mifFindData(Unit unit, std::size_t width);
// Splits a column definition at its first blank. Tabs count as blanks.
void mifSplitDefinition(std::string_view line, std::string& name, std::string& type, std::size_t nameWidth);

// Finds the next object; its line, the text behind its keyword, and its kind. False at the end of the file.
bool mifObjectType(Unit unit, std::string& line, std::string& rest, GisO& gisO);
// The keyword of the object's kind; its name where it has no kind. `gisO` must stay.
std::string_view mifObjectKeyword(const GisO& gisO);
// The 16 upper-cased characters in `word` begin with `keyword`.
bool mifKeyword(std::string_view word, std::string_view keyword);

// Coordinates of the object that mifObjectType has found. `needCentre` becomes false when the file gave a centre. False
// for an object without kind.
bool mifReadObject(MifLayer& mif, GisO& gisO, GisCoordinates& coordinates, std::int32_t maxVertices, bool& needCentre,
                   bool readCoordinates);

// Copies the lines up to "Columns", which is not copied.
void mifCopyHeader(Unit unitIn, Unit unitOut);
// The CoordSys line of a header file, or a default without projection.
std::string mifReadCoordSysLine(std::string_view fileName);
// The next line of the unit that holds "CoordSys"; blank, with a warning, when there is none.
std::string mifFindCoordSysLine(Unit unit);

} // namespace gridforge
