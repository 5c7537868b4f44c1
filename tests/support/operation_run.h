// A run of an operation inside the process of a test, on files of a folder and a console in memory, so that a test can ask
// which way its cells went.
#pragma once

#include "driver/operations.h"
#include "driver/scan.h"
#include "driver/validate.h"
#include "host/console.h"
#include "host/memory/memory_system.h"
#include "host/units.h"
#include "support/scratch_folder.h"

#include <filesystem>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace gridforge::test {

using GivenFiles = std::map<std::string, std::string>;

// What a run has said and left.
struct Outcome {
    std::string console;
    GivenFiles files;
    bool operator==(const Outcome&) const = default;
};

// The system of the tests, whose reads by position can be refused: cells then go step by step.
inline System systemForOperations(bool refusesReads)
{
    System system = nativeSystem();
    system.readConsole = memorySystem().readConsole;
    system.writeConsole = memorySystem().writeConsole;
    system.consoleIsWatched = memorySystem().consoleIsWatched;
    if (refusesReads) {
        system.readAt = [](SystemFile, std::int64_t, std::span<char>) { return std::int64_t{-1}; };
    }
    return system;
}

inline GivenFiles filesIn(const std::filesystem::path& folder)
{
    GivenFiles files;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        files[entry.path().filename().string()] = readWhole(entry.path());
    }
    return files;
}

// Runs the command line, of words separated by blanks, in the folder to its end; one that ends the run ends the test.
inline Outcome runOperationIn(const ScratchFolder& folder, const std::string& commandLine, bool refusesReads = false)
{
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(folder.path());
    const System system = systemForOperations(refusesReads);
    flushConsole(); // what other tests left
    useSystem(system);
    takeMemoryConsole(); // and what they said there
    restartConsole();
    startUnits(1000);

    std::istringstream words(commandLine);
    std::vector<std::string> arguments;
    for (std::string word; words >> word;) {
        arguments.push_back(word);
    }
    driver::CommandLine line = driver::scanArguments(arguments);
    validate(line);
    driver::runOperation(line, run::expandInputs(line.rawInputList));
    closeAllUnits();
    endLine();
    flushConsole();

    useSystem(nativeSystem());
    restartConsole();
    std::filesystem::current_path(before);
    return {takeMemoryConsole(), filesIn(folder.path())};
}

// The same in a folder of its own.
inline Outcome runOperationOn(const GivenFiles& given, const std::string& commandLine, bool refusesReads = false)
{
    const ScratchFolder folder;
    for (const auto& [name, bytes] : given) {
        folder.give(name, bytes);
    }
    return runOperationIn(folder, commandLine, refusesReads);
}

} // namespace gridforge::test
