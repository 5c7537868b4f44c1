#include "gis/plane_ends.h"

#include "core/product.h"
#include "host/ends.h"

namespace gridforge::gis {

void failRings(std::string_view routine, int form)
{
    fail("Invalid number of polygons in region sent to ", routine, " routine [", form, "] - contact ", kSupportContact);
}

} // namespace gridforge::gis
