#include "sampling/cp_config.h"

#include "core/free_form.h"
#include "core/text.h"
#include "host/console.h"
#include "host/ends.h"
#include "host/table_rows.h"
#include "host/units.h"

#include <algorithm>
#include <functional>

namespace gridforge::sampling {

namespace {

constexpr std::size_t kMinThresholds = 2;

constexpr TableForm kForm{.unreadable = "ERROR - Reading following line in classes file:",
                          .mostRows = kMaxThresholds,
                          .tooMany = "ERROR - Number of lines in CP config file exceeds maximum.",
                          .unreadHeading = UnreadHeading::isPassed};

bool parseThreshold(const std::string& line, SymbolThreshold& threshold)
{
    FreeForm values(line);
    return values.take(threshold.upTo) && values.take(threshold.shape) && values.take(threshold.colour) &&
           values.take(threshold.size);
}

} // namespace

std::vector<SymbolThreshold> readSymbolThresholds(const std::string& name)
{
    say("Reading calibration point config file: ", name);
    say("Maximum number of thrsholds: ", kMaxThresholds);
    Unit unit = 0;
    OPENER(unit, "I ", name);
    say("Skipping first line: ", readHeading(unit, kForm));

    std::vector<SymbolThreshold> thresholds;
    readRows(unit, kForm,
             [&thresholds](const std::string& line) { return parseThreshold(line, thresholds.emplace_back()); });
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

std::optional<std::string> symbolStyle(const std::vector<SymbolThreshold>& thresholds, float difference)
{
    const auto found = std::ranges::find_if(
        thresholds, [difference](const SymbolThreshold& threshold) { return difference <= threshold.upTo; });
    if (found == thresholds.end()) {
        return std::nullopt;
    }
    return join("Symbol (", found->shape, ",", found->colour, ",", found->size, ")");
}

} // namespace gridforge::sampling
