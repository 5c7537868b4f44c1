// Runs of the tool in which a chosen call of the NetCDF library fails.
#pragma once

#include "support/consoles.h"
#include "support/paths.h"
#include "support/tool_run.h"

#include <netcdf.h>
#include <string>
#include <vector>

namespace gridforge::test {

// A call of the library, as "nc_def_var 3" for its third one, the name that the tool has for it, and the status that the
// message is of.
struct NetcdfFailure {
    const char* call;
    const char* name;
    int status = NC_EPERM;
};

// Those of every file of grids, in their order. What is called how often for the attributes differs.
inline const std::vector<NetcdfFailure> kCallsOfEveryFile = {
    {"nc_def_var 1", "nf90_def_var(time)"},
    {"nc_def_var 2", "nf90_def_var(y)"},
    {"nc_def_var 3", "nf90_def_var(x)"},
    {"nc_def_var 4", "nf90_def_var(data)"},
    {"nc_def_var_fill 1", "nf90_def_var_fill(data)"},
    {"nc_def_var 5", "nf90_def_var(data)"},
    {"nc_def_var_fill 2", "nf90_def_var_fill(data)"},
    {"nc_enddef 1", "nf90_enddef"},
    {"nc_put_vara_double 1", "nf90_put_var (x)"},
    {"nc_put_vara_double 2", "nf90_put_var (y)"},
    {"nc_put_var1_double 1", "nf90_put_var (time)"},
    {"nc_close 1", "nf90_close"},
};

// Arguments of /usr/bin/env for a run of the tool with `arguments`, in which the call fails.
inline std::vector<std::string> failingNetcdfArguments(const NetcdfFailure& failure,
                                                       const std::vector<std::string>& arguments)
{
    std::vector<std::string> all = {"LD_PRELOAD=" + failingNetcdfPath(),
                                    // The module comes before the library of a sanitized tool.
                                    "ASAN_OPTIONS=verify_asan_link_order=0:detect_leaks=0",
                                    std::string("GRIDFORGE_FAIL_NETCDF=") + failure.call, toolPath()};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return all;
}

// Starts the run and expects that it ends with the name of the call.
inline void expectNetcdfFailure(ToolRun& run, const NetcdfFailure& failure)
{
    run.program("/usr/bin/env");
    run.start();
    EXPECT_EQ(run.status(), 0);
    EXPECT_EQ(run.error(), "");
    EXPECT_CONSOLE_HOLDS(run, errorEnd(std::string("ERROR - With nectdf call ") + failure.name,
                                       std::string("Netcdf error message: ") + nc_strerror(failure.status)))
        << failure.call;
}

} // namespace gridforge::test
