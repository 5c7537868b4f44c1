// The operations of the tool in their order of precedence.
#pragma once

#include "run/inputs.h"
#include "run/run_settings.h"

#include <span>
#include <string_view>

namespace gridforge::driver {

struct OperationRow {
    std::string_view name; // the flag that asks for it
    bool (*selected)(const run::RunSettings&);
    void (*run)(const run::RunSettings&, const run::InputFileList&);
};

std::span<const OperationRow> operationTable();

// The first operation whose settings ask for it; nullptr when none does.
const OperationRow* selectOperation(const run::RunSettings& settings);

// Runs that operation to its end. None is no error: the flags of some options alone pass as an operation.
void runOperation(const run::RunSettings& settings, const run::InputFileList& inputs);

} // namespace gridforge::driver
