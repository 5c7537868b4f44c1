// The read loop over the objects of a layer, as operations run it.
#pragma once

#include "gis/layers.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace gridforge {

// Calls `work` with the object and its data line for each object of an open layer. Coordinates are left to `work`.
template <typename Work>
void forEachObject(std::int32_t gisID, Work&& work)
{
    GisO gisO;
    std::string dataLine;
    while (!gisLayer(gisID).layerEnd) {
        if (!gisObjectType(gisID, gisO)) {
            continue;
        }
        gisReadRecord(gisID, gisO, dataLine);
        work(gisO, dataLine);
    }
}

// True for a line or polyline; a polyline of several parts ends the run.
bool isLineObject(const GisO& gisO);

// Ends the run over a data line that cannot be read.
[[noreturn]] void failDataLine(std::string_view dataLine);

} // namespace gridforge
