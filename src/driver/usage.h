// The help screen: a fixed text for a command line without arguments. It does not cover every flag; flag_table.h does.
#pragma once

#include <span>
#include <string_view>

namespace gridforge::driver {

std::span<const std::string_view> usageText();
// Writes the text, waits for Enter and ends the run.
[[noreturn]] void showUsage();

} // namespace gridforge::driver
