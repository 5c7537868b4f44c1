// Questions that a run cannot go on without an answer to: the end of standard input ends it by EXITS.
#pragma once

#include <string>
#include <string_view>

namespace gridforge::inline host {

// Writes the question as a line and returns the answer, cut at 1000.
std::string ask(std::string_view question);
// Writes the prompt as a line and waits for Enter.
void pauseForRetry(std::string_view prompt);

} // namespace gridforge::inline host
