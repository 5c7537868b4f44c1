// Lines and fields of control files and small tables.
#pragma once

#include "host/units.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace gridforge {

// Reads a line without tabs and comment. False for a line with nothing but a comment. A failed read and the end of the
// file end the run: callers test atEnd first.
bool READLINE(Unit unit, std::string& text, std::size_t width = 1000);

// Splits a control line at `separator` into `left` and `right`, neither trimmed; without a separator in the line at
// `splitColumn` (0: all is left). True when `left` holds the key ("*": any) and is not blank.
bool CHECKLINE(std::string_view line, std::string_view key, std::string_view separator, std::int32_t splitColumn,
               std::string& right, std::string& left);

// The number from 1 of the comma field that is ASAME with `name`, or `fallback`. Quotes do not count.
std::int32_t CSVCOLUMN(std::string_view text, std::string_view name, std::int32_t fallback);
// The real in comma field `column`; 0.0 and false when there is none that can be read.
bool CSVVALUE(std::string_view text, std::int32_t column, float& value);

// The value of `key = value` in the line, or of comma field `column` outside quotes, without quotes. The key is
// searched in its padded work space, so with lines of 1000 characters the column decides; deliberate, the callers rely
// on it.
std::string EXTRACTSTRING(std::string_view line, std::string_view lowerLine, std::string_view key, std::int32_t column);
// The same with the rest of the line as the value of a key.
std::string EXTRACTSTRINGREM(std::string_view line, std::string_view lowerLine, std::string_view key,
                             std::int32_t column);
// EXTRACTSTRING as a number; blank gives `fallback`, what cannot be read ends the run with a message.
std::int32_t EXTRACTINTEGER(std::string_view line, std::string_view lowerLine, std::string_view key,
                            std::int32_t column, std::int32_t fallback);
float EXTRACTREAL(std::string_view line, std::string_view lowerLine, std::string_view key, std::int32_t column,
                  float fallback);

} // namespace gridforge
