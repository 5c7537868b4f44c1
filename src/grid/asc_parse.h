// Reads cells from the text of an .asc grid: free-form values, row by row, in windows of text of any size. No input or
// output here, so the text may come from a file or from memory.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>

namespace gridforge::grid {

enum class AscRow {
    done,   // the row is full, and the rest of its last line has been skipped
    more,   // the window is used up, except for the start of a value that may go on in the next
    failure // a value that is no number, or the text has ended before the row was full
};

// The state of a row between windows. New for every row.
struct AscRowState {
    std::size_t filled = 0;  // cells read so far, including those with an empty value
    bool afterValue = false; // a value came before on this line, so a comma only separates
};

// Goes on with `row` in `window`, the text from where the last call stopped; after the `lastWindow` no text follows.
// `consumed` bytes of the window are used up: the next window starts after them. If that is 0 and the caller has no room
// for more text, the value is too long to be a number. Every value is rounded once, straight to 32 bits. An empty value
// (two commas, or a comma at the start of a line) leaves its cell unchanged. A row may go over several lines.
AscRow parseAscRow(AscRowState& state, std::string_view window, bool lastWindow, std::size_t& consumed,
                   std::span<float> row);

// One value without separators. False if it is no number.
bool parseAscCell(std::string_view value, float& cell);

} // namespace gridforge::grid
