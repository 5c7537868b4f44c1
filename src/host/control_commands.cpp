#include "host/control_commands.h"

#include "core/control_fields.h"
#include "host/control_lines.h"

namespace gridforge::inline host {

bool nextCommand(Unit unit, const ControlDialect& dialect, ControlLine& line)
{
    std::string right;
    while (!atEnd(unit)) {
        if (!READLINE(unit, line.text)) {
            continue;
        }
        const bool isCommand = CHECKLINE(line.text, "*", "==", 0, right, line.command);
        if (isCommand || dialect.blankCommands) {
            line.value = trim(right);
            return true;
        }
    }
    return false;
}

std::string_view fromColumn(const ControlLine& line, std::size_t column)
{
    return std::string_view(line.command).substr(std::min(column - 1, line.command.size()));
}

} // namespace gridforge::inline host
