#include "core/numbers.h"
#include "core/product.h"
#include "core/text.h"
#include "gis/gis_messages.h"
#include "gis/layer_table.h"
#include "gis/mif_reader.h"
#include "gis/mif_writer.h"
#include "gis/shp_writer.h"
#include "host/console.h"
#include "host/ends.h"

#include <algorithm>

namespace gridforge {

namespace {

constexpr int kNumberColumns = 5;

void failObject(Unit)
{
    gisFail("ERROR 0439 - Writing .mif file object coordinates.");
}

// Of the layer whose .mid this is: a run writes several layers in turn.
const std::string& lastObjectOf(Unit midUnit)
{
    std::int32_t gisID = 1;
    while (gisID < kMaxLayers && gisLayer(gisID).mifLayer.midUnit != midUnit) {
        ++gisID;
    }
    return gisLayer(gisID).mifLayer.lastObject;
}

void failRecord(Unit midUnit)
{
    gisFail(join("ERROR 0254 - Failed to write attribute data record for a ", lastObjectOf(midUnit),
                 " object in GIS layer."));
}

void failLargeRecord(Unit midUnit)
{
    gisFail(join("ERROR 0254 - Failed to write large attribute data record for a ", lastObjectOf(midUnit),
                 " object in GIS layer."));
}

[[noreturn]] void failParts(std::int32_t gisID, const GisO& gisO, std::int32_t i, std::int32_t part)
{
    say("Should not be here [gisO_%ir(i) <= gisO_%ir(i-1)] - please contact ", kSupportContact, ".");
    say("GIS Layer   =", integerField(gisID, kNumberColumns));
    say("i           =", integerField(i, kNumberColumns));
    say("gisO_%ir(i) =", integerField(part, kNumberColumns));
    say("gisO_%nr    =", integerField(gisO.nr, kNumberColumns));
    EXITS();
}

// Parts must follow each other, or the writers would run outside the vertices.
void requireParts(std::int32_t gisID, GisO& gisO, const GisOutputCoordinates& coordinates)
{
    if (coordinates.np > static_cast<std::int32_t>(std::min(coordinates.x.size(), coordinates.y.size()))) {
        gisMisuse("[gisWriteObject]");
    }
    if (!gisO.line && !gisO.pline && !gisO.plineMultiple && !gisO.region) {
        return;
    }
    gisO.nr = std::max(gisO.nr, 1);
    gisO.ir.resize(std::max(gisO.ir.size(), std::size_t{1}));
    gisO.ir[0] = std::max(gisO.ir[0], 1);
    for (std::int32_t i = 2; i <= gisO.nr; ++i) {
        const auto place = static_cast<std::size_t>(i - 1);
        const std::int32_t part = place < gisO.ir.size() ? gisO.ir[place] : 0;
        if (part <= gisO.ir[place - 1]) {
            failParts(gisID, gisO, i, part);
        }
    }
    if (gisO.nr > 1 && gisO.ir[static_cast<std::size_t>(gisO.nr - 1)] > coordinates.np) {
        gisMisuse("[gisWriteObject]");
    }
}

void writeRecord(std::int32_t gisID, const GisO& gisO, std::string_view line, std::string_view routine, bool large)
{
    Layer& slot = requireLayer(gisID, routine);
    if (slot.layerFormat == kLayerMif) {
        slot.mifLayer.lastObject = mifObjectKeyword(gisO);
        onWriteFailure(slot.mifLayer.midUnit, large ? failLargeRecord : failRecord);
        writeLine(slot.mifLayer.midUnit, trimRight(line.substr(0, large ? kLargeDataLineWidth : kDataLineWidth)));
    } else if (slot.layerFormat == kLayerShp) {
        shpWriteLayerRecord(slot, gisO, line, large);
    } else {
        gisMisuse(join("[", routine, "]"));
    }
}

} // namespace

void gisWriteHeader(std::int32_t gisID)
{
    Layer& slot = requireLayer(gisID, "gisWriteHeader");
    switch (slot.layerFormat) {
    case kLayerMif: mifWriteHeader(slot.mifLayer.mifUnit, gisOutputAttributes(), gisCoordSysLine()); break;
    case kLayerShp: shpWriteHeader(slot, gisOutputAttributes(), gisPrjLine()); break;
    default: gisMisuse("[gisWriteHeader]");
    }
}

void gisWriteObject(std::int32_t gisID, GisO& gisO)
{
    Layer& slot = requireLayer(gisID, "gisWriteObject");
    requireParts(gisID, gisO, gisOutputCoordinates());
    if (slot.layerFormat == kLayerMif) {
        onWriteFailure(slot.mifLayer.mifUnit, failObject);
        mifWriteObject(slot.mifLayer, gisO, gisOutputCoordinates(), gisDataLine());
    } else if (slot.layerFormat == kLayerShp) {
        shpWriteLayerObject(slot, gisO, gisOutputCoordinates());
    } else {
        gisMisuse("[gisWriteObject]");
    }
    gisO.haveCoordinates = true;
}

void gisWriteRecord(std::int32_t gisID, const GisO& gisO)
{
    writeRecord(gisID, gisO, gisDataLine(), "gisWriteRecord", false);
}

void gisWriteRecordLarge(std::int32_t gisID, const GisO& gisO)
{
    writeRecord(gisID, gisO, gisDataLineLarge(), "gisWriteRecordLarge", true);
}

void gisWriteEoF(std::int32_t gisID)
{
    Layer& slot = requireLayer(gisID, "gisWriteEoF");
    if (slot.layerFormat == kLayerShp) {
        shpWriteEoF(slot);
    } else if (slot.layerFormat != kLayerMif) {
        gisMisuse("[gisWriteHeader]"); // the neighbour's name, as it has always been
    }
}

} // namespace gridforge
