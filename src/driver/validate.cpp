#include "driver/validate.h"

#include "core/names.h"
#include "core/text.h"
#include "grid/format.h"
#include "host/ends.h"

#include <string_view>
#include <tuple>

namespace gridforge::driver {

namespace {

void warn(std::string_view text)
{
    say(text);
    pauseForEnter();
}

// Refuses the statistics too, though the usage screen offers them.
void checkSourceSwitch(const CommandLine& line)
{
    if (get<ops::MaxMinOptions>(line.settings).src && !line.asked.contains("max")) {
        fail("ERROR - The src switch is only used in combination with the min and max commands. "
             "Please check your batch syntax.");
    }
}

std::int32_t countOperations(const CommandLine& line)
{
    const auto asks = [&line](std::string_view operation) { return line.asked.contains(operation); };
    const std::int32_t transform = asks("trans_m") ? 1 : 0;
    const std::int32_t countOfCutoff = asks("count") && asks("cd") ? 1 : 0; // the pair is one operation
    const std::int32_t statistics = asks("stat") ? 1 : 0;
    return line.operations + transform - countOfCutoff + statistics;
}

// -nowetdry and -change count too: "-dif -nowetdry" is refused, and either alone passes and runs nothing: on purpose,
// since scripts rely on both.
void checkOneOperation(const CommandLine& line)
{
    const std::int32_t operations = countOperations(line);
    if (operations == 0) {
        fail("ERROR - No operational flag specified.");
    }
    if (operations > 1 && !(get<ops::DifOptions>(line.settings).change && line.asked.contains("dif"))) {
        refuse("ERROR - More than one operational flag specified.");
    }
}

void checkColours(const CommandLine& line)
{
    if (get<ops::ClassifyOptions>(line.settings).rgb && !line.asked.contains("classify")) {
        warn("WARNING - RGB option only valid for classify operation. Flag ignored.");
    }
}

void checkDifferenceFiles(CommandLine& line)
{
    if (!line.asked.contains("dif")) {
        return;
    }
    const std::size_t count = line.rawInputList.size();
    if (count == 1) {
        refuse("ERROR - More than one file requried for -dif.");
    }
    if (count == 3) {
        say("Using 3rd filename for setting output filename");
        get<run::Common>(line.settings).out = line.rawInputList.back();
        line.rawInputList.pop_back();
    }
    if (count > 3) {
        refuse("ERROR - More than three files specified for -dif option.");
    }
}

void checkOutputName(run::Common& common, WantedFormats& formats)
{
    if (!common.out) {
        return;
    }
    say("Checking specified output name: ", *common.out, " includes file extension...");
    const std::string extension = FILEEXT(*common.out);
    const std::string bare = common.out->substr(0, common.out->size() - extension.size());
    if (extension == ".asc") {
        common.out = bare;
        say("Output file extension is .asc, setting output format to -asc.");
        formats.asc = true;
    } else if (extension == ".flt") {
        common.out = bare;
        say("Output file extension is .flt, setting output format to -flt.");
        formats.flt = true;
    }
}

void settleFormat(const WantedFormats& formats, run::Common& common)
{
    if (formats.asc && formats.flt) {
        warn("WARNING - Both -asc and -flt specified.  Outputting to .flt grid.");
    }
    if (formats.flt) {
        common.format = grid::Format::flt;
    } else if (formats.asc) {
        common.format = grid::Format::asc;
    }
}

// Neither clears anything, and the second goes on in spite of its word ERROR, on purpose: scripts rely on it.
void checkIgnoredOptions(const CommandLine& line)
{
    if (get<ops::ClassifyOptions>(line.settings).grc && !line.asked.contains("classify")) {
        warn("WARNING - \"-grc\" option only used with \"classify\". Flag ignored.");
    }
    if (!get<network::XsOptions>(line.settings).materialGrids.empty() && !line.asked.contains("xs")) {
        warn("ERROR - \"-mat\" option only used with \"xs\". Flag ignored.");
    }
}

} // namespace

void validate(CommandLine& line)
{
    auto& common = get<run::Common>(line.settings);
    auto& formats = get<WantedFormats>(line.settings);
    checkSourceSwitch(line);
    checkOneOperation(line);
    checkColours(line);
    checkDifferenceFiles(line);
    checkOutputName(common, formats);
    settleFormat(formats, common);
    checkIgnoredOptions(line);
}

} // namespace gridforge::driver
