#include "host/memory/memory_system.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <map>
#include <memory>
#include <set>
#include <utility>
#include <vector>

namespace gridforge::inline host {

namespace {

// Writes past this are refused, as on a full disk.
constexpr std::int64_t kLargestFile = std::int64_t{1} << 30;

struct MemoryFile {
    std::string bytes;
    std::uint64_t number = 0;
    std::int64_t lastChange = 0;
};

struct OpenMemoryFile {
    std::shared_ptr<MemoryFile> file; // null: closed, and the number is unused
    OpenFor purpose = OpenFor::reading;
    std::size_t position = 0;
};

struct Memory {
    std::map<std::string, std::shared_ptr<MemoryFile>> files; // by name
    std::vector<OpenMemoryFile> open;
    std::string answers;
    std::string console;
    std::uint64_t filesMade = 0;
    std::int64_t steps = 0; // each change of a file or a folder is a step, and the steps are the time
};

Memory& memory()
{
    static Memory theMemory;
    return theMemory;
}

// The name without steps that only lead to the folder of the run.
std::string plainName(std::string_view name)
{
    while (name.starts_with("./") || name.starts_with('/')) {
        name.remove_prefix(name.starts_with('/') ? 1 : 2);
    }
    return std::string(name);
}

// The start of the names in a folder; "" of the folder of the run.
std::string folderStart(std::string_view folder)
{
    std::string start = plainName(folder);
    if (start.empty() || start == ".") {
        return {};
    }
    return start.ends_with('/') ? start : start + '/';
}

bool isFolder(const std::string& name)
{
    const std::string start = folderStart(name);
    const auto first = memory().files.lower_bound(start);
    return start.empty() || (first != memory().files.end() && first->first.starts_with(start));
}

std::shared_ptr<MemoryFile> find(const std::string& name)
{
    const auto found = memory().files.find(plainName(name));
    return found == memory().files.end() ? nullptr : found->second;
}

void touch(MemoryFile& file)
{
    file.lastChange = ++memory().steps;
}

std::shared_ptr<MemoryFile> make(const std::string& name)
{
    auto file = std::make_shared<MemoryFile>();
    file->number = ++memory().filesMade;
    touch(*file);
    memory().files[plainName(name)] = file;
    return file;
}

FileFacts factsIn(const MemoryFile& file)
{
    return {false, static_cast<std::int64_t>(file.bytes.size()), file.lastChange, {1, file.number, true}};
}

OpenMemoryFile& opened(SystemFile file)
{
    return memory().open[static_cast<std::size_t>(file)];
}

// --- Open files ------------------------------------------------------------------------------------------------------

bool mayBeMade(const std::string& name)
{
    const std::string plain = plainName(name);
    const std::size_t separator = plain.rfind('/');
    return !plain.empty() && (separator == std::string::npos || isFolder(plain.substr(0, separator)));
}

SystemFile openSlot(OpenMemoryFile file)
{
    auto& open = memory().open;
    auto slot = std::ranges::find_if(open, [](const OpenMemoryFile& one) { return one.file == nullptr; });
    if (slot == open.end()) {
        slot = open.emplace(open.end());
    }
    *slot = std::move(file);
    return SystemFile{slot - open.begin()};
}

SystemFile openFile(const std::string& name, OpenFor purpose)
{
    std::shared_ptr<MemoryFile> file = find(name);
    if (isFolder(name) || (!file && (purpose == OpenFor::reading || !mayBeMade(name)))) {
        return SystemFile::none;
    }
    if (!file) {
        file = make(name);
    }
    if (purpose == OpenFor::replacing) {
        file->bytes.clear();
        touch(*file);
    }
    return openSlot({std::move(file), purpose, 0});
}

bool closeFile(SystemFile file)
{
    opened(file) = {};
    return true;
}

std::int64_t readFileAt(SystemFile file, std::int64_t position, std::span<char> target)
{
    const OpenMemoryFile& from = opened(file);
    if (position < 0 || (from.purpose != OpenFor::reading && from.purpose != OpenFor::updating)) {
        return -1;
    }
    const std::string& bytes = from.file->bytes;
    const std::size_t start = std::min(static_cast<std::size_t>(position), bytes.size());
    const std::size_t count = std::min(target.size(), bytes.size() - start);
    std::copy_n(bytes.data() + start, count, target.data());
    return static_cast<std::int64_t>(count);
}

std::int64_t readFile(SystemFile file, std::span<char> target)
{
    OpenMemoryFile& from = opened(file);
    const std::int64_t count = readFileAt(file, static_cast<std::int64_t>(from.position), target);
    from.position += static_cast<std::size_t>(std::max<std::int64_t>(count, 0));
    return count;
}

std::int64_t writeFileAt(SystemFile file, std::int64_t position, std::span<const char> bytes)
{
    const OpenMemoryFile& to = opened(file);
    const bool fits = position >= 0 && position <= kLargestFile - std::ssize(bytes);
    if (!fits || to.purpose == OpenFor::reading) {
        return -1;
    }
    std::string& all = to.file->bytes;
    const auto start = static_cast<std::size_t>(position);
    if (!bytes.empty()) {
        all.resize(std::max(all.size(), start + bytes.size()));
        std::ranges::copy(bytes, all.begin() + static_cast<std::ptrdiff_t>(start));
        touch(*to.file);
    }
    return static_cast<std::int64_t>(bytes.size());
}

std::int64_t writeFile(SystemFile file, std::span<const char> bytes)
{
    OpenMemoryFile& to = opened(file);
    const std::int64_t count = writeFileAt(file, static_cast<std::int64_t>(to.position), bytes);
    to.position += static_cast<std::size_t>(std::max<std::int64_t>(count, 0));
    return count;
}

bool seekInFile(SystemFile file, std::int64_t position)
{
    if (position < 0) {
        return false;
    }
    opened(file).position = static_cast<std::size_t>(position);
    return true;
}

bool truncateFile(SystemFile file, std::int64_t size)
{
    const OpenMemoryFile& at = opened(file);
    if (size < 0 || size > kLargestFile || at.purpose == OpenFor::reading) {
        return false;
    }
    at.file->bytes.resize(static_cast<std::size_t>(size));
    touch(*at.file);
    return true;
}

void reserveInFile(SystemFile, std::int64_t, std::int64_t) {}

void willReadFile(SystemFile, std::int64_t, std::int64_t, ReadOf) {}

std::optional<FileFacts> factsOfOpenFile(SystemFile file)
{
    return factsIn(*opened(file).file);
}

// --- Files without a name --------------------------------------------------------------------------------------------

SystemFile openUnnamedFile(const std::string& folder)
{
    if (!isFolder(folder)) {
        return SystemFile::none;
    }
    auto file = std::make_shared<MemoryFile>();
    file->number = ++memory().filesMade;
    return openSlot({std::move(file), OpenFor::updating, 0});
}

bool setAsideFor(SystemFile file, std::int64_t size)
{
    return truncateFile(file, size);
}

bool giveNameTo(SystemFile file, const std::string& name)
{
    if (isFolder(name) || !mayBeMade(name)) {
        return false;
    }
    touch(*opened(file).file);
    memory().files[plainName(name)] = opened(file).file;
    return true;
}

// --- Names -----------------------------------------------------------------------------------------------------------

SystemStatus factsOfName(const std::string& name, FileFacts& facts)
{
    if (const auto file = find(name)) {
        facts = factsIn(*file);
        return SystemStatus::done;
    }
    if (name.empty() || !isFolder(name)) {
        return SystemStatus::noSuchFile;
    }
    // Folders have no record of their own: any step may have changed one, and its name is its identity.
    facts = {true, 0, memory().steps, {2, std::hash<std::string>()(folderStart(name)), false}};
    return SystemStatus::done;
}

SystemStatus lookUpName(const std::string& name)
{
    FileFacts facts;
    return factsOfName(name, facts);
}

SystemStatus listFolder(const std::string& folder, std::vector<std::string>& names)
{
    if (!isFolder(folder)) {
        return find(folder) ? SystemStatus::refused : SystemStatus::noSuchFile;
    }
    const std::string start = folderStart(folder);
    const auto& files = memory().files;
    std::set<std::string> found;
    for (auto file = files.lower_bound(start); file != files.end() && file->first.starts_with(start); ++file) {
        const std::string rest = file->first.substr(start.size());
        found.insert(rest.substr(0, rest.find('/')));
    }
    names.insert(names.end(), found.begin(), found.end());
    return SystemStatus::done;
}

std::optional<std::string> fullNameOf(const std::string& name)
{
    return lookUpName(name) == SystemStatus::done ? std::optional('/' + plainName(name)) : std::nullopt;
}

// --- Console and time ------------------------------------------------------------------------------------------------

std::int64_t readFromConsole(std::span<char> target)
{
    std::string& answers = memory().answers;
    const std::size_t count = std::min(target.size(), answers.size());
    std::copy_n(answers.data(), count, target.data());
    answers.erase(0, count);
    return static_cast<std::int64_t>(count);
}

void writeToConsole(std::string_view text)
{
    memory().console += text;
}

bool isConsoleWatched()
{
    return false;
}

std::int64_t timeNow()
{
    return memory().steps;
}

// Time passes at once.
void waitFor(std::int64_t nanoseconds)
{
    memory().steps += nanoseconds;
}

CalendarDate dateOfToday()
{
    return {2000, 1, 1};
}

} // namespace

const System& memorySystem()
{
    static constexpr System kMemory = {
        .open = openFile,
        .inherited = [](std::int64_t) { return SystemFile::none; },
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
        .processors = [] { return std::size_t{1}; },
        .temporaryFolder = [] { return std::string(); },
        .memoryLeft = [] { return std::uint64_t{kLargestFile}; },
    };
    return kMemory;
}

void clearMemorySystem()
{
    Memory cleared;
    cleared.filesMade = memory().filesMade;
    cleared.steps = memory().steps + 1; // so that no folder looks like one of the same name before
    memory() = std::move(cleared);
}

void giveMemoryFile(const std::string& name, std::string_view bytes)
{
    make(name)->bytes = bytes;
}

std::optional<std::string> memoryFile(const std::string& name)
{
    const std::shared_ptr<MemoryFile> file = find(name);
    return file ? std::optional(file->bytes) : std::nullopt;
}

void giveMemoryAnswers(std::string_view answers)
{
    memory().answers += answers;
}

std::string takeMemoryConsole()
{
    return std::exchange(memory().console, {});
}

} // namespace gridforge::inline host
