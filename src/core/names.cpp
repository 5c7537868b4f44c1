#include "core/names.h"

#include "core/text.h"

#include <algorithm>

namespace gridforge::inline core {

namespace {

constexpr std::string_view kSeparators = "\\/";

// Positions count from 1 and 0 means none, as the rules below compare them.
std::size_t lastSeparator(std::string_view name)
{
    return name.find_last_of(kSeparators) + 1;
}

std::size_t lastOf(std::string_view name, char c)
{
    return name.rfind(c) + 1;
}

std::string_view held(std::string_view name)
{
    return trimRight(name.substr(0, std::min(name.size(), kNameWidth)));
}

std::string_view extension(std::string_view name)
{
    const std::size_t dot = lastOf(name, '.');
    return dot > lastSeparator(name) ? name.substr(dot - 1) : std::string_view();
}

// The name before its last `mark` if that is neither the first character nor before the last separator; otherwise the
// whole name.
std::string beforeMark(std::string_view name, char mark)
{
    const std::size_t at = lastOf(name, mark);
    return std::string(at > 1 && at > lastSeparator(name) ? name.substr(0, at - 1) : name);
}

} // namespace

std::string FILEEXT(std::string_view name)
{
    return LOWERCASE(extension(held(name)));
}

std::string FILENAMEPATH(std::string_view name)
{
    return beforeMark(held(name), '.');
}

std::string FILENAME(std::string_view name)
{
    name = held(name);
    const std::size_t separator = lastSeparator(name);
    const std::size_t dot = lastOf(name, '.');
    if (separator > 0) {
        const std::size_t end = dot <= separator + 1 ? name.size() : dot - 1;
        return std::string(name.substr(separator, end - separator));
    }
    return std::string(dot == 0 ? name : name.substr(0, dot - 1));
}

std::string FILENAMEEXT(std::string_view name)
{
    name = held(name);
    return std::string(name.substr(lastSeparator(name)));
}

std::string FILEFOLDERPATH(std::string_view name)
{
    name = held(name);
    return std::string(name.substr(0, lastSeparator(name)));
}

std::string CLEANPATH(std::string_view name)
{
    std::string text = TRIMF(trimRight(name));
    // Each search returns the first place of its pair, so after a leading pair later ones stay. Callers rely on it.
    for (;;) {
        const std::size_t at = std::max(text.find("\\\\") + 1, text.find("//") + 1);
        if (at <= 1) {
            return TRIMF(text);
        }
        text.erase(at, 1);
    }
}

} // namespace gridforge::inline core
