#include "gis/gis_messages.h"

#include "core/product.h"
#include "core/text.h"
#include "host/console.h"

namespace gridforge {

namespace {

Unit& logUnit()
{
    static Unit unit = -1;
    return unit;
}

} // namespace

std::array<std::string, 4>& gisMessages()
{
    static std::array<std::string, 4> lines;
    return lines;
}

void gisSetLog(Unit unit)
{
    logUnit() = unit;
}

void gisSay(std::string_view line)
{
    say(line);
    if (logUnit() > 0) {
        writeLine(logUnit(), line);
    }
}

void gisReportMessage(std::int32_t blankLines)
{
    for (std::int32_t i = 0; i < blankLines; ++i) {
        gisSay("");
    }
    const auto& lines = gisMessages();
    gisSay(lines[0]);
    for (std::size_t i = 1; i < lines.size(); ++i) {
        if (!lines[i].empty()) {
            gisSay(lines[i]);
        }
    }
}

void gisMisuse(std::string_view place)
{
    gisFail(join("Should not be here ", place, " - please contact ", kSupportContact, "."));
}

} // namespace gridforge
