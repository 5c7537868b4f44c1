// Cells out of the text of an .asc grid: free-form values, row by row, from windows of text of any size. No input or
// output here, so the caller may bring the text from a file or from memory.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>

namespace gridforge::grid {

enum class AscRow {
    done,   // the row is full and the rest of its last line has been taken
    more,   // the window is used up, except for the head of a value that may go on in the next
    failure // a value that is no number, or the text has ended before the row was full
};

// What is kept of a row between windows. Fresh for every row.
struct AscRowState {
    std::size_t filled = 0;  // cells passed so far, those with an empty value too
    bool afterValue = false; // a value stands before on this line, so a comma is no more than its separator
};

// Goes on with `row` in `window`, the text from where the last call stopped; with `lastWindow` no text follows
// it. `consumed` is how much of the window is done with: the next window starts there. When that is nothing and there
// is no room for more text, the value is too long to be one. Every value is rounded once, straight to 32 bits. An empty
// value (two commas, or a comma at the head of a line) leaves its cell as it was. A row may run over several lines.
AscRow parseAscRow(AscRowState& state, std::string_view window, bool lastWindow, std::size_t& consumed,
                   std::span<float> row);

// One value, between no separators. False where it is no number.
bool parseAscCell(std::string_view value, float& cell);

} // namespace gridforge::grid
