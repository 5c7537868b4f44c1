// Whole runs of the tool in the process. Where their cells are computed ahead, a second run goes step by step: both must say
// and write the same.
#include "driver/run_tool.h"
#include "fuzz/fuzz_run.h"
#include "fuzz/kinds.h"
#include "run/cells_ahead.h"

#include <string>
#include <vector>

namespace gridforge::fuzz {

namespace {

struct Outcome {
    std::string console;
    std::vector<std::string> names; // of all files
    std::vector<std::string> bytes;
    bool operator==(const Outcome&) const = default;
};

// Reads by position are refused, so that cells go step by step.
const System& systemStepByStep()
{
    static const System system = [] {
        System refusing = smallSystem();
        refusing.readAt = [](SystemFile, std::int64_t, std::span<char>) { return std::int64_t{-1}; };
        return refusing;
    }();
    return system;
}

std::vector<std::string> wordsOf(std::string_view line)
{
    std::vector<std::string> words;
    while (!line.empty()) {
        const std::size_t blank = line.find(' ');
        if (blank != 0) {
            words.emplace_back(line.substr(0, blank));
        }
        line.remove_prefix(blank == std::string_view::npos ? line.size() : blank + 1);
    }
    return words;
}

Outcome runOf(const NamedFiles& input, const System& system)
{
    beginRun(input, system);
    Outcome outcome;
    outcome.console = toItsEnd([&] { driver::runTool(wordsOf(input.line)); });
    memorySystem().list(".", outcome.names);
    for (const std::string& name : outcome.names) {
        outcome.bytes.push_back(memoryFile(name).value_or(std::string()));
    }
    return outcome;
}

void runOperation(const NamedFiles& input)
{
    const std::size_t ahead = run::waysGone(run::Way::ahead);
    const Outcome fast = runOf(input, smallSystem());
    if (run::waysGone(run::Way::ahead) == ahead) {
        return;
    }
    const Outcome plain = runOf(input, systemStepByStep());
    // The two ways take memory and room on the disk at other places.
    const bool hadRoom = plain.console.find("ERROR - Could not") == std::string::npos &&
                         fast.console.find("ERROR - Could not") == std::string::npos;
    if (hadRoom && fast != plain) {
        report("a run computed ahead differs from the one step by step",
               "--- ahead\n" + fast.console + "\n--- step by step\n" + plain.console);
    }
}

} // namespace

std::span<const Kind> operations()
{
    static constexpr Kind kOperations[] = {
        {"run_grids", runOperation},   {"run_layers", runOperation},   {"run_network", runOperation},
        {"run_damages", runOperation}, {"run_rainfall", runOperation}, {"run_remap", runOperation},
    };
    return kOperations;
}

} // namespace gridforge::fuzz
