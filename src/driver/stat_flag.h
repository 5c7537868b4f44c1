// The statistics family of flags: -statMean, -statRank2 and so on.
#pragma once

#include "run/run_settings.h"

#include <string>

namespace gridforge::driver {

// Adds the statistic that the flag names, anywhere in it. One that names none ends the run with a message.
void addStatistic(run::RunSettings& settings, const std::string& argument);

} // namespace gridforge::driver
