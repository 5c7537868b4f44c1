#include "host/system.h"

#include "host/memory/memory_system.h"
#include "support/scratch_folder.h"

#include <array>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <vector>

namespace gridforge::test {
namespace {

using testing::UnorderedElementsAre;

enum class Form { native, memory };

// What every form of the system promises.
class EachSystem : public testing::TestWithParam<Form> {
protected:
    void SetUp() override { clearMemorySystem(); }

    std::string name(const std::string& last) const
    {
        return GetParam() == Form::native ? (folder_.path() / last).string() : last;
    }
    std::string folder() const { return GetParam() == Form::native ? folder_.path().string() : "."; }
    // Also makes the folder of the file.
    void give(const std::string& last, std::string_view bytes) const
    {
        if (GetParam() == Form::native) {
            folder_.give(last, bytes);
        } else {
            giveMemoryFile(last, bytes);
        }
    }

    SystemFile open(const std::string& last, OpenFor purpose) const { return system_.open(name(last), purpose); }
    void write(const std::string& last, OpenFor purpose, std::string_view bytes) const
    {
        const SystemFile file = open(last, purpose);
        ASSERT_NE(file, SystemFile::none);
        EXPECT_EQ(system_.write(file, bytes), static_cast<std::int64_t>(bytes.size()));
        EXPECT_TRUE(system_.close(file));
    }
    // Up to `count` bytes by one read; "refused" of a read that fails.
    std::string readSome(SystemFile file, std::size_t count) const
    {
        std::string bytes(count, '?');
        const std::int64_t got = system_.read(file, bytes);
        return got < 0 ? "refused" : bytes.substr(0, static_cast<std::size_t>(got));
    }
    std::string readSomeAt(SystemFile file, std::int64_t position, std::size_t count) const
    {
        std::string bytes(count, '?');
        const std::int64_t got = system_.readAt(file, position, bytes);
        return got < 0 ? "refused" : bytes.substr(0, static_cast<std::size_t>(got));
    }
    std::optional<FileFacts> facts(const std::string& whole) const
    {
        FileFacts found;
        return system_.facts(whole, found) == SystemStatus::done ? std::optional(found) : std::nullopt;
    }
    std::string bytesOf(const std::string& last) const
    {
        const SystemFile file = open(last, OpenFor::reading);
        if (file == SystemFile::none) {
            return "missing";
        }
        std::string bytes = readSome(file, 1000);
        EXPECT_TRUE(system_.close(file));
        return bytes;
    }

    const System& system_ = GetParam() == Form::native ? nativeSystem() : memorySystem();
    const ScratchFolder folder_;
};

INSTANTIATE_TEST_SUITE_P(Forms, EachSystem, testing::Values(Form::native, Form::memory), [](const auto& form) {
    return std::string(form.param == Form::native ? "Native" : "Memory");
});

TEST_P(EachSystem, ReadsPieceByPieceToTheEnd)
{
    give("a", "abcde");
    const SystemFile file = open("a", OpenFor::reading);
    EXPECT_EQ(readSome(file, 2), "ab");
    EXPECT_EQ(readSome(file, 2), "cd");
    EXPECT_EQ(readSome(file, 2), "e");
    EXPECT_EQ(readSome(file, 2), "");
    EXPECT_TRUE(system_.seek(file, 1));
    EXPECT_EQ(readSome(file, 2), "bc");
    EXPECT_TRUE(system_.seek(file, 9));
    EXPECT_EQ(readSome(file, 2), "");
    EXPECT_FALSE(system_.seek(file, -1));
    EXPECT_TRUE(system_.close(file));
}

TEST_P(EachSystem, WritesByThePurpose)
{
    write("a", OpenFor::replacing, "first");
    EXPECT_EQ(bytesOf("a"), "first");
    write("a", OpenFor::replacing, "new");
    EXPECT_EQ(bytesOf("a"), "new");
    write("a", OpenFor::updating, "f");
    EXPECT_EQ(bytesOf("a"), "few");
    write("c", OpenFor::updating, "c");
    EXPECT_EQ(bytesOf("c"), "c");
}

TEST_P(EachSystem, OpensNeitherWhatIsMissingNorFoldersForWriting)
{
    give("d/x", "x");
    EXPECT_EQ(open("none", OpenFor::reading), SystemFile::none);
    for (const OpenFor purpose : {OpenFor::replacing, OpenFor::updating}) {
        EXPECT_EQ(open("nofolder/x", purpose), SystemFile::none);
        EXPECT_EQ(open("d", purpose), SystemFile::none);
    }
    EXPECT_EQ(bytesOf("d/x"), "x");
}

TEST_P(EachSystem, RefusesWhatAFileIsNotOpenFor)
{
    give("a", "abc");
    const SystemFile input = open("a", OpenFor::reading);
    EXPECT_LT(system_.write(input, std::string("x")), 0);
    EXPECT_FALSE(system_.truncate(input, 1));
    EXPECT_TRUE(system_.close(input));
    EXPECT_EQ(bytesOf("a"), "abc");
    const SystemFile output = open("a", OpenFor::replacing);
    EXPECT_EQ(system_.write(output, std::string("de")), 2);
    EXPECT_TRUE(system_.seek(output, 0));
    EXPECT_EQ(readSome(output, 1), "refused");
    EXPECT_TRUE(system_.close(output));
    EXPECT_EQ(bytesOf("a"), "de");
}

TEST_P(EachSystem, ReadsAndWritesByPosition)
{
    const SystemFile file = open("a", OpenFor::updating);
    EXPECT_EQ(system_.write(file, std::string("abcdef")), 6);
    EXPECT_EQ(system_.writeAt(file, 1, std::string("BC")), 2);
    EXPECT_EQ(readSomeAt(file, 0, 4), "aBCd");
    EXPECT_EQ(readSomeAt(file, 4, 4), "ef");
    EXPECT_EQ(readSomeAt(file, 9, 4), "");
    EXPECT_EQ(readSomeAt(file, -1, 4), "refused");
    EXPECT_LT(system_.writeAt(file, -1, std::string("x")), 0);
    EXPECT_EQ(system_.write(file, std::string("g")), 1) << "the place of write has stayed behind its last byte";
    EXPECT_EQ(system_.writeAt(file, 9, std::string("j")), 1);
    EXPECT_TRUE(system_.close(file));
    EXPECT_EQ(bytesOf("a"), std::string("aBCdefg\0\0j", 10));
}

TEST_P(EachSystem, CutsAndLengthensAFileAndReservesNothingThatShows)
{
    const SystemFile file = open("a", OpenFor::replacing);
    EXPECT_EQ(system_.write(file, std::string("abcdef")), 6);
    system_.reserve(file, 6, 1000);
    EXPECT_EQ(system_.factsOfOpen(file)->size, 6);
    EXPECT_TRUE(system_.truncate(file, 2));
    EXPECT_EQ(system_.factsOfOpen(file)->size, 2);
    EXPECT_TRUE(system_.truncate(file, 4));
    EXPECT_TRUE(system_.close(file));
    EXPECT_EQ(bytesOf("a"), std::string("ab\0\0", 4));
}

TEST_P(EachSystem, TellsFilesApartAndFromFolders)
{
    give("a", "abc");
    give("b", "abc");
    give("d/x", "");
    const SystemFile file = open("a", OpenFor::reading);
    const auto own = system_.factsOfOpen(file);
    ASSERT_TRUE(own.has_value());
    EXPECT_FALSE(own->isFolder);
    EXPECT_EQ(own->size, 3);
    EXPECT_EQ(facts(name("a"))->identity, own->identity);
    EXPECT_EQ(facts(name("a"))->lastChange, own->lastChange);
    EXPECT_NE(facts(name("b"))->identity, own->identity);
    EXPECT_TRUE(system_.close(file));
    EXPECT_TRUE(facts(name("d"))->isFolder);
    EXPECT_TRUE(facts(folder())->isFolder);
    EXPECT_NE(facts(name("d"))->identity, facts(folder())->identity);
    FileFacts none;
    EXPECT_EQ(system_.facts(name("none"), none), SystemStatus::noSuchFile);
    EXPECT_NE(system_.facts(name("a/x"), none), SystemStatus::done);
}

TEST_P(EachSystem, StampsChangesByItsClock)
{
    constexpr std::int64_t kCoarse = 1'000'000'000; // stamps may stay behind the clock by some milliseconds
    const std::int64_t before = system_.now() - kCoarse;
    give("a", "abc");
    const auto own = facts(name("a"));
    EXPECT_GE(own->lastChange, before);
    EXPECT_LE(own->lastChange, system_.now());
    EXPECT_GE(facts(folder())->lastChange, before);
}

TEST_P(EachSystem, WaitsByItsClock)
{
    constexpr std::int64_t kMillisecond = 1'000'000;
    const std::int64_t before = system_.now();
    system_.wait(20 * kMillisecond);
    EXPECT_GE(system_.now() - before, 10 * kMillisecond) << "half of it: somebody may set the clock";
}

TEST_P(EachSystem, ListsTheNamesOfAFolder)
{
    for (const char* last : {"b", ".a", "d/x", "d/y/z"}) {
        give(last, "");
    }
    std::vector<std::string> names;
    EXPECT_EQ(system_.list(folder(), names), SystemStatus::done);
    EXPECT_THAT(names, UnorderedElementsAre("b", ".a", "d"));
    names.clear();
    EXPECT_EQ(system_.list(name("d"), names), SystemStatus::done);
    EXPECT_EQ(system_.list(name("d/y/"), names), SystemStatus::done);
    EXPECT_THAT(names, UnorderedElementsAre("x", "y", "z"));
    EXPECT_EQ(system_.list(name("none"), names), SystemStatus::noSuchFile);
    EXPECT_EQ(system_.list(name("b"), names), SystemStatus::refused);
    EXPECT_EQ(system_.lookUp(name("b")), SystemStatus::done);
    EXPECT_EQ(system_.lookUp(name("d")), SystemStatus::done);
    EXPECT_EQ(system_.lookUp(name("c")), SystemStatus::noSuchFile);
}

TEST_P(EachSystem, KnowsTheFullNameOfWhatExists)
{
    give("d/x", "");
    const auto full = system_.fullName(name("./d/x"));
    ASSERT_TRUE(full.has_value());
    const std::filesystem::path path(*full);
    EXPECT_TRUE(path.has_root_directory()) << *full;
    EXPECT_EQ(path.filename(), "x");
    EXPECT_EQ(path.parent_path().filename(), "d");
    EXPECT_EQ(system_.fullName(name("none")), std::nullopt);
}

TEST_P(EachSystem, KeepsAFileWithoutANameUntilItGetsOne)
{
    EXPECT_EQ(system_.openUnnamed(name("missing")), SystemFile::none);
    give("old", "old bytes");
    give("d/x", "x");
    const SystemFile file = system_.openUnnamed(folder());
    ASSERT_NE(file, SystemFile::none);
    EXPECT_TRUE(system_.setAside(file, 4));
    EXPECT_EQ(system_.writeAt(file, 2, std::string("cd")), 2);
    EXPECT_EQ(system_.writeAt(file, 0, std::string("ab")), 2);
    system_.willRead(file, 0, 4, ReadOf::all);
    EXPECT_EQ(readSomeAt(file, 0, 9), "abcd");
    std::vector<std::string> names;
    EXPECT_EQ(system_.list(folder(), names), SystemStatus::done);
    EXPECT_THAT(names, UnorderedElementsAre("old", "d"));

    EXPECT_FALSE(system_.giveName(file, name("d")));
    EXPECT_FALSE(system_.giveName(file, name("missing/a")));
    if (!system_.giveName(file, name("old"))) {
        EXPECT_EQ(GetParam(), Form::native); // some file systems cannot
        EXPECT_EQ(bytesOf("old"), "old bytes");
        EXPECT_TRUE(system_.close(file));
        GTEST_SKIP() << "no file without a name here that could get one";
    }
    EXPECT_TRUE(system_.close(file));
    EXPECT_EQ(bytesOf("old"), "abcd");
}

TEST_P(EachSystem, LetsTheProcessTakeSomething)
{
    EXPECT_GE(system_.processors(), 1U);
    EXPECT_GT(system_.memoryLeft(), 0U);
    const SystemFile file = system_.openUnnamed(system_.temporaryFolder());
    EXPECT_NE(file, SystemFile::none);
    EXPECT_TRUE(system_.close(file));
}

TEST_P(EachSystem, RefusesPositionsThatNoFileHas)
{
    constexpr std::int64_t kLast = std::numeric_limits<std::int64_t>::max();
    const SystemFile file = open("a", OpenFor::updating);
    EXPECT_EQ(system_.write(file, std::string("abc")), 3);
    EXPECT_LT(system_.writeAt(file, kLast, std::string("xy")), 0);
    EXPECT_FALSE(system_.truncate(file, -1));
    EXPECT_TRUE(system_.close(file));
    EXPECT_EQ(bytesOf("a"), "abc");
}

TEST_P(EachSystem, FindsNothingUnderAnEmptyName)
{
    FileFacts found;
    EXPECT_EQ(system_.facts("", found), SystemStatus::noSuchFile);
    EXPECT_EQ(system_.lookUp(""), SystemStatus::noSuchFile);
    EXPECT_EQ(system_.fullName(""), std::nullopt);
}

TEST(MemorySystem, RefusesFilesThatMemoryHasNoRoomFor)
{
    constexpr std::int64_t kTerabyte = std::int64_t{1} << 40;
    clearMemorySystem();
    giveMemoryFile("a", "abc");
    const System& system = memorySystem();
    const SystemFile file = system.open("a", OpenFor::updating);
    EXPECT_LT(system.writeAt(file, kTerabyte, std::string("x")), 0);
    EXPECT_LT(system.writeAt(file, std::int64_t{1} << 30, std::string("x")), 0); // the byte after the largest file
    EXPECT_TRUE(system.seek(file, kTerabyte));
    EXPECT_LT(system.write(file, std::string("x")), 0);
    EXPECT_FALSE(system.truncate(file, kTerabyte));
    EXPECT_FALSE(system.setAside(file, kTerabyte));
    EXPECT_TRUE(system.close(file));
    EXPECT_EQ(memoryFile("a"), "abc");
}

TEST(MemorySystem, InheritsNoFile)
{
    clearMemorySystem();
    giveMemoryFile("a", "abc");
    const System& system = memorySystem();
    const SystemFile file = system.open("a", OpenFor::reading);
    EXPECT_EQ(system.inherited(static_cast<std::int64_t>(file)), SystemFile::none); // its number is this process's own
    EXPECT_TRUE(system.close(file));
}

TEST(MemorySystem, HoldsTheConsole)
{
    clearMemorySystem();
    giveMemoryAnswers("ab");
    giveMemoryAnswers("c");
    std::array<char, 2> bytes{};
    EXPECT_EQ(memorySystem().readConsole(bytes), 2);
    EXPECT_EQ(bytes, (std::array<char, 2>{'a', 'b'}));
    EXPECT_EQ(memorySystem().readConsole(bytes), 1);
    EXPECT_EQ(memorySystem().readConsole(bytes), 0);
    memorySystem().writeConsole("one ");
    memorySystem().writeConsole("two");
    EXPECT_EQ(takeMemoryConsole(), "one two");
    EXPECT_EQ(takeMemoryConsole(), "");
}

// Or names of folders that were listed before would count as those of the files that come now.
TEST(MemorySystem, ItsTimeGoesOnWhenItIsCleared)
{
    clearMemorySystem();
    giveMemoryFile("a", "");
    FileFacts before;
    EXPECT_EQ(memorySystem().facts(".", before), SystemStatus::done);
    clearMemorySystem();
    giveMemoryFile("b", "");
    FileFacts after;
    EXPECT_EQ(memorySystem().facts(".", after), SystemStatus::done);
    EXPECT_GT(after.lastChange, before.lastChange);
}

} // namespace
} // namespace gridforge::test
