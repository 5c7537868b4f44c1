// What is kept of a run, so that it can be repeated.
#include "support/record_run.h"

#include "support/paths.h"
#include "support/scratch_folder.h"
#include "support/tool_run.h"

#include <algorithm>
#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>
#include <sys/stat.h>

namespace gridforge::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

std::vector<std::string> fieldsOf(const ScratchFolder& folder)
{
    std::vector<std::string> fields;
    const std::string text = folder.read("record/run");
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = text.find('\0', at);
        fields.push_back(text.substr(at, end - at));
        at = end + 1;
    }
    return fields;
}

RecordedRun someRun(const ScratchFolder& folder)
{
    folder.give("files/sub/a.asc", "cells\n");
    return {folder.path() / "files", "sub", toolPath(), {"-conv", "a b", "\xFF"}, {"A=1 2"}, "y\n\n"};
}

TEST(RecordRun, KeepsArgumentsVariablesInputAndFolder)
{
    const ScratchFolder folder;
    recordRun(someRun(folder), folder.path() / "record");
    EXPECT_THAT(fieldsOf(folder), ElementsAre("tool=" + toolPath(), "folder=" + (folder.path() / "files").string(),
                                              "work folder=sub", "program=" + toolPath(), "argument=-conv",
                                              "argument=a b", "argument=\xFF", "environment=A=1 2", "input=y\n\n"));
    EXPECT_EQ(folder.read("record/given/sub/a.asc"), "cells\n");
}

TEST(RecordRun, KeepsLinksAndPermissions)
{
    const ScratchFolder folder;
    const RecordedRun run = someRun(folder);
    const auto given = folder.path() / "record/given";
    std::filesystem::create_symlink("/dev/full", run.folder / "full.asc");
    chmod((run.folder / "sub/a.asc").c_str(), 0400);
    recordRun(run, folder.path() / "record");
    EXPECT_EQ(std::filesystem::read_symlink(given / "full.asc"), "/dev/full");
    EXPECT_EQ(std::filesystem::status(given / "sub/a.asc").permissions(), std::filesystem::perms::owner_read);
}

TEST(RecordRun, KeepsNamesOfOneFileTogether)
{
    const ScratchFolder folder;
    const RecordedRun run = someRun(folder);
    const auto given = folder.path() / "record/given";
    std::filesystem::create_hard_link(run.folder / "sub/a.asc", run.folder / "b.asc");
    folder.give("files/c.asc", "cells\n");
    recordRun(run, folder.path() / "record");
    EXPECT_TRUE(std::filesystem::equivalent(given / "sub/a.asc", given / "b.asc"));
    EXPECT_FALSE(std::filesystem::equivalent(given / "sub/a.asc", given / "c.asc"));
    EXPECT_EQ(folder.read("record/given/b.asc"), "cells\n");
}

TEST(RecordRun, SaysWhatCannotBeRepeated)
{
    const auto reasonFor = [](const std::function<void(RecordedRun&)>& change) {
        const ScratchFolder folder;
        RecordedRun run = someRun(folder);
        change(run);
        recordRun(run, folder.path() / "record");
        EXPECT_FALSE(folder.has("record/given"));
        return fieldsOf(folder).front();
    };
    EXPECT_EQ(reasonFor([](RecordedRun& run) { run.ends = false; }), "left out=stopped by its test");
    EXPECT_EQ(reasonFor([](RecordedRun& run) { run.program = "/bin/sh"; }), "left out=started by another program");
    EXPECT_EQ(reasonFor([](RecordedRun& run) {
                  run.program = "/usr/bin/env";
                  run.arguments = {"A=1", "sh", "-c", toolPath() + " -conv"};
              }),
              "left out=started by another program");
    EXPECT_EQ(reasonFor([](RecordedRun& run) { run.environment.emplace_back("GRIDFORGE_SYSTEM=watch"); }),
              "left out=fails at a call of the system");
    EXPECT_EQ(reasonFor([](RecordedRun& run) {
                  run.program = "/usr/bin/env";
                  run.arguments = {"GRIDFORGE_FAIL_NETCDF=nc_sync 1", toolPath(), "-nc"};
              }),
              "left out=fails at a call of a library");
    EXPECT_EQ(reasonFor([](RecordedRun& run) { run.environment.emplace_back("GRIDFORGE_PROGRESS=lines"); }),
              "left out=shows its progress, as earlier executables do not");
    EXPECT_EQ(reasonFor([](RecordedRun& run) { run.notForOthers = "finds no room"; }), "left out=finds no room");
    EXPECT_EQ(reasonFor([](RecordedRun& run) { run.environment.emplace_back("LD_DEBUG=files"); }),
              "left out=asks the loader of shared libraries, which earlier executables need for others");
    EXPECT_EQ(reasonFor([](RecordedRun& run) { mkfifo((run.folder / "in").c_str(), 0600); }),
              "left out=its files cannot be copied");
}

// Sets GRIDFORGE_RECORD while it lives. Then it is as before: these tests may be recorded themselves.
class RecordingInto {
public:
    explicit RecordingInto(const std::filesystem::path& folder)
    {
        if (const char* const before = std::getenv(kName)) {
            before_ = before;
        }
        setenv(kName, folder.c_str(), 1);
    }
    ~RecordingInto()
    {
        if (before_) {
            setenv(kName, before_->c_str(), 1);
        } else {
            unsetenv(kName);
        }
    }
    RecordingInto(const RecordingInto&) = delete;
    RecordingInto& operator=(const RecordingInto&) = delete;

private:
    static constexpr const char* kName = "GRIDFORGE_RECORD";
    std::optional<std::string> before_;
};

TEST(RecordRun, EveryRunOfATestLeavesAFolderWhereTheVariableNamesOne)
{
    const ScratchFolder folder;
    const RecordingInto recording(folder.path());
    for (int i = 0; i < 2; ++i) {
        ToolRun run("-conv missing.asc");
        run.start();
    }
    ToolRun own("-conv missing.asc");
    own.environment("GRIDFORGE_RECORD", "a name of its own");
    own.start();
    ToolRun other("text");
    other.program("/bin/echo");
    other.start();

    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
        names.push_back(entry.path().filename());
    }
    std::sort(names.begin(), names.end());
    const std::string test = "RecordRun.EveryRunOfATestLeavesAFolderWhereTheVariableNamesOne-";
    EXPECT_THAT(names, ElementsAre(test + "1", test + "2", test + "3"));
    EXPECT_THAT(folder.read(test + "3/run"), HasSubstr("environment=GRIDFORGE_RECORD=a name of its own"));
}

TEST(RecordRun, OnlyAMarkLeavesOutARunWithoutRoom)
{
    const ScratchFolder folder;
    const RecordingInto recording(folder.path());
    for (const std::string reason : {"", "finds no room"}) {
        ToolRun run("-conv missing.asc");
        run.environment("GRIDFORGE_SCRATCH", "/nowhere");
        run.notForOtherExecutables(reason);
        run.start();
    }
    const std::string test = "RecordRun.OnlyAMarkLeavesOutARunWithoutRoom-";
    EXPECT_THAT(folder.read(test + "1/run"), StartsWith("tool="));
    EXPECT_THAT(folder.read(test + "2/run"), StartsWith("left out=finds no room"));
}

} // namespace
} // namespace gridforge::test
