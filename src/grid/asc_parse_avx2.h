// The parser of cells, for blocks of 64 bytes.
#pragma once

#include "core/simd.h"
#include "grid/asc_parse.h"

#include <span>

namespace gridforge::grid {

// What is left of a window.
struct AscCursor {
    const char* at;
    const char* end;
    bool lastWindow;
};

// Takes values out of whole blocks, as far as there is nothing but values and their separators. False when one is no number.
GRIDFORGE_AVX2 bool parseAscBlocks(AscRowState& state, AscCursor& text, const char* windowStart, std::span<float> row);

} // namespace gridforge::grid
