// Outside witnesses for NetCDF files that the tool wrote: the library's own dump, and GDAL.
#pragma once

#include "support/tool_run.h"

#include <string>
#include <string_view>
#include <vector>

namespace gridforge::test {

// Does this Python code run without an error? So a test sees what is installed.
bool pythonRuns(const std::string& code);
// What the code prints with the path of the file `name` in the folder of the run as its first argument, and then the
// further ones; a test failure where it ends with an error.
std::string printedByPython(const ToolRun& run, std::string_view name, const std::string& code,
                            const std::vector<std::string>& further = {});

bool hasNcdump();
// The file `name` in the folder of the run as `ncdump -s` shows it; a test failure where it cannot be read.
std::string shownByNcdump(const ToolRun& run, std::string_view name);

// Is there a Python with GDAL and its NetCDF driver?
bool hasGdalNetcdf();
// Of each variable a line with its name, the number of its bands and the geotransform; of each band a line with its null
// and its time, None outside a series; then its cells, a line a row from the north.
std::string variablesByGdal(const ToolRun& run, std::string_view name, const std::vector<std::string>& variables);

} // namespace gridforge::test
