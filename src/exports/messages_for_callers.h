// Messages with a place, drawn in a GIS message layer. Only outside callers send them.
#pragma once

#include <cstdint>

namespace gridforge::exports {

// DMESSAGE with a position, drawn in the message layer.
void DMESSAGEXY(std::int32_t blankLines, double x, double y);
void DMESSAGERESETCOUNTERS();
// A line of 80 underscores to the console, and to the unit when above 0.
void DLINE(std::int32_t unit);

} // namespace gridforge::exports
