#include "core/names.h"

#include "core/text.h"

#include <algorithm>

namespace gridforge::inline core {

namespace {

constexpr std::string_view kSeparators = "\\/";
constexpr auto kNone = std::string_view::npos;

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

// The name before its last `mark`, where that stands above 1 and behind the last separator; otherwise the whole name.
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

std::string FILEEXTKC(std::string_view name)
{
    return std::string(extension(held(name)));
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

std::string FILE___EXT(std::string_view name)
{
    const std::string stem = FILENAME(name);
    const std::size_t mark = lastOf(stem, '_');
    // The one place counts in the stem, the other in the whole name; deliberate, so a long folder gives blank.
    return mark > lastSeparator(held(name)) ? LOWERCASE(std::string_view(stem).substr(mark - 1)) : "";
}

std::string FILENAMENO_(std::string_view name)
{
    return beforeMark(FILENAME(name), '_');
}

std::string FILENAMEPATHNO_(std::string_view name)
{
    return beforeMark(FILENAMEPATH(name), '_');
}

std::string FILEFOLDERPATH(std::string_view name)
{
    name = held(name);
    return std::string(name.substr(0, lastSeparator(name)));
}

std::string ADDFOLDER(std::string_view folder, std::string_view name)
{
    folder = held(folder);
    const std::string_view bare = trimLeft(held(name));
    if (bare.empty()) {
        return folder.empty() ? "." : REMOVEDOTDOT(trimLeft(folder));
    }
    std::string joined(bare);
    const bool absolute = bare.find(':') != kNone || bare.find("\\\\") != kNone;
    if (!folder.empty() && !absolute) {
        const bool ended = kSeparators.find(folder.back()) != kNone;
        joined = join(folder, ended ? "" : "\\", bare);
    }
    return cut(REMOVEDOTDOT(joined), kNameWidth);
}

namespace {

// Doubled backslashes behind the head of the name lose one.
void takeDoubledTogether(std::string& text)
{
    for (std::size_t at = text.find("\\\\"); at != kNone && at + 1 > 2; at = text.find("\\\\")) {
        text.erase(at, 1);
    }
}

void resolveParents(std::string& text)
{
    constexpr std::string_view kParent = "\\..\\";
    std::size_t at = text.find(kParent);
    while (at != kNone && at + 1 > 1) {
        const bool behindParent = at >= 2 && text.compare(at - 2, 2, "..") == 0;
        if (behindParent) {
            at = text.find(kParent, at + 1);
            continue;
        }
        const std::size_t before = text.rfind('\\', at - 1);
        const std::size_t from = before == kNone ? 0 : before + 1;
        text.erase(from, at + kParent.size() - from);
        at = text.find(kParent);
    }
}

} // namespace

std::string REMOVEDOTDOT(std::string_view name)
{
    constexpr std::string_view kHere = "\\.\\";
    std::string text = TRIMF(name);
    takeDoubledTogether(text);
    resolveParents(text);
    for (std::size_t at = text.find(kHere); at != kNone; at = text.find(kHere)) {
        text.erase(at + 1, kHere.size() - 1);
    }
    return text;
}

bool DRIVEANDURLNAME(std::string& name)
{
    bool local = true;
    name = TRIMF(name);
    const std::size_t colon = name.find(':');
    if (colon != kNone) {
        name = join(UPPERCASE(std::string_view(name).substr(0, colon)), " Drive",
                    std::string_view(name).substr(colon + 1));
        local = false;
    }
    if (name.starts_with("\\\\") || name.starts_with("//")) {
        name = join("URL\\", std::string_view(name).substr(2));
        local = false;
    }
    name = cut(name, kNameWidth);
    return local;
}

std::string CLEANPATH(std::string_view name)
{
    std::string text = TRIMF(trimRight(name));
    // Each search gives the first place of its pair, so a leading pair ends the loop and later ones stay; deliberate.
    for (;;) {
        const std::size_t at = std::max(text.find("\\\\") + 1, text.find("//") + 1);
        if (at <= 1) {
            return TRIMF(text);
        }
        text.erase(at, 1);
    }
}

} // namespace gridforge::inline core
