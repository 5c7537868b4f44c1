// The files of the source tree, for tests that read them.
#pragma once

#include "support/paths.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace gridforge::test {

namespace fs = std::filesystem;

inline const fs::path kSource = sourceFolder();

// A source by its place in src/.
inline std::string sourceName(const fs::path& file)
{
    return file.lexically_relative(kSource / "src").generic_string();
}

inline std::vector<fs::path> sourcesBelow(const fs::path& folder)
{
    std::vector<fs::path> files;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        const auto extension = entry.path().extension();
        if (extension == ".cpp" || extension == ".h") {
            files.push_back(entry.path());
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

// The quoted name of an #include "..." line, "" for any other line.
inline std::string quotedInclude(const std::string& line)
{
    const auto hash = line.find_first_not_of(" \t");
    if (hash == std::string::npos || line[hash] != '#') {
        return {};
    }
    const auto word = line.find_first_not_of(" \t", hash + 1);
    if (word == std::string::npos || line.compare(word, 7, "include") != 0) {
        return {};
    }
    const auto open = line.find('"', word);
    const auto end = open == std::string::npos ? open : line.find('"', open + 1);
    return end == std::string::npos ? std::string() : line.substr(open + 1, end - open - 1);
}

inline std::string textOf(const fs::path& file)
{
    std::ifstream in(file);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

} // namespace gridforge::test
