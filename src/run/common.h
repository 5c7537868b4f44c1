// The options that do not depend on the operation.
#pragma once

#include "grid/format.h"

#include <cstdint>
#include <optional>
#include <string>

namespace gridforge::run {

struct Common {
    std::optional<std::string> out;     // the name of the main output; blank where nothing came after -out
    std::optional<grid::Format> format; // of the grids that are written; that of the inputs where none is given
    std::int32_t decimals = 3;          // of .asc cells
    bool batch = false;                 // a run that finished does not wait for Enter

    friend bool operator==(const Common&, const Common&) = default;
};

} // namespace gridforge::run
