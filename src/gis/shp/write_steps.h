// What the writers of .shp and .dbf do at the end of a step.
#pragma once

#include "gis/gis_messages.h"
#include "host/units.h"

namespace gridforge::gis::shp {

// Reports a failed rewrite of a header; for onWriteFailure.
inline void failRewrite(Unit)
{
    gisFail("ERROR 0413 - Rewriting .dbf file header with final information.");
}

// Flushes the unit, so that a failed write is reported by the step that wrote the bytes.
inline void settle(Unit unit)
{
    seekTo(unit, position(unit));
}

} // namespace gridforge::gis::shp
