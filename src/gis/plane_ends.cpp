#include "gis/plane_ends.h"

#include "core/product.h"
#include "host/ends.h"

namespace gridforge::gis {

void failRings(std::string_view routine, int form)
{
    fail("Invalid number of polygons in region sent to ", routine, " routine [", form, "] - contact ", kSupportContact);
}

void requireGridline(GridlineEnd end, std::int32_t limit)
{
    switch (end) {
    case GridlineEnd::done: return;
    case GridlineEnd::noPlace: fail("should not be here - gridline - intersection point - contact ", kSupportContact);
    case GridlineEnd::pastLimit:
        fail("SORRY - Exceeded limit of ", limit, " HX cells per HX polyline segment.  Contact ", kSupportContact, ".");
    }
}

} // namespace gridforge::gis
