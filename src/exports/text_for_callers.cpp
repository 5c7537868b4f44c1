#include "exports/text_for_callers.h"

#include "core/byte_classes.h"
#include "core/control_fields.h"
#include "core/free_form.h"
#include "core/text.h"

#include <algorithm>
#include <array>
#include <optional>

namespace gridforge::exports {

namespace {

// The part of a text that fits the work space.
std::string_view inWorkSpace(std::string_view text)
{
    return trimRight(text.substr(0, kWorkWidth));
}

void trimLeftInPlace(std::string& text)
{
    text.erase(0, text.size() - trimLeft(text).size());
}

// The part of a text that is compared, as in ASAME.
std::string seen(std::string_view text)
{
    std::string result(text.substr(0, kNameWidth));
    std::erase_if(result, [](char c) { return isQuote(c) || c == '\t'; });
    return std::string(trim(result));
}

std::string without(std::string_view text, char dropped)
{
    std::string result(text);
    std::erase(result, dropped);
    return result;
}

// Replaces the first occurrence in place; false if none is found.
bool replaceFirst(std::string& text, std::string_view find, std::string_view with)
{
    const std::size_t at = find.empty() ? std::string::npos : UPPERCASE(text).find(UPPERCASE(find));
    if (at == std::string::npos) {
        return false;
    }
    text.replace(at, find.size(), with);
    return true;
}

} // namespace

// --- Comparing and finding -------------------------------------------------------------------------------------------

bool ASAMECS(std::string_view a, std::string_view b)
{
    return seen(a) == seen(b);
}

bool BLANK(std::string& text)
{
    std::erase(text, '\t');
    return trimRight(text).empty();
}

bool NUMBERLINE(std::string& text)
{
    trimLeftInPlace(text);
    return text.empty() || isDigit(text[0]) || text[0] == '-' || text[0] == '.';
}

std::int32_t LENSL(std::string_view text)
{
    constexpr std::string_view kPadding(" \0", 2);
    return static_cast<std::int32_t>(text.find_last_not_of(kPadding) + 1);
}

bool POSITIVEINTEGERNUMBER(std::string& text)
{
    trimLeftInPlace(text);
    const std::string_view digits = trimRight(text);
    return !digits.empty() && std::ranges::all_of(digits, isDigit);
}

// --- Changing text ---------------------------------------------------------------------------------------------------

std::string REMOVESPACES(std::string_view text)
{
    return without(text, ' ');
}

std::string REMOVETABS(std::string_view text)
{
    return without(text, '\t');
}

std::string SS256(std::string_view text)
{
    constexpr std::size_t kWidth = 256;
    return cut(text, kWidth);
}

std::string ALPHANUMERICONLY(std::string_view text, char replacement)
{
    std::string result;
    for (const char c : trimRight(text)) {
        if (isLetter(c) || isDigit(c)) {
            result += c;
        } else if (replacement != '\0') {
            result += replacement;
        }
    }
    // Blanks alone are an empty text too.
    return trimRight(result).empty() ? "X" : result;
}

std::string REPLACE(std::string_view text, std::string_view find, std::string_view with)
{
    std::string result(inWorkSpace(text));
    replaceFirst(result, trimRight(find), trimRight(with));
    return cut(result, kWorkWidth);
}

std::string REPLACEALL(std::string_view text, std::string_view find, std::string_view with)
{
    std::string result(inWorkSpace(text));
    while (replaceFirst(result, trimRight(find), trimRight(with))) {
        result = cut(result, kWorkWidth);
    }
    return result;
}

void SPLITFIRSTWORD(std::string& word, std::string& text)
{
    const std::string_view rest = trim(text);
    const std::size_t end = std::min(findOutsideQuotes(rest, ' '), rest.size());
    word = REMOVEQUOTES(rest.substr(0, end));
    text = TRIMF(rest.substr(end));
}

// --- Counting and fields ---------------------------------------------------------------------------------------------

std::int32_t NEXTCOMMA(std::string_view text)
{
    return static_cast<std::int32_t>(findOutsideQuotes(text, ',') + 1);
}

std::int32_t NUMBEROFSUBSTRINGS(std::string_view text, std::string_view separator)
{
    const std::string_view whole = inWorkSpace(text);
    if (whole.empty()) {
        return 0;
    }
    std::int32_t count = 1;
    if (!separator.empty()) {
        for (std::size_t at = whole.find(separator); at != std::string_view::npos;
             at = whole.find(separator, at + separator.size())) {
            ++count;
        }
    }
    return count;
}

std::string SUBSTRING(std::string_view text, std::string_view separator, std::int32_t n)
{
    const std::size_t excess = separator.empty() ? 0 : separator.size() - 1;
    std::size_t start = 0;
    for (std::int32_t field = 1; field < n; ++field) {
        const std::size_t found = separator.empty() ? std::string_view::npos : text.find(separator, start);
        if (found == std::string_view::npos) {
            return {};
        }
        start = found + 1;
    }
    if (n < 1) {
        return {};
    }
    const std::size_t found = separator.empty() ? std::string_view::npos : text.find(separator, start);
    std::size_t end = found == std::string_view::npos ? text.size() : found;
    if (found != std::string_view::npos) {
        end -= std::min(excess, end - start);
    }
    return std::string(trim(text.substr(start, end - start)));
}

std::int32_t NUMBEROFNUMBERS(std::string_view text)
{
    std::int32_t count = 0;
    bool inNumber = false;
    bool afterComma = false;
    for (const char c : inWorkSpace(text)) {
        if (isDigit(c) || c == '-' || c == '.' || c == 'e' || c == 'E') {
            if (!inNumber) {
                ++count;
                inNumber = true;
                afterComma = false;
            }
        } else if (c == '!' || c == '#') {
            return count;
        } else if (isBlank(c)) {
            inNumber = false; // after a comma it is false already
        } else if (c == ',') {
            if (!inNumber && afterComma) {
                ++count; // an empty field is a number
            }
            inNumber = false;
            afterComma = true;
        } else {
            return -count;
        }
    }
    return count;
}

std::int32_t CSVCOLUMN(std::string_view text, std::string_view name, std::int32_t fallback)
{
    CommaFields fields(text, Quotes::areText);
    std::int32_t column = 1;
    while (const std::optional<std::string_view> field = fields.next()) {
        if (ASAME(*field, name)) {
            return column;
        }
        ++column;
    }
    return fallback;
}

bool CSVVALUE(std::string_view text, std::int32_t column, float& value)
{
    value = 0;
    const std::optional<std::string_view> field = commaField(text, column, Quotes::areText);
    return field && parseNumber(trim(*field), value);
}

std::int32_t NUMBEROFDAYS(std::string_view date)
{
    constexpr std::array<std::int32_t, 12> kDaysBefore = {0, 28, 59, 89, 120, 150, 181, 212, 242, 273, 303, 334};
    constexpr std::int32_t kFebruary = 2;
    constexpr std::int32_t kLastOfFebruary = 28;
    std::int32_t year = 0;
    std::int32_t month = 0;
    std::int32_t day = 0;
    const auto column = [&](std::size_t from, std::size_t count) {
        return trim(date.substr(std::min(from, date.size()), count));
    };
    if (!parseNumber(column(0, 4), year) || !parseNumber(column(4, 2), month) || !parseNumber(column(6, 2), day) ||
        month < 1 || month > 12) {
        return -1;
    }
    if (month == kFebruary) {
        day = std::min(day, kLastOfFebruary);
    }
    return (year - 2000) * 365 + kDaysBefore[static_cast<std::size_t>(month - 1)] + day;
}

} // namespace gridforge::exports
