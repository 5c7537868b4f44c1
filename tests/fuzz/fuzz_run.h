// Runs that end without ending the process, on files and a console in memory.
#pragma once

#include "fuzz/named_files.h"
#include "host/memory/memory_system.h"

#include <functional>
#include <string>

namespace gridforge::fuzz {

// Once in the process: the limits, and what the end of a run does.
void prepareProcess();

// As the tool finds it at its start: only the files of the input, and what "console" among them would type. `system` is in
// use until the next call.
void beginRun(const NamedFiles& input, const System& system);
// Does the work to its end or to that of the run, and returns the console. Nothing stays open. A console that says what
// must not occur is a finding.
std::string toItsEnd(const std::function<void()>& work);

// The system in memory, with less room for files.
const System& smallSystem();

// Ends the process as a finding.
[[noreturn]] void report(std::string_view what, std::string_view details = {});

} // namespace gridforge::fuzz
