#include "run/outputs.h"

#include "core/names.h"
#include "core/text.h"
#include "grid/grid.h"
#include "host/console.h"

namespace gridforge::run {

std::string outputNameRule(const RunSettings& settings, std::string_view source, std::string_view suffix)
{
    if (settings.outputNameGiven) {
        say("Using output file name specified with -out switch: ", quoted(settings.outputName));
        return settings.outputName;
    }
    return cut(join(FILENAMEPATH(source), suffix), kNameWidth);
}

namespace {

std::int32_t specifiedFormat(const RunSettings& settings)
{
    if (settings.ascWanted) {
        say("Using output format .asc as specified.");
        return grid::kFormatAsc;
    }
    say("Using output format .flt as specified.");
    return grid::kFormatFlt;
}

} // namespace

std::int32_t outputFormatRule(const RunSettings& settings, std::int32_t firstFormat)
{
    if (settings.formatSpecified) {
        return specifiedFormat(settings);
    }
    say("Setting output format based on input grids.  To set use -asc or -flt.");
    return firstFormat;
}

std::int32_t ascUnlessSpecified(const RunSettings& settings)
{
    if (settings.formatSpecified) {
        return specifiedFormat(settings);
    }
    say("Setting output grid to .asc by default.  To set use -asc or -flt.");
    return grid::kFormatAsc;
}

} // namespace gridforge::run
