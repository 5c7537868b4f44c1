#include "core/number_text.h"

#include "core/fixed_digits.h"
#include "core/text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <string_view>

namespace gridforge::inline core {

namespace {

constexpr int kFieldWidth = 20;

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
    FixedRoom room;
    const std::string_view digits = fixedDigits(value, decimals, room);
    if (!digits.empty() && static_cast<int>(digits.size()) <= width) {
        return rightJustified(digits, width);
    }
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
    FixedRoom room;
    const std::string_view digits = fixedDigits(value, decimals, room);
    const std::string field = digits.empty() ? realField(value, kFieldWidth, decimals) : "";
    const std::string_view text = digits.empty() ? trimLeft(field) : digits;
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
