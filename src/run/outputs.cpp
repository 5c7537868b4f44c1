#include "run/outputs.h"

#include "core/names.h"
#include "core/text.h"
#include "grid/format.h"
#include "host/console.h"

namespace gridforge::run {

std::string outputNameRule(const Common& common, std::string_view source, std::string_view suffix)
{
    if (common.out) {
        say("Using output file name specified with -out switch: ", quoted(*common.out));
        return *common.out;
    }
    return cut(join(FILENAMEPATH(source), suffix), kNameWidth);
}

namespace {

grid::Format specified(grid::Format format)
{
    say(format == grid::Format::asc ? "Using output format .asc as specified."
                                    : "Using output format .flt as specified.");
    return format;
}

} // namespace

grid::Format outputFormatRule(const Common& common, grid::Format firstFormat)
{
    if (common.format) {
        return specified(*common.format);
    }
    say("Setting output format based on input grids.  To set use -asc or -flt.");
    return firstFormat;
}

grid::Format ascUnlessSpecified(const Common& common)
{
    if (common.format) {
        return specified(*common.format);
    }
    say("Setting output grid to .asc by default.  To set use -asc or -flt.");
    return grid::Format::asc;
}

} // namespace gridforge::run
