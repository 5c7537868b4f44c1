// The operations of the tool in their order of precedence.
#pragma once

#include "driver/command_line.h"
#include "driver/flag_table.h"
#include "run/inputs.h"

#include <cstdint>
#include <span>
#include <string_view>

namespace gridforge::driver {

// What becomes of inputs beyond the most that an operation takes.
enum class Surplus { refused, ignored };

// Whether one more name is that of the main output. Some operations take it only if a file has that name, and then write beside
// it: the extension of the format follows the whole name.
enum class ThenName { none, output, existingOutput };

// The inputs that stand on the command line by themselves. Those that follow a flag are in the flag's row.
struct InputRule {
    std::int32_t least;
    std::int32_t most;
    Surplus surplus = Surplus::refused;
    ThenName then = ThenName::none;
    ValueKind kind = ValueKind::grid;
};

enum class FileKind { grid, layer, table, netcdf };

// A file, or one of each of something. In the names {first} and {second} stand for inputs, {input} for each of them,
// {layer}, {control} and {levels} for the file after a flag, all without extension; {out} for the name of -out and {value} for
// the number of the operation's flag; other words for what they say. Grids and layers have the extension of their format, which
// the names do not show.
struct OutputRow {
    FileKind kind;
    std::string_view name;
    std::string_view outName = {}; // with -out; "" where that does not change it
    std::string_view when = {};    // flags, of which it needs one; "" none
    std::string_view unless = {};  // flags with which it is not written
    std::string_view note = {};    // what else it depends on
    bool anywhere = false;         // an attribute or a control file may name its folder
};

struct OperationDocs {
    std::string_view description; // one line, that of the index of the pages
    std::string_view page;        // in docs/operations, without extension
    InputRule inputs;
    std::span<const OutputRow> outputs;
    std::string_view options = {}; // of those that many operations take, with blanks between
};

struct OperationRow {
    std::string_view name; // the flag that asks for it
    OperationDocs docs;
    void (*run)(const Settings&, const run::InputFileList&);
    std::string_view yieldsTo = {}; // the operation that runs where both are asked for, though it stands later
};

std::span<const OperationRow> operationTable();

// Whether the flag is an option of this operation among others: its row names the operation, or the operation's row names it.
bool isOptionOf(const FlagRow& flag, const OperationRow& operation);

// The first operation that is asked for; nullptr when none is.
const OperationRow* selectOperation(const CommandLine& line);

// Runs that operation to its end. None is no error: the flags of some options alone pass as an operation.
void runOperation(const CommandLine& line, const run::InputFileList& inputs);

} // namespace gridforge::driver
