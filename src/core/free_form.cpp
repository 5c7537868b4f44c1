#include "core/free_form.h"

#include "core/byte_classes.h"
#include "core/decimal_rounding.h"
#include "core/text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <system_error>

namespace gridforge::inline core {

namespace {

bool sameIgnoringCase(std::string_view text, std::string_view lower)
{
    return text.size() == lower.size() && std::equal(text.begin(), text.end(), lower.begin(), [](char a, char b) {
               return (a >= 'A' && a <= 'Z' ? static_cast<char>(a - 'A' + 'a') : a) == b;
           });
}

std::string_view withoutSign(std::string_view token)
{
    return !token.empty() && (token[0] == '+' || token[0] == '-') ? token.substr(1) : token;
}

std::size_t digitsAt(std::string_view text, std::size_t at)
{
    const std::size_t start = at;
    while (at < text.size() && isDigit(text[at])) {
        ++at;
    }
    return at - start;
}

// An unsigned plain real: digits with at most one point and an optional exponent. `exponentAt` becomes the place of its
// letter, npos without one.
bool isPlainReal(std::string_view text, std::size_t& exponentAt)
{
    std::size_t at = digitsAt(text, 0);
    std::size_t digits = at;
    if (at < text.size() && text[at] == '.') {
        const std::size_t decimals = digitsAt(text, at + 1);
        digits += decimals;
        at += 1 + decimals;
    }
    exponentAt = std::string_view::npos;
    if (digits == 0) {
        return false;
    }
    if (at == text.size()) {
        return true;
    }
    constexpr std::string_view kExponentLetters = "eEdD";
    if (kExponentLetters.find(text[at]) == std::string_view::npos) {
        return false;
    }
    exponentAt = at++;
    if (at < text.size() && (text[at] == '+' || text[at] == '-')) {
        ++at;
    }
    const std::size_t exponentDigits = digitsAt(text, at);
    return exponentDigits > 0 && at + exponentDigits == text.size();
}

template <typename Real>
Real toReal(const char* text)
{
    if constexpr (sizeof(Real) == sizeof(float)) {
        return std::strtof(text, nullptr);
    } else {
        return std::strtod(text, nullptr);
    }
}

// Text of a plain real with an e for its exponent.
template <typename Real>
bool convertPlain(std::string_view text, Real& value)
{
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error == std::errc()) {
        return true;
    }
    // Out of range: too large is a failure, too small becomes the nearest value, which from_chars does not return.
    value = toReal<Real>(std::string(text).c_str());
    return std::isfinite(value);
}

// Up to 15 digits with at most one point, as nearly all numbers are. Digits and power of ten are doubles without an error, so
// the quotient is rounded once; a single is rounded twice, which only shows near half way. False, with nothing taken, for any
// other text.
template <typename Real>
bool convertShort(std::string_view text, Real& value)
{
    constexpr std::size_t kMostDigits = 15;
    std::size_t count = 0;
    std::size_t decimals = 0;
    bool hasPoint = false;
    std::int64_t digits = 0;
    for (const char c : text) {
        if (c == '.' && !hasPoint) {
            hasPoint = true;
        } else if (isDigit(c) && count < kMostDigits) {
            digits = digits * 10 + (c - '0');
            ++count;
            decimals += static_cast<std::size_t>(hasPoint);
        } else {
            return false;
        }
    }
    const double quotient = static_cast<double>(digits) / kExactPowers[decimals];
    if (count == 0 || (sizeof(Real) == sizeof(float) && !roundsSafely(quotient))) {
        return false;
    }
    value = static_cast<Real>(quotient);
    return true;
}

template <typename Real>
bool parseReal(std::string_view token, Real& target)
{
    const bool negative = !token.empty() && token[0] == '-';
    const std::string_view text = withoutSign(token);
    Real value = 0;
    std::size_t exponentAt = 0;
    if (convertShort(text, value)) {
        target = negative ? -value : value;
        return true;
    }
    if (sameIgnoringCase(text, "nan")) {
        value = std::numeric_limits<Real>::quiet_NaN();
    } else if (sameIgnoringCase(text, "inf") || sameIgnoringCase(text, "infinity")) {
        value = std::numeric_limits<Real>::infinity();
    } else if (!isPlainReal(text, exponentAt)) {
        return false;
    } else if (exponentAt != std::string_view::npos && text[exponentAt] != 'e' && text[exponentAt] != 'E') {
        std::string withE(text);
        withE[exponentAt] = 'e';
        if (!convertPlain(std::string_view(withE), value)) {
            return false;
        }
    } else if (!convertPlain(text, value)) {
        return false;
    }
    target = negative ? -value : value;
    return true;
}

template <typename Integer>
bool parseInteger(std::string_view token, Integer& target)
{
    const std::string_view digits = withoutSign(token);
    if (digits.empty() || digitsAt(digits, 0) != digits.size()) {
        return false;
    }
    const std::string_view text = token[0] == '+' ? digits : token;
    Integer value = 0;
    if (std::from_chars(text.data(), text.data() + text.size(), value).ec != std::errc()) {
        return false;
    }
    target = value;
    return true;
}

} // namespace

bool parseNumber(std::string_view token, std::int32_t& target)
{
    return parseInteger(token, target);
}

bool parseNumber(std::string_view token, std::int64_t& target)
{
    return parseInteger(token, target);
}

bool parseNumber(std::string_view token, float& target)
{
    return parseReal(token, target);
}

bool parseNumber(std::string_view token, double& target)
{
    return parseReal(token, target);
}

// Places in locals, which bytes of the text cannot be taken for.
void FreeForm::passBlanks()
{
    const std::string_view text = text_;
    std::size_t at = at_;
    while (at < text.size() && isBlank(text[at])) {
        ++at;
    }
    at_ = at;
}

// After a value come blanks and at most one comma.
void FreeForm::passSeparator()
{
    passBlanks();
    afterComma_ = at_ < text_.size() && text_[at_] == ',';
    if (afterComma_) {
        ++at_;
    }
}

FreeForm::Token FreeForm::nextToken(std::string_view& token)
{
    passBlanks();
    if (at_ == text_.size()) {
        const bool holdsEmpty = afterComma_ && lastComma_ == LastComma::holdsEmpty;
        afterComma_ = false;
        return holdsEmpty ? Token::empty : Token::end;
    }
    if (text_[at_] == ',') {
        ++at_;
        afterComma_ = true;
        return Token::empty;
    }
    const std::string_view rest = text_.substr(at_);
    std::size_t length = 1;
    while (length < rest.size() && !isBlank(rest[length]) && rest[length] != ',') {
        ++length;
    }
    token = rest.substr(0, length);
    at_ += length;
    passSeparator();
    return Token::found;
}

template <typename Number>
FreeValue FreeForm::nextNumber(Number& target)
{
    std::string_view token;
    switch (nextToken(token)) {
    case Token::end: return FreeValue::end;
    case Token::empty: return FreeValue::empty;
    case Token::found: break;
    }
    return parseNumber(token, target) ? FreeValue::value : FreeValue::failure;
}

FreeValue FreeForm::next(std::int32_t& target)
{
    return nextNumber(target);
}

FreeValue FreeForm::next(std::int64_t& target)
{
    return nextNumber(target);
}

FreeValue FreeForm::next(float& target)
{
    return nextNumber(target);
}

FreeValue FreeForm::next(double& target)
{
    return nextNumber(target);
}

FreeValue FreeForm::nextText(std::string& target, std::size_t width)
{
    passBlanks();
    if (at_ == text_.size() || !isQuote(text_[at_])) {
        std::string_view token;
        switch (nextToken(token)) {
        case Token::end: return FreeValue::end;
        case Token::empty: return FreeValue::empty;
        case Token::found: break;
        }
        target = cut(token, width);
        return FreeValue::value;
    }
    const char quote = text_[at_++];
    std::string value;
    while (true) {
        const std::size_t end = text_.find(quote, at_);
        if (end == std::string_view::npos) {
            at_ = text_.size();
            return FreeValue::failure; // the closing quote is missing
        }
        value += text_.substr(at_, end - at_);
        at_ = end + 1;
        if (at_ == text_.size() || text_[at_] != quote) {
            break;
        }
        value += quote; // of two the second is part of the value
        ++at_;
    }
    passSeparator();
    target = cut(value, width);
    return FreeValue::value;
}

namespace {

template <typename Number>
bool readOne(std::string_view text, Number& target)
{
    return FreeForm(text).take(target);
}

} // namespace

bool readFree(std::string_view text, std::int32_t& target)
{
    return readOne(text, target);
}

bool readFree(std::string_view text, std::int64_t& target)
{
    return readOne(text, target);
}

bool readFree(std::string_view text, float& target)
{
    return readOne(text, target);
}

bool readFree(std::string_view text, double& target)
{
    return readOne(text, target);
}

bool CHECKINT(std::string_view text, std::int32_t& value)
{
    return readOne(text, value);
}

} // namespace gridforge::inline core
