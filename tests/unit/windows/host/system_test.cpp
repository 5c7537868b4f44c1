#include "host/system.h"

#include "support/scratch_folder.h"

#include <gtest/gtest.h>
#include <string>
#include <windows.h>

namespace gridforge::test {
namespace {

TEST(NativeSystem, GoesOnInAFileThatItInherits)
{
    const ScratchFolder folder;
    const HANDLE handle = CreateFileW((folder.path() / "a").c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                                      CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
    DWORD count = 0;
    ASSERT_NE(WriteFile(handle, "ab", 2, &count, nullptr), 0);
    const System& system = nativeSystem();
    const SystemFile file = system.inherited(reinterpret_cast<std::intptr_t>(handle));
    ASSERT_NE(file, SystemFile::none);
    EXPECT_EQ(system.write(file, std::string("cd")), 2);
    EXPECT_TRUE(system.close(file));
    EXPECT_EQ(folder.read("a"), "abcd");
}

TEST(NativeSystem, InheritsNothingThatIsNotOpen)
{
    EXPECT_EQ(nativeSystem().inherited(123456), SystemFile::none);
}

} // namespace
} // namespace gridforge::test
