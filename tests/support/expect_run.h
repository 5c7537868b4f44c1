// Runs that only talk.
#pragma once

#include "support/tool_run.h"

#include <string>
#include <vector>

namespace gridforge::test {

// A run whose console and quiet end are as told, and which touches no file.
inline void expectRun(ToolRun& run, const std::vector<std::string>& console)
{
    run.start();
    EXPECT_EQ(run.status(), 0);
    EXPECT_EQ(run.error(), "");
    EXPECT_CONSOLE(run, console);
    EXPECT_NO_OTHER_FILES(run);
}

inline void expectRun(const std::vector<std::string>& arguments, const std::vector<std::string>& console)
{
    ToolRun run(arguments);
    expectRun(run, console);
}

} // namespace gridforge::test
