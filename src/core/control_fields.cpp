#include "core/control_fields.h"

#include "core/text.h"

#include <algorithm>
#include <utility>

namespace gridforge::inline core {

namespace {

constexpr auto kNone = std::string_view::npos;

std::string bareValue(std::string_view value)
{
    return std::string(trim(REMOVEQUOTES(value)));
}

// The rest of the line after the key; nothing without the key. The key is searched with all the blanks of its work
// space, so no line shorter than that holds it, on purpose: control files rely on the columns.
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

std::optional<std::string_view> CommaFields::next()
{
    if (ended_) {
        return std::nullopt;
    }
    const std::size_t comma = quotes_ == Quotes::areText ? rest_.find(',') : findOutsideQuotes(rest_, ',');
    const std::string_view field = rest_.substr(0, comma);
    ended_ = comma == kNone;
    rest_.remove_prefix(ended_ ? rest_.size() : comma + 1);
    return field;
}

std::optional<std::string_view> commaField(std::string_view line, std::int32_t column, Quotes quotes)
{
    CommaFields fields(line, quotes);
    std::optional<std::string_view> field;
    for (std::int32_t passed = 0; passed < column; ++passed) {
        field = fields.next();
        if (!field) {
            break;
        }
    }
    return field;
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

std::optional<std::string> keyOrColumnValue(std::string_view line, std::string_view lowerLine, std::string_view key,
                                            std::int32_t column, ValueEnd end)
{
    const std::optional<std::string_view> rest = afterKey(line, lowerLine, key);
    if (!rest) {
        return bareValue(commaField(line, column, Quotes::holdCommas).value_or(""));
    }
    const std::size_t sign = rest->find('=');
    if (sign == kNone) {
        return std::nullopt;
    }
    const std::string_view value = rest->substr(sign + 1);
    return bareValue(end == ValueEnd::atComma ? CommaFields(value, Quotes::holdCommas).next().value_or("") : value);
}

} // namespace gridforge::inline core
