// Calls of exported routines with C++ texts: each becomes its pointer and its length.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>

namespace gridforge::test {

inline std::tuple<const char*, std::size_t> flat(std::string_view text)
{
    return {text.data(), text.size()};
}
inline std::tuple<const char*, std::size_t> flat(const char* text)
{
    return flat(std::string_view(text));
}
// A text that the routine fills or changes.
inline std::tuple<char*, std::size_t> flat(std::string& text)
{
    return {text.data(), text.size()};
}
template <typename Other>
requires(!std::is_convertible_v<Other, std::string_view>) std::tuple<Other> flat(Other other)
{
    return {other};
}

template <typename Result, typename... Parameters, typename... Arguments>
Result call(Result (*routine)(Parameters...), Arguments&&... arguments)
{
    return std::apply(routine, std::tuple_cat(flat(arguments)...));
}

// What a routine that gives text leaves in a result of `width` characters.
template <typename... Parameters, typename... Arguments>
std::string textOf(std::size_t width, void (*routine)(char*, std::size_t, Parameters...), Arguments&&... arguments)
{
    std::string result(width, '~');
    call(routine, result, arguments...);
    return result;
}

// The text as it stands in a field: cut or padded.
inline std::string field(std::string_view text, std::size_t width)
{
    std::string result(text);
    result.resize(width, ' ');
    return result;
}

} // namespace gridforge::test
