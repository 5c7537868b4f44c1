// What the layers of the network builder are written with.
#pragma once

#include "gis/records.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace gridforge {

// A number with three decimals, as records and tables hold it.
std::string threeDecimals(double value);

// Opens a layer for objects of one kind, "L" or "P", with the columns of gisOutputAttributes.
std::int32_t openOutputLayer(const std::string& name, std::string_view kind);

// Writes a polyline or a point with its record.
void writePolylineObject(std::int32_t gisID, const std::vector<double>& x, const std::vector<double>& y,
                         std::string_view record);
void writePointObject(std::int32_t gisID, double x, double y, std::string_view record);

} // namespace gridforge
