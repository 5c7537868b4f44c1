#include "host/system.h"
#include "support/scratch_folder.h"

#include <gtest/gtest.h>
#include <windows.h>

namespace gridforge::test {
namespace {

// Else the next file that is opened might get the number of the stream, and the text of the console.
TEST(PrepareProcess, ForgetsAStandardStreamThatIsClosed)
{
    const ScratchFolder folder;
    const HANDLE usual = GetStdHandle(STD_OUTPUT_HANDLE);
    const HANDLE file = CreateFileW((folder.path() / "a").c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
    ASSERT_NE(file, INVALID_HANDLE_VALUE);
    SetStdHandle(STD_OUTPUT_HANDLE, file);
    prepareProcess();
    EXPECT_EQ(GetStdHandle(STD_OUTPUT_HANDLE), file);
    CloseHandle(file);
    prepareProcess();
    EXPECT_EQ(GetStdHandle(STD_OUTPUT_HANDLE), nullptr);
    nativeSystem().writeConsole("nobody reads this");
    SetStdHandle(STD_OUTPUT_HANDLE, usual);
    EXPECT_EQ(folder.read("a"), "");
}

} // namespace
} // namespace gridforge::test
