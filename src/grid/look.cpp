#include "grid/look.h"

#include "core/text.h"
#include "grid/header.h"
#include "grid/header_keywords.h"
#include "host/quiet_input.h"

namespace gridforge::grid {

namespace {

// Leaves the stream at the first line after the header.
bool lookAtKeywords(FileStream& in, GridHeader& header)
{
    Placement placement;
    std::string line;
    for (int keywordLines = 0; in.readLine(line, kLineWidth); ++keywordLines) {
        const Keyword keyword = takeKeyword(line, header, placement);
        if (keyword == Keyword::unreadable) {
            return false;
        }
        if (keyword == Keyword::none) {
            in.stepBack();
            return keywordLines <= kMaxKeywordLines && settle(header, placement);
        }
    }
    return false;
}

} // namespace

std::optional<GridLook> lookAtGrid(std::string_view name)
{
    const std::optional<QuietInput> headed = findQuietly(gridInputFiles(name).front());
    FileStream stream = headed ? openQuietly(*headed) : FileStream();
    GridLook look;
    if (!stream.isOpen() || !lookAtKeywords(stream, look.header)) {
        return std::nullopt;
    }
    look.format = isBinary(name) ? Format::flt : Format::asc;
    if (look.format == Format::asc) {
        look.file = headed->name;
        look.size = headed->size;
        look.cellsFrom = stream.position();
        // A number takes up a digit at least, and a separator before the next one.
        const auto most = static_cast<std::uint64_t>(look.size - look.cellsFrom + 1) / 2;
        return look.header.cells() <= most ? std::optional(look) : std::nullopt;
    }
    const std::optional<QuietInput> cells = findQuietly(name);
    if (!cells || look.header.cells() > static_cast<std::uint64_t>(cells->size) / sizeof(float)) {
        return std::nullopt;
    }
    look.file = cells->name;
    look.size = cells->size;
    return look;
}

} // namespace gridforge::grid
