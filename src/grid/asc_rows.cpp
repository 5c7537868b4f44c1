#include "grid/asc_rows.h"

#include "grid/asc_parse.h"

#include <cstddef>
#include <string_view>

namespace gridforge::grid {

bool readAscRow(Unit unit, std::span<float> row)
{
    AscRowState state;
    std::string_view window = readyBytes(unit);
    bool lastWindow = window.empty();
    for (;;) {
        std::size_t consumed = 0;
        const AscRow progress = parseAscRow(state, window, lastWindow, consumed, row);
        if (progress == AscRow::failure) {
            return false;
        }
        takeBytes(unit, consumed);
        if (progress == AscRow::done) {
            return true;
        }
        // The rest is the start of a value, which may go on in the text after it.
        const std::size_t left = window.size() - consumed;
        window = left == 0 ? readyBytes(unit) : moreBytes(unit);
        lastWindow = window.size() <= left;
        if (lastWindow && left >= kReadAhead) {
            return false;
        }
    }
}

} // namespace gridforge::grid
