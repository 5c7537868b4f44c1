#include "ops/dif.h"

#include "support/child_run.h"
#include "support/consoles.h"

#include <gtest/gtest.h>

namespace gridforge::test {
namespace {

// The scan of the command line refuses a lone name before, so this end is reached only from within.
TEST(RunDif, RefusesASingleInput)
{
    const ScratchFolder folder;
    const ChildRun run = runInChild(folder, [] {
        run::InputFileList inputs;
        inputs.add("a.asc");
        ops::runDif({}, {}, inputs);
    });
    EXPECT_TRUE(run.ended);
    EXPECT_EQ(run.console, "Processing \"-dif\" option.\n"
                           "ERROR - Must specify at least two grid files for -dif options.\n" +
                               kEnter + "\n");
}

} // namespace
} // namespace gridforge::test
