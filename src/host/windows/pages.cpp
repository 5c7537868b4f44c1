// Memory for large arrays; where that is used up, in a file that goes with them.
#include "host/page_room.h"
#include "host/system.h"
#include "host/windows/names.h"
#include "host/windows/scratch_file.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <windows.h>

namespace gridforge::inline host {

namespace {

// Smaller arrays are never in files.
constexpr std::size_t kLeastInFile = std::size_t{1} << 22;

// The files that hold arrays, by the pages. Each stays open until these are released: to close it is to delete it.
class PageFiles {
public:
    PageFiles() = default;
    PageFiles(const PageFiles&) = delete;
    PageFiles& operator=(const PageFiles&) = delete;
    // An end of the run from inside it, where arrays are left.
    ~PageFiles()
    {
        std::for_each(files_.begin(), files_.end(), [](const auto& entry) { CloseHandle(entry.second); });
    }

    void add(void* pages, HANDLE file)
    {
        const std::scoped_lock lock(mutex_);
        files_.emplace(pages, file);
    }
    // The file of these pages, which is forgotten; null where they are in memory.
    HANDLE take(void* pages)
    {
        const std::scoped_lock lock(mutex_);
        const auto entry = files_.extract(pages);
        return entry.empty() ? nullptr : entry.mapped();
    }

private:
    std::mutex mutex_;
    std::map<void*, HANDLE> files_;
};

PageFiles& pageFiles()
{
    static PageFiles files;
    return files;
}

void* takeMemory(std::size_t bytes)
{
    return VirtualAlloc(nullptr, bytes, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
}

// Never more than is free, so that an absurd size does not fill the disk first.
bool hasRoom(const std::string& folder, std::size_t bytes)
{
    ULARGE_INTEGER free = {};
    return GetDiskFreeSpaceExW(fullPath(folder).c_str(), &free, nullptr, nullptr) != 0 && bytes < free.QuadPart;
}

// The file is as long as the mapping from its start: a full disk is met here, not by a store to memory.
void* mapped(HANDLE file, std::uint64_t bytes)
{
    const HANDLE mapping = CreateFileMappingW(file, nullptr, PAGE_READWRITE, static_cast<DWORD>(bytes >> 32),
                                              static_cast<DWORD>(bytes), nullptr);
    if (mapping == nullptr) {
        return nullptr;
    }
    void* const pages = MapViewOfFile(mapping, FILE_MAP_ALL_ACCESS, 0, 0, 0);
    CloseHandle(mapping); // the pages keep it
    return pages;
}

void* takeFileIn(const std::string& folder, std::size_t bytes)
{
    if (!hasRoom(folder, bytes)) {
        return nullptr;
    }
    const HANDLE file = makeScratchFile(folder, FILE_FLAG_DELETE_ON_CLOSE).handle;
    if (file == nullptr) {
        return nullptr;
    }
    void* const pages = mapped(file, bytes);
    if (pages == nullptr) {
        CloseHandle(file);
    } else {
        pageFiles().add(pages, file);
    }
    return pages;
}

void* takeZeroed(std::size_t bytes)
{
    return bytes < kLeastInFile ? takeMemory(bytes) : takeRoomForPages({takeMemory, takeFileIn}, bytes);
}

void releaseZeroed(void* pages, std::size_t bytes)
{
    if (bytes < kLeastInFile) {
        VirtualFree(pages, 0, MEM_RELEASE);
        return;
    }
    const HANDLE file = pageFiles().take(pages);
    if (file == nullptr) {
        VirtualFree(pages, 0, MEM_RELEASE);
    } else {
        UnmapViewOfFile(pages);
        CloseHandle(file);
    }
    countOutPages(bytes);
}

} // namespace

PageSource nativePages() noexcept
{
    return {takeZeroed, releaseZeroed};
}

} // namespace gridforge::inline host
