// The help screen: a fixed text for a command line without arguments. It does not cover every flag; flag_table.h does.
#pragma once

namespace gridforge::driver {

// Writes the text, waits for Enter and ends the run.
[[noreturn]] void showUsage();

} // namespace gridforge::driver
