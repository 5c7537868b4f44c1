// The system by the calls of Windows.
#include "host/system.h"

#include "host/windows/clock.h"
#include "host/windows/console.h"
#include "host/windows/names.h"
#include "host/windows/resources.h"
#include "host/windows/scratch_file.h"

#include <algorithm>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <utility>
#include <vector>
#include <windows.h>

namespace gridforge::inline host {

namespace {

// The system reads and writes at most this much in one call.
constexpr std::size_t kMostAtOnce = std::size_t{1} << 30;
constexpr DWORD kSharedByAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

// Reading by position moves the system's own position, so each file has one here for the reads and writes in order.
struct OpenFile {
    HANDLE handle = INVALID_HANDLE_VALUE;
    bool hasPositions = false; // unlike a pipe or a device
    bool isUnnamed = false;
    std::int64_t position = 0;
};

OpenFile& openFileOf(SystemFile file)
{
    return *reinterpret_cast<OpenFile*>(file);
}

SystemFile kept(HANDLE handle)
{
    if (handle == INVALID_HANDLE_VALUE) {
        return SystemFile::none;
    }
    auto file = std::make_unique<OpenFile>();
    file->handle = handle;
    file->hasPositions = GetFileType(handle) == FILE_TYPE_DISK;
    return SystemFile{reinterpret_cast<std::intptr_t>(file.release())};
}

SystemStatus statusOf(DWORD error)
{
    switch (error) {
    case ERROR_SUCCESS: return SystemStatus::done;
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_DRIVE:
    case ERROR_BAD_NETPATH:                                   // a server that is not there
    case ERROR_BAD_NET_NAME: return SystemStatus::noSuchFile; // a share that the server does not have
    case ERROR_NOT_ENOUGH_MEMORY:
    case ERROR_OUTOFMEMORY: return SystemStatus::outOfMemory;
    case ERROR_ACCESS_DENIED:
    case ERROR_SHARING_VIOLATION:
    case ERROR_INVALID_NAME:
    case ERROR_BAD_PATHNAME:
    case ERROR_DIRECTORY:
    case ERROR_CANT_RESOLVE_FILENAME: // links in a ring
    case ERROR_FILENAME_EXCED_RANGE: return SystemStatus::refused;
    default: return SystemStatus::unknown;
    }
}

std::int64_t joined(std::uint32_t high, std::uint32_t low)
{
    return static_cast<std::int64_t>(std::uint64_t{high} << 32 | low);
}

std::optional<FileFacts> factsIn(HANDLE handle)
{
    FileFacts facts;
    if (GetFileType(handle) != FILE_TYPE_DISK) {
        facts.identity.number = reinterpret_cast<std::uint64_t>(handle);
        return facts;
    }
    BY_HANDLE_FILE_INFORMATION status = {};
    FILE_BASIC_INFO times = {};
    if (GetFileInformationByHandle(handle, &status) == 0 ||
        GetFileInformationByHandleEx(handle, FileBasicInfo, &times, sizeof times) == 0) {
        return std::nullopt;
    }
    facts.isFolder = (status.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    facts.size = joined(status.nFileSizeHigh, status.nFileSizeLow);
    facts.lastChange = nanosecondsFrom1970(std::max(times.LastWriteTime.QuadPart, times.ChangeTime.QuadPart));
    facts.identity = {status.dwVolumeSerialNumber,
                      static_cast<std::uint64_t>(joined(status.nFileIndexHigh, status.nFileIndexLow)), !facts.isFolder};
    return facts;
}

// --- Open files ------------------------------------------------------------------------------------------------------

// Goes on where the caller of the process has stopped.
SystemFile inheritedFile(std::int64_t number)
{
    const auto handle = reinterpret_cast<HANDLE>(static_cast<std::intptr_t>(number));
    DWORD flags = 0;
    // Numbers below 0 stand for the process and its thread.
    if (number <= 0 || GetHandleInformation(handle, &flags) == 0) {
        return SystemFile::none;
    }
    const SystemFile file = kept(handle);
    LARGE_INTEGER reached = {};
    if (openFileOf(file).hasPositions && SetFilePointerEx(handle, {}, &reached, FILE_CURRENT) != 0) {
        openFileOf(file).position = reached.QuadPart;
    }
    return file;
}

// The open files without a name. Closed at an end of the run from inside it, they are gone when the caller looks.
class UnnamedFiles {
public:
    UnnamedFiles() = default;
    UnnamedFiles(const UnnamedFiles&) = delete;
    UnnamedFiles& operator=(const UnnamedFiles&) = delete;
    ~UnnamedFiles() { std::for_each(handles_.begin(), handles_.end(), CloseHandle); }

    void add(HANDLE handle)
    {
        const std::scoped_lock lock(mutex_);
        handles_.insert(handle);
    }
    void remove(HANDLE handle)
    {
        const std::scoped_lock lock(mutex_);
        handles_.erase(handle);
    }

private:
    std::mutex mutex_;
    std::set<HANDLE> handles_;
};

UnnamedFiles& unnamedFiles()
{
    static UnnamedFiles files;
    return files;
}

bool closeFile(SystemFile file)
{
    const std::unique_ptr<OpenFile> open(&openFileOf(file));
    if (open->isUnnamed) {
        unnamedFiles().remove(open->handle);
    }
    return CloseHandle(open->handle) != 0;
}

DWORD askedFor(std::size_t count)
{
    return static_cast<DWORD>(std::min(count, kMostAtOnce));
}

std::int64_t readAtPlace(HANDLE handle, std::span<char> target, OVERLAPPED* place)
{
    DWORD count = 0;
    if (ReadFile(handle, target.data(), askedFor(target.size()), &count, place) != 0) {
        return count;
    }
    const DWORD error = GetLastError();
    return error == ERROR_HANDLE_EOF || error == ERROR_BROKEN_PIPE ? 0 : -1;
}

std::int64_t writeAtPlace(HANDLE handle, std::span<const char> bytes, OVERLAPPED* place)
{
    DWORD count = 0;
    return WriteFile(handle, bytes.data(), askedFor(bytes.size()), &count, place) != 0 ? std::int64_t{count} : -1;
}

// `call` at a position of a file that has positions.
template <typename Call>
std::int64_t atPosition(const OpenFile& file, std::int64_t position, Call call)
{
    if (position < 0 || !file.hasPositions) {
        return -1;
    }
    OVERLAPPED place = {};
    place.Offset = static_cast<DWORD>(position);
    place.OffsetHigh = static_cast<DWORD>(position >> 32);
    return call(&place);
}

// `call` at the place that the last one in order has reached.
template <typename Call>
std::int64_t inOrder(OpenFile& file, Call call)
{
    if (!file.hasPositions) {
        return call(nullptr);
    }
    const std::int64_t count = atPosition(file, file.position, call);
    file.position += std::max<std::int64_t>(count, 0);
    return count;
}

std::int64_t readFile(SystemFile file, std::span<char> target)
{
    OpenFile& open = openFileOf(file);
    return inOrder(open, [&](OVERLAPPED* place) { return readAtPlace(open.handle, target, place); });
}

std::int64_t readFileAt(SystemFile file, std::int64_t position, std::span<char> target)
{
    const OpenFile& open = openFileOf(file);
    return atPosition(open, position, [&](OVERLAPPED* place) { return readAtPlace(open.handle, target, place); });
}

std::int64_t writeFile(SystemFile file, std::span<const char> bytes)
{
    OpenFile& open = openFileOf(file);
    return inOrder(open, [&](OVERLAPPED* place) { return writeAtPlace(open.handle, bytes, place); });
}

std::int64_t writeFileAt(SystemFile file, std::int64_t position, std::span<const char> bytes)
{
    const OpenFile& open = openFileOf(file);
    return atPosition(open, position, [&](OVERLAPPED* place) { return writeAtPlace(open.handle, bytes, place); });
}

bool seekInFile(SystemFile file, std::int64_t position)
{
    OpenFile& open = openFileOf(file);
    if (position < 0 || !open.hasPositions) {
        return false;
    }
    open.position = position;
    return true;
}

bool truncateFile(SystemFile file, std::int64_t size)
{
    FILE_END_OF_FILE_INFO end = {};
    end.EndOfFile.QuadPart = size;
    return SetFileInformationByHandle(openFileOf(file).handle, FileEndOfFileInfo, &end, sizeof end) != 0;
}

SystemFile openFile(const std::string& name, OpenFor purpose)
{
    DWORD access = GENERIC_WRITE;
    DWORD creation = OPEN_ALWAYS;
    switch (purpose) {
    case OpenFor::reading:
        access = GENERIC_READ;
        creation = OPEN_EXISTING;
        break;
    case OpenFor::replacing: break;
    case OpenFor::updating: access = GENERIC_READ | GENERIC_WRITE; break;
    }
    const DWORD flags = purpose == OpenFor::reading ? FILE_FLAG_SEQUENTIAL_SCAN : FILE_ATTRIBUTE_NORMAL;
    const SystemFile file =
        kept(CreateFileW(systemPath(name).c_str(), access, kSharedByAll, nullptr, creation, flags, nullptr));
    // To create a file in place of one that is hidden would be refused.
    if (purpose == OpenFor::replacing && file != SystemFile::none && openFileOf(file).hasPositions &&
        !truncateFile(file, 0)) {
        closeFile(file);
        return SystemFile::none;
    }
    return file;
}

// Never less than the file holds, which would cut it.
void reserveInFile(SystemFile file, std::int64_t position, std::int64_t count)
{
    const HANDLE handle = openFileOf(file).handle;
    LARGE_INTEGER held = {};
    FILE_ALLOCATION_INFO room = {};
    room.AllocationSize.QuadPart = position + count;
    if (GetFileSizeEx(handle, &held) != 0 && room.AllocationSize.QuadPart > held.QuadPart) {
        SetFileInformationByHandle(handle, FileAllocationInfo, &room, sizeof room);
    }
}

void willReadFile(SystemFile, std::int64_t, std::int64_t, ReadOf) {}

std::optional<FileFacts> factsOfOpenFile(SystemFile file)
{
    return factsIn(openFileOf(file).handle);
}

// --- Files without a name --------------------------------------------------------------------------------------------

bool deleteAtClose(HANDLE handle, bool wanted)
{
    FILE_DISPOSITION_INFO disposition = {};
    disposition.DeleteFile = wanted ? TRUE : FALSE;
    return SetFileInformationByHandle(handle, FileDispositionInfo, &disposition, sizeof disposition) != 0;
}

// The system has no files without a name. This one can be opened by nobody else, and goes when the process ends in any way.
SystemFile openUnnamedFile(const std::string& folder)
{
    const auto [handle, path] = makeScratchFile(folder, 0);
    if (handle == nullptr) {
        return SystemFile::none;
    }
    if (!deleteAtClose(handle, true)) {
        CloseHandle(handle);
        DeleteFileW(path.c_str());
        return SystemFile::none;
    }
    unnamedFiles().add(handle);
    const SystemFile file = kept(handle);
    openFileOf(file).isUnnamed = true;
    return file;
}

// A file that is not sparse has room for all of its size.
bool setAsideFor(SystemFile file, std::int64_t size)
{
    LARGE_INTEGER held = {};
    return GetFileSizeEx(openFileOf(file).handle, &held) != 0 && (size <= held.QuadPart || truncateFile(file, size));
}

// Who owns a file and who may do what with it; empty where the file system does not keep that.
std::vector<char> rightsOf(HANDLE handle)
{
    constexpr SECURITY_INFORMATION kRights =
        OWNER_SECURITY_INFORMATION | GROUP_SECURITY_INFORMATION | DACL_SECURITY_INFORMATION;
    DWORD size = 0;
    GetKernelObjectSecurity(handle, kRights, nullptr, 0, &size);
    std::vector<char> rights(size);
    return GetKernelObjectSecurity(handle, kRights, rights.data(), size, &size) != 0 ? rights : std::vector<char>();
}

// True where `path` is free, or of a file that `fresh` can replace as a whole: one with no other name, no special attribute and the
// same rights.
bool mayBeReplaced(const std::wstring& path, HANDLE fresh)
{
    const HANDLE handle =
        CreateFileW(path.c_str(), FILE_READ_ATTRIBUTES | READ_CONTROL, kSharedByAll, nullptr, OPEN_EXISTING,
                    FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
        return statusOf(GetLastError()) == SystemStatus::noSuchFile;
    }
    BY_HANDLE_FILE_INFORMATION status = {};
    const bool known = GetFileInformationByHandle(handle, &status) != 0 && rightsOf(handle) == rightsOf(fresh);
    CloseHandle(handle);
    constexpr DWORD kOrdinary = FILE_ATTRIBUTE_NORMAL | FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_NOT_CONTENT_INDEXED;
    return known && (status.dwFileAttributes & ~kOrdinary) == 0 && status.nNumberOfLinks == 1;
}

bool renameOpenFile(HANDLE handle, const std::wstring& path)
{
    const std::size_t bytes = path.size() * sizeof(wchar_t);
    std::vector<char> memory(sizeof(FILE_RENAME_INFO) + bytes);
    auto* const rename = reinterpret_cast<FILE_RENAME_INFO*>(memory.data());
    rename->ReplaceIfExists = TRUE;
    rename->FileNameLength = static_cast<DWORD>(bytes);
    std::copy(path.begin(), path.end(), rename->FileName);
    return SetFileInformationByHandle(handle, FileRenameInfo, rename, static_cast<DWORD>(memory.size())) != 0;
}

bool giveNameTo(SystemFile file, const std::string& name)
{
    const HANDLE handle = openFileOf(file).handle;
    const std::wstring path = fullPath(name);
    if (!mayBeReplaced(path, handle) || !deleteAtClose(handle, false)) {
        return false;
    }
    if (renameOpenFile(handle, path)) {
        return true;
    }
    deleteAtClose(handle, true);
    return false;
}

// --- Names -----------------------------------------------------------------------------------------------------------

SystemStatus factsOfName(const std::string& name, FileFacts& facts)
{
    const HANDLE handle = CreateFileW(systemPath(name).c_str(), FILE_READ_ATTRIBUTES, kSharedByAll, nullptr,
                                      OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
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
    return GetFileAttributesW(systemPath(name).c_str()) == INVALID_FILE_ATTRIBUTES ? statusOf(GetLastError())
                                                                                   : SystemStatus::done;
}

SystemStatus listFolder(const std::string& folder, std::vector<std::string>& names)
{
    WIN32_FIND_DATAW entry = {};
    const char* const all = folder.ends_with('/') ? "*" : "/*"; // the form for long names allows no doubled separator
    const HANDLE search = FindFirstFileW(systemPath(folder + all).c_str(), &entry);
    if (search == INVALID_HANDLE_VALUE) {
        return statusOf(GetLastError());
    }
    do {
        std::string name = narrow(entry.cFileName);
        if (name != "." && name != "..") {
            names.push_back(std::move(name));
        }
    } while (FindNextFileW(search, &entry) != 0);
    const DWORD error = GetLastError();
    FindClose(search);
    return error == ERROR_NO_MORE_FILES ? SystemStatus::done : statusOf(error);
}

std::optional<std::string> fullNameOf(const std::string& name)
{
    const HANDLE handle = CreateFileW(systemPath(name).c_str(), FILE_READ_ATTRIBUTES, kSharedByAll, nullptr,
                                      OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
        return std::nullopt;
    }
    std::wstring full(GetFinalPathNameByHandleW(handle, nullptr, 0, FILE_NAME_NORMALIZED), L'\0');
    full.resize(GetFinalPathNameByHandleW(handle, full.data(), static_cast<DWORD>(full.size()), FILE_NAME_NORMALIZED));
    CloseHandle(handle);
    return usualName(full.empty() ? fullPath(name) : full); // some drives in memory do not tell
}

} // namespace

const System& nativeSystem()
{
    static constexpr System kWindows = {
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
        .replacesOnlyClosedFiles = true,
        .namesIgnoreCase = true,
        .namesHaveDrives = true,
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

} // namespace gridforge::inline host
