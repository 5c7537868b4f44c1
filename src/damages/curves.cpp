#include "damages/curves.h"

#include "core/free_form.h"
#include "host/console.h"
#include "host/ends.h"
#include "host/table_rows.h"
#include "host/units.h"

#include <algorithm>
#include <cassert>
#include <functional>
#include <limits>

namespace gridforge::damages {

namespace {

constexpr std::size_t kFewestPoints = 2;

bool readPoint(const std::string& line, DmgCurve& curve)
{
    float depth = 0;
    float damage = 0;
    FreeForm values(line);
    if (!values.take(depth) || !values.take(damage)) {
        return false;
    }
    curve.depth.push_back(depth);
    curve.damage.push_back(damage);
    return true;
}

// Not-a-number rises above nothing, and nothing above it.
bool risesStrictly(const std::vector<float>& depths)
{
    return std::adjacent_find(depths.begin(), depths.end(), std::not_fn(std::less<>())) == depths.end();
}

} // namespace

void dmg_read_curve(const std::string& fileName, std::int32_t maxPoints, DmgCurve& curve)
{
    say("Getting damages Curve...");
    Unit unit = 0;
    OPENER(unit, "I ", fileName);
    const TableForm form{.unreadable = "ERROR - Reading following line in damages curve file:",
                         .mostRows = maxPoints,
                         .tooMany = "ERROR - Number of bins exceeds maximum.",
                         .unreadHeading = UnreadHeading::isPassed};
    readHeading(unit, form);
    const std::int64_t count =
        readRows(unit, form, [&curve](const std::string& line) { return readPoint(line, curve); });
    CLOSER(unit);
    say("Number of points in damage curve found: ", count);
    if (curve.depth.size() < kFewestPoints) {
        fail("ERROR - Less than 2 points in damages curve.");
    }
    if (!risesStrictly(curve.depth)) {
        fail("ERROR - Depth values in damages curve not increasing.");
    }
}

bool isPastCurve(std::span<const float> depths, float depth)
{
    return depth > depths.front() && depth >= depths.back();
}

float dmg_curve_lookup(std::span<const float> depths, std::span<const float> damages, float depth)
{
    assert(depths.size() == damages.size() && depths.size() >= kFewestPoints);
    if (depth <= depths.front()) {
        return damages.front(); // a dry building too: no zero is forced
    }
    if (isPastCurve(depths, depth)) {
        return damages.back();
    }
    const auto above = std::upper_bound(depths.begin(), depths.end(), depth);
    if (above == depths.end()) {
        return std::numeric_limits<float>::quiet_NaN(); // the depth is not a number
    }
    const auto k = static_cast<std::size_t>(above - depths.begin());
    const float a = depth - depths[k - 1];
    const float b = depths[k] - depths[k - 1];
    const float c = damages[k] - damages[k - 1];
    return damages[k - 1] + (a / b) * c;
}

} // namespace gridforge::damages
