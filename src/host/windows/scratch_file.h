// Files of a run that nobody else opens, as the system has none without a name.
#pragma once

#include <string>

namespace gridforge::inline host {

struct ScratchFile {
    void* handle = nullptr; // a HANDLE; null where it cannot be made
    std::wstring path;
};
// A new one in the folder, with these flags for its opening besides the usual. It may be renamed and deleted while it is open.
ScratchFile makeScratchFile(const std::string& folder, unsigned long flags);

} // namespace gridforge::inline host
