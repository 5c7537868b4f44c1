// Starts programs for the witness and reports how they end. It stays small on purpose: what the system reports as the peak
// memory of a process is never less than that of the process it was started from.
//
// Requests come by standard input: a number of bytes in 4 bytes, then texts that each end in a zero byte, in the order of
// readRequest. The answer is one line: the end ("exit 0", "signal 11", "waits", "overtime", "failed"), peak memory in KB,
// processor time in ms.
#include <array>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <dirent.h>
#include <fcntl.h>
#include <string>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr int kCannotStart = 126;
constexpr long kLookEveryMs = 100;
constexpr int kLooksUntilIdle = 4;

struct Request {
    std::vector<std::string> texts;
    std::size_t next = 0;

    const char* text() { return texts.at(next++).c_str(); }
    long number() { return std::atol(text()); }
    // A count and as many texts, as the system takes them.
    std::vector<char*> list()
    {
        std::vector<char*> pointers;
        for (long left = number(); left > 0; --left) {
            pointers.push_back(texts.at(next++).data());
        }
        pointers.push_back(nullptr);
        return pointers;
    }
};

struct Job {
    const char* folder = nullptr;
    const char* input = nullptr;
    const char* output = nullptr;
    const char* error = nullptr;
    long wallMs = 0;
    long processorSeconds = 0;
    long memoryMb = 0; // 0 for no limit
    long fileMb = 0;
    std::vector<char*> environment;
    std::vector<char*> words; // the program first
};

Job jobOf(Request& request)
{
    Job job;
    job.folder = request.text();
    job.input = request.text();
    job.output = request.text();
    job.error = request.text();
    job.wallMs = request.number();
    job.processorSeconds = request.number();
    job.memoryMb = request.number();
    job.fileMb = request.number();
    job.environment = request.list();
    job.words = request.list();
    return job;
}

bool readRequest(Request& request)
{
    std::uint32_t size = 0;
    if (std::fread(&size, sizeof size, 1, stdin) != 1) {
        return false;
    }
    std::string bytes(size, '\0');
    if (std::fread(bytes.data(), 1, size, stdin) != size) {
        return false;
    }
    for (std::size_t at = 0; at < size;) {
        request.texts.emplace_back(bytes.c_str() + at);
        at += request.texts.back().size() + 1;
    }
    return true;
}

void limit(int resource, rlim_t soft, rlim_t hard)
{
    const rlimit limits{soft, hard};
    setrlimit(static_cast<__rlimit_resource>(resource), &limits);
}

bool stream(const char* path, int flags, int number)
{
    const int file = open(path, flags | O_CLOEXEC, 0600);
    return file >= 0 && dup2(file, number) >= 0;
}

[[noreturn]] void becomeJob(Job& job)
{
    setpgid(0, 0);
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    umask(022);
    limit(RLIMIT_CORE, 0, 0);
    const auto seconds = static_cast<rlim_t>(job.processorSeconds);
    limit(RLIMIT_CPU, seconds, seconds + 1);
    const auto megabytes = [](long number) { return static_cast<rlim_t>(number) << 20U; };
    limit(RLIMIT_FSIZE, megabytes(job.fileMb), megabytes(job.fileMb));
    if (job.memoryMb > 0) { // of data: each thread reserves addresses that it never uses
        limit(RLIMIT_DATA, megabytes(job.memoryMb), megabytes(job.memoryMb));
    }
    constexpr int kMade = O_WRONLY | O_CREAT | O_TRUNC;
    if (stream(job.input, O_RDONLY, STDIN_FILENO) && stream(job.output, kMade, STDOUT_FILENO) &&
        stream(job.error, kMade, STDERR_FILENO) && chdir(job.folder) == 0) {
        execve(job.words[0], job.words.data(), job.environment.data());
    }
    _exit(kCannotStart);
}

std::string contentOf(const std::string& path)
{
    std::array<char, 1024> bytes{};
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    const ssize_t got = file < 0 ? -1 : read(file, bytes.data(), bytes.size());
    if (file >= 0) {
        close(file);
    }
    return {bytes.data(), static_cast<std::size_t>(got < 0 ? 0 : got)};
}

// Processor time of the process in ticks, where all its threads sleep and it waits for no program that it started;
// -1 else.
long ticksAsleep(pid_t process)
{
    const std::string threads = "/proc/" + std::to_string(process) + "/task";
    DIR* const folder = opendir(threads.c_str());
    if (folder == nullptr) {
        return -1;
    }
    long ticks = 0;
    while (const dirent* entry = readdir(folder)) {
        if (entry->d_name[0] == '.') {
            continue;
        }
        const std::string thread = threads + "/" + entry->d_name;
        const std::string stat = contentOf(thread + "/stat");
        const std::size_t name = stat.rfind(") ");
        char state = 0;
        unsigned long user = 0;
        unsigned long system = 0;
        if (name == std::string::npos ||
            std::sscanf(stat.c_str() + name + 2, "%c %*d %*d %*d %*d %*d %*u %*u %*u %*u %*u %lu %lu", &state, &user,
                        &system) != 3 ||
            state != 'S' || !contentOf(thread + "/children").empty()) {
            ticks = -1;
            break;
        }
        ticks += static_cast<long>(user + system);
    }
    closedir(folder);
    return ticks;
}

long nowMs()
{
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * 1000 + now.tv_nsec / 1000000;
}

// Waits for the end. "" where the process ended by itself, else why it was stopped.
const char* waitFor(pid_t process, long wallMs, int& status, rusage& usage)
{
    sigset_t ends;
    sigemptyset(&ends);
    sigaddset(&ends, SIGCHLD);
    const timespec look{0, kLookEveryMs * 1000000};
    const long began = nowMs();
    long lastTicks = -1;
    int looks = 0;
    while (wait4(process, &status, WNOHANG, &usage) != process) {
        if (sigtimedwait(&ends, nullptr, &look) == SIGCHLD) {
            continue;
        }
        const long ticks = ticksAsleep(process);
        looks = ticks >= 0 && ticks == lastTicks ? looks + 1 : 0;
        lastTicks = ticks;
        if (looks >= kLooksUntilIdle || nowMs() - began > wallMs) {
            kill(-process, SIGKILL);
            wait4(process, &status, 0, &usage);
            return looks >= kLooksUntilIdle ? "waits" : "overtime";
        }
    }
    kill(-process, SIGKILL); // what it may have left behind
    return "";
}

std::string endOf(int status)
{
    if (WIFEXITED(status)) {
        return WEXITSTATUS(status) == kCannotStart ? "failed" : "exit " + std::to_string(WEXITSTATUS(status));
    }
    return WTERMSIG(status) == SIGXCPU ? "overtime" : "signal " + std::to_string(WTERMSIG(status));
}

void run(Request& request)
{
    Job job = jobOf(request);
    const pid_t process = fork();
    if (process == 0) {
        becomeJob(job);
    }
    int status = 0;
    rusage usage{};
    std::string end = "failed";
    if (process > 0) {
        setpgid(process, process);
        end = waitFor(process, job.wallMs, status, usage);
        end = end.empty() ? endOf(status) : end;
    }
    const auto ms = [](const timeval& time) { return time.tv_sec * 1000 + time.tv_usec / 1000; };
    std::printf("%s\t%ld\t%ld\n", end.c_str(), usage.ru_maxrss, ms(usage.ru_utime) + ms(usage.ru_stime));
    std::fflush(stdout);
}

} // namespace

int main()
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    sigset_t ends;
    sigemptyset(&ends);
    sigaddset(&ends, SIGCHLD);
    sigprocmask(SIG_BLOCK, &ends, nullptr);
    for (Request request; readRequest(request); request = {}) {
        run(request);
    }
    return 0;
}
