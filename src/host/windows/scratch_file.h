// Files of a run that nobody else opens, as the system has none without a name.
#pragma once

#include <string>
#include <windows.h>

namespace gridforge::inline host {

struct ScratchFile {
    HANDLE handle = INVALID_HANDLE_VALUE; // this where it cannot be made
    std::wstring path;
};
// A new one in the folder, with these flags for its opening besides the usual. It may be renamed and deleted while it is open.
ScratchFile makeScratchFile(const std::string& folder, DWORD flags);

} // namespace gridforge::inline host
