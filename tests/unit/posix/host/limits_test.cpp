#include "host/limits.h"

#include "host/console.h"
#include "host/system.h"
#include "support/child_run.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

namespace gridforge::test {
namespace {

TEST(Limits, AreKnownWhereNoFileCanBeOpenedAnyMore)
{
    const ScratchFolder folder;
    const ChildRun run = runInChild(folder, [] {
        askForLimits();
        const rlimit noFiles = {};
        setrlimit(RLIMIT_NOFILE, &noFiles);
        say(nativeSystem().memoryLeft() > 0 ? "read, " : "not to be read, ", memoryToTake() > 0 ? "known" : "unknown");
    });
    EXPECT_EQ(run.console, "not to be read, known\n");
}

} // namespace
} // namespace gridforge::test
