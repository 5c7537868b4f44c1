// Whether the tests run under a sanitizer that needs memory of its own, and refuses absurd sizes in its own way.
#pragma once

namespace gridforge::test {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool kSanitized = true;
#elif defined(__has_feature)
inline constexpr bool kSanitized = __has_feature(address_sanitizer) || __has_feature(thread_sanitizer);
#else
inline constexpr bool kSanitized = false;
#endif

// Whether each part of the program counts what it runs, and writes it to a file.
#if defined(GRIDFORGE_COUNTS_LINES)
inline constexpr bool kCountsLines = true;
#else
inline constexpr bool kCountsLines = false;
#endif

} // namespace gridforge::test
