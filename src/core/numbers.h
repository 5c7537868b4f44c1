// Numbers out of text and into text. Reading is free-form: values end at blanks, tabs and commas, and reals are rounded
// once, straight to the precision of their variable. Writing rounds the stored value correctly, exact ties to even.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace gridforge::inline core {

// --- Free-form reading -----------------------------------------------------------------------------------------------

enum class FreeValue {
    value,   // read into the target
    empty,   // nothing between two commas: the target stays as it was
    failure, // not a number of that kind
    end      // no further value in the text
};

// What a comma at the end of the text means: nothing, or one more value, which is empty.
enum class LastComma { separates, holdsEmpty };

// Walks over the values of one text, usually a line: at `end` a caller that wants more starts on the next line.
class FreeForm {
public:
    explicit FreeForm(std::string_view text, LastComma lastComma = LastComma::separates)
        : text_(text), lastComma_(lastComma)
    {
    }

    // Integers are digits with an optional sign; out of range is a failure. Reals may have a point and an exponent with e
    // or d, or be NaN, Inf or Infinity; too large is a failure, too small becomes the nearest value or 0.
    FreeValue next(std::int32_t& target);
    FreeValue next(std::int64_t& target);
    FreeValue next(float& target);
    FreeValue next(double& target);
    // Text may be in '...' or "...", in which a doubled quote counts as one. Cut at `width`.
    FreeValue nextText(std::string& target, std::size_t width);

    // The next value, which the line must have: false if it is missing or cannot be read.
    // An empty one leaves its target.
    template <typename Number>
    bool take(Number& target)
    {
        return isField(next(target));
    }
    bool take(std::string& target, std::size_t width) { return isField(nextText(target, width)); }

private:
    static bool isField(FreeValue got) { return got == FreeValue::value || got == FreeValue::empty; }

    enum class Token { found, empty, end };
    Token nextToken(std::string_view& token);
    void passSeparator();
    template <typename Number>
    FreeValue nextNumber(Number& target);

    std::string_view text_;
    LastComma lastComma_;
    std::size_t at_ = 0;
    bool afterComma_ = false;
};

// One value from the head of a text. An empty value before a comma leaves the target and is no failure; an empty text is
// one.
bool readFree(std::string_view text, std::int32_t& target);
bool readFree(std::string_view text, std::int64_t& target);
bool readFree(std::string_view text, float& target);
bool readFree(std::string_view text, double& target);

// The whole of `token` as one number of free-form reading; false leaves the target alone.
bool parseNumber(std::string_view token, std::int32_t& target);
bool parseNumber(std::string_view token, std::int64_t& target);
bool parseNumber(std::string_view token, float& target);
bool parseNumber(std::string_view token, double& target);

// readFree under the name that users know from the documents.
bool CHECKINT(std::string_view text, std::int32_t& value);

// --- Real to integer, held at the 32-bit limits; not-a-number gives 0 ------------------------------------------------

std::int32_t truncateToInt(double value);
std::int32_t roundToInt(double value); // halves away from zero
std::int32_t ceilToInt(double value);
std::int32_t floorToInt(double value);

// --- Number to text --------------------------------------------------------------------------------------------------

// Fixed notation with `decimals` decimals (the point always stands), no padding: "12.500", "12.", "-0.250", "NaN",
// "Infinity". A leading zero is written.
std::string fixedText(double value, int decimals);
// The same right-justified in `width`. A leading zero is dropped if the text is too wide only because of it; what still
// does not fit becomes a field of "*". Infinity is "Inf" in fields narrower than 8.
std::string realField(double value, int width, int decimals);
// An integer right-justified in `width`, or a field of "*".
std::string integerField(std::int64_t value, int width);

std::string AINTEGER(std::int32_t value);
// At least `digits` digits, by leading zeros; for values from 0.
std::string AINTEGERPREC0(std::int32_t value, std::int32_t digits);
std::string AINTEGER8PREC0(std::int64_t value, std::int32_t digits);
// Decimals by the size of the value, 6 below 0.01 down to 0 from 1000; trailing zeros cut, the point stays: "2.5",
// "3.".
std::string AREAL(float value);
// The same with 10 decimals below 1 down to 0 from 1e9.
std::string AREAL8(double value);
// `decimals` decimals in a field of 20, trailing zeros kept, left-justified.
std::string AREALD(float value, std::int32_t decimals);
std::string AREALD8(double value, std::int32_t decimals);

} // namespace gridforge::inline core
