#include "ops/class_table.h"

#include "core/numbers.h"
#include "host/control_lines.h"
#include "host/ends.h"
#include "host/units.h"

namespace gridforge::ops {

namespace {

constexpr std::size_t kNameColumns = 100;

ClassRow colouredRow(const std::string& line)
{
    constexpr float kNoLimit = -9999.0F;
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
