// The read loop over the objects of a layer, as operations run it.
#pragma once

#include "core/numbers.h"
#include "gis/layers.h"

#include <cstddef>
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

// True for a region; one of several rings ends the run.
bool isRegionObject(const GisO& gisO);

// Ends the run over a data line that cannot be read.
[[noreturn]] void failDataLine(std::string_view dataLine);

// The values of a data line. A comma at its end holds an empty value: a .dbf with a blank last number gives such lines.
inline FreeForm recordForm(std::string_view dataLine)
{
    return FreeForm(dataLine, LastComma::holdsEmpty);
}

// Takes the values of a data line one after another. An empty one leaves its target; one that is not there or cannot be
// read ends the run. The line must stay.
class RecordValues {
public:
    explicit RecordValues(std::string_view dataLine) : dataLine_(dataLine), values_(recordForm(dataLine)) {}

    void take(float& target) { require(values_.next(target)); }
    void take(std::string& target, std::size_t width) { require(values_.nextText(target, width)); }

private:
    void require(FreeValue got) const;

    std::string_view dataLine_;
    FreeForm values_;
};

} // namespace gridforge
