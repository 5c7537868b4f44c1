// What the C library lets a program use of its processor.
#include "host/system.h"

#if defined(__x86_64__) && __has_include(<sys/platform/x86.h>)
#include <sys/platform/x86.h>
#endif

namespace gridforge::inline host {

bool nativeAvx2() noexcept
{
#if defined(__x86_64__) && __has_include(<sys/platform/x86.h>)
    return CPU_FEATURE_ACTIVE(AVX2);
#else
    return true;
#endif
}

} // namespace gridforge::inline host
