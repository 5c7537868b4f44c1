#include "host/windows/scratch_file.h"

#include "support/scratch_folder.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <windows.h>

namespace gridforge::test {
namespace {

TEST(ScratchFile, TakesTheNextNameWhereOneIsTaken)
{
    const ScratchFolder folder;
    const ScratchFile first = makeScratchFile(folder.path().string(), FILE_FLAG_DELETE_ON_CLOSE);
    ASSERT_NE(first.handle, nullptr);
    const std::string name = std::filesystem::path(first.path).filename().string();
    const std::size_t number = name.rfind('-') + 1;
    const std::string taken = name.substr(0, number) + std::to_string(std::stoi(name.substr(number)) + 1) + ".part";
    folder.give(taken, "of another process");
    const ScratchFile second = makeScratchFile(folder.path().string(), FILE_FLAG_DELETE_ON_CLOSE);
    EXPECT_NE(second.handle, nullptr);
    EXPECT_EQ(folder.read(taken), "of another process");
    CloseHandle(first.handle);
    CloseHandle(second.handle);
    EXPECT_FALSE(folder.has(name));
}

TEST(ScratchFile, IsNoneInAFolderThatIsMissing)
{
    const ScratchFolder folder;
    EXPECT_EQ(makeScratchFile((folder.path() / "none").string(), 0).handle, nullptr);
}

} // namespace
} // namespace gridforge::test
