#include "host/folder_names.h"

#include "core/text.h"

#include <algorithm>
#include <cerrno>
#include <dirent.h>
#include <memory>

namespace gridforge {

namespace {

struct CloseFolder {
    void operator()(DIR* folder) const { closedir(folder); }
};

std::chrono::nanoseconds nanoseconds(const timespec& time)
{
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

} // namespace

int readFolder(const std::string& folder, std::vector<std::string>& names)
{
    const std::unique_ptr<DIR, CloseFolder> open(opendir(folder.c_str()));
    if (!open) {
        return errno;
    }
    errno = 0;
    while (const dirent* entry = readdir(open.get())) {
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..") {
            names.emplace_back(name);
        }
        errno = 0;
    }
    return errno;
}

std::optional<FolderNames::State> FolderNames::stateOf(const std::string& folder)
{
    struct stat status = {};
    if (stat(folder.c_str(), &status) != 0) {
        return std::nullopt;
    }
    // Programs that copy folders set the modification time back when they are done; the status time shows it.
    const auto lastChange = std::max(nanoseconds(status.st_mtim), nanoseconds(status.st_ctim));
    return State{status.st_dev, status.st_ino, lastChange};
}

void FolderNames::list(const std::string& folder)
{
    const auto before = stateOf(folder);
    const std::chrono::nanoseconds now = std::chrono::system_clock::now().time_since_epoch();
    listed_ = before && now - before->lastChange > settled_ ? before : std::nullopt;
    names_.clear();
    std::vector<std::string> names;
    readFolder(folder, names); // what could not be read is missing
    for (std::string& name : names) {
        std::string small = LOWERCASE(name);
        names_.emplace(std::move(small), std::move(name));
    }
}

std::vector<std::string> FolderNames::inAnyCase(const std::string& folder, std::string_view name)
{
    if (!listed_ || stateOf(folder) != listed_) {
        list(folder);
    }
    std::vector<std::string> found;
    const auto [first, last] = names_.equal_range(LOWERCASE(name));
    for (auto entry = first; entry != last; ++entry) {
        found.push_back(entry->second);
    }
    return found;
}

} // namespace gridforge
