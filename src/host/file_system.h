// The boundary to the operating system's file names: the one place where "\" becomes the platform's separator.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace gridforge::inline host {

// The name as the operating system takes it.
std::string systemName(std::string_view name);
// The name that the system opens the input `name` by: its own or, where no file has that name, the name of the only file
// in its folder that differs in the case of ASCII letters alone, so that names from systems that ignore case work here.
// Nothing if there is no such file or more than one. A folder is no file.
std::optional<std::string> findInput(std::string_view name);
bool inputExists(std::string_view name);

// The name with all its folders and without links where the system knows the file, else as given.
std::string fullName(std::string_view name);

enum class SearchEnd { done, noSuchFile, outOfMemory, invalidName };

struct SearchResult {
    SearchEnd end = SearchEnd::done;
    std::vector<std::string> names; // without folder, ascending by byte value
};

// The names that match the last component of `pattern`, where "*" stands for any characters and "?" for one. Dot-files
// and folders are found, "." and ".." are not.
SearchResult searchFolder(std::string_view pattern);

} // namespace gridforge::inline host
