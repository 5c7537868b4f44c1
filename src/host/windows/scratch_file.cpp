#include "host/windows/scratch_file.h"

#include "host/windows/names.h"

#include <atomic>
#include <windows.h>

namespace gridforge::inline host {

namespace {

// A name that is taken, as by a process that has ended without a way to remove its own. One that is being removed is refused.
bool isTaken(DWORD error)
{
    return error == ERROR_FILE_EXISTS || error == ERROR_ALREADY_EXISTS || error == ERROR_ACCESS_DENIED;
}

} // namespace

ScratchFile makeScratchFile(const std::string& folder, unsigned long flags)
{
    constexpr int kAttempts = 100;
    static std::atomic<unsigned> made = 0;
    const std::string start =
        (folder.empty() ? "." : folder) + "/gridforge-" + std::to_string(GetCurrentProcessId()) + '-';
    ScratchFile file;
    for (int i = 0; i < kAttempts; ++i) {
        file.path = systemPath(start + std::to_string(++made) + ".part");
        const HANDLE handle = CreateFileW(file.path.c_str(), GENERIC_READ | GENERIC_WRITE | DELETE, FILE_SHARE_DELETE,
                                          nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL | flags, nullptr);
        if (handle != INVALID_HANDLE_VALUE) {
            file.handle = handle;
            break;
        }
        if (!isTaken(GetLastError())) {
            break;
        }
    }
    return file;
}

} // namespace gridforge::inline host
