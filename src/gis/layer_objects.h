// Checks that operations make on the objects that they read.
#pragma once

#include "core/free_form.h"
#include "gis/layer_object.h"
#include "gis/layer_reader.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace gridforge::gis {

// True for a region; one of several rings ends the run.
bool isRegionObject(const LayerObject& object);

// The next line or polyline with its coordinates, and the next region; null at the end of the layer. Other objects are
// skipped; a polyline of several parts, or a region of several rings, ends the run.
LayerObject* nextLine(LayerReader& layer, Coordinates& read);
LayerObject* nextRegion(LayerReader& layer, Coordinates& read);

// Takes the values of a record one after another. An empty one leaves its target; one that is missing or cannot be read
// ends the run: with the usual message, or with `unreadable` and the record on the next line. The record must stay.
class RecordValues {
public:
    // An empty value follows a comma at the end: a .dbf with a blank last number gives such records.
    explicit RecordValues(std::string_view record, std::string_view unreadable = {})
        : record_(record), unreadable_(unreadable), values_(record, LastComma::holdsEmpty)
    {
    }

    void take(float& target) { require(values_.take(target)); }
    void take(std::string& target, std::size_t width) { require(values_.take(target, width)); }

private:
    void require(bool taken) const;

    std::string_view record_;
    std::string_view unreadable_;
    FreeForm values_;
};

} // namespace gridforge::gis
