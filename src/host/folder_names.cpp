#include "host/folder_names.h"

#include "core/text.h"

#include <utility>

namespace gridforge::inline host {

std::optional<FolderNames::Version> FolderNames::stateOf(const std::string& folder)
{
    const std::optional<FileFacts> facts = factsOf(folder);
    return facts ? std::optional(Version{facts->identity, facts->lastChange}) : std::nullopt;
}

void FolderNames::list(const std::string& folder)
{
    const auto before = stateOf(folder);
    const bool isSettled = before && theSystem().now() - before->lastChange > settled_;
    listed_ = isSettled ? before : std::nullopt;
    names_.clear();
    std::vector<std::string> names;
    theSystem().list(folder, names); // names that could not be read are missing
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

} // namespace gridforge::inline host
