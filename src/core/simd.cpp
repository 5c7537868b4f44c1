#include "core/simd.h"

namespace gridforge::inline core {

namespace {

constinit bool isAllowed = true;

bool processorHasAvx2()
{
#if defined(__x86_64__)
    return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi");
#else
    return false;
#endif
}

} // namespace

bool hasAvx2()
{
    static const bool kHas = isAllowed && processorHasAvx2();
    return kHas;
}

bool allowAvx2(bool allowed) noexcept
{
    isAllowed = allowed;
    return allowed;
}

} // namespace gridforge::inline core
