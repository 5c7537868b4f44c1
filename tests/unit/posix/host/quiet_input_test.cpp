#include "host/quiet_input.h"

#include "support/scratch_folder.h"

#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>

namespace gridforge {
namespace {

TEST(LookAtLines, GivesNoneOfAPipe)
{
    const test::ScratchFolder folder;
    const std::string name = (folder.path() / "pipe.csv").string();
    ASSERT_EQ(mkfifo(name.c_str(), 0600), 0);
    EXPECT_FALSE(lookAtLines(name, 3));
}

} // namespace
} // namespace gridforge
