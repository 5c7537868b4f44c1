// What only the forms of the system may hold: its headers, its calls and questions for it.
#include "unit/house/sources.h"

#include <fstream>
#include <gtest/gtest.h>
#include <regex>
#include <set>
#include <string>

namespace gridforge::test {
namespace {

// The folders that speak to a system, each of its own.
bool isFormOfSystem(const fs::path& file)
{
    const std::string name = file.lexically_relative(kSource / "src").string();
    return name.starts_with("host/posix/") || name.starts_with("host/windows/");
}

// The name of an #include <...> line, "" for any other line.
std::string angledInclude(const std::string& line)
{
    static const std::regex form("\\s*#\\s*include\\s*<([^>]*)>.*");
    std::smatch found;
    return std::regex_match(line, found, form) ? found[1].str() : std::string();
}

// Headers of the language have no extension; of those, these reach out of the program.
bool belongsToForms(const std::string& header)
{
    static const std::set<std::string> reaching{
        "chrono", "condition_variable", "csignal", "cstdio", "ctime", "filesystem", "fstream",
        "future", "iostream",           "mutex",   "thread"};
    static const std::set<std::string> libraries{"gridforge/gridforge.h", "hdf5.h", "immintrin.h", "libdeflate.h",
                                                 "netcdf.h"};
    return reaching.contains(header) || (header.ends_with(".h") && !libraries.contains(header));
}

// Threads, which the language itself offers, start and wait in one place.
const std::set<std::string> kReachOutside{"host/threads.cpp condition_variable", "host/threads.cpp mutex",
                                          "host/threads.cpp thread"};

TEST(System, OnlyItsFormsIncludeItsHeaders)
{
    std::size_t inForms = 0;
    std::set<std::string> outside;
    for (const auto& file : sourcesBelow(kSource / "src")) {
        std::ifstream in(file);
        for (std::string line; std::getline(in, line);) {
            const std::string header = angledInclude(line);
            if (!belongsToForms(header)) {
                continue;
            }
            if (isFormOfSystem(file)) {
                ++inForms;
            } else {
                outside.insert(sourceName(file) + ' ' + header);
            }
        }
    }
    EXPECT_EQ(outside, kReachOutside);
    EXPECT_GT(inForms, 5U) << "the forms have hardly a header of a system: does the reading of the lines still work?";
}

// Calls that reach out of the program through headers that everybody may include. Members and longer names do not count.
bool callsSystem(const std::string& line)
{
    static const std::regex call(R"((^|[^A-Za-z0-9_.>])(std::)?(getenv|setenv|system|popen|exit|_Exit|abort)\s*\(.*)");
    return std::regex_search(line.substr(0, line.find("//")), call);
}

TEST(System, OnlyItsFormsCallIt)
{
    std::set<std::string> calling;
    for (const auto& file : sourcesBelow(kSource / "src")) {
        std::ifstream in(file);
        for (std::string line; !isFormOfSystem(file) && std::getline(in, line);) {
            if (callsSystem(line)) {
                calling.insert(sourceName(file));
            }
        }
    }
    EXPECT_EQ(calling, (std::set<std::string>{"host/ends.cpp", "netcdf/check_netcdf.cpp"}));
    EXPECT_TRUE(callsSystem("    std::exit(EXIT_SUCCESS);"));
    EXPECT_TRUE(callsSystem("if (system(command) != 0)"));
    EXPECT_FALSE(callsSystem("    useSystem(memorySystem());"));
    EXPECT_FALSE(callsSystem("    runs.exit(1); // calls exit(0)"));
}

TEST(System, OnlyItsFormsAskWhichItIs)
{
    static const std::regex condition("\\s*#\\s*(el)?if.*");
    for (const auto& file : sourcesBelow(kSource / "src")) {
        std::ifstream in(file);
        for (std::string line; std::getline(in, line);) {
            if (std::regex_match(line, condition) && !isFormOfSystem(file)) {
                EXPECT_EQ(line, "#if defined(__x86_64__)") << file << ": only the processor may be asked for";
            }
        }
    }
}

} // namespace
} // namespace gridforge::test
