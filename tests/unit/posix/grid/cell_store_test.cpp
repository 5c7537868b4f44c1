#include "grid/cell_store.h"

#include "support/scratch_folder.h"

#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace gridforge {
namespace {

TEST(CellStore, BecomesNoPipe)
{
    const test::ScratchFolder folder;
    grid::CellStore store;
    ASSERT_TRUE(store.takeForFile(2, folder.path().string()));
    EXPECT_TRUE(store.put(0, std::vector<float>{1, 2}));
    const std::string name = (folder.path() / "a.flt").string();
    ASSERT_EQ(mkfifo(name.c_str(), 0600), 0);
    EXPECT_EQ(store.becomeFile(name), SystemFile::none);
    std::vector<float> room(2);
    const auto kept = store.get(0, 2, room);
    ASSERT_TRUE(kept);
    EXPECT_EQ(std::vector<float>(kept->begin(), kept->end()), (std::vector<float>{1, 2}));
}

} // namespace
} // namespace gridforge
