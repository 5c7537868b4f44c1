// The layers of a run, read and written through one interface in two file families: .mif/.mid and .shp/.dbf. An
// operation holds a `gisID` from 1 to 100, 0 meaning none. Bad files and misuse end the run with a message; nothing
// returns an error.
//
// Reading: gisOpenLayer(name, "", "I "), gisReadHeader, then while gisLayer(id).layerEnd is false: gisObjectType
// (false: back to the test), gisReadRecord for every object, gisReadObject for those that are wanted; gisCloseLayer.
// Writing: gisOpenLayer(name, letters, "O "), gisOutputAttributes, gisWriteHeader, then for each object: the kind flags
// of a GisO, gisOutputCoordinates, gisWriteObject, gisDataLine, gisWriteRecord; gisCloseLayer.
#pragma once

#include "gis/records.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace gridforge {

// --- The table -------------------------------------------------------------------------------------------------------

// Empties the layer table and the shared records; once, at the start of a run. With bases that are not blank it also
// opens the lists of the input layers, <workspaceBase>.wor and <inputLayersBase>_input_layers.mif/.mid.
void gisInitialise(Unit logUnit, std::string_view simulationName, std::string_view workspaceBase,
                   std::string_view inputLayersBase);
// Closes the lists of the input layers.
void gisCloseTracking();

// The slot of a gisID from 1 to 100, open or not. Operations read layerEnd and set mifLayer.style1 and style2.
Layer& gisLayer(std::int32_t gisID);

// Clears one slot.
void gisInitialiseLayer(std::int32_t gisID);

// kLayerMif or kLayerShp by the extension, -1 for a bare .csv; others end the run.
std::int32_t gisFormatOf(std::string_view extension, bool attributesOnly);

// Opens a layer on the first free slot. `mode` is "I " or "O ". `shapeTypes` is blank on input; for a .shp on output it
// lists the shape families as letters of "PLR", and each makes its own set of files, as name_P.shp. 0: an input .shp
// with a type letter does not exist.
std::int32_t gisOpenLayer(std::string_view fileName, std::string_view shapeTypes, std::string_view mode,
                          bool attributesOnly = false);
// Ends and closes the layer and sets the variable to 0; with 0 only a line says so.
void gisCloseLayer(std::int32_t& gisID);
// Closes all that are open.
void gisCloseAllLayers(bool& anyClosed);

// --- Reading ---------------------------------------------------------------------------------------------------------

// Reads the header; the reader stands at the first object.
void gisReadHeader(std::int32_t gisID);
// Columns of the layer, after gisReadHeader.
std::int32_t gisNumberAttributes(std::int32_t gisID);
// Lines of the .mid, which is rewound, or the record count of the .dbf header.
std::int32_t gisNumberRecords(std::int32_t gisID);
// Back to the first object.
void gisGotoBeginningOfData(std::int32_t gisID);
// .mif only: back to the column definitions; their count. False, with a warning and a pause, where it cannot be found.
bool gisGotoBeginningOfAttributes(std::int32_t gisID, std::int32_t& count);
// .mif only: the next column definition, its name cut at 256 and its type at 24.
GisOutputAttribute gisReadAttributeDefinition(std::int32_t gisID);

// Clears `gisO` and reads the kind of the next object; false when there is none. Sets layerEnd.
bool gisObjectType(std::int32_t gisID, GisO& gisO);
// The object's attributes as one comma-separated line, text in double quotes with those inside doubled, cut at `width`.
// Sets layerEnd.
void gisReadRecord(std::int32_t gisID, const GisO& gisO, std::string& line, std::size_t width = kDataLineWidth);
// The object's coordinates and what is derived from them: centre, and for lines angle and length. More than
// `maxVertices` end the run. Sets layerEnd. What a kind does not have stays as it was, but angle and length start at 0.
void gisReadObject(std::int32_t gisID, GisO& gisO, GisCoordinates& coordinates, std::int32_t maxVertices,
                   bool readCoordinates = true);

// The text holds "Read MI <name>" or "Read GIS <name>", "Write MI" or "Write GIS", "Read MID" or "Read RowCol".
bool READGIS(std::string_view text, std::string_view name);
bool WRITEGIS(std::string_view text, std::string_view name);
bool READROWCOL(std::string_view text, std::string_view name);

// --- Writing ---------------------------------------------------------------------------------------------------------

// What is written next; every layer shares these.
GisOutputAttributes& gisOutputAttributes();
GisOutputCoordinates& gisOutputCoordinates();
std::string& gisDataLine();      // the next record, cut at 1000
std::string& gisDataLineLarge(); // the same for gisWriteRecordLarge, cut at 100000
std::string& gisCoordSysLine();  // CoordSys line of .mif headers
std::string& gisPrjLine();       // the line of .prj files

void gisWriteHeader(std::int32_t gisID);
// Writes the object of gisOutputCoordinates; its `ir` holds the first vertex of each part.
void gisWriteObject(std::int32_t gisID, GisO& gisO);
void gisWriteRecord(std::int32_t gisID, const GisO& gisO);
void gisWriteRecordLarge(std::int32_t gisID, const GisO& gisO);
// Completes the headers of an output layer; gisCloseLayer calls it.
void gisWriteEoF(std::int32_t gisID);

// --- Checks on input layers, all off in this tool --------------------------------------------------------------------

struct GisChecks {
    std::string miProjection; // what input projections are compared with; blank: no comparison
    std::string shpProjection;
    bool projectionCheckIsError = false;
    bool checkSaveDates = false;
    bool saveDateMustHold = false; // the option of the save-date check
};
GisChecks& gisChecks();

} // namespace gridforge
