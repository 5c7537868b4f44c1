// The statistics family of flags: -statMean, -statRank2 and so on.
#pragma once

#include "ops/stat.h"

#include <string>

namespace gridforge::driver {

// Adds the statistic that the flag names, anywhere in it. One that names none ends the run with a message.
void addStatistic(ops::StatOptions& options, const std::string& argument);

} // namespace gridforge::driver
