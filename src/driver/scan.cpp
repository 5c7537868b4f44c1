#include "driver/scan.h"

#include "core/number_text.h"
#include "core/text.h"
#include "driver/flag_table.h"
#include "driver/stat_flag.h"
#include "host/ends.h"

namespace gridforge::driver {

namespace {

const FlagRow& requireFlag(const std::string& argument)
{
    const FlagRow* row = findFlag(argument);
    if (row == nullptr) {
        refuse("ERROR - Incorrect flag specified: ", quoted(argument));
    }
    return *row;
}

void requireValue(const FlagRow& row, const std::string& argument)
{
    const auto& [first, last] = row.checks.missing;
    if (last.empty() || argument.size() > row.key.size() + 1) {
        return;
    }
    if (!first.empty()) {
        say(first);
    }
    refuse(last, quoted(argument));
}

// A number that cannot be read gets the words of the grid reader, row 0, on purpose: callers look for them.
void readGlued(const FlagRow& row, const std::string& argument, CommandLine& line)
{
    requireValue(row, argument);
    if (!row.checks.notice.empty()) {
        say(row.checks.notice);
    }
    if (!row.storeValue(line, argument.substr(row.key.size() + 1))) {
        fail("ERROR - Reading row", integerField(0, 8), " of .asc file");
    }
    if (row.checks.refused != nullptr && row.checks.refused(line.settings)) {
        say(row.checks.refusal);
        endNow();
    }
}

void takeFlag(const FlagRow& row, const std::string& argument, CommandLine& line)
{
    if (row.atFlag != nullptr) {
        row.atFlag(line.settings);
    }
    if (row.kind == FlagKind::operation) {
        line.asked.insert(operationOf(row));
    }
    if (row.counting == Counting::atFlag) {
        ++line.operations;
    }
    switch (row.value) {
    case FlagValue::gluedReal:
    case FlagValue::gluedInteger: readGlued(row, argument, line); break;
    case FlagValue::statistic: addStatistic(get<ops::StatOptions>(line.settings), argument); break;
    case FlagValue::none:
    case FlagValue::next: break;
    }
}

void takeValue(const FlagRow& row, const std::string& value, CommandLine& line)
{
    row.storeValue(line, value);
    if (row.counting == Counting::atValue) {
        ++line.operations;
    }
}

} // namespace

CommandLine scanArguments(const std::vector<std::string>& arguments)
{
    CommandLine line;
    const FlagRow* pending = nullptr; // the flag whose value the next argument is, whatever it looks like
    for (const std::string& raw : arguments) {
        const std::string argument = cut(raw, kNameWidth);
        if (pending != nullptr) {
            takeValue(*pending, argument, line);
            pending = nullptr;
        } else if (hasFlagMark(argument)) {
            const FlagRow& row = requireFlag(argument);
            takeFlag(row, argument, line);
            pending = row.value == FlagValue::next ? &row : nullptr;
        } else {
            addRawInput(line, argument);
        }
    }
    return line;
}

} // namespace gridforge::driver
