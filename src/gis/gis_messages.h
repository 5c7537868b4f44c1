// Messages of the layer library: four lines that stay as they are until set again, so that a message of fewer lines
// shows the older lines after its own, on purpose: that is what users see.
#pragma once

#include "core/text.h"
#include "host/ends.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace gridforge::gis {

std::array<std::string, 4>& gisMessages();
// Writes `blankLines` empty lines, line 1, and lines 2 to 4 where not blank.
void gisReportMessage(std::int32_t blankLines);

// Sets the lines from the first on and reports them after one blank line.
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

// "Should not be here <place> - please contact ..." and EXITS.
[[noreturn]] void gisMisuse(std::string_view place);

} // namespace gridforge::gis
