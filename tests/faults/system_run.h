// Runs of the tool in which calls of the system are watched or fail: tests/support/failing_system.c says what can be asked
// for.
#pragma once

#include "faults/fault_runs.h"

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace gridforge::test {

// A call, as the log has it.
struct SystemCall {
    std::string what; // "call", or what was done to it: "kill", "fail", "short", "interrupt"
    std::string function;
    long number = 0;    // among the calls of the function
    std::string place;  // stands for the chain of callers
    std::string caller; // "tool", or the library that called on its own
    char role = '-';    // of the file: r read, w written, c a standard stream
    long bytes = 0;
    long event = 0; // number among the calls that change a file, or 0
    std::string file;
};

struct SystemRun {
    int status = 0;
    std::string console;
    std::string error;
    std::map<std::string, std::string> given;                  // the files before the run
    std::map<std::string, std::string> files;                  // and after it
    std::map<std::string, std::filesystem::perms> permissions; // after it
    std::vector<SystemCall> calls;
};

// A sanitizer has an allocator of its own.
bool canFailMemory();
// All kills and faults, not only the quick part.
bool isWholeAsked();

// The run with GRIDFORGE_SYSTEM set to `mission`, of the tool or of another program.
SystemRun runSystem(const FaultRun& run, const std::string& mission, const std::string& program = "");

// The command that repeats such a run. Its files are in a folder that stays, so this is for failures only.
std::string commandOf(const FaultRun& run, const std::string& mission, const std::string& program = "");

// These count for the last line of the program.
void countRun();
void countKill();
void countFault(bool isMemory);
void countPlace();
void countDisturbed();

} // namespace gridforge::test
