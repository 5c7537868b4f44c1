// Lines of control files, and those of their fields that end the run where they cannot be read.
#pragma once

#include "core/control_fields.h"
#include "host/units.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace gridforge::inline host {

// Reads a line without tabs and comment. False for a line with nothing but a comment. A failed read and the end of the
// file end the run: callers test atEnd first.
bool READLINE(Unit unit, std::string& text, std::size_t width = 1000);

// The value of `key = value` in the line, or of comma field `column` outside quotes, without quotes. The key is
// searched in its padded work space, so in lines of 1000 characters the column decides, on purpose: callers rely on it.
// A key without "=" ends the run.
std::string EXTRACTSTRING(std::string_view line, std::string_view lowerLine, std::string_view key, std::int32_t column);
// The same with the rest of the line as the value of a key.
std::string EXTRACTSTRINGREM(std::string_view line, std::string_view lowerLine, std::string_view key,
                             std::int32_t column);
// EXTRACTSTRING as a number; blank gives `fallback`, what cannot be read ends the run with a message.
std::int32_t EXTRACTINTEGER(std::string_view line, std::string_view lowerLine, std::string_view key,
                            std::int32_t column, std::int32_t fallback);
float EXTRACTREAL(std::string_view line, std::string_view lowerLine, std::string_view key, std::int32_t column,
                  float fallback);
// What EXTRACTREAL gives; nothing where it would end the run.
std::optional<float> findReal(std::string_view line, std::string_view lowerLine, std::string_view key,
                              std::int32_t column, float fallback);

} // namespace gridforge::inline host
