#include "host/file_system.h"

#include <algorithm>
#include <cerrno>
#include <dirent.h>
#include <memory>
#include <new>
#include <sys/stat.h>

namespace gridforge {

namespace {

// Walks both texts and goes back to the last "*" where they part, so the work is their product at worst.
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

struct CloseFolder {
    void operator()(DIR* folder) const { closedir(folder); }
};

SearchEnd folderError(int error)
{
    switch (error) {
    case ENOENT: return SearchEnd::noSuchFile;
    case ENOMEM: return SearchEnd::outOfMemory;
    default: return SearchEnd::invalidName;
    }
}

SearchResult listFolder(const std::string& folder, std::string_view pattern)
{
    SearchResult result;
    const std::unique_ptr<DIR, CloseFolder> open(opendir(folder.c_str()));
    if (!open) {
        result.end = folderError(errno);
        return result;
    }
    errno = 0;
    while (const dirent* entry = readdir(open.get())) {
        const std::string_view name = entry->d_name;
        if (name != "." && name != ".." && matches(name, pattern)) {
            result.names.emplace_back(name);
        }
        errno = 0;
    }
    if (errno != 0) {
        result.end = folderError(errno);
        return result;
    }
    std::sort(result.names.begin(), result.names.end());
    if (result.names.empty()) {
        result.end = SearchEnd::noSuchFile;
    }
    return result;
}

// A name without wildcards is asked for directly: listing a large folder for each of many inputs would cost their
// product.
SearchResult findPlain(const std::string& name, std::string_view last)
{
    SearchResult result;
    struct stat status = {};
    if (last != "." && last != ".." && !last.empty() && lstat(name.c_str(), &status) == 0) {
        result.names.emplace_back(last);
    } else {
        result.end = last.empty() || last == "." || last == ".." ? SearchEnd::noSuchFile : folderError(errno);
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

bool fileExists(std::string_view name)
{
    struct stat status = {};
    return stat(systemName(name).c_str(), &status) == 0 && !S_ISDIR(status.st_mode);
}

std::optional<std::int64_t> lastWriteTime(std::string_view name)
{
    struct stat status = {};
    if (stat(systemName(name).c_str(), &status) != 0) {
        return std::nullopt;
    }
    constexpr std::int64_t kNanoseconds = 1'000'000'000;
    return std::int64_t{status.st_mtim.tv_sec} * kNanoseconds + status.st_mtim.tv_nsec;
}

SearchResult searchFolder(std::string_view pattern)
{
    try {
        const std::string name = systemName(pattern);
        const std::size_t separator = name.rfind('/');
        const std::string folder = separator == std::string::npos ? "." : name.substr(0, separator + 1);
        const std::string_view last =
            separator == std::string::npos ? std::string_view(name) : std::string_view(name).substr(separator + 1);
        if (last.find_first_of("*?") == std::string_view::npos) {
            return findPlain(name, last);
        }
        return listFolder(folder, last);
    } catch (const std::bad_alloc&) {
        return {SearchEnd::outOfMemory, {}};
    }
}

} // namespace gridforge
