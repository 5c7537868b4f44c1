// Runs a piece of code in a process of its own, so that a test may watch it talk to the console and end the run.
#pragma once

#include "support/scratch_folder.h"

#include <functional>
#include <string>
#include <string_view>

namespace gridforge::test {

struct ChildRun {
    int status = -1;     // exit status; -1 where a signal ended the process
    bool ended = false;  // the code ended the process by itself, before its last line
    std::string console; // standard output
    std::string errors;  // standard error
};

// Runs `code` in `folder` with the file units prepared and `input` as standard input. What it leaves open is closed.
ChildRun runInChild(const ScratchFolder& folder, const std::function<void()>& code, std::string_view input = "");

} // namespace gridforge::test
