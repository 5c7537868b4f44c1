// Numbers and words out of text. Reading is free-form: values end at blanks, tabs and commas, and reals are rounded once,
// straight to the precision of their variable.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace gridforge::inline core {

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
    void passBlanks();
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

} // namespace gridforge::inline core
