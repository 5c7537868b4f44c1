#include "host/system.h"

#include "support/scratch_folder.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <vector>
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
    for (const std::int64_t number : {0, -1, -2}) { // the last two stand for the process and its thread
        EXPECT_EQ(nativeSystem().inherited(number), SystemFile::none);
    }
}

TEST(NativeSystem, OpensNoDeviceAndNoPartOfAFileInPlaceOfAFile)
{
    const ScratchFolder folder;
    folder.give("flood", "first");
    const System& system = nativeSystem();
    const std::string here = folder.path().string() + "/";
    for (const char* last : {"flood.", "flood ", "nul.flt", "con", "flood:b"}) {
        for (const OpenFor purpose : {OpenFor::reading, OpenFor::replacing, OpenFor::updating}) {
            EXPECT_EQ(system.open(here + last, purpose), SystemFile::none) << last;
        }
        FileFacts facts;
        EXPECT_EQ(system.facts(here + last, facts), SystemStatus::refused) << last;
        EXPECT_EQ(system.lookUp(here + last), SystemStatus::refused) << last;
        EXPECT_EQ(system.fullName(here + last), std::nullopt) << last;
    }
    std::vector<std::string> names;
    EXPECT_EQ(system.list(folder.path().string(), names), SystemStatus::done);
    EXPECT_EQ(names, std::vector<std::string>{"flood"});
    EXPECT_EQ(folder.read("flood"), "first");
}

std::string bytesOf(const System& system, const std::string& name)
{
    std::string bytes(100, '?');
    const SystemFile file = system.open(name, OpenFor::reading);
    if (file == SystemFile::none) {
        return "missing";
    }
    bytes.resize(static_cast<std::size_t>(system.read(file, bytes)));
    EXPECT_TRUE(system.close(file));
    return bytes;
}

TEST(NativeSystem, WorksInFoldersWithLongNames)
{
    const ScratchFolder scratch;
    const std::wstring part(100, L'n');
    std::wstring longForm = L"\\\\?\\" + std::filesystem::absolute(scratch.path()).wstring();
    for (int i = 0; i < 3; ++i) {
        longForm += L"\\" + part;
        ASSERT_NE(CreateDirectoryW(longForm.c_str(), nullptr), 0);
    }
    const std::string folder = scratch.path().string() + "/" + std::string(100, 'n') + "/" + std::string(100, 'n') +
                               "/" + std::string(100, 'n');
    const System& system = nativeSystem();
    const SystemFile file = system.open(folder + "/a", OpenFor::replacing);
    ASSERT_NE(file, SystemFile::none);
    EXPECT_EQ(system.write(file, std::string("old")), 3);
    EXPECT_TRUE(system.close(file));

    const SystemFile unnamed = system.openUnnamed(folder);
    ASSERT_NE(unnamed, SystemFile::none);
    EXPECT_EQ(system.writeAt(unnamed, 0, std::string("new")), 3);
    EXPECT_TRUE(system.giveName(unnamed, folder + "/a"));
    EXPECT_TRUE(system.giveName(unnamed, folder + "/b"));
    EXPECT_TRUE(system.close(unnamed));
    EXPECT_EQ(bytesOf(system, folder + "/a"), "missing");
    EXPECT_EQ(bytesOf(system, folder + "/b"), "new");

    std::vector<std::string> names;
    EXPECT_EQ(system.list(folder, names), SystemStatus::done);
    EXPECT_EQ(system.list(folder + "/", names), SystemStatus::done);
    const std::string inLongForm = "//?/" + std::filesystem::absolute(scratch.path()).string() + "/";
    EXPECT_EQ(system.list(inLongForm, names), SystemStatus::done);
    EXPECT_EQ(names, (std::vector<std::string>{"b", "b", std::string(100, 'n')}));
    EXPECT_TRUE(system.fullName(folder + "/b").value_or("").ends_with("\\b"));
    DeleteFileW((longForm + L"\\b").c_str());
}

// True if a file without a name took the place of that one.
bool isReplaced(const ScratchFolder& folder, const std::string& last)
{
    const System& system = nativeSystem();
    const SystemFile file = system.openUnnamed(folder.path().string());
    EXPECT_NE(file, SystemFile::none);
    EXPECT_EQ(system.writeAt(file, 0, std::string("new")), 3);
    const bool replaced = system.giveName(file, (folder.path() / last).string());
    EXPECT_TRUE(system.close(file));
    EXPECT_EQ(folder.read(last), replaced ? "new" : "old");
    return replaced;
}

TEST(NativeSystem, ReplacesNoFileThatOthersHoldOpen)
{
    const ScratchFolder folder;
    folder.give("held", "old");
    const HANDLE handle = CreateFileW((folder.path() / "held").c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                      OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    ASSERT_NE(handle, INVALID_HANDLE_VALUE);
    const System& system = nativeSystem();
    const std::string name = (folder.path() / "held").string();
    EXPECT_EQ(system.open(name, OpenFor::replacing), SystemFile::none);
    EXPECT_EQ(system.open(name, OpenFor::updating), SystemFile::none);
    EXPECT_EQ(bytesOf(system, name), "old");
    EXPECT_FALSE(isReplaced(folder, "held"));
    CloseHandle(handle);
    EXPECT_EQ(folder.read("held"), "old");
}

TEST(NativeSystem, ReplacesNoFileThatIsOpenHere)
{
    const ScratchFolder folder;
    folder.give("open", "old");
    const System& system = nativeSystem();
    EXPECT_TRUE(system.replacesOnlyClosedFiles);
    const SystemFile held = system.open((folder.path() / "open").string(), OpenFor::updating);
    ASSERT_NE(held, SystemFile::none);
    EXPECT_FALSE(isReplaced(folder, "open"));
    EXPECT_TRUE(system.close(held));
    EXPECT_TRUE(isReplaced(folder, "open"));
}

TEST(NativeSystem, ReplacesNoFileWhoseAttributesOrRightsWouldBeLost)
{
    const ScratchFolder folder;
    for (const char* last : {"plain", "guarded", "open to all"}) {
        folder.give(last, "old");
    }
    const std::filesystem::path guarded = folder.path() / "guarded";
    ASSERT_NE(SetFileAttributesW(guarded.c_str(), FILE_ATTRIBUTE_READONLY), 0);
    SECURITY_DESCRIPTOR rights = {};
    ASSERT_NE(InitializeSecurityDescriptor(&rights, SECURITY_DESCRIPTOR_REVISION), 0);
    ASSERT_NE(SetSecurityDescriptorDacl(&rights, TRUE, nullptr, FALSE), 0);
    ASSERT_NE(SetFileSecurityW((folder.path() / "open to all").c_str(), DACL_SECURITY_INFORMATION, &rights), 0);
    EXPECT_TRUE(isReplaced(folder, "plain"));
    EXPECT_FALSE(isReplaced(folder, "guarded"));
    EXPECT_FALSE(isReplaced(folder, "open to all"));
    EXPECT_NE(SetFileAttributesW(guarded.c_str(), FILE_ATTRIBUTE_NORMAL), 0);
}

TEST(NativeSystem, WritesOverAHiddenFile)
{
    const ScratchFolder folder;
    folder.give("hidden", "older bytes");
    const std::filesystem::path hidden = folder.path() / "hidden";
    ASSERT_NE(SetFileAttributesW(hidden.c_str(), FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM), 0);
    const System& system = nativeSystem();
    const SystemFile file = system.open(hidden.string(), OpenFor::replacing);
    ASSERT_NE(file, SystemFile::none);
    EXPECT_EQ(system.factsOfOpen(file)->size, 0);
    EXPECT_EQ(system.write(file, std::string("new")), 3);
    EXPECT_TRUE(system.close(file));
    EXPECT_EQ(folder.read("hidden"), "new");
    EXPECT_EQ(GetFileAttributesW(hidden.c_str()) & (FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM),
              DWORD{FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM});
}

TEST(NativeSystem, CountsInFilesOfManyGigabytes)
{
    constexpr std::int64_t kFar = std::int64_t{5} << 30;
    const ScratchFolder folder;
    const System& system = nativeSystem();
    const std::string name = (folder.path() / "large").string();
    const SystemFile file = system.open(name, OpenFor::updating);
    ASSERT_NE(file, SystemFile::none);
    EXPECT_TRUE(system.seek(file, kFar));
    EXPECT_EQ(system.write(file, std::string("abc")), 3);
    EXPECT_EQ(system.writeAt(file, kFar + 3, std::string("d")), 1);
    EXPECT_EQ(system.factsOfOpen(file)->size, kFar + 4);
    std::string bytes(9, '?');
    EXPECT_EQ(system.readAt(file, kFar + 1, bytes), 3);
    EXPECT_EQ(bytes.substr(0, 3), "bcd");
    EXPECT_TRUE(system.truncate(file, kFar + 1));
    EXPECT_EQ(system.factsOfOpen(file)->size, kFar + 1);
    EXPECT_TRUE(system.close(file));
}

} // namespace
} // namespace gridforge::test
