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

// The number from 1 of the comma field that is ASAME with `name`, or `fallback`. Quotes do not count.
std::int32_t CSVCOLUMN(std::string_view text, std::string_view name, std::int32_t fallback);
// The real in comma field `column`; 0.0 and false if it is missing or cannot be read.
bool CSVVALUE(std::string_view text, std::int32_t column, float& value);

enum class ValueEnd { atComma, atLineEnd };

// The value of `key = value` in the line, up to its `end`, or of comma field `column` outside quotes where the line does
// not hold the key; without quotes. Nothing if no "=" follows the key.
std::optional<std::string> keyOrColumnValue(std::string_view line, std::string_view lowerLine, std::string_view key,
                                            std::int32_t column, ValueEnd end);

} // namespace gridforge::inline core
