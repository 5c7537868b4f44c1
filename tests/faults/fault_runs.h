// The runs that are killed, and whose calls of the system are made to fail: every operation, both grid formats, both
// families of layers.
#pragma once

#include "support/tool_run.h"

#include <cstddef>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace gridforge::test {

struct FaultRun {
    std::string name;      // as the name of a test
    std::string arguments; // separated by blanks
    void (*give)(ToolRun& run);
    bool writesGrids; // .asc or .flt
    // Variables of the environment, as names and values.
    std::vector<std::pair<std::string, std::string>> settings = {};
};

inline void PrintTo(const FaultRun& run, std::ostream* out)
{
    *out << run.name;
}

const std::vector<FaultRun>& faultRuns();
// The run with that many threads, each of which gets some of the cells.
FaultRun withThreads(FaultRun run, int threads);
// As few as there are of several, and more than most machines here have processors.
inline constexpr int kThreadsTried[] = {2, 7};
// One of them, by turns.
int threadsOf(std::size_t turn);
// The position among them.
std::size_t numberOf(const FaultRun& run);
// All of them; under a sanitizer, where a start takes long, one of several.
std::vector<FaultRun> startedRuns();

} // namespace gridforge::test
