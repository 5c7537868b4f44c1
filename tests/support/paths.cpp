#include "support/paths.h"

#include <cstdlib>

namespace gridforge::test {

std::string toolPath()
{
    const char* const other = std::getenv("GRIDFORGE_TOOL");
    return other != nullptr ? other : GRIDFORGE_TOOL;
}
std::string catchmentMakerPath()
{
    return GRIDFORGE_CATCHMENT;
}
std::string preloadedPath()
{
    return GRIDFORGE_PRELOADED;
}
std::string failingNetcdfPath()
{
    return GRIDFORGE_FAILING_NETCDF;
}
std::string failingSystemPath()
{
    return GRIDFORGE_FAILING_SYSTEM;
}
std::string pureRoomsPath()
{
    return GRIDFORGE_PURE_ROOMS;
}
std::string gridWritersPath()
{
    return GRIDFORGE_GRID_WRITERS;
}
std::string manualFolder()
{
    return GRIDFORGE_MANUAL_DIR;
}
std::string sourceFolder()
{
    return GRIDFORGE_SOURCE_DIR;
}
std::string dataFolder()
{
    return GRIDFORGE_DATA_DIR;
}

} // namespace gridforge::test
