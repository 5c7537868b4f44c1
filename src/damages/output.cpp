#include "damages/output.h"

#include "core/number_text.h"
#include "core/text.h"
#include "gis/layer_writer.h"
#include "host/console.h"
#include "host/ends.h"
#include "host/units.h"

#include <algorithm>

namespace gridforge::damages {

namespace {

constexpr std::size_t kColumnNameWidth = 20;
constexpr std::int32_t kPropertyLength = 100;
constexpr std::int32_t kHeadingDecimals = 3;

// Cleaning takes the point out, so that 0.5 % becomes Dmg_05AEP, and two probabilities of the same digits have columns
// of one name, on purpose: users know them.
std::string damageColumn(float probability)
{
    return cut(CLEANATTRIBUTENAME(join("Dmg_", AREAL(probability), "AEP")), kColumnNameWidth);
}

std::vector<gis::Column> columnsFor(std::span<const DmgRes> results)
{
    std::vector<gis::Column> columns = {{"Prop_Type", "Char", kPropertyLength},
                                        {"Prop_ID", "Char", kPropertyLength},
                                        {"FFL", "Float"},
                                        {"Multiplier", "Float"}};
    for (const DmgRes& result : results) {
        columns.push_back({damageColumn(result.AEP), "Float"});
    }
    columns.push_back({"AAD", "Float"});
    return columns;
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

gis::Kind kindOf(const DmgBuilding& building)
{
    switch (building.kind) {
    case BuildingKind::point: return gis::Kind::point;
    case BuildingKind::polygon: return gis::Kind::region;
    }
    fail("ERROR - Should not be here: dmg_write_gis[a]");
}

// The building as an object, without its record. A polygon loses the slot after its closing vertex.
void takeShape(const DmgBuilding& building, gis::Feature& feature)
{
    feature.kind = kindOf(building);
    const auto& [x, y, box] = building.outline;
    const auto count =
        feature.kind == gis::Kind::point ? std::ptrdiff_t{1} : std::max(std::ssize(x) - 1, std::ptrdiff_t{0});
    feature.x.assign(x.begin(), x.begin() + count);
    feature.y.assign(y.begin(), y.begin() + count);
}

} // namespace

void dmg_write_gis(const DamageNames& names, const gis::Projection& projection, std::span<const DmgBuilding> buildings,
                   std::span<const DmgRes> results, std::span<const DmgCurve> curves)
{
    say("Writing building damages data to GIS...");
    gis::LayerWriter layer =
        gis::createLayer(names.gis, {.columns = columnsFor(results), .projection = projection, .families = "PR"});
    Unit csvUnit = 0;
    OPENER(csvUnit, "O ", names.csv);
    writeLine(csvUnit, heading(results));

    gis::Feature feature;
    for (const DmgBuilding& building : buildings) {
        takeShape(building, feature);
        feature.record = recordLine(building, curves[static_cast<std::size_t>(building.curve - 1)]);
        layer.write(feature);
        writeLine(csvUnit, feature.record);
    }
    say(" Finished write building damages data.");
    layer.close();
    CLOSER(csvUnit);
}

} // namespace gridforge::damages
