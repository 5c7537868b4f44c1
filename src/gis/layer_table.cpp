#include "gis/layer_table.h"

#include "core/names.h"
#include "core/text.h"
#include "gis/gis_messages.h"
#include "gis/open_layer.h"
#include "host/file_system.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>
#include <vector>

namespace gridforge::gis {

namespace {

constexpr std::size_t kMaxTrackedLayers = 1000;

struct Slot {
    bool taken = false;
    std::unique_ptr<OpenLayer> input;
};

struct LayerTable {
    std::array<Slot, kMaxLayers> slots;
    std::vector<std::string> inputNames; // with their folders, without extension
};

LayerTable& table()
{
    static LayerTable theTable;
    return theTable;
}

Slot& slotOf(std::int32_t id)
{
    return table().slots[static_cast<std::size_t>(id - 1)];
}

} // namespace

void initialise()
{
    gisMessages() = {};
    table() = {};
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

void trackLayer(std::string_view fileName)
{
    const std::string base = FILENAMEPATH(fullName(fileName));
    std::vector<std::string>& names = table().inputNames;
    if (std::ranges::any_of(names, [&](const std::string& known) { return ASAME(known, base); })) {
        return;
    }
    if (names.size() + 1 >= kMaxTrackedLayers) {
        gisWarn("WARNING 0317 - Exceeded limit of input GIS layers that can be tracked (layer referencing may not be "
                "complete).");
        return;
    }
    names.push_back(base);
}

} // namespace gridforge::gis
