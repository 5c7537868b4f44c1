// Runs of the tool in which calls of the system fail, or end the process. failing_system.c lists the missions.
#pragma once

#include "support/paths.h"
#include "support/tool_run.h"

#include <string>

namespace gridforge::test {

// Sets what happens to the calls of the run, such as "fail write 2 28", and the file in which they are logged, if any.
inline void askSystem(ToolRun& run, const std::string& mission, const std::string& log = "")
{
    run.environment("LD_PRELOAD", failingSystemPath());
    // The module comes before the library of a sanitized tool.
    run.environment("ASAN_OPTIONS", "verify_asan_link_order=0:detect_leaks=0");
    run.environment("GRIDFORGE_SYSTEM", mission);
    run.environment("GRIDFORGE_THREADS", "1"); // so that calls come in the same order in each run
    if (!log.empty()) {
        run.environment("GRIDFORGE_SYSTEM_LOG", log);
    }
}

} // namespace gridforge::test
