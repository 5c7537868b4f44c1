// Keeps what a command-line test runs, so that the run can be repeated without the test: scripts/witness does. With
// GRIDFORGE_RECORD set, each run leaves a folder of its own below the one that it names:
//
//   given/   the files of the run, as they were before it
//   run      fields "key=value", each ended by a zero byte
//
// A run that cannot be repeated leaves only `run`, with the reason.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace gridforge::test {

struct RecordedRun {
    std::filesystem::path folder; // of the files
    std::string workFolder;       // the current folder, below it
    std::string program;
    std::vector<std::string> arguments;
    std::vector<std::string> environment; // NAME=value, beside the environment of the test
    std::string input;                    // standard input
    bool ends = true;                     // false for a run that the test stops
    std::string notForOthers = {};        // why another executable need not do the same; "" where it must
};

// Does nothing without GRIDFORGE_RECORD, nor for a program that does not run the tool. Fails the test where it cannot write.
void recordRun(const RecordedRun& run);

// The same into the folder `into`.
void recordRun(const RecordedRun& run, const std::filesystem::path& into);

} // namespace gridforge::test
