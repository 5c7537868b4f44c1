#include "core/text.h"

#include "core/byte_classes.h"

#include <algorithm>

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

std::string_view head(std::string_view text, std::size_t width)
{
    return text.substr(0, std::min(width, text.size()));
}

// Place of `key` in `text`, ignoring case, or npos.
std::size_t findIgnoringCase(std::string_view text, std::string_view key)
{
    const auto found = std::search(text.begin(), text.end(), key.begin(), key.end(),
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

bool isUnseen(char c)
{
    return isQuote(c) || c == '\t';
}

// The part of a text that ASAME compares; quotes and tabs inside it are skipped later.
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

// The part of a text that fits the work space.
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

// Compares without copies, because it runs for every field of a line.
bool ASAME(std::string_view a, std::string_view b)
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
        if (upper(*left++) != upper(*right++)) {
            return false;
        }
    }
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

bool COMMENTLINE(std::string& text)
{
    trimLeftInPlace(text);
    const bool nothing = text.empty() || kCommentMarks.find(text[0]) != std::string_view::npos;
    text.erase(std::min(text.find_first_of(kCommentMarks), text.size()));
    return nothing;
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

std::string REMOVEQUOTES(std::string_view text)
{
    return without(text, isQuote);
}

std::string DOUBLEQUOTE(std::string_view text)
{
    std::string result(text);
    for (std::size_t at = result.find('"'); at != std::string::npos; at = result.find('"', at + 2)) {
        result.insert(at, 1, '"');
    }
    return result;
}

std::string quotedValue(std::string_view text)
{
    return quoted(DOUBLEQUOTE(text));
}

std::string CLEANATTRIBUTENAME(std::string_view text)
{
    std::string result = without(text, [](char c) { return !isLetter(c) && !isDigit(c) && c != '_'; });
    return result.empty() ? "X" : result;
}

// --- Counting and fields ---------------------------------------------------------------------------------------------

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

} // namespace gridforge::inline core
