// Vector instructions that not every x86-64 processor has: how a routine is compiled for them, and whether it may be called.
// A kernel with such a form keeps it in x_avx2.cpp beside x.cpp.
#pragma once

#if defined(__x86_64__)
#define GRIDFORGE_AVX2 [[gnu::target("avx2,bmi")]]
#else
#define GRIDFORGE_AVX2
#endif

namespace gridforge::inline core {

// Whether routines marked GRIDFORGE_AVX2 may be called.
bool hasAvx2();

// Whether the system allows them. Call it before the first hasAvx2, which keeps its answer. Returns `allowed`.
bool allowAvx2(bool allowed) noexcept;

} // namespace gridforge::inline core
