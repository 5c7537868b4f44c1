#include "gis/layers.h"

#include "core/names.h"
#include "core/product.h"
#include "core/text.h"
#include "gis/gis_messages.h"
#include "gis/layer_table.h"
#include "gis/layer_tracking.h"
#include "host/console.h"

#include <deque>

namespace gridforge {

namespace {

// The slots that were in use so far; the others stand by for them.
std::deque<Layer>& slots()
{
    static std::deque<Layer> theSlots;
    return theSlots;
}

} // namespace

void gisInitialise(Unit logUnit, std::string_view simulationName, std::string_view workspaceBase,
                   std::string_view inputLayersBase)
{
    gisDataLine().clear();
    gisDataLineLarge().clear();
    gisMessages() = {};
    gisSetLog(logUnit);
    gisChecks() = {};
    slots().clear();
    startTracking(simulationName, workspaceBase, inputLayersBase);
}

void gisCloseTracking()
{
    endTracking();
}

Layer& gisLayer(std::int32_t gisID)
{
    if (gisID < 1 || gisID > kMaxLayers) {
        gisMisuse("gisLayer[gisID=0]");
    }
    const auto count = static_cast<std::size_t>(gisID);
    if (slots().size() < count) {
        slots().resize(count);
    }
    return slots()[count - 1];
}

Layer& requireLayer(std::int32_t gisID, std::string_view routine)
{
    if (gisID < 1 || gisID > kMaxLayers) {
        gisMisuse(join(routine, "[gisID=0]"));
    }
    return gisLayer(gisID);
}

std::int32_t findFreeSlot()
{
    for (std::int32_t gisID = 1; gisID <= kMaxLayers; ++gisID) {
        if (!gisLayer(gisID).layerOpen) {
            return gisID;
        }
    }
    return 0;
}

void gisInitialiseLayer(std::int32_t gisID)
{
    Layer& slot = requireLayer(gisID, "gisInitialiseLayer");
    const bool open = slot.layerOpen;
    const std::int32_t trackId = slot.layerTrackId;
    slot = Layer();
    slot.layerOpen = open;
    slot.layerTrackId = trackId;
}

std::int32_t gisFormatOf(std::string_view extension, bool attributesOnly)
{
    if (extension == ".mif" || extension == ".mid" || trimRight(extension).empty()) {
        return kLayerMif;
    }
    if (extension == ".shp" || (extension == ".dbf" && attributesOnly)) {
        return kLayerShp;
    }
    if (extension == ".csv" && attributesOnly) {
        return kLayerBareTable;
    }
    gisFail(join("ERROR 0252 - ", trimRight(extension), " is not a supported GIS file format."));
}

// --- Closing ---------------------------------------------------------------------------------------------------------

namespace {

void closeShpUnits(ShpFile& shp, DbfTable& dbf)
{
    CLOSER(shp.shpUnit);
    CLOSER(shp.shpUnitBE);
    CLOSER(shp.shxUnit);
    CLOSER(shp.shxUnitBE);
    CLOSER(shp.prjUnit);
    CLOSER(dbf.dbfUnit);
}

} // namespace

void gisCloseLayer(std::int32_t& gisID)
{
    if (gisID <= 0) {
        gisSay(join("SOFTWARE CHECK - Trying to close a GIS Layer that's not open.  Please contact ", kSupportContact,
                    "."));
        return;
    }
    Layer& slot = requireLayer(gisID, "gisCloseLayer");
    gisSay(join("Closing GIS Layer ", gisID, " [", slot.layerName, "]..."));
    if (slot.layerOutput) {
        gisWriteEoF(gisID);
    }
    if (slot.layerFormat == kLayerMif) {
        CLOSER(slot.mifLayer.mifUnit);
        CLOSER(slot.mifLayer.midUnit);
    } else if (slot.layerFormat == kLayerShp) {
        for (std::size_t i = 0; i < slot.shpFiles.size(); ++i) {
            closeShpUnits(slot.shpFiles[i], slot.dbfTable[i]);
        }
    } else {
        gisMisuse("[gisCloseLayer]");
    }
    slot.layerOpen = false;
    slot.layerEnd = true;
    slot.layerOutput = false;
    slot.layerFormat = kLayerNone;
    gisID = 0;
}

void gisCloseAllLayers(bool& anyClosed)
{
    gisSay("Closing any unclosed GIS layers...");
    anyClosed = false;
    for (std::int32_t gisID = 1; gisID <= kMaxLayers; ++gisID) {
        if (gisLayer(gisID).layerOpen) {
            std::int32_t closing = gisID;
            gisCloseLayer(closing);
            anyClosed = true;
        }
    }
    gisSay("");
}

// --- Shared records --------------------------------------------------------------------------------------------------

GisOutputAttributes& gisOutputAttributes()
{
    static GisOutputAttributes attributes;
    return attributes;
}

GisOutputCoordinates& gisOutputCoordinates()
{
    static GisOutputCoordinates coordinates;
    return coordinates;
}

std::string& gisDataLine()
{
    static std::string line;
    return line;
}

std::string& gisDataLineLarge()
{
    static std::string line;
    return line;
}

std::string& gisCoordSysLine()
{
    static std::string line;
    return line;
}

std::string& gisPrjLine()
{
    static std::string line;
    return line;
}

GisChecks& gisChecks()
{
    static GisChecks checks;
    return checks;
}

} // namespace gridforge
