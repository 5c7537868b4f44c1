// Fields of the lines of control files and small tables.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace gridforge::inline core {

// Splits a control line at `separator` into `left` and `right`, neither trimmed; without a separator in the line at
// `splitColumn` (0: all is left). True when `left` holds the key ("*": any) and is not blank.
bool CHECKLINE(std::string_view line, std::string_view key, std::string_view separator, std::int32_t splitColumn,
               std::string& right, std::string& left);

enum class Quotes { holdCommas, areText };

// The fields of a line between its commas, one after another.
class CommaFields {
public:
    CommaFields(std::string_view line, Quotes quotes) : rest_(line), quotes_(quotes) {}

    // Nothing after the last one. A line has one field at least.
    std::optional<std::string_view> next();

private:
    std::string_view rest_;
    Quotes quotes_;
    bool ended_ = false;
};

// Comma field `column` from 1; nothing if the line has fewer.
std::optional<std::string_view> commaField(std::string_view line, std::int32_t column, Quotes quotes);

enum class ValueEnd { atComma, atLineEnd };

// The value of `key = value` in the line, up to its `end`; of comma field `column` outside quotes if the line lacks the
// key. Quotes are removed. Nothing if no "=" follows the key.
std::optional<std::string> keyOrColumnValue(std::string_view line, std::string_view lowerLine, std::string_view key,
                                            std::int32_t column, ValueEnd end);

} // namespace gridforge::inline core
