#include "sampling/cp_config.h"

#include "core/numbers.h"
#include "core/text.h"
#include "host/console.h"
#include "host/ends.h"
#include "host/units.h"

#include <algorithm>
#include <functional>

namespace gridforge::sampling {

namespace {

constexpr std::size_t kMinThresholds = 2;

// An empty value between commas leaves its 0.
template <typename Number>
bool take(FreeForm& values, Number& target)
{
    const FreeValue got = values.next(target);
    return got == FreeValue::value || got == FreeValue::empty;
}

[[noreturn]] void failLine(const std::string& line)
{
    say("ERROR - Reading following line in classes file:");
    fail(line);
}

SymbolThreshold parseThreshold(const std::string& line)
{
    SymbolThreshold threshold;
    FreeForm values(line);
    if (!take(values, threshold.upTo) || !take(values, threshold.shape) || !take(values, threshold.colour) ||
        !take(values, threshold.size)) {
        failLine(line);
    }
    return threshold;
}

} // namespace

std::vector<SymbolThreshold> readSymbolThresholds(const std::string& name)
{
    say("Reading calibration point config file: ", name);
    say("Maximum number of thrsholds: ", kMaxThresholds);
    Unit unit = 0;
    OPENER(unit, "I ", name);
    std::string line;
    if (!readLine(unit, line)) {
        line.clear();
    }
    say("Skipping first line: ", line);

    std::vector<SymbolThreshold> thresholds;
    while (!atEnd(unit)) {
        if (!readLine(unit, line)) {
            failLine(line);
        }
        if (thresholds.size() == kMaxThresholds) {
            fail("ERROR - Number of lines in CP config file exceeds maximum.");
        }
        thresholds.push_back(parseThreshold(line));
    }
    say("Number of thresholds in CP file: ", thresholds.size());
    CLOSER(unit);
    if (thresholds.size() < kMinThresholds) {
        fail("ERROR - Less than two thresholds found.");
    }
    if (!std::ranges::is_sorted(thresholds, std::less<>(), &SymbolThreshold::upTo)) {
        fail("ERROR - Thresholds in CP config file not in increasing order.");
    }
    say("   Finished reading config file.");
    return thresholds;
}

std::string symbolStyle(const std::vector<SymbolThreshold>& thresholds, float difference)
{
    const auto found = std::ranges::find_if(
        thresholds, [difference](const SymbolThreshold& threshold) { return difference <= threshold.upTo; });
    if (found == thresholds.end()) {
        say("Warning above difference is above highest value in config file.");
        return "";
    }
    return join("Symbol (", found->shape, ",", found->colour, ",", found->size, ")");
}

} // namespace gridforge::sampling
