// Names in folders, regardless of letter case.
#pragma once

#include "host/system.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace gridforge::inline host {

// Finds names regardless of letter case. The listing of the folder asked about last is kept as long as the folder does
// not change: a run may ask for thousands of files that are missing from one large folder.
class FolderNames {
public:
    // A listing is kept only if the folder had not changed for `settled` nanoseconds before it was made. Time stamps are
    // coarse, so a change soon after another one may not show in them.
    explicit FolderNames(std::int64_t settled = kSettled) : settled_(settled) {}

    // The names in `folder` that equal `name` except in the case of ASCII letters. None if the folder cannot be read.
    std::vector<std::string> inAnyCase(const std::string& folder, std::string_view name);

private:
    struct Version {
        FileIdentity identity;
        std::int64_t lastChange = 0;
        bool operator==(const Version&) const = default;
    };
    static std::optional<Version> stateOf(const std::string& folder);
    void list(const std::string& folder);

    static constexpr std::int64_t kSettled = 3'000'000'000;
    std::int64_t settled_;
    std::optional<Version> listed_; // of the folder at its listing; empty if the listing must not be used again
    std::unordered_multimap<std::string, std::string> names_; // by their form in small letters
};

} // namespace gridforge::inline host
