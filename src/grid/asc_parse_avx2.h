// The parser of cells, for blocks of 64 bytes.
#pragma once

#include "core/simd.h"
#include "grid/asc_parse.h"

#include <span>

namespace gridforge::grid {

// The rest of a window.
struct AscCursor {
    const char* at;
    const char* end;
    bool lastWindow;
};

// Reads values from whole blocks while these hold nothing but values and separators. False if one is no number.
GRIDFORGE_AVX2 bool parseAscBlocks(AscRowState& state, AscCursor& text, const char* windowStart, std::span<float> row);

} // namespace gridforge::grid
