#include "host/control_lines.h"

#include "core/free_form.h"
#include "core/number_text.h"
#include "core/text.h"
#include "host/ends.h"
#include "host/messages.h"

#include <optional>
#include <utility>

namespace gridforge::inline host {

namespace {

[[noreturn]] void endOfReading(std::string_view message, Unit unit)
{
    constexpr int kUnitColumns = 5;
    report(message, integerField(unit, kUnitColumns));
    EXITS();
}

std::string extract(std::string_view line, std::string_view lowerLine, std::string_view key, std::int32_t column,
                    ValueEnd end)
{
    std::optional<std::string> value = keyOrColumnValue(line, lowerLine, key, column, end);
    if (!value) {
        report("ERROR 0203 - No \"=\" sign found after keyword \"", trimRight(key), "\".");
        EXITS();
    }
    return *std::move(value);
}

// Nothing for a text that cannot be read.
template <typename Number>
std::optional<Number> numberIn(const std::string& text, Number fallback)
{
    Number value = fallback;
    return text.empty() || readFree(text, value) ? std::optional(value) : std::nullopt;
}

template <typename Number>
Number extractNumber(std::string_view line, std::string_view lowerLine, std::string_view key, std::int32_t column,
                     Number fallback, std::string_view kind)
{
    constexpr int kColumnColumns = 3;
    const std::string text = EXTRACTSTRING(line, lowerLine, key, column);
    const std::optional<Number> value = numberIn(text, fallback);
    if (!value) {
        fail(" Could not convert \"", text, "\" in column ", integerField(column, kColumnColumns), " to ", kind,
             " value for the ", trimRight(key), " field.");
    }
    return *value;
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
    text.resize(trimRight(text).size()); // the blanks before the comment
    return !nothing;
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

std::optional<float> findReal(std::string_view line, std::string_view lowerLine, std::string_view key,
                              std::int32_t column, float fallback)
{
    const std::optional<std::string> text = keyOrColumnValue(line, lowerLine, key, column, ValueEnd::atComma);
    return text ? numberIn(*text, fallback) : std::nullopt;
}

} // namespace gridforge::inline host
