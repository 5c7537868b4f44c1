#include "host/file_system.h"

#include "core/text.h"
#include "host/folder_names.h"
#include "host/system.h"

#include <algorithm>
#include <new>
#include <utility>

namespace gridforge::inline host {

namespace {

// Walks both texts and returns to the last "*" at a mismatch, so the work is at worst the product of their lengths.
bool matches(std::string_view name, std::string_view pattern)
{
    std::size_t n = 0;
    std::size_t p = 0;
    std::size_t star = std::string_view::npos;
    std::size_t starName = 0;
    while (n < name.size()) {
        if (p < pattern.size() && pattern[p] == '*') {
            star = p++;
            starName = n;
        } else if (p < pattern.size() && (pattern[p] == '?' || pattern[p] == name[n])) {
            ++p;
            ++n;
        } else if (star != std::string_view::npos) {
            p = star + 1;
            n = ++starName;
        } else {
            return false;
        }
    }
    return pattern.substr(p).find_first_not_of('*') == std::string_view::npos;
}

// After a failed look at a name: the name may still be that of a file that can be opened.
bool mayBeThere(SystemStatus status)
{
    return status == SystemStatus::outOfMemory || status == SystemStatus::unknown;
}

SearchEnd searchEnd(SystemStatus status)
{
    switch (status) {
    case SystemStatus::done: return SearchEnd::done;
    case SystemStatus::noSuchFile: return SearchEnd::noSuchFile;
    case SystemStatus::outOfMemory: return SearchEnd::outOfMemory;
    case SystemStatus::refused:
    case SystemStatus::unknown: break;
    }
    return SearchEnd::invalidName;
}

SearchResult listFolder(const std::string& folder, std::string_view pattern)
{
    SearchResult result;
    if (const SystemStatus status = theSystem().list(folder, result.names); status != SystemStatus::done) {
        return {searchEnd(status), {}};
    }
    const bool ignoreCase = theSystem().namesIgnoreCase;
    const std::string wanted = ignoreCase ? LOWERCASE(pattern) : std::string(pattern);
    std::erase_if(result.names,
                  [&](const std::string& name) { return !matches(ignoreCase ? LOWERCASE(name) : name, wanted); });
    std::sort(result.names.begin(), result.names.end());
    if (result.names.empty()) {
        result.end = SearchEnd::noSuchFile;
    }
    return result;
}

bool isFile(const std::string& name)
{
    const std::optional<FileFacts> facts = factsOf(name);
    return facts && !facts->isFolder;
}

// A name of the system split at its last separator, which the folder keeps; without one the folder is empty.
struct SplitName {
    std::string folder;
    std::string_view last;
};

SplitName splitName(const std::string& name)
{
    const std::size_t start = name.rfind('/') + 1; // 0 without a separator
    return {name.substr(0, start), std::string_view(name).substr(start)};
}

std::string folderToOpen(const std::string& folder)
{
    return folder.empty() ? "." : folder;
}

// The only file that differs from the name in letter case; nothing if no file does, or several do.
std::optional<std::string> findInOtherCase(const SplitName& name)
{
    static FolderNames folderNames;
    std::optional<std::string> found;
    for (const std::string& last : folderNames.inAnyCase(folderToOpen(name.folder), name.last)) {
        std::string candidate = name.folder + last;
        if (!isFile(candidate)) {
            continue;
        }
        if (found) {
            return std::nullopt;
        }
        found = std::move(candidate);
    }
    return found;
}

// A name without wildcards is asked for directly: listing a large folder for each of many inputs would cost their
// product.
SearchResult findPlain(const std::string& name, std::string_view last)
{
    if (last.empty() || last == "." || last == "..") {
        return {SearchEnd::noSuchFile, {}};
    }
    SearchResult result{searchEnd(theSystem().lookUp(name)), {}};
    if (result.end == SearchEnd::done) {
        result.names.emplace_back(last);
    }
    return result;
}

} // namespace

std::string systemName(std::string_view name)
{
    std::string result(name);
    std::replace(result.begin(), result.end(), '\\', '/');
    return result;
}

std::optional<std::string> findInput(std::string_view name)
{
    std::string own = systemName(name);
    // Where the system cannot tell, as on a faulty disk, the file is not missing: opening it decides.
    FileFacts facts;
    const SystemStatus status = theSystem().facts(own, facts);
    if (status == SystemStatus::done ? !facts.isFolder : mayBeThere(status)) {
        return own;
    }
    return findInOtherCase(splitName(own));
}

bool inputExists(std::string_view name)
{
    return findInput(name).has_value();
}

std::string fullName(std::string_view name)
{
    return theSystem().fullName(systemName(name)).value_or(std::string(name));
}

SearchResult searchFolder(std::string_view pattern)
{
    try {
        const std::string name = systemName(pattern);
        const auto [folder, last] = splitName(name);
        if (last.find_first_of("*?") == std::string_view::npos) {
            return findPlain(name, last);
        }
        return listFolder(folderToOpen(folder), last);
    } catch (const std::bad_alloc&) {
        return {SearchEnd::outOfMemory, {}};
    }
}

} // namespace gridforge::inline host
