// The console: the one place that writes to standard output and reads standard input. Output is buffered and flushed
// before every read and at the end of the process.
#pragma once

#include "core/text.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace gridforge::inline host {

void consoleLine(std::string_view text); // ends an open line first
void consoleOpen(std::string_view text); // begins a line, or joins the open one, and stays on it

void endLine(); // ends the open line, if any

// A line of its own, of the parts joined.
template <typename... Parts>
void say(const Parts&... parts)
{
    consoleLine(join(parts...));
}

// Parts that stay on the line: what follows through sayOpen, sayOn or progress joins it.
template <typename... Parts>
void sayOpen(const Parts&... parts)
{
    endLine();
    consoleOpen(join(parts...));
}

// Joins the parts to the open line and ends it.
template <typename... Parts>
void sayOn(const Parts&... parts)
{
    consoleOpen(join(parts...));
    endLine();
}

void progress(std::int32_t number); // in 8 columns on the open line
void flushConsole();
// Starts again, as if nothing had been written or read. For tests and fuzz targets, after `useSystem`.
void restartConsole();

// Writes the prompt as a line and waits for Enter; the end of standard input counts as Enter.
void pause(std::string_view prompt);
// The pause with no text of its own.
void pauseForEnter();
// Writes the question as a line and reads the answer, cut at 1000; nothing at the end of standard input.
std::optional<std::string> readAnswer(std::string_view question);

} // namespace gridforge::inline host
