// Vector instructions that not every x86-64 processor has: how a routine is compiled for them, and whether it may be called.
// A kernel keeps such a form in a file named _avx2.cpp beside its plain form.
#pragma once

#if defined(__x86_64__)
#define GRIDFORGE_AVX2 [[gnu::target("avx2,bmi")]]
#else
#define GRIDFORGE_AVX2
#endif

#include <cstddef>

namespace gridforge::inline core {

// Single-precision values in a vector of AVX2.
inline constexpr std::size_t kFloatLanes = 8;

// Whether routines marked GRIDFORGE_AVX2 may be called.
bool hasAvx2();

// Whether the system allows them. Call it before the first hasAvx2, which keeps its answer. Returns `allowed`.
bool allowAvx2(bool allowed) noexcept;

} // namespace gridforge::inline core
