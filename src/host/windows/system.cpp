// The system by the calls of Windows. CI compiles it, so that the seam fits; no run has used it yet.
#include "host/system.h"

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <system_error>
#include <windows.h>

namespace gridforge::inline host {

namespace {

// The system reads and writes at most this much in one call.
constexpr std::size_t kMostAtOnce = std::size_t{1} << 30;

HANDLE handleOf(SystemFile file)
{
    return reinterpret_cast<HANDLE>(file);
}

// Names are UTF-8 inside.
std::wstring wide(std::string_view name)
{
    const int length = static_cast<int>(name.size());
    const int count = MultiByteToWideChar(CP_UTF8, 0, name.data(), length, nullptr, 0);
    std::wstring result(static_cast<std::size_t>(std::max(count, 0)), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, name.data(), length, result.data(), count);
    return result;
}

std::string narrow(std::wstring_view name)
{
    const int length = static_cast<int>(name.size());
    const int count = WideCharToMultiByte(CP_UTF8, 0, name.data(), length, nullptr, 0, nullptr, nullptr);
    std::string result(static_cast<std::size_t>(std::max(count, 0)), '\0');
    WideCharToMultiByte(CP_UTF8, 0, name.data(), length, result.data(), count, nullptr, nullptr);
    return result;
}

SystemStatus statusOf(DWORD error)
{
    switch (error) {
    case ERROR_SUCCESS: return SystemStatus::done;
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND: return SystemStatus::noSuchFile;
    case ERROR_NOT_ENOUGH_MEMORY:
    case ERROR_OUTOFMEMORY: return SystemStatus::outOfMemory;
    case ERROR_ACCESS_DENIED:
    case ERROR_INVALID_NAME:
    case ERROR_DIRECTORY:
    case ERROR_FILENAME_EXCED_RANGE: return SystemStatus::refused;
    default: return SystemStatus::unknown;
    }
}

std::int64_t joined(std::uint32_t high, std::uint32_t low)
{
    return static_cast<std::int64_t>(std::uint64_t{high} << 32 | low);
}

// The system counts 100 nanoseconds from 1601, which 64 bits of nanoseconds hold until 1893 only: from 1970 here.
std::int64_t nanoseconds(std::int64_t hundreds)
{
    constexpr std::int64_t kFrom1970 = 116'444'736'000'000'000;
    return (hundreds - kFrom1970) * 100;
}

std::optional<FileFacts> factsIn(HANDLE handle)
{
    BY_HANDLE_FILE_INFORMATION status = {};
    FILE_BASIC_INFO times = {};
    if (GetFileInformationByHandle(handle, &status) == 0 ||
        GetFileInformationByHandleEx(handle, FileBasicInfo, &times, sizeof times) == 0) {
        return std::nullopt;
    }
    FileFacts facts;
    facts.isFolder = (status.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    facts.size = joined(status.nFileSizeHigh, status.nFileSizeLow);
    facts.lastChange = std::max(nanoseconds(times.LastWriteTime.QuadPart), nanoseconds(times.ChangeTime.QuadPart));
    facts.identity = {status.dwVolumeSerialNumber,
                      static_cast<std::uint64_t>(joined(status.nFileIndexHigh, status.nFileIndexLow)),
                      !facts.isFolder && GetFileType(handle) == FILE_TYPE_DISK};
    return facts;
}

// --- Open files ------------------------------------------------------------------------------------------------------

SystemFile openFile(const std::string& name, OpenFor purpose)
{
    DWORD access = GENERIC_WRITE;
    DWORD creation = OPEN_ALWAYS;
    switch (purpose) {
    case OpenFor::reading:
        access = GENERIC_READ;
        creation = OPEN_EXISTING;
        break;
    case OpenFor::replacing: creation = CREATE_ALWAYS; break;
    case OpenFor::updating: access = GENERIC_READ | GENERIC_WRITE; break;
    }
    constexpr DWORD kShared = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const DWORD flags = purpose == OpenFor::reading ? FILE_FLAG_SEQUENTIAL_SCAN : FILE_ATTRIBUTE_NORMAL;
    const HANDLE handle = CreateFileW(wide(name).c_str(), access, kShared, nullptr, creation, flags, nullptr);
    return handle == INVALID_HANDLE_VALUE ? SystemFile::none : SystemFile{reinterpret_cast<std::intptr_t>(handle)};
}

bool closeFile(SystemFile file)
{
    return CloseHandle(handleOf(file)) != 0;
}

DWORD askedFor(std::size_t count)
{
    return static_cast<DWORD>(std::min(count, kMostAtOnce));
}

std::int64_t readFrom(HANDLE handle, std::span<char> target, OVERLAPPED* place)
{
    DWORD count = 0;
    if (ReadFile(handle, target.data(), askedFor(target.size()), &count, place) != 0) {
        return count;
    }
    const DWORD error = GetLastError();
    return error == ERROR_HANDLE_EOF || error == ERROR_BROKEN_PIPE ? 0 : -1;
}

std::int64_t writeTo(HANDLE handle, std::span<const char> bytes, OVERLAPPED* place)
{
    DWORD count = 0;
    return WriteFile(handle, bytes.data(), askedFor(bytes.size()), &count, place) != 0 ? std::int64_t{count} : -1;
}

bool seekInFile(SystemFile file, std::int64_t position)
{
    LARGE_INTEGER place = {};
    place.QuadPart = position;
    return position >= 0 && SetFilePointerEx(handleOf(file), place, nullptr, FILE_BEGIN) != 0;
}

std::int64_t placeIn(SystemFile file)
{
    LARGE_INTEGER place = {};
    return SetFilePointerEx(handleOf(file), {}, &place, FILE_CURRENT) != 0 ? place.QuadPart : -1;
}

// A call by position also moves the next read and write, so that place is restored.
template <typename Call>
std::int64_t atPosition(SystemFile file, std::int64_t position, Call call)
{
    const std::int64_t before = placeIn(file);
    if (position < 0 || before < 0) {
        return -1;
    }
    OVERLAPPED place = {};
    place.Offset = static_cast<DWORD>(position);
    place.OffsetHigh = static_cast<DWORD>(position >> 32);
    const std::int64_t count = call(handleOf(file), &place);
    return seekInFile(file, before) ? count : -1;
}

std::int64_t readFile(SystemFile file, std::span<char> target)
{
    return readFrom(handleOf(file), target, nullptr);
}

std::int64_t readFileAt(SystemFile file, std::int64_t position, std::span<char> target)
{
    return atPosition(file, position,
                      [&](HANDLE handle, OVERLAPPED* place) { return readFrom(handle, target, place); });
}

std::int64_t writeFile(SystemFile file, std::span<const char> bytes)
{
    return writeTo(handleOf(file), bytes, nullptr);
}

std::int64_t writeFileAt(SystemFile file, std::int64_t position, std::span<const char> bytes)
{
    return atPosition(file, position, [&](HANDLE handle, OVERLAPPED* place) { return writeTo(handle, bytes, place); });
}

bool truncateFile(SystemFile file, std::int64_t size)
{
    FILE_END_OF_FILE_INFO end = {};
    end.EndOfFile.QuadPart = size;
    return SetFileInformationByHandle(handleOf(file), FileEndOfFileInfo, &end, sizeof end) != 0;
}

void reserveInFile(SystemFile file, std::int64_t position, std::int64_t count)
{
    FILE_ALLOCATION_INFO room = {};
    room.AllocationSize.QuadPart = position + count;
    SetFileInformationByHandle(handleOf(file), FileAllocationInfo, &room, sizeof room);
}

void willReadFile(SystemFile, std::int64_t, std::int64_t) {}

std::optional<FileFacts> factsOfOpenFile(SystemFile file)
{
    return factsIn(handleOf(file));
}

// --- Files without a name --------------------------------------------------------------------------------------------

SystemFile openUnnamedFile(const std::string& folder)
{
    const std::wstring path = wide(folder.empty() ? "." : folder);
    std::wstring name(MAX_PATH, L'\0');
    if (GetTempFileNameW(path.c_str(), L"gfg", 0, name.data()) == 0) {
        return SystemFile::none;
    }
    const HANDLE handle = CreateFileW(name.c_str(), GENERIC_READ | GENERIC_WRITE | DELETE, FILE_SHARE_DELETE, nullptr,
                                      CREATE_ALWAYS, FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr);
    return handle == INVALID_HANDLE_VALUE ? SystemFile::none : SystemFile{reinterpret_cast<std::intptr_t>(handle)};
}

bool setAsideFor(SystemFile file, std::int64_t size)
{
    FILE_ALLOCATION_INFO room = {};
    room.AllocationSize.QuadPart = size;
    return SetFileInformationByHandle(handleOf(file), FileAllocationInfo, &room, sizeof room) != 0;
}

// A file that goes when it is closed keeps no name.
bool giveNameTo(SystemFile, const std::string&)
{
    return false;
}

// --- Names -----------------------------------------------------------------------------------------------------------

SystemStatus factsOfName(const std::string& name, FileFacts& facts)
{
    constexpr DWORD kShared = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const HANDLE handle = CreateFileW(wide(name).c_str(), FILE_READ_ATTRIBUTES, kShared, nullptr, OPEN_EXISTING,
                                      FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
        return statusOf(GetLastError());
    }
    const std::optional<FileFacts> found = factsIn(handle);
    CloseHandle(handle);
    facts = found.value_or(facts);
    return found ? SystemStatus::done : SystemStatus::unknown;
}

SystemStatus lookUpName(const std::string& name)
{
    return GetFileAttributesW(wide(name).c_str()) == INVALID_FILE_ATTRIBUTES ? statusOf(GetLastError())
                                                                             : SystemStatus::done;
}

SystemStatus listFolder(const std::string& folder, std::vector<std::string>& names)
{
    WIN32_FIND_DATAW entry = {};
    const HANDLE search = FindFirstFileW(wide(folder + "/*").c_str(), &entry);
    if (search == INVALID_HANDLE_VALUE) {
        return statusOf(GetLastError());
    }
    do {
        const std::string name = narrow(entry.cFileName);
        if (name != "." && name != "..") {
            names.push_back(name);
        }
    } while (FindNextFileW(search, &entry) != 0);
    const DWORD error = GetLastError();
    FindClose(search);
    return error == ERROR_NO_MORE_FILES ? SystemStatus::done : statusOf(error);
}

std::optional<std::string> fullNameOf(const std::string& name)
{
    std::error_code unknown;
    const auto full = std::filesystem::canonical(wide(name), unknown);
    return unknown ? std::nullopt : std::optional(narrow(full.wstring()));
}

// --- Console and time ------------------------------------------------------------------------------------------------

std::int64_t readFromConsole(std::span<char> target)
{
    return readFrom(GetStdHandle(STD_INPUT_HANDLE), target, nullptr);
}

void writeToConsole(std::string_view text)
{
    while (!text.empty()) {
        const std::int64_t count = writeTo(GetStdHandle(STD_OUTPUT_HANDLE), text, nullptr);
        if (count <= 0) {
            return; // nobody reads the console any more; the run goes on for its files
        }
        text.remove_prefix(static_cast<std::size_t>(count));
    }
}

bool isConsoleWatched()
{
    DWORD mode = 0;
    return GetConsoleMode(GetStdHandle(STD_OUTPUT_HANDLE), &mode) != 0;
}

std::int64_t timeNow()
{
    FILETIME now = {};
    GetSystemTimeAsFileTime(&now);
    return nanoseconds(joined(now.dwHighDateTime, now.dwLowDateTime));
}

// The system waits for whole milliseconds, in 32 bits.
void waitFor(std::int64_t nanoseconds)
{
    constexpr std::int64_t kMillisecond = 1'000'000;
    Sleep(static_cast<DWORD>(std::clamp<std::int64_t>(nanoseconds / kMillisecond, 0, MAXDWORD - 1)));
}

CalendarDate dateOfToday()
{
    SYSTEMTIME now = {};
    GetLocalTime(&now);
    return {now.wYear, now.wMonth, now.wDay};
}

// --- What the process may take ---------------------------------------------------------------------------------------

std::size_t processorsToUse()
{
    SYSTEM_INFO machine = {};
    GetSystemInfo(&machine);
    return std::max<std::size_t>(1, machine.dwNumberOfProcessors);
}

std::string folderForTemporaryFiles()
{
    std::wstring path(MAX_PATH + 1, L'\0');
    path.resize(GetTempPathW(static_cast<DWORD>(path.size()), path.data()));
    return narrow(path);
}

std::uint64_t memoryLeftToTake()
{
    MEMORYSTATUSEX memory = {};
    memory.dwLength = sizeof memory;
    return GlobalMemoryStatusEx(&memory) == 0 ? 0 : memory.ullAvailPhys;
}

// --- Memory ----------------------------------------------------------------------------------------------------------

void* takeZeroed(std::size_t bytes)
{
    return VirtualAlloc(nullptr, bytes, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
}

void releaseZeroed(void* pages, std::size_t)
{
    VirtualFree(pages, 0, MEM_RELEASE);
}

} // namespace

PageSource nativePages() noexcept
{
    return {takeZeroed, releaseZeroed};
}

bool nativeAvx2() noexcept
{
    return true;
}

const System& nativeSystem()
{
    static constexpr System kWindows = {
        .open = openFile,
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
        .temporaryFolder = folderForTemporaryFiles,
        .memoryLeft = memoryLeftToTake,
    };
    return kWindows;
}

void prepareProcess()
{
    // No file can get the number of a standard handle, and no signal ends a run that writes.
    SetConsoleOutputCP(CP_UTF8);
}

void runGuarded(const std::function<void()>& work)
{
    work(); // without a guard yet
}

} // namespace gridforge::inline host
