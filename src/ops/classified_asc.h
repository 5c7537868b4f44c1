// The .asc of a classified grid, with names and colours of the classes between header and cells.
#pragma once

#include "grid/cell_source.h"
#include "host/units.h"
#include "ops/class_table.h"
#include "plane/grid_header.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace gridforge::ops {

// Writes the file `name`, with the class numbers of `classes` as its cells.
void writeClassifiedAsc(const std::string& name, const GridHeader& header, const grid::CellSource& classes,
                        const ClassTable& table);

// Writes the first five header lines in fixed-width form; the null stands nowhere in such a file.
void writeAscHeaderText(Unit unit, std::string_view displayName, std::int32_t nrows, std::int32_t ncols, double xll,
                        double yll, double cellsize);

} // namespace gridforge::ops
