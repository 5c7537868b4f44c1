#include "gis/layer_objects.h"

#include "base/ends.h"

namespace gridforge {

void failDataLine(std::string_view dataLine)
{
    fail("ERROR - Extracting attribute data for GIS object.  Data: ", dataLine);
}

} // namespace gridforge
