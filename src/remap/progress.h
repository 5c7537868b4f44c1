// Loops over rows with their progress on the console.
#pragma once

#include "host/console.h"

#include <algorithm>
#include <cstdint>
#include <string_view>

namespace gridforge::remap {

inline constexpr std::int32_t kCoarseProgress = 10;
inline constexpr std::int32_t kFineProgress = 100;

// Writes the heading, unless it is blank, and calls `work` with each row from south to north. Behind it stands the
// number of every `step`-th row.
template <typename Work>
void eachRow(std::string_view heading, std::int32_t nrows, std::int32_t step, Work&& work)
{
    if (!heading.empty()) {
        sayOpen(heading);
    }
    for (std::int32_t row = 1; row <= nrows; ++row) {
        work(row);
        if (row % step == 0) {
            progress(row);
        }
    }
    endLine();
}

} // namespace gridforge::remap
