#include "sampling/sampled_layer.h"

#include "core/computed.h"
#include "core/text.h"
#include "gis/projection.h"
#include "grid/header.h"
#include "grid/reader.h"
#include "host/console.h"
#include "host/ends.h"

namespace gridforge {

std::int32_t openSampledLayer(const std::string& name)
{
    get_projection(name, gisCoordSysLine(), gisPrjLine());
    const std::int32_t gisID = gisOpenLayer(name, "", "I ");
    gisReadHeader(gisID);
    return gisID;
}

void requireOneGrid(const InputFileList& inputs)
{
    if (inputs.count() > 1) {
        fail("ERROR - Only one input grid file supported.");
    }
}

namespace {

Terrain readTerrainSaying(const std::string& name, std::string_view beforeCells)
{
    Terrain terrain;
    terrain.header = readGridHeader(name);
    allocateGrid(terrain.cells, terrain.header, "storing input grid...");
    if (!beforeCells.empty()) {
        say(beforeCells);
    }
    readGridCells(name, terrain.header, terrain.cells);
    return terrain;
}

} // namespace

Terrain readTerrain(const std::string& name)
{
    return readTerrainSaying(name, "");
}

Terrain loadTerrain(const std::string& name)
{
    say("Loading grid data...");
    Terrain terrain = readTerrainSaying(name, "Reading data...");
    say("   Done.");
    return terrain;
}

namespace {

void writeWithRecord(std::int32_t gisID, GisO& gisO, std::string_view dataLine)
{
    gisWriteObject(gisID, gisO);
    gisDataLine() = cut(dataLine, kDataLineWidth);
    gisWriteRecord(gisID, gisO);
}

} // namespace

void writePoint(std::int32_t gisID, double x, double y, std::string_view dataLine)
{
    gisOutputCoordinates().clear();
    gisOutputCoordinates().add(x, y);
    GisO gisO;
    gisO.point = true;
    writeWithRecord(gisID, gisO, dataLine);
}

void writeSegment(std::int32_t gisID, double x1, double y1, double x2, double y2, std::string_view dataLine)
{
    gisOutputCoordinates().clear();
    gisOutputCoordinates().add(x1, y1);
    gisOutputCoordinates().add(x2, y2);
    GisO gisO;
    gisO.line = true;
    writeWithRecord(gisID, gisO, dataLine);
}

void writeSearchLine(std::int32_t gisID, const AcrossLine& across, std::int32_t from, std::int32_t to,
                     std::string_view dataLine)
{
    writeSegment(gisID, stored(across.sampleX(from)), stored(across.sampleY(from)), stored(across.sampleX(to)),
                 stored(across.sampleY(to)), dataLine);
}

void writePolyline(std::int32_t gisID, const LineVertices& line, std::string_view dataLine)
{
    gisOutputCoordinates().clear();
    for (std::size_t i = 0; i < line.count(); ++i) {
        gisOutputCoordinates().add(line.x[i], line.y[i]);
    }
    GisO gisO;
    gisO.pline = true;
    writeWithRecord(gisID, gisO, dataLine);
}

void writeRegion(std::int32_t gisID, const SearchPolygon& polygon, std::string_view dataLine)
{
    gisOutputCoordinates().clear();
    for (std::size_t i = 0; i <= kSearchSides; ++i) {
        gisOutputCoordinates().add(polygon.x[i], polygon.y[i]);
    }
    GisO gisO;
    gisO.region = true;
    writeWithRecord(gisID, gisO, dataLine);
}

void setStyle(std::int32_t gisID, std::string_view style)
{
    gisLayer(gisID).mifLayer.style1 = cut(style, kStyleWidth);
}

} // namespace gridforge
