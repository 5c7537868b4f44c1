// Text without trailing blanks, and the small routines on it that the flag scan, the headers and the control files use.
// All text is taken literally, and only a to z change case. A routine that cuts says at which width.
#pragma once

#include <array>
#include <charconv>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

namespace gridforge::inline core {

// Names and lines hold this many characters and are cut there without notice.
inline constexpr std::size_t kNameWidth = 1000;
inline constexpr std::size_t kLineWidth = 1000;
// Width of the work space of the routines on long lines.
inline constexpr std::size_t kWorkWidth = 100000;

// Some editors begin UTF-8 text with it. It is no part of the text.
inline constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

// --- Views of a text -------------------------------------------------------------------------------------------------

std::string_view trimLeft(std::string_view text);  // without leading blanks; tabs are not blanks
std::string_view trimRight(std::string_view text); // without trailing blanks
std::string_view trim(std::string_view text);      // without either
// The first `width` characters, without trailing blanks: how a text fits a field of that width.
std::string cut(std::string_view text, std::size_t width);

// --- Joining ---------------------------------------------------------------------------------------------------------

inline void appendPart(std::string& out, std::string_view part)
{
    out += part;
}
inline void appendPart(std::string& out, char part)
{
    out += part;
}
template <std::integral Number>
void appendPart(std::string& out, Number part)
{
    std::array<char, std::numeric_limits<Number>::digits10 + 3> digits;
    out.append(digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), part).ptr);
}

// How long a part may be, so that a text of several is allocated once.
inline std::size_t lengthOfPart(std::string_view part)
{
    return part.size();
}
inline std::size_t lengthOfPart(char)
{
    return 1;
}
template <std::integral Number>
std::size_t lengthOfPart(Number)
{
    constexpr std::size_t kUsualDigits = 6;
    return kUsualDigits;
}

// The parts as one text: texts and characters as they are, integers as plain digits.
template <typename... Parts>
std::string join(const Parts&... parts)
{
    std::string out;
    out.reserve((lengthOfPart(parts) + ... + 0));
    (appendPart(out, parts), ...);
    return out;
}

inline std::string quoted(std::string_view text)
{
    return join('"', text, '"');
}

// --- Comparing and finding -------------------------------------------------------------------------------------------

// The same text, ignoring quotes, tabs, leading and trailing blanks and case, within the first 1000 characters.
bool ASAME(std::string_view a, std::string_view b);
// The key is anywhere in the text, ignoring case and the trailing blanks of both. A blank key is always found.
bool FLAGEXISTS(std::string_view text, std::string_view key);
// FLAGEXISTS; `rest` becomes the text after the key, unchanged, or blank if the key is missing.
bool FLAGEXISTSRET(std::string_view text, std::string_view key, std::string& rest);
// Left-trims in place and cuts at the first "#" or "!", in quotes too. True if nothing is left to read.
bool COMMENTLINE(std::string& text);

// --- Changing text ---------------------------------------------------------------------------------------------------

std::string TRIMF(std::string_view text); // without leading blanks
std::string UPPERCASE(std::string_view text);
std::string LOWERCASE(std::string_view text);
std::string REMOVEQUOTES(std::string_view text); // without " and '
std::string DOUBLEQUOTE(std::string_view text);  // each " doubled
// The text in double quotes as a value of a record or of a CSV row: those inside it doubled.
std::string quotedValue(std::string_view text);
// Letters, digits and "_" only. Nothing left: "X".
std::string CLEANATTRIBUTENAME(std::string_view text);

// --- Counting and fields ---------------------------------------------------------------------------------------------

// Place of the first `wanted` outside quotes, or npos. A quote of either kind begins or ends quoted text, whichever kind
// began it, so a doubled quote inside ends nothing.
std::size_t findOutsideQuotes(std::string_view text, char wanted);

} // namespace gridforge::inline core
