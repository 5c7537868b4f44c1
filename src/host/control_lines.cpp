#include "host/control_lines.h"

#include "core/numbers.h"
#include "core/text.h"
#include "host/ends.h"
#include "host/messages.h"

#include <algorithm>
#include <optional>

namespace gridforge {

namespace {

constexpr auto kNone = std::string_view::npos;

[[noreturn]] void endOfReading(std::string_view message, Unit unit)
{
    constexpr int kUnitColumns = 5;
    report(message, integerField(unit, kUnitColumns));
    EXITS();
}

// Comma field `column` from 1, quotes not honoured; nothing when there are fewer.
std::optional<std::string_view> commaField(std::string_view text, std::int32_t column)
{
    if (column < 1) {
        return std::nullopt;
    }
    for (std::int32_t passed = 1; passed < column; ++passed) {
        const std::size_t comma = text.find(',');
        if (comma == kNone) {
            return std::nullopt;
        }
        text.remove_prefix(comma + 1);
    }
    return text.substr(0, text.find(','));
}

// The text up to the next comma outside quotes.
std::string_view upToComma(std::string_view text)
{
    const auto comma = static_cast<std::size_t>(NEXTCOMMA(text));
    return comma == 0 ? text : text.substr(0, comma - 1);
}

std::string bareValue(std::string_view value)
{
    return std::string(trim(REMOVEQUOTES(value)));
}

// Comma field `column` outside quotes; blank when there are fewer.
std::string columnValue(std::string_view line, std::int32_t column)
{
    if (column <= 0) {
        return {};
    }
    for (std::int32_t passed = 1; passed < column; ++passed) {
        const auto comma = static_cast<std::size_t>(NEXTCOMMA(line));
        if (comma == 0) {
            return {};
        }
        line.remove_prefix(comma);
    }
    return bareValue(upToComma(line));
}

// What stands in the line behind the key; nothing when the key is not there. The key is searched with all blanks of its work
// space, so no line shorter than that holds it; deliberate, control files rely on the columns.
std::optional<std::string_view> behindKey(std::string_view line, std::string_view lowerLine, std::string_view key)
{
    if (lowerLine.size() < kWorkWidth) {
        return std::nullopt;
    }
    std::string padded = LOWERCASE(key);
    padded.resize(kWorkWidth, ' ');
    const std::size_t at = lowerLine.find(padded);
    if (at == kNone) {
        return std::nullopt;
    }
    return line.substr(std::min(at + padded.size(), line.size()));
}

enum class ValueEnd { atComma, atLineEnd };

std::string extract(std::string_view line, std::string_view lowerLine, std::string_view key, std::int32_t column,
                    ValueEnd end)
{
    const std::optional<std::string_view> rest = behindKey(line, lowerLine, key);
    if (!rest) {
        return columnValue(line, column);
    }
    const std::size_t sign = rest->find('=');
    if (sign == kNone) {
        report("ERROR 0203 - No \"=\" sign found after keyword \"", trimRight(key), "\".");
        EXITS();
    }
    const std::string_view value = rest->substr(sign + 1);
    return bareValue(end == ValueEnd::atComma ? upToComma(value) : value);
}

template <typename Number>
Number extractNumber(std::string_view line, std::string_view lowerLine, std::string_view key, std::int32_t column,
                     Number fallback, std::string_view kind)
{
    constexpr int kColumnColumns = 3;
    const std::string text = EXTRACTSTRING(line, lowerLine, key, column);
    Number value = fallback;
    if (!text.empty() && !readFree(text, value)) {
        fail(" Could not convert \"", text, "\" in column ", integerField(column, kColumnColumns), " to ", kind,
             " value for the ", trimRight(key), " field.");
    }
    return value;
}

} // namespace

bool READLINE(Unit unit, std::string& text, std::size_t width)
{
    if (!readLine(unit, text, width)) {
        if (readFailed(unit)) {
            endOfReading("ERROR 0201 - Reading text line from file unit number", unit);
        }
        endOfReading("ERROR 0202 - End-of-file encountered reading text line from file unit number", unit);
    }
    std::erase(text, '\t');
    const bool nothing = COMMENTLINE(text);
    text.resize(trimRight(text).size()); // what stood between the content and its comment
    return !nothing;
}

bool CHECKLINE(std::string_view line, std::string_view key, std::string_view separator, std::int32_t splitColumn,
               std::string& right, std::string& left)
{
    separator = trimRight(separator);
    const auto column = static_cast<std::size_t>(std::max(splitColumn, 0));
    const std::size_t at = separator.empty() ? kNone : line.find(separator);
    const bool found = at != kNone;

    // `line` may be a view of either result.
    std::string before;
    std::string behind;
    if (found) {
        before = line.substr(0, at);
        behind = line.substr(at + separator.size());
    } else if (column == 0 && !separator.empty()) {
        before = line;
    } else {
        before = line.substr(0, column);
        behind = line.substr(std::min(column, line.size()));
    }
    left = std::move(before);
    right = std::move(behind);

    const bool isCommand = key == "*" || FLAGEXISTS(left, key);
    const bool hasContent = !trimRight(left).empty() || (!found && column == 0);
    return isCommand && hasContent;
}

std::int32_t CSVCOLUMN(std::string_view text, std::string_view name, std::int32_t fallback)
{
    std::int32_t column = 1;
    for (std::size_t comma = 0; comma != kNone; ++column) {
        comma = text.find(',');
        if (ASAME(text.substr(0, comma), name)) {
            return column;
        }
        text.remove_prefix(comma == kNone ? text.size() : comma + 1);
    }
    return fallback;
}

bool CSVVALUE(std::string_view text, std::int32_t column, float& value)
{
    value = 0;
    const std::optional<std::string_view> field = commaField(text, column);
    return field && parseNumber(trim(*field), value);
}

std::string EXTRACTSTRING(std::string_view line, std::string_view lowerLine, std::string_view key, std::int32_t column)
{
    return extract(line, lowerLine, key, column, ValueEnd::atComma);
}

std::string EXTRACTSTRINGREM(std::string_view line, std::string_view lowerLine, std::string_view key,
                             std::int32_t column)
{
    return extract(line, lowerLine, key, column, ValueEnd::atLineEnd);
}

std::int32_t EXTRACTINTEGER(std::string_view line, std::string_view lowerLine, std::string_view key,
                            std::int32_t column, std::int32_t fallback)
{
    return extractNumber(line, lowerLine, key, column, fallback, "an integer");
}

float EXTRACTREAL(std::string_view line, std::string_view lowerLine, std::string_view key, std::int32_t column,
                  float fallback)
{
    return extractNumber(line, lowerLine, key, column, fallback, "a real");
}

} // namespace gridforge
