// GDAL as an outside witness: how it reads a grid that the tool wrote, and grids that it writes for the tool to read.
#pragma once

#include "support/grids.h"
#include "support/tool_run.h"

#include <string>
#include <string_view>

namespace gridforge::test {

// Is there a Python with GDAL? Where not, tests skip.
bool hasGdal();

struct GdalGrid : WrittenGrid {
    std::string projection; // the name of the coordinate system, "" for none
};

// The grid `name` in the folder of the run; a test failure where GDAL cannot read it.
GdalGrid readByGdal(const ToolRun& run, std::string_view name);

// Writes cells as the file `name` in the folder of the run by the GDAL driver, AAIGrid or EHdr.
void writeByGdal(const ToolRun& run, std::string_view driver, std::string_view name, const Cells& cells,
                 const GridOptions& options = {});

} // namespace gridforge::test
