#include "network/insert_vertices.h"

#include "host/console.h"
#include "host/ends.h"
#include "plane/line_points.h"

#include <cstddef>

namespace gridforge::network {

namespace {

constexpr float kLeastDistance = 0.001F;

void addPoint(double x, double y, NbcSection& section)
{
    if (section.points() == kMaxPolylineVertices) {
        fail("ERROR - Number of vertices in polyline exceeds maximum: ", kMaxPolylineVertices);
    }
    section.pointX.push_back(x);
    section.pointY.push_back(y);
}

// Both ends of each segment are points, so an inner vertex stands twice. On purpose: the chainage takes a step of no
// length there, as readers of the tables know it.
void insertPoints(NbcSection& section, float spacing)
{
    for (std::size_t w = 1; w < section.x.size(); ++w) {
        const std::int32_t inserted =
            pointsToInsert(section.x[w - 1], section.y[w - 1], section.x[w], section.y[w], spacing);
        const double x = section.x[w - 1];
        const double y = section.y[w - 1];
        const auto dx = static_cast<float>(section.x[w] - x);
        const auto dy = static_cast<float>(section.y[w] - y);
        addPoint(x, y, section);
        for (std::int32_t i = 1; i <= inserted; ++i) {
            const double share = static_cast<double>(i) / (static_cast<double>(inserted) + 1.0);
            addPoint(x + static_cast<double>(dx) * share, y + static_cast<double>(dy) * share, section);
        }
        addPoint(section.x[w], section.y[w], section);
    }
}

} // namespace

void nbc_insert_vertices(NbcSections& sections, float spacing, std::optional<float> defaultMaterial)
{
    say("Inserting additional vertices along sections...");
    for (NbcSection& section : sections.all) {
        section.pointX.clear();
        section.pointY.clear();
        if (section.distance < 0.0F) {
            section.pointX = section.x;
            section.pointY = section.y;
        } else {
            insertPoints(section, section.distance > kLeastDistance ? section.distance : spacing);
        }
        section.pointZ.assign(section.pointX.size(), kNoPointValue);
        section.pointMaterial.assign(section.pointX.size(), defaultMaterial.value_or(kNoPointValue));
    }
    say("   Done");
}

} // namespace gridforge::network
