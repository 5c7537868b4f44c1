// Stands in for the Shapefile family until its own files are here, so that .mif layers can be used; remove it with them.
#include "base/ends.h"
#include "gis/dbf_reader.h"
#include "gis/shp_reader.h"
#include "gis/shp_writer.h"

namespace gridforge {

namespace {

[[noreturn]] void notYet()
{
    fail("ERROR - Shapefiles cannot be read or written yet.");
}

} // namespace

void shpReadHeader(Layer&)
{
    notYet();
}

bool shpObjectType(ShpFile&, GisO&)
{
    notYet();
}

bool shpReadObject(ShpFile&, GisO&, GisCoordinates&, std::int32_t, bool)
{
    notYet();
}

void dbfReadRecord(DbfTable&, bool&, std::string&, std::size_t)
{
    notYet();
}

void shpWriteHeader(Layer&, const GisOutputAttributes&, std::string_view)
{
    notYet();
}

void shpWriteLayerObject(Layer&, GisO&, const GisOutputCoordinates&)
{
    notYet();
}

void shpWriteLayerRecord(Layer&, const GisO&, std::string_view, bool)
{
    notYet();
}

void shpWriteEoF(Layer&)
{
    notYet();
}

} // namespace gridforge
