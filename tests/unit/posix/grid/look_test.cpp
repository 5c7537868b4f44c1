#include "grid/look.h"

#include "support/scratch_folder.h"

#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>

namespace gridforge {
namespace {

TEST(LookAtGrid, SeesNothingOfAPipe)
{
    const test::ScratchFolder folder;
    const std::string name = (folder.path() / "pipe.asc").string();
    ASSERT_EQ(mkfifo(name.c_str(), 0600), 0);
    EXPECT_FALSE(grid::lookAtGrid(name));
}

} // namespace
} // namespace gridforge
