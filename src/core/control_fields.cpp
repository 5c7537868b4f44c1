#include "core/control_fields.h"

#include "core/numbers.h"
#include "core/text.h"

#include <algorithm>
#include <utility>

namespace gridforge::inline core {

namespace {

constexpr auto kNone = std::string_view::npos;

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

// The rest of the line after the key; nothing without the key. The key is searched with all blanks of its work
// space, so no line shorter than that holds it; on purpose: control files rely on the columns.
std::optional<std::string_view> afterKey(std::string_view line, std::string_view lowerLine, std::string_view key)
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

} // namespace

bool CHECKLINE(std::string_view line, std::string_view key, std::string_view separator, std::int32_t splitColumn,
               std::string& right, std::string& left)
{
    separator = trimRight(separator);
    const auto column = static_cast<std::size_t>(std::max(splitColumn, 0));
    const std::size_t at = separator.empty() ? kNone : line.find(separator);
    const bool found = at != kNone;

    // `line` may be a view of either result.
    std::string before;
    std::string after;
    if (found) {
        before = line.substr(0, at);
        after = line.substr(at + separator.size());
    } else if (column == 0 && !separator.empty()) {
        before = line;
    } else {
        before = line.substr(0, column);
        after = line.substr(std::min(column, line.size()));
    }
    left = std::move(before);
    right = std::move(after);

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

std::optional<std::string> keyOrColumnValue(std::string_view line, std::string_view lowerLine, std::string_view key,
                                            std::int32_t column, ValueEnd end)
{
    const std::optional<std::string_view> rest = afterKey(line, lowerLine, key);
    if (!rest) {
        return columnValue(line, column);
    }
    const std::size_t sign = rest->find('=');
    if (sign == kNone) {
        return std::nullopt;
    }
    const std::string_view value = rest->substr(sign + 1);
    return bareValue(end == ValueEnd::atComma ? upToComma(value) : value);
}

} // namespace gridforge::inline core
