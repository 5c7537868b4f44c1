#include "core/numbers.h"

#include "core/byte_classes.h"
#include "core/text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <system_error>

namespace gridforge::inline core {

namespace {

constexpr int kFieldWidth = 20;

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

template <typename Real>
bool parseReal(std::string_view token, Real& target)
{
    const bool negative = !token.empty() && token[0] == '-';
    const std::string_view text = withoutSign(token);
    Real value = 0;
    std::size_t exponentAt = 0;
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

// --- Free-form reading -----------------------------------------------------------------------------------------------

// After a value come blanks and at most one comma.
void FreeForm::passSeparator()
{
    while (at_ < text_.size() && isBlank(text_[at_])) {
        ++at_;
    }
    afterComma_ = at_ < text_.size() && text_[at_] == ',';
    if (afterComma_) {
        ++at_;
    }
}

FreeForm::Token FreeForm::nextToken(std::string_view& token)
{
    while (at_ < text_.size() && isBlank(text_[at_])) {
        ++at_;
    }
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
    const std::size_t start = at_;
    while (at_ < text_.size() && !isBlank(text_[at_]) && text_[at_] != ',') {
        ++at_;
    }
    token = text_.substr(start, at_ - start);
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
    while (at_ < text_.size() && isBlank(text_[at_])) {
        ++at_;
    }
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
    for (; at_ < text_.size(); ++at_) {
        if (text_[at_] == quote) {
            if (at_ + 1 < text_.size() && text_[at_ + 1] == quote) {
                ++at_;
            } else {
                break;
            }
        }
        value += text_[at_];
    }
    if (at_ == text_.size()) {
        return FreeValue::failure; // the closing quote is missing
    }
    ++at_;
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

// --- Real to integer -------------------------------------------------------------------------------------------------

namespace {

std::int32_t heldAtLimits(double whole)
{
    using Limits = std::numeric_limits<std::int32_t>;
    if (std::isnan(whole)) {
        return 0;
    }
    return static_cast<std::int32_t>(
        std::clamp(whole, static_cast<double>(Limits::min()), static_cast<double>(Limits::max())));
}

} // namespace

std::int32_t truncateToInt(double value)
{
    return heldAtLimits(std::trunc(value));
}

std::int32_t roundToInt(double value)
{
    return heldAtLimits(std::round(value));
}

std::int32_t ceilToInt(double value)
{
    return heldAtLimits(std::ceil(value));
}

std::int32_t floorToInt(double value)
{
    return heldAtLimits(std::floor(value));
}

// --- Number to text --------------------------------------------------------------------------------------------------

namespace {

// Replaces a value that does not fit.
std::string fullField(int width)
{
    return std::string(static_cast<std::size_t>(std::max(width, 0)), '*');
}

std::string rightJustified(std::string_view text, int width)
{
    const auto columns = static_cast<std::size_t>(std::max(width, 0));
    if (text.size() > columns) {
        return fullField(width);
    }
    std::string field(columns - text.size(), ' ');
    field += text;
    return field;
}

} // namespace

std::string fixedText(double value, int decimals)
{
    if (std::isnan(value)) {
        return "NaN";
    }
    if (std::isinf(value)) {
        return value < 0 ? "-Infinity" : "Infinity";
    }
    constexpr int kMostWhole = 309;     // digits before the point
    constexpr int kMostDecimals = 1074; // all further decimals of any double are zeros
    const int shown = std::clamp(decimals, 0, kMostDecimals);
    std::array<char, kMostWhole + kMostDecimals + 2> buffer; // sign and point
    const auto [end, error] =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::fixed, shown);
    std::string text(buffer.data(), end);
    if (shown == 0) {
        text += '.';
    }
    if (decimals > shown) {
        text.append(static_cast<std::size_t>(decimals - shown), '0');
    }
    return text;
}

std::string realField(double value, int width, int decimals)
{
    constexpr int kShortField = 8;
    if (std::isfinite(value) && decimals >= width) {
        return fullField(width); // no room for the point; avoids a text of absurdly many decimals
    }
    std::string text = fixedText(value, decimals);
    if (std::isinf(value) && width < kShortField) {
        text = value < 0 ? "-Inf" : "Inf";
    }
    if (static_cast<int>(text.size()) - 1 == width) {
        const std::size_t zero = text[0] == '-' ? 1 : 0;
        if (text.compare(zero, 2, "0.") == 0 && text.size() > zero + 2) {
            text.erase(zero, 1);
        }
    }
    return rightJustified(text, width);
}

std::string integerField(std::int64_t value, int width)
{
    return rightJustified(std::to_string(value), width);
}

std::string AINTEGER(std::int32_t value)
{
    return std::to_string(value);
}

std::string AINTEGERPREC0(std::int32_t value, std::int32_t digits)
{
    return AINTEGER8PREC0(value, digits);
}

std::string AINTEGER8PREC0(std::int64_t value, std::int32_t digits)
{
    std::string field = integerField(value, kFieldWidth);
    const int count = std::clamp(digits, 0, kFieldWidth);
    std::replace(field.end() - count, field.end(), ' ', '0');
    return std::string(trimLeft(field));
}

namespace {

// Fixed text in a field of 20, its trailing zeros cut.
std::string bySize(double value, int decimals)
{
    const std::string field = realField(value, kFieldWidth, decimals);
    const std::string_view text = trimLeft(field);
    return std::string(text.substr(0, text.find_last_not_of('0') + 1));
}

} // namespace

std::string AREAL(float value)
{
    constexpr std::array<float, 6> kSteps = {0.01F, 0.1F, 1.0F, 10.0F, 100.0F, 1000.0F};
    const auto step = std::ranges::find_if(kSteps, [size = std::fabs(value)](float s) { return size < s; });
    return bySize(static_cast<double>(value), static_cast<int>(kSteps.end() - step));
}

std::string AREAL8(double value)
{
    constexpr std::array<double, 10> kSteps = {1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9};
    const auto step = std::ranges::find_if(kSteps, [size = std::fabs(value)](double s) { return size < s; });
    return bySize(value, static_cast<int>(kSteps.end() - step));
}

std::string AREALD(float value, std::int32_t decimals)
{
    return AREALD8(static_cast<double>(value), decimals);
}

std::string AREALD8(double value, std::int32_t decimals)
{
    return std::string(trimLeft(realField(value, kFieldWidth, decimals)));
}

} // namespace gridforge::inline core
