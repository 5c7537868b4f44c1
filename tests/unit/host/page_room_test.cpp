#include "host/page_room.h"

#include <cstddef>
#include <gtest/gtest.h>
#include <string>

namespace gridforge::test {
namespace {

char inMemory = 'm';
char inFile = 'f';

// Which of the two is asked for pages of so many bytes, where no setting says how many may be in memory.
char sourceOf(std::size_t bytes)
{
    const PageRoom room = {[](std::size_t) -> void* { return &inMemory; },
                           [](const std::string&, std::size_t) -> void* { return &inFile; }};
    const void* const pages = takeRoomForPages(room, bytes);
    countOutPages(bytes);
    return *static_cast<const char*>(pages);
}

TEST(PageRoom, IsInAFileForMoreThanThereIsMemory)
{
    EXPECT_EQ(sourceOf(1), 'm');
    EXPECT_EQ(sourceOf(std::size_t{1} << 50), 'f');
}

} // namespace
} // namespace gridforge::test
