#include "ops/dif.h"

#include "support/consoles.h"

#include <cstdio>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace gridforge::test {
namespace {

// The scan of the command line refuses a lone name before, so this end is reached only from within.
TEST(RunDifDeathTest, RefusesASingleInput)
{
    run::InputFileList inputs;
    inputs.add("a.asc");
    const auto run = [&] {
        dup2(STDERR_FILENO, STDOUT_FILENO);
        dup2(open("/dev/null", O_RDONLY), STDIN_FILENO);
        ops::runDif({}, {}, inputs);
    };
    EXPECT_EXIT(run(), testing::ExitedWithCode(0),
                "Processing \"-dif\" option.\n"
                "ERROR - Must specify at least two grid files for -dif options.\n" +
                    kEnter + "\n");
}

} // namespace
} // namespace gridforge::test
