#include "host/quiet_input.h"

#include "core/names.h"
#include "core/text.h"
#include "host/file_system.h"

#include <utility>

namespace gridforge::inline host {

std::optional<QuietInput> findQuietly(std::string_view name)
{
    std::optional<std::string> found = findInput(CLEANPATH(name));
    const std::optional<FileFacts> facts = found ? factsOf(*found) : std::nullopt;
    if (!facts || facts->isFolder || !facts->identity.regular) {
        return std::nullopt;
    }
    return QuietInput{*std::move(found), facts->size};
}

FileStream openQuietly(const QuietInput& input)
{
    const SystemFile file = theSystem().open(input.name, OpenFor::reading);
    if (file == SystemFile::none) {
        return {};
    }
    FileStream stream(file, Direction::in, input.name);
    stream.skipByteOrderMark();
    return stream;
}

std::optional<std::vector<std::string>> lookAtLines(std::string_view name, std::size_t most)
{
    const std::optional<QuietInput> input = findQuietly(name);
    FileStream stream = input ? openQuietly(*input) : FileStream();
    if (!stream.isOpen()) {
        return std::nullopt;
    }
    std::vector<std::string> lines;
    std::string line;
    while (!stream.atEnd()) {
        if (lines.size() == most || !stream.readLine(line, kLineWidth)) {
            return std::nullopt;
        }
        lines.push_back(line);
    }
    return lines;
}

} // namespace gridforge::inline host
