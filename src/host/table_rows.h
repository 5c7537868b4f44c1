// Small tables in text files: a heading line, then a row on each line.
#pragma once

#include "core/text.h"
#include "host/ends.h"
#include "host/units.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace gridforge::inline host {

// What a failed read of the heading does: it ends the run, or it is left to the read of the first row.
enum class UnreadHeading { ends, isPassed };

// What differs between the tables of operations.
struct TableForm {
    std::string_view unreadable; // the message before a line that cannot be read, which ends the run
    std::int32_t mostRows = 0;
    std::string_view tooMany;            // the message that ends the run over one row more
    std::string_view tooManyAdvice = {}; // the line after that
    UnreadHeading unreadHeading = UnreadHeading::ends;
};

// The heading of the open table; blank in an empty file.
std::string readHeading(Unit unit, const TableForm& form);

// The next line with a row, after `rows` others; false at the end.
bool nextRow(Unit unit, const TableForm& form, std::int64_t rows, std::string& line);

// Reads the open table from its first row to its end and returns how many rows there are. `takeRow(line)` is false for a
// line that it cannot read.
template <typename TakeRow>
std::int64_t readRows(Unit unit, const TableForm& form, const TakeRow& takeRow)
{
    std::int64_t rows = 0;
    std::string line;
    for (; nextRow(unit, form, rows, line); ++rows) {
        if (!takeRow(line)) {
            failLine(form.unreadable, line);
        }
    }
    return rows;
}

} // namespace gridforge::inline host
