// Where tests stand, each in a runner and those of a source under its name, and where the words of the console do.
#include "support/consoles.h"
#include "unit/house/pure_files.h"
#include "unit/house/sources.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <regex>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace gridforge::test {
namespace {

constexpr std::string_view kEnd = "_test.cpp";

// The C++ files below a folder, by their place in it.
std::vector<std::string> filesBelow(const fs::path& folder)
{
    std::vector<std::string> files;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        if (entry.path().extension() == ".h" || entry.path().extension() == ".cpp") {
            files.push_back(entry.path().lexically_relative(folder).generic_string());
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

std::string topFolder(const std::string& file)
{
    return file.substr(0, file.find('/'));
}

TEST(TestFiles, EveryOneBelongsToARunner)
{
    const std::set<std::string> runners{"unit", "cli", "interop", "real", "faults"};
    const std::set<std::string> helpers{"support", "fuzz", "scripts", "witness"};
    std::size_t tests = 0;
    for (const std::string& file : filesBelow(kSource / "tests")) {
        if (!helpers.contains(topFolder(file))) {
            ++tests;
            EXPECT_TRUE(runners.contains(topFolder(file))) << file << " is in a folder that no runner takes";
        }
    }
    EXPECT_GT(tests, 100U);
}

// --- Unit tests ------------------------------------------------------------------------------------------------------

// Folders of tests that are not about one source: rules of the tree, and operations in pieces against the same step by step.
const std::set<std::string> kOfNoSource{"house", "both_ways"};

// The source of a test, without its extension; "" where the name of the test has another end. Tests that only some systems can run
// stand in the folders `posix` and `windows` under the same names.
std::string sourceOf(std::string test)
{
    if (topFolder(test) == "posix" || topFolder(test) == "windows") {
        test.erase(0, test.find('/') + 1);
    }
    const std::string folder = topFolder(test) == "support" ? "tests/" : "src/";
    return test.ends_with(kEnd) ? folder + test.substr(0, test.size() - kEnd.size()) : std::string();
}

TEST(UnitTests, HaveTheNamesOfTheirSources)
{
    std::size_t tests = 0;
    for (const std::string& file : filesBelow(kSource / "tests/unit")) {
        if (file.ends_with(".h") || kOfNoSource.contains(topFolder(file))) {
            continue;
        }
        ++tests;
        const std::string source = sourceOf(file);
        EXPECT_FALSE(source.empty()) << file << " does not end in " << kEnd;
        EXPECT_TRUE(fs::exists(kSource / (source + ".cpp")) || fs::exists(kSource / (source + ".h")))
            << "tests/unit/" << file << " is named after " << source << ", which is missing";
    }
    EXPECT_GT(tests, 80U);
    EXPECT_EQ(sourceOf("gis/mif/reader_test.cpp"), "src/gis/mif/reader");
    EXPECT_EQ(sourceOf("posix/host/system_test.cpp"), "src/host/system");
    EXPECT_EQ(sourceOf("windows/host/windows/names_test.cpp"), "src/host/windows/names");
    EXPECT_EQ(sourceOf("support/tool_run_test.cpp"), "tests/support/tool_run");
    EXPECT_EQ(sourceOf("gis/readers.cpp"), "");
}

TEST(UnitTests, OfKernelsStandUnderTheNamesOfTheirSources)
{
    std::set<std::string> kernels = kNamedKernels;
    for (const std::string& file : filesBelow(kSource / "src")) {
        if (file.ends_with("_cells.h")) {
            kernels.insert(file.substr(0, file.size() - 2));
        }
    }
    EXPECT_GT(kernels.size(), 20U);
    for (const std::string& kernel : kernels) {
        const auto elsewhere = kTestedElsewhere.find(kernel);
        const std::string test = elsewhere == kTestedElsewhere.end() ? kernel : elsewhere->second;
        EXPECT_TRUE(fs::exists(kSource / "src" / (kernel + ".h"))) << kernel;
        EXPECT_TRUE(fs::exists(kSource / "tests/unit" / (test + std::string(kEnd)))) << kernel << " has no test";
    }
}

// --- Tests that are left out -----------------------------------------------------------------------------------------

// All tests as "Suite.Name".
std::set<std::string> testsOfTheTree()
{
    static const std::regex definition(R"(^(?:TEST|TEST_F|TEST_P|TYPED_TEST)\(\s*(\w+),\s*(\w+)\))");
    std::set<std::string> tests;
    for (const std::string& file : filesBelow(kSource / "tests")) {
        std::ifstream in(kSource / "tests" / file);
        std::smatch found;
        for (std::string line; std::getline(in, line);) {
            if (std::regex_search(line, found, definition)) {
                tests.insert(found[1].str() + '.' + found[2].str());
            }
        }
    }
    return tests;
}

// A pattern of a list matches a test, whatever the forms that the test is run in: "Forms/Suite.Name/Native".
bool leavesOut(std::string pattern, const std::string& test)
{
    pattern.erase(0, pattern.rfind('/', pattern.find('.')) + 1);
    pattern.erase(std::min(pattern.find('/'), pattern.size()));
    const std::string expression =
        std::regex_replace(std::regex_replace(pattern, std::regex(R"(\.)"), R"(\.)"), std::regex(R"(\*)"), ".*");
    return std::regex_match(test, std::regex(expression));
}

TEST(TestsLeftOut, ExistInTheTree)
{
    const std::set<std::string> tests = testsOfTheTree();
    EXPECT_GT(tests.size(), 1000U);
    for (const char* const list : {"tests/windows_exceptions", "tests/arm64_exceptions"}) {
        std::size_t patterns = 0;
        std::ifstream in(kSource / list);
        for (std::string line; std::getline(in, line);) {
            if (line.empty() || line.starts_with('#')) {
                continue;
            }
            ++patterns;
            EXPECT_TRUE(std::ranges::any_of(tests, [&](const std::string& test) { return leavesOut(line, test); }))
                << list << " names " << line << ", which no test is";
        }
        EXPECT_GT(patterns, 10U) << list;
    }
}

TEST(TestsLeftOut, AreMatchedAsByTheRunner)
{
    EXPECT_TRUE(leavesOut("Suite.*", "Suite.One"));
    EXPECT_TRUE(leavesOut("Suite.Quotes*", "Suite.QuotesAreKept"));
    EXPECT_TRUE(leavesOut("Forms/Suite.One/Native", "Suite.One"));
    EXPECT_FALSE(leavesOut("Suite.One", "Suite.OneMore"));
    EXPECT_FALSE(leavesOut("Suite.One", "OtherSuite.One"));
    EXPECT_FALSE(leavesOut("Suite.*", "SuiteXOne"));
}

// --- Words of the console --------------------------------------------------------------------------------------------

TEST(Consoles, HaveTheirWordsFromOneFile)
{
    const Lines words{kBanner, kWildcards, kEnter, kClose, kFormatOfInputs};
    const std::string vocabulary = "support/consoles.h";
    for (const std::string& file : filesBelow(kSource / "tests")) {
        const std::string text = textOf(kSource / "tests" / file);
        for (const std::string& word : words) {
            EXPECT_EQ(text.find(word) != std::string::npos, file == vocabulary) << file << ": " << word;
        }
    }
}

// Unit and fault tests are about these lines themselves, and write them as parts of longer texts.
TEST(Consoles, OfTheToolTellOfFilesInWordsOfThatFile)
{
    const Lines beginnings{R"("Trying to open file)", R"("Opened File Unit)", R"("...Closed File Unit)",
                           R"("Finished.")"};
    for (const char* const kind : {"cli", "interop", "real", "support"}) {
        for (const std::string& file : filesBelow(kSource / "tests" / kind)) {
            const std::string text = textOf(kSource / "tests" / kind / file);
            for (const std::string& beginning : beginnings) {
                EXPECT_EQ(text.find(beginning) != std::string::npos, file == "consoles.h")
                    << kind << '/' << file << ": " << beginning;
            }
        }
    }
}

} // namespace
} // namespace gridforge::test
