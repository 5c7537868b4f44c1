// Shared libraries that are loaded while the process runs.
#include "host/system.h"

#include <dlfcn.h>

namespace gridforge::inline host {

std::optional<std::string> loadLibrary(const char* name)
{
    // Never unloaded. All of its routines are visible to the process, so that those of libraries loaded before still come first.
    if (dlopen(name, RTLD_LAZY | RTLD_GLOBAL) != nullptr) {
        return std::nullopt;
    }
    return dlerror();
}

void* findLoaded(const char* name)
{
    return dlsym(RTLD_DEFAULT, name);
}

} // namespace gridforge::inline host
