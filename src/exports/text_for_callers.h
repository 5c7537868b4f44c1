// Routines on texts, dates and fields that only outside callers use.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace gridforge::exports {

// --- Comparing and finding -------------------------------------------------------------------------------------------

// ASAME, but case counts.
bool ASAMECS(std::string_view a, std::string_view b);
// Removes tabs in place. True if nothing is left.
bool BLANK(std::string& text);
// Left-trims in place. True when the text is empty or begins with a digit, "-" or ".".
bool NUMBERLINE(std::string& text);
// Length without trailing blanks and zero bytes.
std::int32_t LENSL(std::string_view text);
// Left-trims in place. True when there is something and it is all digits.
bool POSITIVEINTEGERNUMBER(std::string& text);

// --- Changing text ---------------------------------------------------------------------------------------------------

std::string REMOVESPACES(std::string_view text);
std::string REMOVETABS(std::string_view text);
std::string SS256(std::string_view text); // cut at 256
// The text with every character other than a letter or digit replaced, or removed if `replacement` is the zero byte. "X" if
// nothing is left.
std::string ALPHANUMERICONLY(std::string_view text, char replacement);
// The first occurrence of `find`, case ignored, becomes the trimmed `with`.
std::string REPLACE(std::string_view text, std::string_view find, std::string_view with);
// REPLACE until no occurrence is left. A `with` that holds `find` never ends: callers avoid that.
std::string REPLACEALL(std::string_view text, std::string_view find, std::string_view with);
// Moves the first blank-delimited word (blanks in quotes do not count) from `text` to `word`, its quotes removed.
void SPLITFIRSTWORD(std::string& word, std::string& text);

// --- Counting and fields ---------------------------------------------------------------------------------------------

// Position from 1 of the first comma outside quotes, 0 when none.
std::int32_t NEXTCOMMA(std::string_view text);
// 0 for a blank text, otherwise one more than the separators in it.
std::int32_t NUMBEROFSUBSTRINGS(std::string_view text, std::string_view separator);
// The n-th field from 1, left-trimmed; blank when there are fewer. Separators longer than one character shift the
// fields by the excess on both sides, on purpose: callers rely on it.
std::string SUBSTRING(std::string_view text, std::string_view separator, std::int32_t n);
// How many numbers the text holds, an empty field between commas counting as one; the negated count if a character belongs
// to no number.
std::int32_t NUMBEROFNUMBERS(std::string_view text);

// The number from 1 of the comma field that is ASAME with `name`, or `fallback`. Quotes do not count.
std::int32_t CSVCOLUMN(std::string_view text, std::string_view name, std::int32_t fallback);
// The real in comma field `column`; 0.0 and false where the field is missing or cannot be read.
bool CSVVALUE(std::string_view text, std::int32_t column, float& value);

// Days of a date YYYYMMDD since the start of 2000, by years of 365 days; -1 when it cannot be read.
std::int32_t NUMBEROFDAYS(std::string_view date);

} // namespace gridforge::exports
