// The usage screen against its text, which lies beside this file.
#include "support/consoles.h"
#include "support/expect_run.h"
#include "support/paths.h"

#include <fstream>

namespace gridforge::test {
namespace {

std::vector<std::string> usageLines()
{
    std::ifstream file(sourceFolder() + "/tests/cli/driver/usage.txt");
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) {
        lines.push_back(line);
    }
    return lines;
}

TEST(UsageCli, NoArgumentsShowTheWholeTextAndPause)
{
    const std::vector<std::string> usage = usageLines();
    ASSERT_EQ(usage.size(), 173U);
    ToolRun run("");
    run.give("a.asc", ascGrid({{1}}));
    expectRun(run, refused(usage));
}

TEST(UsageCli, BatchFlagAloneIsNoCallForHelp)
{
    expectRun({"-b"}, failed({"ERROR - No operational flag specified."}));
}

TEST(UsageCli, EmptyArgumentIsAnArgument)
{
    expectRun({""}, failed({"ERROR - No operational flag specified."}));
}

} // namespace
} // namespace gridforge::test
