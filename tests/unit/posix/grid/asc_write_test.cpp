#include "grid/asc_write.h"

#include "support/child_run.h"
#include "support/environment.h"

#include <algorithm>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace gridforge::test {
namespace {

TEST(WriteAscRows, WritesRowAfterRowToAPipe)
{
    const Environment pieces(
        {{"GRIDFORGE_PIECE", "2"}, {"GRIDFORGE_MEMORY", "1"}}); // so that several threads could write
    const ScratchFolder folder;
    const std::string name = (folder.path() / "pipe").string();
    ASSERT_EQ(mkfifo(name.c_str(), 0600), 0);
    const int pipe = open(name.c_str(), O_RDWR | O_NONBLOCK);
    ASSERT_GE(pipe, 0);
    runInChild(folder, [] {
        Grid grid;
        EXPECT_TRUE(grid.allocate(2, 2));
        std::ranges::copy(std::vector<float>{21, 22, 11, 12}, grid.cells().begin()); // digits: row, column
        Unit unit = 0;
        OPENER(unit, "O ", "pipe");
        grid::writeAscRows(unit, grid, grid::ascFieldWidth(grid, 1), 1);
        CLOSER(unit);
    });
    std::string text(1000, '?');
    const auto got = read(pipe, text.data(), text.size());
    close(pipe);
    EXPECT_EQ(text.substr(0, static_cast<std::size_t>(std::max<ssize_t>(got, 0))), "  21.0  22.0\r\n  11.0  12.0\r\n");
}

} // namespace
} // namespace gridforge::test
