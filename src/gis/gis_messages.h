// Messages of the layer library: four lines that stay as they are until set again, so that a message of fewer lines
// shows the older lines behind its own; deliberate.
#pragma once

#include "host/ends.h"
#include "host/units.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace gridforge {

std::array<std::string, 4>& gisMessages();
// Writes `blankLines` empty lines, line 1, and lines 2 to 4 where not blank.
void gisReportMessage(std::int32_t blankLines);

// Sets the lines from the first on and reports them behind one blank line.
template <typename... Lines>
void gisWarn(const Lines&... lines)
{
    static_assert(sizeof...(lines) <= 4);
    std::size_t next = 0;
    ((gisMessages()[next++] = cut(std::string_view(lines), kLineWidth)), ...);
    gisReportMessage(1);
}

// gisWarn and EXITS.
template <typename... Lines>
[[noreturn]] void gisFail(const Lines&... lines)
{
    gisWarn(lines...);
    EXITS();
}

// A line to the console and, where there is one, to the log.
void gisSay(std::string_view line);
// The unit of that log, 0 or below for none.
void gisSetLog(Unit unit);

// "Should not be here <place> - please contact ..." and EXITS.
[[noreturn]] void gisMisuse(std::string_view place);

} // namespace gridforge
