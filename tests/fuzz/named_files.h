// The input of a fuzz target as one text, so that it can be read and made by hand: a command line, or the title of what is
// read, and the files that are there.
//
//     -b -max a.asc b.asc
//     @@ a.asc
//     ncols 3
//     ...
//     @@ b.asc
//     ...
//
// The line end before a "@@" belongs to no file.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace gridforge::fuzz {

inline constexpr std::string_view kFileMark = "\n@@ ";

struct NamedFile {
    std::string_view name;
    std::string_view bytes;
};

struct NamedFiles {
    std::string_view line;
    std::vector<NamedFile> files;
};

inline NamedFiles split(std::string_view text)
{
    NamedFiles found;
    std::size_t mark = text.find(kFileMark);
    found.line = text.substr(0, mark);
    while (mark != std::string_view::npos) {
        const std::size_t name = mark + kFileMark.size();
        mark = text.find(kFileMark, name);
        const std::string_view part = text.substr(name, mark == std::string_view::npos ? mark : mark - name);
        const std::size_t lineEnd = part.find('\n');
        found.files.push_back(
            {part.substr(0, lineEnd), lineEnd == std::string_view::npos ? "" : part.substr(lineEnd + 1)});
    }
    return found;
}

inline std::string join(const NamedFiles& input)
{
    std::string text(input.line);
    for (const NamedFile& file : input.files) {
        text.append(kFileMark).append(file.name).append("\n").append(file.bytes);
    }
    return text;
}

} // namespace gridforge::fuzz
