#include "host/limits.h"

#include "host/environment.h"
#include "host/system.h"

namespace gridforge::inline host {

std::uint64_t memoryToTake()
{
    static const std::uint64_t left = nativeSystem().memoryLeft();
    return left;
}

void askForLimits()
{
    theSystem().processors(); // remembered there
    if (!environmentNumber("GRIDFORGE_MEMORY")) {
        memoryToTake();
    }
}

} // namespace gridforge::inline host
