#include "gis/gis_messages.h"

#include "core/product.h"
#include "core/text.h"
#include "host/console.h"

namespace gridforge::gis {

std::array<std::string, 4>& gisMessages()
{
    static std::array<std::string, 4> lines;
    return lines;
}

void gisReportMessage(std::int32_t blankLines)
{
    for (std::int32_t i = 0; i < blankLines; ++i) {
        say("");
    }
    const auto& lines = gisMessages();
    say(lines[0]);
    for (std::size_t i = 1; i < lines.size(); ++i) {
        if (!lines[i].empty()) {
            say(lines[i]);
        }
    }
}

void gisMisuse(std::string_view place)
{
    gisFail(join("Should not be here ", place, " - please contact ", kSupportContact, "."));
}

} // namespace gridforge::gis
