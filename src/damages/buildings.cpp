#include "damages/buildings.h"

#include "core/text.h"
#include "gis/layer_objects.h"
#include "gis/layer_reader.h"
#include "gis/record_values.h"
#include "host/console.h"
#include "host/ends.h"

#include <algorithm>
#include <unordered_map>

namespace gridforge::damages {

namespace {

constexpr std::int32_t kPointVertices = 2;
constexpr std::int32_t kExpectedBuildings = 1 << 16; // room for them is reserved; what is not used is not touched
constexpr float kLeastMultiplier = 0.0001F;

// --- Curves by name --------------------------------------------------------------------------------------------------

// The first curve of a name, from 1. Names are compared in full once only, as layers repeat a few of them.
class CurveFinder {
public:
    explicit CurveFinder(std::span<const DmgCurve> curves) : curves_(curves) {}

    std::int32_t find(const std::string& name)
    {
        const auto known = found_.find(name);
        if (known != found_.end()) {
            return known->second;
        }
        const auto curve =
            std::ranges::find_if(curves_, [&name](const DmgCurve& candidate) { return ASAME(candidate.name, name); });
        if (curve == curves_.end()) {
            fail("ERROR - Unable to find ", name, " in damage curves.");
        }
        const auto index = static_cast<std::int32_t>(curve - curves_.begin()) + 1;
        found_.emplace(name, index);
        return index;
    }

private:
    std::span<const DmgCurve> curves_;
    std::unordered_map<std::string, std::int32_t> found_;
};

// --- Objects ---------------------------------------------------------------------------------------------------------

DmgBuilding& addBuilding(const DmgLimits& limits, std::vector<DmgBuilding>& buildings)
{
    if (static_cast<std::int64_t>(buildings.size()) >= limits.buildings) {
        say("ERROR - Number of buildings exceeds maximum: ", limits.buildings);
        fail("   This can be specified with Maximum Buildings == ", limits.buildings, " in the .dmg file.");
    }
    return buildings.emplace_back();
}

void takeVertices(const gis::Coordinates& read, DmgBuilding& building)
{
    building.outline.x.assign(read.vertexX().begin(), read.vertexX().end());
    building.outline.y.assign(read.vertexY().begin(), read.vertexY().end());
}

void addPolygon(const gis::Coordinates& read, const DmgLimits& limits, std::vector<DmgBuilding>& buildings)
{
    if (read.np > limits.vertices) {
        say("ERROR - Region objects contains too many vertices. Maximum vertices in a single region:", limits.vertices);
        fail("   This can be specified with Maximum Vertices == ", limits.vertices, " in the .dmg file.");
    }
    DmgBuilding& building = addBuilding(limits, buildings);
    say("Building ", buildings.size(), " is a polygon with ", read.np, " nodes.");
    building.kind = BuildingKind::polygon;
    takeVertices(read, building);
    // A region of a broken .shp may have no vertex; its extent is 0.
    building.outline.box = extentOfRing(building.outline.x, building.outline.y);
}

void addPoint(const gis::Coordinates& read, const DmgLimits& limits, std::vector<DmgBuilding>& buildings)
{
    DmgBuilding& building = addBuilding(limits, buildings);
    say("Building ", buildings.size(), " is a point.");
    building.kind = BuildingKind::point;
    takeVertices(read, building);
}

// --- Attributes ------------------------------------------------------------------------------------------------------

// Curve name, identifier, floor level, multiplier. An empty value leaves blank or 0.
void takeAttributes(const std::string& record, CurveFinder& curves, DmgBuilding& building)
{
    std::string curveName;
    gis::RecordValues values(record);
    values.take(curveName, kPropertyWidth);
    values.take(building.Prop_ID, kPropertyWidth);
    values.take(building.FFL);
    values.take(building.multiplier);
    building.multiplier = building.multiplier > kLeastMultiplier ? building.multiplier : 1.0F;
    building.curve = curves.find(curveName);
}

} // namespace

void dmg_read_buildings(const std::string& layerName, const DmgLimits& limits, std::span<const DmgCurve> curves,
                        std::vector<DmgBuilding>& buildings)
{
    say("Read building data from GIS...");
    buildings.reserve(static_cast<std::size_t>(std::clamp(limits.buildings, 0, kExpectedBuildings)));
    gis::LayerReader layer = gis::openLayer(layerName);
    CurveFinder finder(curves);
    gis::Coordinates read;
    while (gis::LayerObject* object = layer.next()) {
        if (isRegionObject(*object)) {
            layer.readCoordinates(*object, read);
            addPolygon(read, limits, buildings);
        } else if (object->kind == gis::Kind::point) {
            layer.readCoordinates(*object, read, kPointVertices);
            addPoint(read, limits, buildings);
        } else {
            say("WARNING - Object is not a point or region, skipping.");
            continue;
        }
        takeAttributes(object->record, finder, buildings.back());
    }
    say(" Finished reading building data.");
    layer.close();
}

} // namespace gridforge::damages
