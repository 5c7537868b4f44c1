// Which operations a flag is an option of, as the manual page, the completion and the description all list them.
#pragma once

#include "core/text.h"
#include "driver/flag_table.h"

#include <string>
#include <string_view>

namespace gridforge {

// False also for the operation that the flag asks for, and for every one if the flag is an option of all.
inline bool isOptionOf(const driver::FlagRow& row, std::string_view operation)
{
    return driver::operationOf(row) != operation &&
           join(' ', row.docs.operations, ' ').find(join(' ', operation, ' ')) != std::string::npos;
}

} // namespace gridforge
