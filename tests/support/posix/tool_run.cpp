#include "support/tool_run.h"
#include "support/paths.h"
#include "support/record_run.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <iostream>
#include <iterator>
#include <poll.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

extern char** environ; // NOLINT: the name is POSIX's

namespace gridforge::test {
namespace {

using Clock = std::chrono::steady_clock;

// A run that says more than this is not going to end.
constexpr std::size_t kMostOutput = std::size_t{256} << 20U;

std::vector<std::string> splitAtBlanks(std::string_view text)
{
    std::vector<std::string> words;
    for (auto start = text.find_first_not_of(' '); start != std::string_view::npos;) {
        const auto end = std::min(text.find(' ', start), text.size());
        words.emplace_back(text.substr(start, end - start));
        start = text.find_first_not_of(' ', end);
    }
    return words;
}

std::vector<std::string> splitLines(std::string_view text)
{
    std::vector<std::string> lines;
    while (!text.empty()) {
        const auto end = std::min(text.find('\n'), text.size());
        lines.emplace_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines;
}

// In the form a shell takes back, odd bytes as \x escapes.
std::string quoted(const std::string& argument)
{
    constexpr std::string_view kPlain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_=.,/:+@%";
    if (!argument.empty() && argument.find_first_not_of(kPlain) == std::string::npos) {
        return argument;
    }
    std::string text = "$'";
    for (const char c : argument) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '\'' || c == '\\') {
            text += {'\\', c};
        } else if (byte >= 0x20 && byte < 0x7F) {
            text += c;
        } else {
            std::array<char, 8> escape{};
            std::snprintf(escape.data(), escape.size(), "\\x%02x", byte);
            text += escape.data();
        }
    }
    return text + "'";
}

struct Pipe {
    int readEnd = -1;
    int writeEnd = -1;

    Pipe()
    {
        std::array<int, 2> ends{};
        if (pipe2(ends.data(), O_CLOEXEC) != 0) {
            ADD_FAILURE() << "no pipe";
            return;
        }
        readEnd = ends[0];
        writeEnd = ends[1];
    }
    ~Pipe()
    {
        closeWriteEnd();
        if (readEnd >= 0) {
            close(readEnd);
        }
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;
    void closeWriteEnd()
    {
        if (writeEnd >= 0) {
            close(std::exchange(writeEnd, -1));
        }
    }
};

// Standard input is a file without a name, so that a run which leaves lines unread blocks nobody.
std::FILE* inputFile(const std::string& text)
{
    std::FILE* file = std::tmpfile();
    if (file == nullptr || std::fwrite(text.data(), 1, text.size(), file) != text.size() || std::fflush(file) != 0) {
        ADD_FAILURE() << "no file for standard input";
        return file;
    }
    std::rewind(file);
    return file;
}

// Collects both streams until they end. False where `deadline` or the limit of output comes first.
bool collect(std::array<std::pair<int, std::string*>, 2> streams, Clock::time_point deadline)
{
    std::vector<char> buffer(std::size_t{1} << 16U);
    while (streams[0].first >= 0 || streams[1].first >= 0) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
        if (left <= 0 || streams[0].second->size() + streams[1].second->size() > kMostOutput) {
            return false;
        }
        // poll ignores negative descriptors.
        std::array<pollfd, 2> waits{{{streams[0].first, POLLIN, 0}, {streams[1].first, POLLIN, 0}}};
        poll(waits.data(), waits.size(), static_cast<int>(std::min<std::int64_t>(left, 1000)));
        for (std::size_t i = 0; i < waits.size(); ++i) {
            if (waits[i].revents == 0) {
                continue;
            }
            const ssize_t got = read(waits[i].fd, buffer.data(), buffer.size());
            if (got <= 0) {
                streams[i].first = -1;
            } else {
                streams[i].second->append(buffer.data(), static_cast<std::size_t>(got));
            }
        }
    }
    return true;
}

struct Ended {
    int status = 0;
    double seconds = 0;
};

// True where the process ends before `deadline`, false as soon as that has passed.
bool endsBefore(pid_t process, Clock::time_point deadline)
{
    // It can be read from once the process has ended. The declaration in sys/pidfd.h is none for C++.
    const auto handle = static_cast<int>(syscall(SYS_pidfd_open, process, 0));
    if (handle < 0) {
        ADD_FAILURE() << "no handle of a process";
        return false;
    }
    pollfd wait{handle, POLLIN, 0};
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
    const bool ends = poll(&wait, 1, static_cast<int>(std::max<std::int64_t>(left, 0))) == 1;
    close(handle);
    return ends;
}

// Waits for the end of the process until `deadline`, then kills it and says so.
bool waitUntil(pid_t process, Clock::time_point deadline, bool killNow, Ended& ended)
{
    bool byItself = true;
    rusage usage{};
    if (killNow) {
        byItself = wait4(process, &ended.status, WNOHANG, &usage) == process;
    } else {
        byItself = endsBefore(process, deadline);
        if (byItself) {
            wait4(process, &ended.status, 0, &usage);
        }
    }
    if (!byItself) {
        kill(process, SIGKILL);
        wait4(process, &ended.status, 0, &usage);
    }
    const auto seconds = [](const timeval& t) {
        return static_cast<double>(t.tv_sec) + 1e-6 * static_cast<double>(t.tv_usec);
    };
    ended.seconds = seconds(usage.ru_utime) + seconds(usage.ru_stime);
    return byItself;
}

bool sameCell(double expected, double found, bool single)
{
    if (std::isnan(expected) || std::isnan(found)) {
        return std::isnan(expected) && std::isnan(found);
    }
    return single ? static_cast<float>(expected) == static_cast<float>(found) : expected == found;
}

bool sameCells(const Cells& expected, const Cells& found, bool single)
{
    const auto sameRow = [single](const std::vector<double>& a, const std::vector<double>& b) {
        return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                          [single](double x, double y) { return sameCell(x, y, single); });
    };
    return std::equal(expected.begin(), expected.end(), found.begin(), found.end(), sameRow);
}

std::string listed(const std::vector<std::string>& lines)
{
    std::string text;
    for (const auto& line : lines) {
        text += "    |" + line + "|\n";
    }
    return text;
}

} // namespace

ToolRun::ToolRun(const char* arguments) : ToolRun(splitAtBlanks(arguments)) {}

ToolRun::ToolRun(std::vector<std::string> arguments) : program_(toolPath()), arguments_(std::move(arguments)) {}

ToolRun::~ToolRun()
{
    if (!testing::Test::HasFailure()) {
        return;
    }
    const bool keep = std::getenv("GRIDFORGE_KEEP") != nullptr;
    if (keep) {
        folder_.keep();
    }
    std::cout << "The run: " << command() << (keep ? "\n" : "\n   (set GRIDFORGE_KEEP=1 to keep its folder)\n");
}

void ToolRun::give(std::string_view name, std::string_view bytes)
{
    folder_.give(name, bytes);
}

void ToolRun::type(std::string_view line)
{
    typed_.append(line).append("\n");
}

void ToolRun::workIn(std::string_view name)
{
    workFolder_ = name;
    std::filesystem::create_directories(folder() / workFolder_);
}

void ToolRun::program(std::string path)
{
    program_ = std::move(path);
}

void ToolRun::start(std::chrono::milliseconds limit)
{
    if (endsWithin(limit) && status_ >= 128) {
        ADD_FAILURE() << "ended by signal " << status_ - 128 << ": " << command() << '\n' << error_;
    }
}

void ToolRun::startForSignal(std::chrono::milliseconds limit)
{
    endsWithin(limit);
}

bool ToolRun::endsWithin(std::chrono::milliseconds limit)
{
    const bool ended = runWithin(limit, true);
    if (!ended) {
        ADD_FAILURE() << "no end within " << limit.count() << " ms: " << command();
    }
    return ended;
}

bool ToolRun::stillRunsAfter(std::chrono::milliseconds time)
{
    return !runWithin(time, false);
}

bool ToolRun::runWithin(std::chrono::milliseconds limit, bool ends)
{
    recordRun({folder(), workFolder_, program_, arguments_, variables_, typed_, ends, notForOthers_});
    before_ = listing();

    Pipe console;
    Pipe error;
    std::FILE* const input = inputFile(typed_);
    const std::string workFolder = (folder() / workFolder_).string();

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, fileno(input), STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, console.writeEnd, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, error.writeEnd, STDERR_FILENO);
    posix_spawn_file_actions_addchdir_np(&actions, workFolder.c_str());

    std::vector<char*> words{program_.data()};
    for (auto& argument : arguments_) {
        words.push_back(argument.data());
    }
    words.push_back(nullptr);

    std::vector<char*> variables;
    for (auto& variable : variables_) {
        variables.push_back(variable.data());
    }
    for (char** variable = environ; *variable != nullptr; ++variable) {
        variables.push_back(*variable);
    }
    variables.push_back(nullptr);

    pid_t process = -1;
    const auto deadline = Clock::now() + limit;
    const int failure = posix_spawn(&process, program_.c_str(), &actions, nullptr, words.data(), variables.data());
    posix_spawn_file_actions_destroy(&actions);
    std::fclose(input);
    console.closeWriteEnd();
    error.closeWriteEnd();
    if (failure != 0) {
        ADD_FAILURE() << "cannot start " << program_;
        return true;
    }

    const bool collected = collect({{{console.readEnd, &console_}, {error.readEnd, &error_}}}, deadline);
    Ended ended;
    const bool byItself = waitUntil(process, deadline, !collected, ended);
    status_ = WIFEXITED(ended.status) ? WEXITSTATUS(ended.status) : 128 + WTERMSIG(ended.status);
    processorSeconds_ = ended.seconds;
    after_ = listing();
    return byItself;
}

std::vector<std::string> ToolRun::consoleLines() const
{
    return splitLines(console_);
}

bool ToolRun::says(std::string_view line) const
{
    const auto lines = consoleLines();
    return std::find(lines.begin(), lines.end(), line) != lines.end();
}

bool ToolRun::has(std::string_view name) const
{
    expectFile(name);
    return folder_.has(name);
}

std::string ToolRun::read(std::string_view name) const
{
    expectFile(name);
    return folder_.read(name);
}

WrittenGrid ToolRun::grid(std::string_view name) const
{
    if (!name.ends_with(".flt")) {
        return readWrittenAsc(read(name));
    }
    return readWrittenFlt(read(std::string(name.substr(0, name.size() - 4)) + ".hdr"), read(name));
}

ToolRun::Listing ToolRun::listing() const
{
    Listing files;
    const auto options = std::filesystem::directory_options::skip_permission_denied;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder(), options)) {
        std::string name = entry.path().lexically_relative(folder()).string();
        if (entry.is_directory()) {
            files[name + "/"].permissions = entry.status().permissions();
        } else if (entry.is_regular_file()) {
            files[name] = {entry.last_write_time(), readWhole(entry.path()), entry.status().permissions()};
        } else {
            files[name] = {};
        }
    }
    return files;
}

std::map<std::string, std::string> ToolRun::files() const
{
    std::map<std::string, std::string> bytes;
    for (const auto& [name, state] : after_) {
        bytes[name] = state.bytes;
    }
    return bytes;
}

std::map<std::string, std::filesystem::perms> ToolRun::permissions() const
{
    std::map<std::string, std::filesystem::perms> permissions;
    for (const auto& [name, state] : after_) {
        permissions[name] = state.permissions;
    }
    return permissions;
}

std::vector<std::string> ToolRun::changedFiles() const
{
    std::vector<std::string> names;
    for (const auto& [name, state] : after_) {
        const auto earlier = before_.find(name);
        if (earlier == before_.end() || earlier->second != state) {
            names.push_back(name);
        }
    }
    return names;
}

std::vector<std::string> ToolRun::otherFiles() const
{
    std::vector<std::string> names = changedFiles();
    std::erase_if(names, [this](const std::string& name) { return known_.contains(name); });
    return names;
}

std::string ToolRun::command() const
{
    std::string text = "cd " + quoted((folder() / workFolder_).string()) + " && ";
    for (const auto& variable : variables_) {
        const std::size_t value = variable.find('=') + 1;
        text += variable.substr(0, value) + quoted(variable.substr(value)) + " ";
    }
    text += quoted(program_);
    for (const auto& argument : arguments_) {
        text += " " + quoted(argument);
    }
    return text + (typed_.empty() ? " < /dev/null" : " <<< " + quoted(typed_.substr(0, typed_.size() - 1)));
}

testing::AssertionResult consoleIs(const ToolRun& run, const std::vector<std::string>& lines)
{
    const std::vector<std::string> found = run.consoleLines();
    if (found == lines) {
        return testing::AssertionSuccess();
    }
    const auto [want, got] = std::mismatch(lines.begin(), lines.end(), found.begin(), found.end());
    const auto shown = [](const auto& at, const auto& end) { return at == end ? "<end>" : "|" + *at + "|"; };
    return testing::AssertionFailure() << "the console differs first in line " << want - lines.begin() + 1
                                       << "\n   expected: " << shown(want, lines.end())
                                       << "\n   found:    " << shown(got, found.end()) << "\nThe whole console:\n"
                                       << listed(found) << run.command();
}

testing::AssertionResult consoleHolds(const ToolRun& run, const std::vector<std::string>& lines)
{
    const std::vector<std::string> found = run.consoleLines();
    if (!lines.empty() && std::search(found.begin(), found.end(), lines.begin(), lines.end()) != found.end()) {
        return testing::AssertionSuccess();
    }
    return testing::AssertionFailure() << "not on the console:\n"
                                       << listed(lines) << "The whole console:\n"
                                       << listed(found) << run.command();
}

testing::AssertionResult gridIs(const ToolRun& run, std::string_view name, const Cells& cells)
{
    if (!run.has(name)) {
        return testing::AssertionFailure() << name << " was not written\n"
                                           << listed(run.consoleLines()) << run.command();
    }
    const WrittenGrid found = run.grid(name);
    if (sameCells(cells, found.cells, name.ends_with(".flt"))) {
        return testing::AssertionSuccess();
    }
    return testing::AssertionFailure() << name << " differs\n   expected:\n"
                                       << showCells(cells) << "   found:\n"
                                       << showCells(found.cells) << run.command();
}

testing::AssertionResult noOtherFiles(const ToolRun& run)
{
    const std::vector<std::string> names = run.otherFiles();
    if (names.empty()) {
        return testing::AssertionSuccess();
    }
    return testing::AssertionFailure() << "the run also wrote\n" << listed(names) << run.command();
}

} // namespace gridforge::test
