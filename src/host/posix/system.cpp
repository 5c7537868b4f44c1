// The system by the POSIX calls.
#include "host/system.h"

#include "host/posix/read_hints.h"
#include "host/posix/resources.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csetjmp>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <dirent.h>
#include <fcntl.h>
#include <filesystem>
#include <limits>
#include <memory>
#include <poll.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace gridforge::inline host {

namespace {

// The system reads and writes at most this much in one call.
constexpr std::size_t kMostAtOnce = std::size_t{1} << 30;
constexpr mode_t kNewFileMode = 0666;

int descriptorOf(SystemFile file)
{
    return static_cast<int>(file);
}

// Repeats a call that a signal interrupted.
template <typename Call>
std::int64_t uninterrupted(Call call)
{
    std::int64_t result = 0;
    do {
        result = call();
    } while (result < 0 && errno == EINTR);
    return result;
}

SystemStatus statusOf(int error)
{
    switch (error) {
    case 0: return SystemStatus::done;
    case ENOENT: return SystemStatus::noSuchFile;
    case ENOMEM: return SystemStatus::outOfMemory;
    case ENOTDIR:
    case EACCES:
    case ELOOP:
    case ENAMETOOLONG: return SystemStatus::refused;
    default: return SystemStatus::unknown;
    }
}

std::int64_t nanoseconds(const timespec& time)
{
    constexpr std::int64_t kNanoseconds = 1'000'000'000;
    return std::int64_t{time.tv_sec} * kNanoseconds + time.tv_nsec;
}

FileFacts factsIn(const struct stat& status)
{
    FileFacts facts;
    facts.isFolder = S_ISDIR(status.st_mode);
    facts.size = status.st_size;
    facts.lastChange = std::max(nanoseconds(status.st_mtim), nanoseconds(status.st_ctim));
    facts.identity = {status.st_dev, status.st_ino, S_ISREG(status.st_mode)};
    return facts;
}

// --- Open files ------------------------------------------------------------------------------------------------------

bool isConsole(const std::string& name)
{
    struct stat console = {};
    struct stat file = {};
    return fstat(STDOUT_FILENO, &console) == 0 && S_ISREG(console.st_mode) && ::stat(name.c_str(), &file) == 0 &&
           file.st_dev == console.st_dev && file.st_ino == console.st_ino;
}

SystemFile openFile(const std::string& name, OpenFor purpose)
{
    if (purpose == OpenFor::replacing && isConsole(name)) {
        ::unlink(name.c_str()); // the lines of the console would get among what is written
    }
    int flags = O_CLOEXEC;
    switch (purpose) {
    case OpenFor::reading: flags |= O_RDONLY; break;
    case OpenFor::replacing: flags |= O_CREAT | O_WRONLY | O_TRUNC; break;
    case OpenFor::updating: flags |= O_CREAT | O_RDWR; break;
    }
    const auto descriptor = static_cast<int>(uninterrupted([&] { return ::open(name.c_str(), flags, kNewFileMode); }));
    if (descriptor >= 0 && purpose == OpenFor::reading) {
        posix_fadvise(descriptor, 0, 0, POSIX_FADV_SEQUENTIAL);
    }
    return SystemFile{descriptor};
}

SystemFile inheritedFile(std::int64_t number)
{
    const bool isNumber = number >= 0 && number <= std::numeric_limits<int>::max();
    return isNumber && fcntl(static_cast<int>(number), F_GETFD) != -1 ? SystemFile{number} : SystemFile::none;
}

bool closeFile(SystemFile file)
{
    return ::close(descriptorOf(file)) == 0 || errno == EINTR;
}

std::int64_t readFile(SystemFile file, std::span<char> target)
{
    return uninterrupted(
        [&] { return ::read(descriptorOf(file), target.data(), std::min(target.size(), kMostAtOnce)); });
}

std::int64_t readFileAt(SystemFile file, std::int64_t position, std::span<char> target)
{
    return uninterrupted(
        [&] { return ::pread(descriptorOf(file), target.data(), std::min(target.size(), kMostAtOnce), position); });
}

std::int64_t writeFile(SystemFile file, std::span<const char> bytes)
{
    return uninterrupted(
        [&] { return ::write(descriptorOf(file), bytes.data(), std::min(bytes.size(), kMostAtOnce)); });
}

std::int64_t writeFileAt(SystemFile file, std::int64_t position, std::span<const char> bytes)
{
    return uninterrupted(
        [&] { return ::pwrite(descriptorOf(file), bytes.data(), std::min(bytes.size(), kMostAtOnce), position); });
}

bool seekInFile(SystemFile file, std::int64_t position)
{
    return position >= 0 && ::lseek(descriptorOf(file), position, SEEK_SET) == position;
}

bool truncateFile(SystemFile file, std::int64_t size)
{
    return uninterrupted([&] { return ::ftruncate(descriptorOf(file), size); }) == 0;
}

void reserveInFile([[maybe_unused]] SystemFile file, [[maybe_unused]] std::int64_t position,
                   [[maybe_unused]] std::int64_t count)
{
#ifdef __linux__
    [[maybe_unused]] const int ignored = ::fallocate(descriptorOf(file), FALLOC_FL_KEEP_SIZE, position, count);
#endif
}

void willReadFile(SystemFile file, std::int64_t position, std::int64_t count, ReadOf of)
{
    const auto readAhead = [file] {
        struct stat status = {};
        return ::fstat(descriptorOf(file), &status) == 0 ? knownReadAheadOf(status.st_dev) : 0;
    };
    if (isHintOfUse(count, of, readAhead)) {
        posix_fadvise(descriptorOf(file), position, count, POSIX_FADV_WILLNEED);
    }
}

std::optional<FileFacts> factsOfOpenFile(SystemFile file)
{
    struct stat status = {};
    return ::fstat(descriptorOf(file), &status) == 0 ? std::optional(factsIn(status)) : std::nullopt;
}

// --- Files without a name --------------------------------------------------------------------------------------------

// For file systems without unnamed files: a file that loses its name at once, and cannot get one again.
SystemFile openNameless(const std::string& folder)
{
    std::string name = (folder.empty() ? "." : folder) + "/gridforge-XXXXXX";
    const int descriptor = ::mkostemp(name.data(), O_CLOEXEC);
    if (descriptor >= 0) {
        ::unlink(name.c_str());
    }
    return SystemFile{descriptor};
}

SystemFile openUnnamedFile(const std::string& folder)
{
#ifdef O_TMPFILE
    const char* const path = folder.empty() ? "." : folder.c_str();
    const auto descriptor =
        static_cast<int>(uninterrupted([&] { return ::open(path, O_TMPFILE | O_RDWR | O_CLOEXEC, kNewFileMode); }));
    if (descriptor >= 0) {
        return SystemFile{descriptor};
    }
#endif
    return openNameless(folder);
}

// True also if the file system cannot set bytes aside: a write that fails will report it.
bool setAsideFor(SystemFile file, std::int64_t size)
{
#ifdef __linux__
    const auto result = uninterrupted([&] { return ::fallocate(descriptorOf(file), 0, 0, size); });
    return result == 0 || errno == EOPNOTSUPP || errno == ENOSYS;
#else
    return truncateFile(file, size);
#endif
}

// If `name` exists, it may be replaced as a whole, and the new file gets its rights.
bool takeRights(int descriptor, const std::string& name)
{
    struct stat old = {};
    struct stat fresh = {};
    if (::lstat(name.c_str(), &old) != 0) {
        return errno == ENOENT;
    }
    return S_ISREG(old.st_mode) && old.st_nlink == 1 && ::fstat(descriptor, &fresh) == 0 &&
           old.st_uid == fresh.st_uid && old.st_gid == fresh.st_gid && old.st_dev == fresh.st_dev &&
           ::listxattr(name.c_str(), nullptr, 0) <= 0 && ::fchmod(descriptor, old.st_mode & 07777U) == 0;
}

// Through another name, because a link replaces no file and a file without a name cannot be renamed.
bool giveNameTo(SystemFile file, const std::string& name)
{
    const int descriptor = descriptorOf(file);
    const std::string entry = "/proc/self/fd/" + std::to_string(descriptor);
    const std::string passing = name + '.' + std::to_string(::getpid()) + ".part";
    if (!takeRights(descriptor, name) ||
        ::linkat(AT_FDCWD, entry.c_str(), AT_FDCWD, passing.c_str(), AT_SYMLINK_FOLLOW) != 0) {
        return false;
    }
    if (std::rename(passing.c_str(), name.c_str()) == 0) {
        return true;
    }
    ::unlink(passing.c_str());
    return false;
}

// --- Names -----------------------------------------------------------------------------------------------------------

SystemStatus factsOfName(const std::string& name, FileFacts& facts)
{
    struct stat status = {};
    if (::stat(name.c_str(), &status) != 0) {
        return statusOf(errno);
    }
    facts = factsIn(status);
    return SystemStatus::done;
}

SystemStatus lookUpName(const std::string& name)
{
    struct stat status = {};
    return ::lstat(name.c_str(), &status) == 0 ? SystemStatus::done : statusOf(errno);
}

struct CloseFolder {
    void operator()(DIR* folder) const { closedir(folder); }
};

SystemStatus listFolder(const std::string& folder, std::vector<std::string>& names)
{
    const std::unique_ptr<DIR, CloseFolder> open(opendir(folder.c_str()));
    if (!open) {
        return statusOf(errno);
    }
    errno = 0;
    while (const dirent* entry = readdir(open.get())) {
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..") {
            names.emplace_back(name);
        }
        errno = 0;
    }
    return statusOf(errno);
}

std::optional<std::string> fullNameOf(const std::string& name)
{
    std::error_code unknown;
    const auto full = std::filesystem::canonical(name, unknown);
    return unknown ? std::nullopt : std::optional(full.string());
}

// --- Console and time ------------------------------------------------------------------------------------------------

// The call should be repeated: a signal interrupted it, or a non-blocking stream was not ready, and now is.
bool mayTryAgain(int stream, short event)
{
    if (errno == EAGAIN || errno == EWOULDBLOCK) {
        constexpr int kForever = -1;
        pollfd waited{stream, event, 0};
        return poll(&waited, 1, kForever) > 0 || errno == EINTR;
    }
    return errno == EINTR;
}

std::int64_t readFromConsole(std::span<char> target)
{
    ssize_t got = 0;
    do {
        got = ::read(STDIN_FILENO, target.data(), target.size());
    } while (got < 0 && mayTryAgain(STDIN_FILENO, POLLIN));
    return got;
}

void writeToConsole(std::string_view text)
{
    while (!text.empty()) {
        const ssize_t count = ::write(STDOUT_FILENO, text.data(), text.size());
        if (count < 0 && mayTryAgain(STDOUT_FILENO, POLLOUT)) {
            continue;
        }
        if (count <= 0) {
            return; // nobody reads the console any more; the run goes on for its files
        }
        text.remove_prefix(static_cast<std::size_t>(count));
    }
}

bool isConsoleWatched()
{
    return isatty(STDOUT_FILENO) == 1;
}

std::int64_t timeNow()
{
    timespec now = {};
    clock_gettime(CLOCK_REALTIME, &now);
    return nanoseconds(now);
}

void waitFor(std::int64_t nanoseconds)
{
    std::this_thread::sleep_for(std::chrono::nanoseconds(nanoseconds));
}

CalendarDate dateOfToday()
{
    constexpr int kFirstYear = 1900;
    const std::time_t now = std::time(nullptr);
    std::tm date{};
    localtime_r(&now, &date);
    return {date.tm_year + kFirstYear, date.tm_mon + 1, date.tm_mday};
}

// --- Faults ----------------------------------------------------------------------------------------------------------

sigjmp_buf& placeToGoOn()
{
    static sigjmp_buf place;
    return place;
}

void goOn(int /*signal*/)
{
    siglongjmp(placeToGoOn(), 1);
}

} // namespace

const System& nativeSystem()
{
    static constexpr System kPosix = {
        .open = openFile,
        .inherited = inheritedFile,
        .close = closeFile,
        .read = readFile,
        .readAt = readFileAt,
        .write = writeFile,
        .writeAt = writeFileAt,
        .seek = seekInFile,
        .truncate = truncateFile,
        .reserve = reserveInFile,
        .willRead = willReadFile,
        .factsOfOpen = factsOfOpenFile,
        .openUnnamed = openUnnamedFile,
        .setAside = setAsideFor,
        .giveName = giveNameTo,
        .facts = factsOfName,
        .lookUp = lookUpName,
        .list = listFolder,
        .fullName = fullNameOf,
        .readConsole = readFromConsole,
        .writeConsole = writeToConsole,
        .consoleIsWatched = isConsoleWatched,
        .now = timeNow,
        .wait = waitFor,
        .today = dateOfToday,
        .processors = processorsToUse,
        .temporaryFolder = [] { return std::string("/tmp"); },
        .memoryLeft = memoryLeftToTake,
    };
    return kPosix;
}

void prepareProcess()
{
    // If the caller has closed a standard stream, the first file of the run would get its number, and the console's text
    // would go into that file.
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(stream, F_GETFD) == -1) {
            [[maybe_unused]] const int null = ::open("/dev/null", stream == STDIN_FILENO ? O_RDONLY : O_WRONLY);
        }
    }
    // A console that nobody reads any more must not keep a run from writing its files.
    std::signal(SIGPIPE, SIG_IGN);
    // Without the signal, a write past the largest allowed file fails and is reported.
    std::signal(SIGXFSZ, SIG_IGN);
}

std::vector<std::string> argumentsOf(int argc, char** argv)
{
    return {argv + (argc > 0 ? 1 : 0), argv + argc};
}

std::optional<std::string> processVariable(const char* name)
{
    const char* const value = std::getenv(name);
    return value == nullptr ? std::nullopt : std::optional<std::string>(value);
}

void runGuarded(const std::function<void()>& work)
{
    struct sigaction onFault = {};
    struct sigaction earlier = {};
    onFault.sa_handler = goOn;
    sigaction(SIGSEGV, &onFault, &earlier);
    if (sigsetjmp(placeToGoOn(), 1) == 0) {
        work();
    }
    sigaction(SIGSEGV, &earlier, nullptr);
}

} // namespace gridforge::inline host
