#include "support/record_run.h"

#include "support/paths.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <string_view>
#include <sys/stat.h>
#include <system_error>
#include <utility>

namespace gridforge::test {
namespace {

namespace fs = std::filesystem;

bool runsTool(const RecordedRun& run)
{
    const std::string tool = toolPath();
    return run.program == tool || std::any_of(run.arguments.begin(), run.arguments.end(), [&](const std::string& word) {
               return word.find(tool) != std::string::npos;
           });
}

// Why a run cannot be repeated with another executable; "" where it can. The words of /usr/bin/env can be read, those of a
// shell cannot.
std::string obstacle(const RecordedRun& run)
{
    if (!run.ends) {
        return "stopped by its test";
    }
    if (!run.notForOthers.empty()) {
        return run.notForOthers;
    }
    const bool byEnv = run.program == "/usr/bin/env" &&
                       std::find(run.arguments.begin(), run.arguments.end(), toolPath()) != run.arguments.end();
    if (run.program != toolPath() && !byEnv) {
        return "started by another program";
    }
    // Another executable may make other calls, or in another order.
    const auto sets = [](const std::vector<std::string>& words, std::string_view variable) {
        return std::any_of(words.begin(), words.end(),
                           [&](const std::string& word) { return word.starts_with(variable); });
    };
    if (sets(run.environment, "GRIDFORGE_SYSTEM=")) {
        return "fails at a call of the system";
    }
    if (sets(run.arguments, "GRIDFORGE_FAIL_NETCDF=")) {
        return "fails at a call of a library";
    }
    if (sets(run.environment, "GRIDFORGE_PROGRESS=") || sets(run.arguments, "GRIDFORGE_PROGRESS=")) {
        return "shows its progress, as earlier executables do not";
    }
    if (sets(run.environment, "LD_")) {
        return "asks the loader of shared libraries, which earlier executables need for others";
    }
    return "";
}

// The running test and a number: a test may start many runs.
std::string nextName()
{
    static std::string lastTest;
    static int runs = 0;
    const testing::TestInfo* info = testing::UnitTest::GetInstance()->current_test_info();
    std::string test = info == nullptr ? "none" : std::string(info->test_suite_name()) + "." + info->name();
    std::replace(test.begin(), test.end(), '/', '_');
    runs = test == lastTest ? runs + 1 : 1;
    lastTest = test;
    return test + "-" + std::to_string(runs);
}

void writeField(std::ofstream& out, std::string_view key, std::string_view value)
{
    out << key << '=' << value << '\0';
}

// Makes names of one file below `from` names of one file below `to` too, where each has been copied.
void joinNames(const fs::path& from, const fs::path& to, std::error_code& failure)
{
    std::map<std::pair<dev_t, ino_t>, fs::path> firstNames;
    for (const auto& entry : fs::recursive_directory_iterator(from, failure)) {
        struct stat status {};
        if (lstat(entry.path().c_str(), &status) != 0 || !S_ISREG(status.st_mode) || status.st_nlink < 2) {
            continue;
        }
        const fs::path name = to / entry.path().lexically_relative(from);
        const auto [first, fresh] = firstNames.try_emplace({status.st_dev, status.st_ino}, name);
        if (!fresh && !failure) {
            fs::remove(name, failure);
            fs::create_hard_link(first->second, name, failure);
        }
    }
}

// Links of both kinds stay links. Whatever is neither file, folder nor link cannot be kept.
bool copyGiven(const fs::path& from, const fs::path& to)
{
    std::error_code failure;
    fs::copy(from, to, fs::copy_options::recursive | fs::copy_options::copy_symlinks, failure);
    if (!failure) {
        joinNames(from, to, failure);
    }
    return !failure;
}

} // namespace

void recordRun(const RecordedRun& run)
{
    const char* const root = std::getenv("GRIDFORGE_RECORD");
    if (root != nullptr && runsTool(run)) {
        recordRun(run, fs::path(root) / nextName());
    }
}

void recordRun(const RecordedRun& run, const fs::path& into)
{
    fs::create_directories(into);
    std::string reason = obstacle(run);
    if (reason.empty() && !copyGiven(run.folder, into / "given")) {
        reason = "its files cannot be copied";
        std::error_code ignored;
        fs::remove_all(into / "given", ignored);
    }
    std::ofstream out(into / "run", std::ios::binary);
    if (!reason.empty()) {
        writeField(out, "left out", reason);
    }
    writeField(out, "tool", toolPath());
    writeField(out, "folder", run.folder.string());
    writeField(out, "work folder", run.workFolder);
    writeField(out, "program", run.program);
    for (const std::string& argument : run.arguments) {
        writeField(out, "argument", argument);
    }
    for (const std::string& variable : run.environment) {
        writeField(out, "environment", variable);
    }
    writeField(out, "input", run.input);
    if (!out.flush()) {
        ADD_FAILURE() << "the run cannot be recorded in " << into;
    }
}

} // namespace gridforge::test
