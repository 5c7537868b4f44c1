// What there is to fuzz: the kinds of input, each with the routine that takes one.
#pragma once

#include "fuzz/named_files.h"

#include <span>
#include <string_view>

namespace gridforge::fuzz {

struct Kind {
    std::string_view name;
    // Gets an input whose files are in memory, and does with them what a run does: to its end, or until it returns.
    void (*take)(const NamedFiles& input);
};

// The reading of one sort of file, named by the first of the input.
std::span<const Kind> readers();
// Whole runs of the input's command line. They differ in their seeds.
std::span<const Kind> operations();

} // namespace gridforge::fuzz
