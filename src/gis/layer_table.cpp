#include "gis/layer_table.h"

#include "gis/gis_messages.h"
#include "gis/layer_reader.h"
#include "gis/layer_tracking.h"

#include <array>
#include <cstddef>
#include <utility>

namespace gridforge::gis {

namespace {

struct Slot {
    bool taken = false;
    std::unique_ptr<OpenLayer> input;
};

std::array<Slot, kMaxLayers>& slots()
{
    static std::array<Slot, kMaxLayers> theSlots;
    return theSlots;
}

Slot& slotOf(std::int32_t id)
{
    return slots()[static_cast<std::size_t>(id - 1)];
}

} // namespace

void initialise()
{
    gisMessages() = {};
    slots() = {};
    forgetTrackedLayers();
}

std::int32_t findFreeId()
{
    for (std::int32_t id = 1; id <= kMaxLayers; ++id) {
        if (!slotOf(id).taken) {
            return id;
        }
    }
    return 0;
}

void takeId(std::int32_t id)
{
    slotOf(id).taken = true;
}

OpenLayer& takeId(std::int32_t id, std::unique_ptr<OpenLayer> layer)
{
    slotOf(id) = {true, std::move(layer)};
    return *slotOf(id).input;
}

void releaseId(std::int32_t id)
{
    slotOf(id) = {};
}

OpenLayer* inputLayer(std::int32_t id)
{
    return id >= 1 && id <= kMaxLayers ? slotOf(id).input.get() : nullptr;
}

} // namespace gridforge::gis
