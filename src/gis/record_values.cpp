#include "gis/record_values.h"

#include "host/ends.h"

namespace gridforge::gis {

void RecordValues::require(bool taken) const
{
    if (taken) {
        return;
    }
    if (!unreadable_.empty()) {
        failLine(unreadable_, record_);
    }
    fail("ERROR - Extracting attribute data for GIS object.  Data: ", record_);
}

} // namespace gridforge::gis
