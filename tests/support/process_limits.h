// Limits on a process that a test has started, so that a call of the system fails at a known place, and what it has taken.
#pragma once

#include <cstddef>

namespace gridforge::test {

// A sanitizer has taken its memory before any limit, and not every system sets one.
bool canLimitMemory();
// From now on the process gets no more than this many megabytes.
void limitMemory(std::size_t megabytes);

// Can files be kept below some size, as by a full disk?
bool canLimitFiles();
// From now on files of the process may have no more than this many bytes. Its console may be one of them.
void limitFiles(std::size_t bytes);

// The most memory that the process has had so far.
std::size_t peakKilobytes();

} // namespace gridforge::test
