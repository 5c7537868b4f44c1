// Numbers into text. The stored value is rounded correctly, exact ties to even.
#pragma once

#include <cstdint>
#include <string>

namespace gridforge::inline core {

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
