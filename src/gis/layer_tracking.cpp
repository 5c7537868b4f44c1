#include "gis/layer_tracking.h"

#include "core/names.h"
#include "core/text.h"
#include "gis/gis_messages.h"
#include "host/file_system.h"

#include <algorithm>
#include <string>
#include <vector>

namespace gridforge::gis {

namespace {

constexpr std::size_t kMaxTrackedLayers = 1000;

std::vector<std::string>& trackedNames()
{
    static std::vector<std::string> names;
    return names;
}

} // namespace

void forgetTrackedLayers()
{
    trackedNames().clear();
}

void trackLayer(std::string_view fileName)
{
    const std::string base = FILENAMEPATH(fullName(fileName));
    std::vector<std::string>& names = trackedNames();
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
