#include "core/text.h"

#include "core/byte_classes.h"

#include <algorithm>
#include <functional>

namespace gridforge::inline core {

namespace {

constexpr std::string_view kCommentMarks = "#!";

char upper(char c)
{
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

char lower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool isLetter(char c)
{
    return upper(c) >= 'A' && upper(c) <= 'Z';
}

std::string_view head(std::string_view text, std::size_t width)
{
    return text.substr(0, std::min(width, text.size()));
}

// Place of `key` in `text`, case ignored, from `from` on; npos when it is not there.
std::size_t findIgnoringCase(std::string_view text, std::string_view key, std::size_t from = 0)
{
    if (from > text.size()) {
        return std::string_view::npos;
    }
    const auto found = std::search(text.begin() + static_cast<std::ptrdiff_t>(from), text.end(), key.begin(), key.end(),
                                   [](char a, char b) { return upper(a) == upper(b); });
    return found == text.end() && !key.empty() ? std::string_view::npos
                                               : static_cast<std::size_t>(found - text.begin());
}

template <typename Drop>
std::string without(std::string_view text, Drop drop)
{
    std::string result;
    result.reserve(text.size());
    std::copy_if(text.begin(), text.end(), std::back_inserter(result), [&](char c) { return !drop(c); });
    return result;
}

// Place of the first `wanted` outside quotes; npos when it is not there. Either kind of quote toggles, whichever kind
// opened; a doubled quote toggles twice and so counts as one character inside.
std::size_t findOutsideQuotes(std::string_view text, char wanted)
{
    bool inQuotes = false;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (isQuote(text[at])) {
            inQuotes = !inQuotes;
        } else if (text[at] == wanted && !inQuotes) {
            return at;
        }
    }
    return std::string_view::npos;
}

bool isUnseen(char c)
{
    return isQuote(c) || c == '\t';
}

// What of a text counts when it is compared with another, but for quotes and tabs inside it.
std::string_view comparable(std::string_view text)
{
    const auto isPadding = [](char c) { return c == ' ' || isUnseen(c); };
    text = head(text, kNameWidth);
    while (!text.empty() && isPadding(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && isPadding(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

// Compares in place, as it is done for every field of a line.
template <typename Fold>
bool isSame(std::string_view a, std::string_view b, Fold fold)
{
    a = comparable(a);
    b = comparable(b);
    auto left = a.begin();
    auto right = b.begin();
    while (true) {
        left = std::find_if_not(left, a.end(), isUnseen);
        right = std::find_if_not(right, b.end(), isUnseen);
        if (left == a.end() || right == b.end()) {
            return left == a.end() && right == b.end();
        }
        if (fold(*left++) != fold(*right++)) {
            return false;
        }
    }
}

// What of a text fits the work space.
std::string_view content(std::string_view text)
{
    return trimRight(head(text, kWorkWidth));
}

void trimLeftInPlace(std::string& text)
{
    text.erase(0, text.size() - trimLeft(text).size());
}

} // namespace

std::string_view trimLeft(std::string_view text)
{
    return text.substr(std::min(text.find_first_not_of(' '), text.size()));
}

std::string_view trimRight(std::string_view text)
{
    return text.substr(0, text.find_last_not_of(' ') + 1);
}

std::string_view trim(std::string_view text)
{
    return trimLeft(trimRight(text));
}

std::string cut(std::string_view text, std::size_t width)
{
    return std::string(trimRight(head(text, width)));
}

// --- Comparing and finding -------------------------------------------------------------------------------------------

bool ASAME(std::string_view a, std::string_view b)
{
    return isSame(a, b, upper);
}

bool ASAMECS(std::string_view a, std::string_view b)
{
    return isSame(a, b, std::identity{});
}

bool FLAGEXISTS(std::string_view text, std::string_view key)
{
    return findIgnoringCase(content(text), content(key)) != std::string_view::npos;
}

bool FLAGEXISTSRET(std::string_view text, std::string_view key, std::string& rest)
{
    const std::string_view wanted = content(key);
    const std::size_t at = findIgnoringCase(content(text), wanted);
    if (at == std::string_view::npos) {
        rest.clear();
        return false;
    }
    rest = std::string(text.substr(at + wanted.size()));
    return true;
}

bool BLANK(std::string& text)
{
    std::erase(text, '\t');
    return trimRight(text).empty();
}

bool COMMENTLINE(std::string& text)
{
    trimLeftInPlace(text);
    const bool nothing = text.empty() || kCommentMarks.find(text[0]) != std::string_view::npos;
    text.erase(std::min(text.find_first_of(kCommentMarks), text.size()));
    return nothing;
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

std::string TRIMF(std::string_view text)
{
    return std::string(trimLeft(text));
}

std::string UPPERCASE(std::string_view text)
{
    std::string result(text);
    std::ranges::transform(result, result.begin(), upper);
    return result;
}

std::string LOWERCASE(std::string_view text)
{
    std::string result(text);
    std::ranges::transform(result, result.begin(), lower);
    return result;
}

std::string REMOVESPACES(std::string_view text)
{
    return without(text, [](char c) { return c == ' '; });
}

std::string REMOVETABS(std::string_view text)
{
    return without(text, [](char c) { return c == '\t'; });
}

std::string SS256(std::string_view text)
{
    constexpr std::size_t kWidth = 256;
    return cut(text, kWidth);
}

std::string REMOVEQUOTES(std::string_view text)
{
    return without(text, isQuote);
}

std::string DOUBLEQUOTE(std::string_view text)
{
    std::string result;
    result.reserve(text.size());
    for (const char c : text) {
        result.append(c == '"' ? 2 : 1, c);
    }
    return result;
}

std::string quotedValue(std::string_view text)
{
    return quoted(DOUBLEQUOTE(text));
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

std::string CLEANATTRIBUTENAME(std::string_view text)
{
    std::string result = without(text, [](char c) { return !isLetter(c) && !isDigit(c) && c != '_'; });
    return result.empty() ? "X" : result;
}

namespace {

// Replaces the first occurrence in place; false when there is none.
bool replaceFirst(std::string& text, std::string_view find, std::string_view with)
{
    const std::size_t at = find.empty() ? std::string::npos : findIgnoringCase(text, find);
    if (at == std::string::npos) {
        return false;
    }
    text.replace(at, find.size(), with);
    return true;
}

} // namespace

std::string REPLACE(std::string_view text, std::string_view find, std::string_view with)
{
    std::string result(content(text));
    replaceFirst(result, trimRight(find), trimRight(with));
    return cut(result, kWorkWidth);
}

std::string REPLACEALL(std::string_view text, std::string_view find, std::string_view with)
{
    std::string result(content(text));
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
    const std::string_view whole = content(text);
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
    bool behindComma = false;
    for (const char c : content(text)) {
        if (isDigit(c) || c == '-' || c == '.' || c == 'e' || c == 'E') {
            if (!inNumber) {
                ++count;
                inNumber = true;
                behindComma = false;
            }
        } else if (c == '!' || c == '#') {
            return count;
        } else if (isBlank(c)) {
            inNumber = false; // behind a comma it is so already
        } else if (c == ',') {
            if (!inNumber && behindComma) {
                ++count; // an empty field is a number
            }
            inNumber = false;
            behindComma = true;
        } else {
            return -count;
        }
    }
    return count;
}

} // namespace gridforge::inline core
