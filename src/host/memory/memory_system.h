// Files and a console in memory, for tests and fuzz targets: a run on it finds and leaves nothing outside.
#pragma once

#include "host/system.h"

#include <optional>
#include <string>
#include <string_view>

namespace gridforge::inline host {

// There is one per process; what it holds lasts until it is cleared. A folder exists as long as a file is in it, that of
// the run always. The folder of the run is also the first of all, "/".
const System& memorySystem();

// Forgets all files, what the console was given and what was written to it. No file may be open.
void clearMemorySystem();

void giveMemoryFile(const std::string& name, std::string_view bytes);
// Nothing if there is no such file.
std::optional<std::string> memoryFile(const std::string& name);

// Appends to what a run will read from the console.
void giveMemoryAnswers(std::string_view answers);
// What was written to the console since the last call.
std::string takeMemoryConsole();

} // namespace gridforge::inline host
