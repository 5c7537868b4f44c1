// Every flag of the command line as data: how it is matched, what value it takes, what it stores and how the manual
// describes it.
#pragma once

#include "driver/command_line.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace gridforge::driver {

enum class SpanTest { contains, same }; // FLAGEXISTS, ASAME
enum class FlagKind { operation, option };
enum class FlagValue {
    none,
    next,      // the whole next argument
    gluedReal, // a number right after the key
    gluedInteger,
    statistic // a word or rank anywhere after the mark
};
// When a flag counts as the operation of the run.
enum class Counting { never, atFlag, atValue, afterScan };

// What a value is; a toggle has none.
enum class ValueKind { toggle, number, integer, grid, layer, table, controlFile, choice, name };

// How an operation takes an option.
struct FlagUse {
    bool required = false;
    bool repeated = false;       // each one counts, not the last alone
    std::string_view needs = {}; // a flag that must be given too
    std::string_view group = {}; // of the flags of a group the last one counts
};

// In place of the names of operations, for an option of all.
inline constexpr std::string_view kEveryOperation = "*";

struct FlagDocs {
    std::string_view description; // one line
    // The operations that take it, by name, with blanks between. A flag that asks for an operation names that one first, and
    // is an option of the others. None are named for an option that the rows of the operations name.
    std::string_view operations;
    ValueKind holds = ValueKind::toggle;
    std::string_view valueName = {};   // of a choice its words, with bars between
    std::string_view defaultText = {}; // where it is not off, 0 or blank
    std::string_view unit = {};
    FlagUse use = {};
    std::string_view extension = {}; // of the files that it names; "" any that their kind has
};

// What is said and tested around the reading of a glued number.
struct GluedChecks {
    // Lines for an argument that ends with its key; the argument in quotes joins the last one. Blank: no such test.
    std::array<std::string_view, 2> missing = {};
    std::string_view notice = {}; // said before the number is read
    // True for a number that is refused: the run ends with `refusal` at once, without a pause.
    bool (*refused)(const Settings&) = nullptr;
    std::string_view refusal = {};
};

struct FlagRow {
    std::string_view key; // without mark
    std::size_t span;     // characters after the mark in which the key is looked for
    SpanTest test;
    FlagKind kind;
    FlagValue value;
    Counting counting;
    FlagDocs docs;
    void (*atFlag)(Settings&) = nullptr;
    // False when `text` is not a number of the flag's kind. An empty number before a comma leaves the setting.
    bool (*storeValue)(CommandLine&, const std::string& text) = nullptr;
    GluedChecks checks = {};
};

// In matching order: the first row that matches is the flag.
std::span<const FlagRow> flagTable();

// The number stands right after the key.
constexpr bool isGlued(const FlagRow& row)
{
    return row.value == FlagValue::gluedReal || row.value == FlagValue::gluedInteger;
}

// The operation that the flag asks for; "" for an option.
std::string_view operationOf(const FlagRow& row);

// "-", "/" or the en dash of Windows-1252 as the first character.
bool hasFlagMark(std::string_view argument);
// The row of an argument that begins with a mark; nullptr if it has no row.
const FlagRow* findFlag(std::string_view argument);

} // namespace gridforge::driver
