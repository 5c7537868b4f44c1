// Every run with a small stack, of its threads too, does the same.
#include "faults/system_run.h"

#include "support/paths.h"
#include "support/sanitizers.h"
#include "support/system_failures.h"

#include <gtest/gtest.h>
#include <string>

namespace gridforge::test {
namespace {

class SmallStack : public testing::TestWithParam<FaultRun> {};

TEST_P(SmallStack, IsEnough)
{
    if (kSanitized) {
        GTEST_SKIP() << "a sanitizer puts more on the stack";
    }
    const SystemRun good = runSystem(GetParam(), "watch");
    const FaultRun threaded = withThreads(GetParam(), threadsOf(numberOf(GetParam())));
    for (const FaultRun& run : {GetParam(), threaded}) {
        // Without a shell in between: names with * are for the tool.
        ToolRun limited(
            std::vector<std::string>{"-c", "ulimit -s 256; set -f; exec \"$0\" " + run.arguments, toolPath()});
        limited.program("/bin/sh");
        for (const auto& [name, value] : run.settings) {
            limited.environment(name, value);
        }
        limited.environment("GRIDFORGE_THREADS", "1");
        run.give(limited);
        askSystem(limited, "watch");
        limited.start();
        EXPECT_EQ(limited.status(), 0);
        EXPECT_EQ(limited.error(), "");
        EXPECT_EQ(limited.console(), good.console);
        EXPECT_EQ(limited.files(), good.files);
    }
}

INSTANTIATE_TEST_SUITE_P(Runs, SmallStack, testing::ValuesIn(startedRuns()),
                         [](const auto& one) { return one.param.name; });

} // namespace
} // namespace gridforge::test
