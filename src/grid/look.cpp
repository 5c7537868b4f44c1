#include "grid/look.h"

#include "core/names.h"
#include "grid/header.h"
#include "grid/header_keywords.h"
#include "host/file_stream.h"
#include "host/file_system.h"

namespace gridforge::grid {

namespace {

constexpr std::size_t kLineWidth = 1000;

// The name that the system opens a plain file by. Others are no good to look at: what is read from a pipe is gone.
std::optional<std::string> plainFile(std::string_view name, std::int64_t& size)
{
    std::optional<std::string> found = findInput(CLEANPATH(name));
    const std::optional<FileFacts> facts = found ? factsOf(*found) : std::nullopt;
    if (!facts || facts->isFolder || !facts->identity.regular) {
        return std::nullopt;
    }
    size = facts->size;
    return found;
}

// Leaves the stream at the first line that is none of the header.
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
    GridLook look;
    const auto headerFile = plainFile(gridInputFiles(name).front(), look.size);
    const SystemFile file = headerFile ? theSystem().open(*headerFile, OpenFor::reading) : SystemFile::none;
    if (file == SystemFile::none) {
        return std::nullopt;
    }
    FileStream in(file, Direction::in, *headerFile);
    in.skipByteOrderMark();
    if (!lookAtKeywords(in, look.header)) {
        return std::nullopt;
    }
    look.format = isBinary(name) ? kFormatFlt : kFormatAsc;
    look.file = *headerFile;
    look.cellsFrom = in.position();
    if (look.format == kFormatFlt) {
        const auto cells = plainFile(name, look.size);
        if (!cells || look.size < static_cast<std::int64_t>(look.header.cells() * sizeof(float))) {
            return std::nullopt;
        }
        look.file = *cells;
        look.cellsFrom = 0;
    }
    return look;
}

} // namespace gridforge::grid
