#include "ops/class_table.h"

#include "core/control_fields.h"
#include "core/numbers.h"
#include "host/control_lines.h"
#include "host/ends.h"
#include "host/quiet_input.h"
#include "host/units.h"

namespace gridforge::ops {

namespace {

constexpr std::size_t kNameColumns = 100;
constexpr float kNoLimit = -9999.0F;

ClassRow colouredRow(const std::string& line)
{
    const std::string lower = LOWERCASE(line);
    ClassRow row;
    row.limit = EXTRACTREAL(line, lower, "Value", 1, kNoLimit);
    row.name = cut(EXTRACTSTRING(line, lower, "Name", 2), kNameColumns);
    row.red = EXTRACTINTEGER(line, lower, "Red", 3, 0);
    row.green = EXTRACTINTEGER(line, lower, "Green", 4, 0);
    row.blue = EXTRACTINTEGER(line, lower, "Blue", 5, 0);
    return row;
}

bool isRead(FreeValue found)
{
    return found == FreeValue::value || found == FreeValue::empty;
}

ClassRow plainRow(const std::string& line)
{
    ClassRow row;
    FreeForm values(line);
    if (!isRead(values.next(row.limit)) || !isRead(values.nextText(row.name, kNameColumns))) {
        say("ERROR - Reading following line in classes file:");
        fail(line);
    }
    return row;
}

// As the routines above take it, or none where they would end the run.
std::optional<float> limitIn(const std::string& line, bool coloured)
{
    ClassRow row;
    if (!coloured) {
        FreeForm values(line);
        return isRead(values.next(row.limit)) ? std::optional(row.limit) : std::nullopt;
    }
    const std::optional<std::string> text = keyOrColumnValue(line, LOWERCASE(line), "Value", 1, ValueEnd::atComma);
    row.limit = kNoLimit;
    return text && (text->empty() || readFree(*text, row.limit)) ? std::optional(row.limit) : std::nullopt;
}

std::string nextLine(Unit unit)
{
    std::string line;
    if (!atEnd(unit) && !readLine(unit, line)) {
        say("ERROR - Reading following line in classes file:");
        fail(line);
    }
    return line;
}

} // namespace

ClassTable readClassTable(std::string_view file, bool coloured, const ClassWords& words)
{
    say(words.from, file);
    say(words.maximum, kMaxClasses);
    Unit unit = 0;
    OPENER(unit, "I ", file);
    say("Skipping first line: ", nextLine(unit));

    ClassTable table;
    while (!atEnd(unit)) {
        const std::string line = nextLine(unit);
        if (table.size() == static_cast<std::size_t>(kMaxClasses)) {
            fail(words.tooMany);
        }
        table.push_back(coloured ? colouredRow(line) : plainRow(line));
    }
    say(words.found, table.size());
    CLOSER(unit);
    if (table.size() < 2) {
        fail(words.tooFew);
    }
    return table;
}

std::optional<std::vector<float>> lookAtLimits(std::string_view file, bool coloured)
{
    const auto lines = lookAtLines(file, kMaxClasses + 1);
    if (!lines || lines->size() < 3) { // a heading and two rows
        return std::nullopt;
    }
    ClassTable table;
    for (std::size_t i = 1; i < lines->size(); ++i) {
        const std::optional<float> limit = limitIn((*lines)[i], coloured);
        if (!limit) {
            return std::nullopt;
        }
        table.emplace_back().limit = *limit;
    }
    return risingLimits(table);
}

std::vector<float> risingLimits(const ClassTable& table)
{
    std::vector<float> limits;
    limits.reserve(table.size());
    for (const ClassRow& row : table) {
        const bool rises = limits.empty() || limits.back() != limits.back() || row.limit > limits.back();
        limits.push_back(rises ? row.limit : limits.back());
    }
    return limits;
}

} // namespace gridforge::ops
