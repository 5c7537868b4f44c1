#include "network/layer_output.h"

#include "core/numbers.h"
#include "core/text.h"
#include "gis/layers.h"

#include <cstddef>

namespace gridforge {

namespace {

void writeWithRecord(std::int32_t gisID, GisO& gisO, std::string_view record)
{
    gisWriteObject(gisID, gisO);
    gisDataLine() = cut(record, kDataLineWidth);
    gisWriteRecord(gisID, gisO);
}

} // namespace

std::string threeDecimals(double value)
{
    constexpr int kDecimals = 3;
    return fixedText(value, kDecimals);
}

std::int32_t openOutputLayer(const std::string& name, std::string_view kind)
{
    const std::int32_t gisID = gisOpenLayer(name, kind, "O ");
    gisWriteHeader(gisID);
    return gisID;
}

void writePolylineObject(std::int32_t gisID, const std::vector<double>& x, const std::vector<double>& y,
                         std::string_view record)
{
    gisOutputCoordinates().clear();
    for (std::size_t i = 0; i < x.size(); ++i) {
        gisOutputCoordinates().add(x[i], y[i]);
    }
    GisO gisO;
    gisO.pline = true;
    writeWithRecord(gisID, gisO, record);
}

void writePointObject(std::int32_t gisID, double x, double y, std::string_view record)
{
    gisOutputCoordinates().clear();
    gisOutputCoordinates().add(x, y);
    GisO gisO;
    gisO.point = true;
    writeWithRecord(gisID, gisO, record);
}

} // namespace gridforge
