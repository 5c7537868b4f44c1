#include "exports/names_for_callers.h"

#include "core/names.h"
#include "core/text.h"

#include <algorithm>

namespace gridforge::exports {

namespace {

constexpr std::string_view kSeparators = "\\/";
constexpr auto kNone = std::string_view::npos;

// Positions count from 1 and 0 means none, as the rules below compare them.
std::size_t lastSeparator(std::string_view name)
{
    return name.find_last_of(kSeparators) + 1;
}

std::string_view held(std::string_view name)
{
    return trimRight(name.substr(0, kNameWidth));
}

// The name before its last "_" if that is neither the first character nor before the last separator; otherwise the whole
// name.
std::string beforeUnderscore(std::string_view name)
{
    const std::size_t at = name.rfind('_') + 1;
    return std::string(at > 1 && at > lastSeparator(name) ? name.substr(0, at - 1) : name);
}

// Doubled backslashes after the head of the name lose one.
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
        const bool afterParent = at >= 2 && text.compare(at - 2, 2, "..") == 0;
        if (afterParent) {
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

std::string FILEEXTKC(std::string_view name)
{
    name = held(name);
    const std::size_t length = FILEEXT(name).size();
    return std::string(name.substr(name.size() - length));
}

std::string FILE___EXT(std::string_view name)
{
    const std::string stem = FILENAME(name);
    const std::size_t mark = stem.rfind('_') + 1;
    // One position is counted in the stem, the other in the whole name, on purpose: callers rely on it.
    return mark > lastSeparator(held(name)) ? LOWERCASE(std::string_view(stem).substr(mark - 1)) : "";
}

std::string FILENAMENO_(std::string_view name)
{
    return beforeUnderscore(FILENAME(name));
}

std::string FILENAMEPATHNO_(std::string_view name)
{
    return beforeUnderscore(FILENAMEPATH(name));
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

} // namespace gridforge::exports
