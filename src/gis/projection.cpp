#include "gis/projection.h"

#include "core/text.h"
#include "host/console.h"
#include "host/ends.h"

namespace gridforge::gis {

bool findProjectionLine(const std::string& fileName, std::string_view word, std::string_view label,
                        std::string& projection, Unit& unit)
{
    OPENER(unit, "I ", fileName);
    say("Using ", fileName, " for setting projection.");
    std::string line;
    while (!atEnd(unit)) {
        if (!readLine(unit, line)) {
            say("ERROR - Reading following line in projection file:");
            fail(line);
        }
        if (FLAGEXISTS(line, word)) {
            projection = line;
            say(label, projection);
            return true;
        }
    }
    return false;
}

} // namespace gridforge::gis
