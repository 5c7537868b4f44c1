// One run of the built tool in a fresh folder: what it is given, what it says, what it leaves. There is no shell in
// between, so arguments may hold any byte. Where a test fails the command is shown; with GRIDFORGE_KEEP set the folder
// stays, to repeat it there. With GRIDFORGE_RECORD set each run is recorded: see record_run.h.
#pragma once

#include "support/consoles.h"
#include "support/grids.h"
#include "support/scratch_folder.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace gridforge::test {

class ToolRun {
public:
    // Arguments separated by blanks. Note that a braced list of one is this one too.
    explicit ToolRun(const char* arguments);
    // Arguments as they are, blanks and odd bytes included.
    explicit ToolRun(std::vector<std::string> arguments);
    ~ToolRun();
    ToolRun(const ToolRun&) = delete;
    ToolRun& operator=(const ToolRun&) = delete;

    // Before the run
    // ------------------------------------------------------------------------------------------------------ Writes
    // `bytes` as the file `name`, with its folders.
    void give(std::string_view name, std::string_view bytes);
    // A line of standard input, the line end added. Standard input ends after the last one, at once where there is
    // none.
    void type(std::string_view line);
    // The current folder of the run, below folder(); it is made. All other names stay relative to folder().
    void workIn(std::string_view name);
    // Another program in place of the tool.
    void program(std::string path);
    // A variable of the environment for this run alone. Its first value stays.
    void environment(const std::string& name, const std::string& value)
    {
        const auto isIt = [&](const std::string& variable) { return variable.starts_with(name + "="); };
        if (std::ranges::none_of(variables_, isIt)) {
            variables_.push_back(name + "=" + value);
        }
    }
    // Marks a run that another executable need not repeat in the same way, such as one with less need of memory:
    // scripts/witness leaves it out and shows the reason.
    void notForOtherExecutables(std::string reason) { notForOthers_ = std::move(reason); }

    // The run
    // -------------------------------------------------------------------------------------------------------------
    // Runs to the end. A run that takes longer than `limit`, or is ended by a signal, fails the test.
    void start(std::chrono::milliseconds limit = std::chrono::seconds(60));
    // As start, for a run that is meant to be ended by a signal, or may be.
    void startForSignal(std::chrono::milliseconds limit = std::chrono::seconds(60));
    // For runs that are meant not to end, of which nothing can be waited for: stops the run after `time`. False where it
    // ended by itself.
    bool stillRunsAfter(std::chrono::milliseconds time);

    // After the run
    // -------------------------------------------------------------------------------------------------------
    int status() const { return status_; }                  // the exit status; 128 + n where signal n ended the run
    const std::string& console() const { return console_; } // standard output
    const std::string& error() const { return error_; }     // standard error, which a good run leaves empty
    double processorSeconds() const { return processorSeconds_; } // user and system time
    std::vector<std::string> consoleLines() const;
    // Does `line` stand on the console, as a whole line?
    bool says(std::string_view line) const;
    // Did the run get to its end, with or without warnings?
    bool reachedEnd() const { return says(kFinished); }

    const std::filesystem::path& folder() const { return folder_.path(); }
    bool has(std::string_view name) const;
    std::string read(std::string_view name) const;
    // All files after the run, by name.
    std::map<std::string, std::string> files() const;
    // Their permissions, those of folders included.
    std::map<std::string, std::filesystem::perms> permissions() const;
    // The grid in the file `name` (.asc, or .flt with its .hdr).
    WrittenGrid grid(std::string_view name) const;
    // Names of the files that the run wrote or changed, in order; folders it made end in '/'.
    std::vector<std::string> changedFiles() const;
    // Those of changedFiles() that no has(), read(), grid() or expectFile() has asked for.
    std::vector<std::string> otherFiles() const;
    void expectFile(std::string_view name) const { known_.insert(std::string(name)); }

    // The command, to repeat the run by hand.
    std::string command() const;
    // Leaves the folder in place, for that.
    void keep() { folder_.keep(); }

private:
    struct FileState {
        std::filesystem::file_time_type time;
        std::string bytes;
        std::filesystem::perms permissions = {};
        bool operator==(const FileState&) const = default;
    };
    using Listing = std::map<std::string, FileState>;

    Listing listing() const;
    // False, and a failure of the test, where the run takes longer than `limit`.
    bool endsWithin(std::chrono::milliseconds limit);
    // True where the process ended by itself within `limit`; kills it otherwise. `ends`: the test expects an end.
    bool runWithin(std::chrono::milliseconds limit, bool ends);

    ScratchFolder folder_;
    std::string program_;
    std::vector<std::string> arguments_;
    std::vector<std::string> variables_; // as NAME=value
    std::string workFolder_;
    std::string typed_;
    std::string notForOthers_;
    Listing before_;
    Listing after_;
    mutable std::set<std::string> known_;
    int status_ = -1;
    double processorSeconds_ = 0;
    std::string console_;
    std::string error_;
};

// What the macros below ask.
testing::AssertionResult consoleIs(const ToolRun& run, const std::vector<std::string>& lines);
testing::AssertionResult consoleHolds(const ToolRun& run, const std::vector<std::string>& lines);
testing::AssertionResult gridIs(const ToolRun& run, std::string_view name, const Cells& cells);
testing::AssertionResult noOtherFiles(const ToolRun& run);

} // namespace gridforge::test

// The whole console is these lines, blank ones included: EXPECT_CONSOLE(run, {"first", "second"}).
#define EXPECT_CONSOLE(run, ...) EXPECT_TRUE(::gridforge::test::consoleIs(run, __VA_ARGS__))
// These lines stand on the console one right after the other: EXPECT_CONSOLE_HOLDS(run, {"a line", "the next"}).
#define EXPECT_CONSOLE_HOLDS(run, ...) EXPECT_TRUE(::gridforge::test::consoleHolds(run, __VA_ARGS__))
// The cells of a written grid, north row first: EXPECT_GRID(run, "max.asc", {{1, 2}, {3, kNull}}).
#define EXPECT_GRID(run, name, ...) EXPECT_TRUE(::gridforge::test::gridIs(run, name, __VA_ARGS__))
// The run left no file that the test has not asked for.
#define EXPECT_NO_OTHER_FILES(run) EXPECT_TRUE(::gridforge::test::noOtherFiles(run))
