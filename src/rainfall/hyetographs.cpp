#include "rainfall/hyetographs.h"

#include "core/free_form.h"
#include "core/number_text.h"
#include "core/text.h"
#include "host/console.h"
#include "host/ends.h"
#include "host/table_rows.h"
#include "host/units.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace gridforge::rainfall {

namespace {

constexpr float kTimeTolerance = 0.001F;

bool appendStep(const std::string& line, RfHyetograph& hyetograph)
{
    float time = 0;
    float depth = 0;
    FreeForm values(line);
    if (!values.take(time) || !values.take(depth)) {
        return false;
    }
    hyetograph.time.push_back(time);
    hyetograph.depth.push_back(depth);
    return true;
}

void requireRisingTimes(const std::vector<float>& time)
{
    const auto stays =
        std::adjacent_find(time.begin(), time.end(), [](float before, float after) { return !(after > before); });
    if (stays != time.end()) {
        fail("ERROR - Time values in rainfall hyetograph not in ascending order.");
    }
}

void requireTimesOf(const RfHyetograph& first, const RfHyetograph& other)
{
    const auto sayMismatch = [&] {
        say("ERROR - Rainfall times in hyteographs do not match. Names: ", first.name, " and ", other.name);
    };
    if (first.time.size() != other.time.size()) {
        sayMismatch();
        EXITS();
    }
    for (std::size_t i = 0; i < first.time.size(); ++i) {
        if (std::abs(first.time[i] - other.time[i]) > kTimeTolerance) {
            sayMismatch();
            fail("    Times for timestep ", i + 1, " are ", AREAL(first.time[i]), " and ", AREAL(other.time[i]));
        }
    }
}

} // namespace

void failTooManyLocations(std::int32_t maximum)
{
    say("ERROR - Number of rainfall locations exceeds maximum: ", maximum);
    fail("   Please specify with \"Maximum RF Locations == \"");
}

void addHyetograph(const std::string& name, RfHyetographs& hyetographs)
{
    if (hyetographs.count() >= hyetographs.maxLocations) {
        failTooManyLocations(hyetographs.maxLocations);
    }
    RfHyetograph hyetograph;
    hyetograph.name = cut(name, kRfNameWidth);
    hyetographs.records.push_back(std::move(hyetograph));
}

void rf_read_hyetograph(const std::string& fileName, RfHyetographs& hyetographs)
{
    say("Getting rainfall hyetograph...");
    Unit unit = 0;
    OPENER(unit, "I ", fileName);
    const TableForm form{.unreadable = "ERROR - Reading following line in rainfall hyetograph:",
                         .mostRows = hyetographs.maxPoints,
                         .tooMany = "ERROR - Number of data points in hyetogprah exceeds maximum.",
                         .tooManyAdvice = "   Please specify with \"Maximum Points in Hyetograph == \""};
    readHeading(unit, form);
    RfHyetograph& hyetograph = hyetographs.records.back();
    const std::int64_t count =
        readRows(unit, form, [&hyetograph](const std::string& line) { return appendStep(line, hyetograph); });
    CLOSER(unit);
    // Users know these two texts from the damage curves; they stay as they are.
    say("Number of points in damage curve found: ", count);
    if (count < 2) {
        fail("ERROR - Less than 2 points in damages curve.");
    }
    requireRisingTimes(hyetograph.time);
}

void requireSameTimes(const RfHyetographs& hyetographs)
{
    say("Checking rainfall hyetographs have consistent times.");
    // A single hyetograph is refused like none, on purpose: control files repeat their one gauge.
    if (hyetographs.count() <= 1) {
        fail("ERROR - No rainfall hyetogrpahs specified.");
    }
    for (const RfHyetograph& hyetograph : hyetographs.records) {
        requireTimesOf(hyetographs.records.front(), hyetograph);
    }
    say("   OK.");
}

std::int32_t findHyetograph(const std::string& name, const RfHyetographs& hyetographs)
{
    const auto& records = hyetographs.records;
    const auto found =
        std::ranges::find_if(records, [&name](const RfHyetograph& hyetograph) { return ASAME(hyetograph.name, name); });
    return found == records.end() ? 0 : static_cast<std::int32_t>(found - records.begin()) + 1;
}

} // namespace gridforge::rainfall
