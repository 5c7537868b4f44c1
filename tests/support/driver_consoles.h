// Whole consoles of runs that end in the driver: the banner, the lines given, and the words of the end.
#pragma once

#include "support/tool_run.h"

#include <string>
#include <vector>

namespace gridforge::test {

inline const std::string kEnter = "Enter command<CR> or <CR> to continue.";

inline std::vector<std::string> consoleOf(const std::vector<std::string>& lines, const std::vector<std::string>& end)
{
    std::vector<std::string> console = {"Build 2020-10-AA"};
    console.insert(console.end(), lines.begin(), lines.end());
    console.insert(console.end(), end.begin(), end.end());
    return console;
}

// Ended by a check of the command line: a pause without text of its own.
inline std::vector<std::string> refused(const std::vector<std::string>& lines)
{
    return consoleOf(lines, {kEnter});
}

// Ended by EXITS.
inline std::vector<std::string> failed(const std::vector<std::string>& lines)
{
    return consoleOf(lines, {"", "Press Enter to Close"});
}

inline std::vector<std::string> finished(const std::vector<std::string>& lines)
{
    return consoleOf(lines, {"Finished.", kEnter});
}

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
