#include "support/consoles.h"
#include "support/paths.h"
#include "support/scratch_folder.h"
#include "support/tool_run.h"

#include <gmock/gmock.h>

namespace gridforge::test {
namespace {

#ifndef GRIDFORGE_LINK_NETCDF

using testing::HasSubstr;
using testing::Not;

// What the loader says of the libraries that a run with these arguments loads.
std::string loadedBy(const std::string& arguments)
{
    ToolRun run(arguments.c_str());
    run.give("a.asc", ascGrid({{1, 2}, {3, 4}}));
    run.environment("LD_DEBUG", "files");
    run.environment("LD_DEBUG_OUTPUT", "loads");
    run.start();
    EXPECT_TRUE(run.reachedEnd()) << run.console();
    std::string loads;
    for (const auto& [name, text] : run.files()) {
        loads += name.starts_with("loads.") ? text : "";
    }
    EXPECT_THAT(loads, HasSubstr("libstdc++"));
    return loads;
}

TEST(NetcdfLibraryCli, IsLoadedWhereNetcdfIsWritten)
{
    EXPECT_THAT(loadedBy("-b -nc a.asc"),
                AllOf(HasSubstr(GRIDFORGE_NETCDF_LIBRARY), HasSubstr(GRIDFORGE_HDF5_LIBRARY)));
}

TEST(NetcdfLibraryCli, IsNotLoadedElsewhere)
{
    EXPECT_THAT(loadedBy("-b -conv a.asc"), AllOf(Not(HasSubstr("libnetcdf")), Not(HasSubstr("libhdf5"))));
}

TEST(NetcdfLibraryCli, OneThatCannotBeLoadedEndsTheRunByTheLoadersWords)
{
    ToolRun run("-nc a.asc");
    run.give("a.asc", ascGrid({{1, 2}, {3, 4}}));
    run.give("lib/" GRIDFORGE_NETCDF_LIBRARY, "no library");
    run.environment("LD_LIBRARY_PATH", "lib");
    run.start();
    EXPECT_EQ(run.status(), 0);
    EXPECT_EQ(run.error(), "");
    EXPECT_CONSOLE_HOLDS(run, {"ERROR - With nectdf call nf90_create",
                               "Netcdf error message: lib/" GRIDFORGE_NETCDF_LIBRARY ": file too short", "", kClose});
    EXPECT_NO_OTHER_FILES(run);
}

TEST(NetcdfLibraryCli, OneWithoutARoutineEndsTheRun)
{
    ToolRun run("-nc a.asc");
    run.give("a.asc", ascGrid({{1, 2}, {3, 4}}));
    run.give("lib/" GRIDFORGE_NETCDF_LIBRARY, readWhole(preloadedPath())); // has routines, but none of NetCDF
    run.environment("LD_LIBRARY_PATH", "lib");
    run.start();
    EXPECT_EQ(run.status(), 0);
    EXPECT_EQ(run.error(), "");
    EXPECT_CONSOLE_HOLDS(run, {"ERROR - With nectdf call nf90_create",
                               "Netcdf error message: " GRIDFORGE_NETCDF_LIBRARY " and " GRIDFORGE_HDF5_LIBRARY
                               " have no nc_create",
                               "", kClose});
    EXPECT_NO_OTHER_FILES(run);
}

#endif

} // namespace
} // namespace gridforge::test
