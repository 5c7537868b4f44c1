#include "gis/layer_tracking.h"

#include "core/names.h"
#include "core/numbers.h"
#include "core/text.h"
#include "gis/gis_messages.h"
#include "gis/layer_table.h"
#include "host/file_system.h"
#include "host/units.h"

#include <algorithm>
#include <string>
#include <vector>

namespace gridforge {

namespace {

constexpr int kNumberColumns = 5;

struct TrackedLayers {
    std::vector<std::string> names;
    std::int32_t count = 0;
    Unit workspaceUnit = -1;
    Unit mifUnit = -1;
    Unit midUnit = -1;
};

TrackedLayers& tracked()
{
    static TrackedLayers theList;
    return theList;
}

void writeWorkspaceLine(Unit unit, std::string_view base, std::string_view extension)
{
    if (!extension.starts_with(".mi")) {
        writeLine(unit, join("! Non-MapInfo .tab Layer ", gridforge::quoted(join(base, extension))));
    } else if (inputExists(join(base, kTabExtension))) {
        writeLine(unit, join("Open Table ", gridforge::quoted(join(base, kTabExtension))));
    } else {
        writeLine(unit, join("! .mif/.mid Layer with no .tab Layer ", gridforge::quoted(join(base, extension))));
    }
}

} // namespace

void startTracking(std::string_view simulationName, std::string_view workspaceBase, std::string_view inputLayersBase)
{
    TrackedLayers& list = tracked();
    list = TrackedLayers();
    if (!trimRight(workspaceBase).empty()) {
        OPENER(list.workspaceUnit, "O ", join(trimRight(workspaceBase), ".wor"));
        writeLine(list.workspaceUnit, "!Workspace");
        writeLine(list.workspaceUnit, "!Version 600");
        writeLine(list.workspaceUnit, "!Charset WindowsLatin1");
        writeLine(list.workspaceUnit,
                  join("!Contains GIS input layers from KESTOR simulation ", trimRight(simulationName)));
    }
    if (!trimRight(inputLayersBase).empty()) {
        OPENER(list.mifUnit, "O ", join(trimRight(inputLayersBase), "_input_layers.mif"));
        OPENER(list.midUnit, "O ", join(trimRight(inputLayersBase), "_input_layers.mid"));
        for (const std::string_view line : {"Version 300", "Charset \"WindowsLatin1\"", "Delimiter \",\"", "Columns 3",
                                            "  ID Integer", "  Open_ID Integer", "  Layer Char(254)", "Data", ""}) {
            writeLine(list.mifUnit, line);
        }
    }
}

void endTracking()
{
    CLOSER(tracked().workspaceUnit);
    CLOSER(tracked().mifUnit);
    CLOSER(tracked().midUnit);
}

std::int32_t trackLayer(std::string_view fileName, std::int32_t gisID)
{
    TrackedLayers& list = tracked();
    const std::string full = fullName(fileName);
    const std::string base = FILENAMEPATH(full);
    for (std::size_t i = 0; i < list.names.size(); ++i) {
        if (ASAME(list.names[i], base)) {
            return static_cast<std::int32_t>(i + 1);
        }
    }
    const std::string extension = FILEEXT(full);
    list.count = std::min(list.count + 1, kMaxTrackedLayers);
    if (list.count == kMaxTrackedLayers) {
        gisWarn("WARNING 0317 - Exceeded limit of input GIS layers that can be tracked (layer referencing may not be "
                "complete).");
    } else {
        list.names.push_back(base);
        if (list.workspaceUnit > 0) {
            writeWorkspaceLine(list.workspaceUnit, base, extension);
        }
    }
    if (list.mifUnit > 0) {
        writeLine(list.mifUnit, "none");
        writeLine(list.midUnit, join(integerField(list.count, kNumberColumns), ",", integerField(gisID, kNumberColumns),
                                     ", ", quotedValue(join(base, extension))));
    }
    return list.count;
}

} // namespace gridforge
