// Control files: lines "command == value". Each operation reads its own by a table of commands.
#pragma once

#include "core/free_form.h"
#include "core/text.h"
#include "host/ends.h"
#include "host/units.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace gridforge::inline host {

// A line without comment and its parts.
struct ControlLine {
    std::string text;
    std::string command; // as it stands before the "=="; the whole line where it has none
    std::string value;   // trimmed
};

// What differs between the control files of operations.
struct ControlDialect {
    bool blankCommands = false; // a line with nothing before its "==" is a command too
    // Ends the run at a command that no row knows, and is followed by the line; if blank, the command is ignored.
    std::string_view unknown = {};
};

// Words that are searched for anywhere in a command, ignoring case, and the routine that takes its line.
template <typename State>
struct ControlCommand {
    std::string_view words;
    void (*run)(const ControlLine& line, State& state);
};

// The next line of the open file with a command; false at its end. A failed read ends the run.
bool nextCommand(Unit unit, const ControlDialect& dialect, ControlLine& line);

// Reads the open file to its end. The first row whose words a command holds gets the line.
template <typename State, std::size_t Count>
void runCommands(Unit unit, const ControlDialect& dialect, const std::array<ControlCommand<State>, Count>& commands,
                 State& state)
{
    ControlLine line;
    while (nextCommand(unit, dialect, line)) {
        const auto found = std::ranges::find_if(
            commands, [&line](const ControlCommand<State>& row) { return FLAGEXISTS(line.command, row.words); });
        if (found != commands.end()) {
            found->run(line, state);
        } else if (!dialect.unknown.empty()) {
            fail(dialect.unknown, line.text);
        }
    }
}

// The value as a number; one that cannot be read ends the run with the message and the line.
template <typename Number>
void readValue(const ControlLine& line, std::string_view message, Number& target)
{
    if (!readFree(line.value, target)) {
        failLine(message, line.text);
    }
}

// The command from a column on, counted from 1. The column is fixed, so words before the command shift what is read, on
// purpose: existing files rely on it.
std::string_view fromColumn(const ControlLine& line, std::size_t column);

} // namespace gridforge::inline host
