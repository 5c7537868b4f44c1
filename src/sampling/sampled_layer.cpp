#include "sampling/sampled_layer.h"

#include "base/console.h"
#include "base/text.h"
#include "gis/projection.h"
#include "grid/header.h"
#include "grid/reader.h"

namespace gridforge {

std::int32_t openSampledLayer(const std::string& name)
{
    get_projection(name, gisCoordSysLine(), gisPrjLine());
    const std::int32_t gisID = gisOpenLayer(name, "", "I ");
    gisReadHeader(gisID);
    return gisID;
}

GridHeader loadSampledGrid(const std::string& name, Grid& cells)
{
    say("Loading grid data...");
    GridHeader header = readGridHeader(name);
    allocateGrid(cells, header, "storing input grid...");
    say("Reading data...");
    readGridCells(name, header, cells);
    say("   Done.");
    return header;
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

void setStyle(std::int32_t gisID, std::string_view style)
{
    gisLayer(gisID).mifLayer.style1 = cut(style, kStyleWidth);
}

} // namespace gridforge
