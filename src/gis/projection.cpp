#include "gis/projection.h"

#include "core/names.h"
#include "core/text.h"
#include "host/console.h"
#include "host/ends.h"
#include "host/file_system.h"
#include "host/units.h"

namespace gridforge {

namespace {

// The first line of the file that holds `word` into `projection`; false where there is none.
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

} // namespace

void get_projection(std::string_view gisFile, std::string& mifProjection, std::string& shpProjection)
{
    say("Getting Projection...");
    const std::string extension = FILEEXT(gisFile);
    Unit unit = 0;
    if (extension == ".shp") {
        const std::string prjName = FILENAMEPATH(gisFile) + ".prj";
        if (!inputExists(prjName)) {
            fail("ERROR - Projection file does not exist in folder: ", prjName);
        }
        const bool found = findProjectionLine(prjName, "PROJCS", "shp Projection: ", shpProjection, unit);
        CLOSER(unit);
        if (!found) {
            fail("ERROR - Unable to find PROJCS line in ", prjName);
        }
    } else if (extension == ".mif") {
        if (!findProjectionLine(std::string(gisFile), "CoordSys", "mif Projection: ", mifProjection, unit)) {
            fail("ERROR - Unable to find CoordSys line in ", gisFile);
        }
        CLOSER(unit);
    } else {
        fail("ERROR - Unable to determine gis file type, expecting .mif or .shp. File: ", gisFile);
    }
}

} // namespace gridforge
