// The classes of bytes that readers of numbers distinguish.
#pragma once

namespace gridforge::inline core {

constexpr bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

constexpr bool isLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

constexpr bool isBlank(char c)
{
    return c == ' ' || c == '\t';
}

constexpr bool isQuote(char c)
{
    return c == '"' || c == '\'';
}

// A byte between free-form values; line ends are among them.
constexpr bool isSeparator(char c)
{
    return isBlank(c) || c == ',' || c == '\n' || c == '\r';
}

} // namespace gridforge::inline core
