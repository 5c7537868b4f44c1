// The ends of a run. Every one gives exit status 0, also after an error: a caller recognises failure by the console
// text. Nothing else ends the process.
#pragma once

#include "host/console.h"

#include <functional>

namespace gridforge::inline host {

// Closes what is open, waits for Enter and ends: the end of most errors.
[[noreturn]] void EXITS();
// Waits for Enter and ends; files are left to the process end.
[[noreturn]] void pauseExit();
// Ends at once, without a pause.
[[noreturn]] void endNow();
// "Finished.", a pause unless in batch mode, the end.
[[noreturn]] void endFinished(bool batch);

// The file units, which use the ends of a run, register here how open files are closed.
using CloseOpenFiles = void (*)();
void closeFilesAtEnd(CloseOpenFiles close);

// Replaces the end of the process: for fuzz targets, which outlive a run, and after failures that the libraries cannot clean
// up. It must not return.
using EndHandler = void (*)();
void replaceProcessEnd(EndHandler handler);

// A message of the parts and EXITS.
template <typename... Parts>
[[noreturn]] void fail(const Parts&... parts)
{
    say(parts...);
    EXITS();
}

// A message of the parts and pauseExit.
template <typename... Parts>
[[noreturn]] void refuse(const Parts&... parts)
{
    say(parts...);
    pauseExit();
}

// A message about a line, the line after it, and EXITS.
[[noreturn]] void failLine(std::string_view message, std::string_view line);

// "Should not be here [place] - please contact ...", for states that must not occur, and EXITS.
[[noreturn]] void shouldNotBeHere(std::string_view place);
// The message of an allocation that failed, and EXITS.
[[noreturn]] void failMemory();
// Does the work of a whole run. An exception that leaves it ends the run with a message: that of failMemory if memory ran out.
void runToItsEnd(const std::function<void()>& work);

} // namespace gridforge::inline host
