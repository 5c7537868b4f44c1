#include "damages/output.h"

#include "core/numbers.h"
#include "core/text.h"
#include "gis/layers.h"
#include "host/console.h"
#include "host/ends.h"
#include "host/units.h"

namespace gridforge {

namespace {

constexpr std::size_t kColumnNameWidth = 20;
constexpr std::int32_t kPropertyLength = 100;
constexpr std::int32_t kHeadingDecimals = 3;

// Cleaning takes the point out, so that 0.5 % becomes Dmg_05AEP, and two probabilities of the same digits have columns
// of one name; deliberate.
std::string damageColumn(float probability)
{
    return cut(CLEANATTRIBUTENAME(join("Dmg_", AREAL(probability), "AEP")), kColumnNameWidth);
}

void defineAttributes(std::span<const DmgRes> results)
{
    GisOutputAttributes& attributes = gisOutputAttributes();
    attributes.clear();
    attributes.add("Prop_Type", "Char", kPropertyLength);
    attributes.add("Prop_ID", "Char", kPropertyLength);
    attributes.add("FFL", "Float");
    attributes.add("Multiplier", "Float");
    for (const DmgRes& result : results) {
        attributes.add(damageColumn(result.AEP), "Float");
    }
    attributes.add("AAD", "Float");
}

std::string heading(std::span<const DmgRes> results)
{
    std::string line = "Property Type,Property ID, Floor Level, Multiplier";
    for (const DmgRes& result : results) {
        line += join(",Damages ", AREALD(result.AEP, kHeadingDecimals), " AEP (%)");
    }
    line += ",Average Annual Damage";
    return cut(line, kLineWidth);
}

std::string recordLine(const DmgBuilding& building, const DmgCurve& curve)
{
    std::string line = join(quotedValue(trim(curve.name)), ",", quotedValue(trim(building.Prop_ID)), ",",
                            AREAL(building.FFL), ",", AREAL(building.multiplier));
    for (const float damage : building.damage) {
        line += join(",", AREAL(damage));
    }
    line += join(",", AREAL(building.AAD));
    return cut(line, kLineWidth);
}

void setCoordinates(const DmgBuilding& building)
{
    GisOutputCoordinates& coordinates = gisOutputCoordinates();
    coordinates.clear();
    // A polygon gives up the slot behind its closing vertex.
    const std::int32_t count = building.type == kPointBuilding ? 1 : building.vertices - 1;
    for (std::int32_t i = 0; i < count; ++i) {
        const auto vertex = static_cast<std::size_t>(i);
        coordinates.add(building.x[vertex], building.y[vertex]);
    }
}

void setKind(const DmgBuilding& building, bool value, GisO& gisO)
{
    if (building.type == kPointBuilding) {
        gisO.point = value;
    } else if (building.type == kPolygonBuilding) {
        gisO.region = value;
    } else {
        fail("ERROR - Should not be here: dmg_write_gis[a]");
    }
}

} // namespace

void dmg_write_gis(const std::string& gisName, const std::string& csvName, std::span<const DmgBuilding> buildings,
                   std::span<const DmgRes> results, std::span<const DmgCurve> curves)
{
    say("Writing building damages data to GIS...");
    defineAttributes(results);
    std::int32_t gisID = gisOpenLayer(gisName, "PR", "O ");
    gisWriteHeader(gisID);
    GisO gisO;
    Unit csvUnit = 0;
    OPENER(csvUnit, "O ", csvName);
    writeLine(csvUnit, heading(results));

    for (const DmgBuilding& building : buildings) {
        setKind(building, true, gisO);
        setCoordinates(building);
        gisWriteObject(gisID, gisO);
        gisDataLine() = recordLine(building, curves[static_cast<std::size_t>(building.curve - 1)]);
        writeLine(csvUnit, gisDataLine());
        gisWriteRecord(gisID, gisO); // goes where the kind tells
        setKind(building, false, gisO);
    }
    say(" Finished write building damages data.");
    gisCloseLayer(gisID);
    CLOSER(csvUnit);
}

} // namespace gridforge
