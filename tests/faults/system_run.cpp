#include "faults/system_run.h"

#include "support/sanitizers.h"
#include "support/system_failures.h"

#include <cstdlib>
#include <iostream>
#include <iterator>
#include <sstream>

namespace gridforge::test {
namespace {

struct Counts {
    long runs = 0;
    long kills = 0;
    long places = 0;
    long faults = 0;
    long memory = 0;
    long disturbed = 0;
};

Counts& counts()
{
    static Counts theCounts;
    return theCounts;
}

// The last line of the program of the tests, which scripts/faults adds up.
class PrintCounts : public testing::Environment {
    void TearDown() override
    {
        const Counts& c = counts();
        std::cout << "counts: " << c.runs << " watched runs, " << c.kills << " kills, " << c.places << " places, "
                  << c.faults << " failed calls, " << c.memory << " failed allocations, " << c.disturbed
                  << " disturbed runs\n";
    }
};
[[maybe_unused]] testing::Environment* const kPrintCounts = testing::AddGlobalTestEnvironment(new PrintCounts);

std::vector<SystemCall> readLog(const ScratchFolder& folder)
{
    std::vector<SystemCall> calls;
    std::istringstream log(folder.has("log") ? folder.read("log") : "");
    for (std::string line; std::getline(log, line);) {
        std::vector<std::string> fields;
        std::istringstream rest(line);
        for (std::string field; std::getline(rest, field, '\t');) {
            fields.push_back(field);
        }
        fields.resize(9);
        calls.push_back({fields[0], fields[1], std::atol(fields[2].c_str()), fields[3], fields[4],
                         fields[5].empty() ? '-' : fields[5][0], std::atol(fields[6].c_str()),
                         std::atol(fields[7].c_str()), fields[8]});
    }
    return calls;
}

// The files of a run before it, without starting anything for them.
const std::map<std::string, std::string>& givenFiles(const FaultRun& run)
{
    static std::map<std::string, std::map<std::string, std::string>> known;
    const auto [entry, isNew] = known.try_emplace(run.name);
    if (isNew) {
        ToolRun nothing("");
        nothing.program("/bin/true");
        run.give(nothing);
        nothing.start();
        entry->second = nothing.files();
    }
    return entry->second;
}

void prepare(ToolRun& start, const FaultRun& run, const std::string& program)
{
    if (!program.empty()) {
        start.program(program);
    }
    for (const auto& [name, value] : run.settings) {
        start.environment(name, value);
    }
    run.give(start);
}

} // namespace

bool canFailMemory()
{
    return !kSanitized;
}

bool isWholeAsked()
{
    const char* asked = std::getenv("GRIDFORGE_FAULTS");
    return asked != nullptr && std::string(asked) == "whole";
}

SystemRun runSystem(const FaultRun& run, const std::string& mission, const std::string& program)
{
    const ScratchFolder folder;
    ToolRun start(run.arguments.c_str());
    prepare(start, run, program); // its threads stay
    askSystem(start, mission, (folder.path() / "log").string());
    start.startForSignal();
    return {start.status(), start.console(),     start.error(),  givenFiles(run),
            start.files(),  start.permissions(), readLog(folder)};
}

std::string commandOf(const FaultRun& run, const std::string& mission, const std::string& program)
{
    ToolRun again(run.arguments.c_str());
    prepare(again, run, program);
    askSystem(again, mission);
    again.keep();
    return again.command();
}

void countRun()
{
    ++counts().runs;
}

void countKill()
{
    ++counts().kills;
}

void countFault(bool isMemory)
{
    ++(isMemory ? counts().memory : counts().faults);
}

void countPlace()
{
    ++counts().places;
}

void countDisturbed()
{
    ++counts().disturbed;
}

} // namespace gridforge::test
