#include "ops/class_table.h"

#include "core/free_form.h"
#include "host/control_lines.h"
#include "host/ends.h"
#include "host/quiet_input.h"
#include "host/table_rows.h"
#include "host/units.h"

namespace gridforge::ops {

namespace {

constexpr std::size_t kNameColumns = 100;
constexpr float kNoLimit = -9999.0F;

// What cannot be read ends the run with a message of its own.
bool colouredRow(const std::string& line, ClassRow& row)
{
    const std::string lower = LOWERCASE(line);
    row.limit = EXTRACTREAL(line, lower, "Value", 1, kNoLimit);
    row.name = cut(EXTRACTSTRING(line, lower, "Name", 2), kNameColumns);
    row.red = EXTRACTINTEGER(line, lower, "Red", 3, 0);
    row.green = EXTRACTINTEGER(line, lower, "Green", 4, 0);
    row.blue = EXTRACTINTEGER(line, lower, "Blue", 5, 0);
    return true;
}

bool plainRow(const std::string& line, ClassRow& row)
{
    FreeForm values(line);
    return values.take(row.limit) && values.take(row.name, kNameColumns);
}

// As the routines above take it, or none where they would end the run.
std::optional<float> limitIn(const std::string& line, bool coloured)
{
    if (coloured) {
        return findReal(line, LOWERCASE(line), "Value", 1, kNoLimit);
    }
    ClassRow row;
    return plainRow(line, row) ? std::optional(row.limit) : std::nullopt;
}

} // namespace

ClassTable readClassTable(std::string_view file, bool coloured, const ClassWords& words)
{
    say(words.from, file);
    say(words.maximum, kMaxClasses);
    Unit unit = 0;
    OPENER(unit, "I ", file);
    const TableForm form{.unreadable = "ERROR - Reading following line in classes file:",
                         .mostRows = kMaxClasses,
                         .tooMany = words.tooMany};
    say("Skipping first line: ", readHeading(unit, form));

    ClassTable table;
    readRows(unit, form, [&](const std::string& line) {
        ClassRow& row = table.emplace_back();
        return coloured ? colouredRow(line, row) : plainRow(line, row);
    });
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
