#include "driver/validate.h"

#include "core/names.h"
#include "core/text.h"
#include "host/ends.h"

namespace gridforge::driver {

namespace {

void warn(std::string_view text)
{
    say(text);
    pauseForEnter();
}

// Refuses the statistics too, though the usage screen offers them.
void checkSourceSwitch(const run::RunSettings& settings)
{
    if (settings.src && !settings.max && !settings.min) {
        fail("ERROR - The src switch is only used in combination with the min and max commands. "
             "Please check your batch syntax.");
    }
}

std::int32_t countOperations(const CommandLine& line)
{
    const run::RunSettings& settings = line.settings;
    const std::int32_t transform = settings.trans ? 1 : 0;
    const std::int32_t countOfCutoff = settings.count && settings.cd ? 1 : 0; // the pair is one operation
    const std::int32_t statistics = settings.stat ? 1 : 0;
    return line.operations + transform - countOfCutoff + statistics;
}

// -nowetdry and -change count too: "-dif -nowetdry" is refused, and either alone passes and runs nothing. Deliberate.
void checkOneOperation(const CommandLine& line)
{
    const std::int32_t operations = countOperations(line);
    if (operations == 0) {
        fail("ERROR - No operational flag specified.");
    }
    if (operations > 1 && !(line.settings.change && line.settings.dif)) {
        refuse("ERROR - More than one operational flag specified.");
    }
}

void checkColours(run::RunSettings& settings)
{
    if (settings.rgb && !settings.classify) {
        warn("WARNING - RGB option only valid for classify operation. Flag ignored.");
        settings.rgb = false;
    }
}

void checkDifferenceFiles(CommandLine& line)
{
    if (!line.settings.dif) {
        return;
    }
    const std::size_t count = line.rawInputList.size();
    if (count == 1) {
        refuse("ERROR - More than one file requried for -dif.");
    }
    if (count == 3) {
        say("Using 3rd filename for setting output filename");
        line.settings.outputNameGiven = true;
        line.settings.outputName = line.rawInputList.back();
        line.rawInputList.pop_back();
    }
    if (count > 3) {
        refuse("ERROR - More than three files specified for -dif option.");
    }
}

void checkOutputName(run::RunSettings& settings)
{
    if (!settings.outputNameGiven) {
        return;
    }
    say("Checking specified output name: ", settings.outputName, " includes file extension...");
    const std::string extension = FILEEXT(settings.outputName);
    const std::string bare = settings.outputName.substr(0, settings.outputName.size() - extension.size());
    if (extension == ".asc") {
        settings.outputName = bare;
        say("Output file extension is .asc, setting output format to -asc.");
        settings.formatSpecified = true;
        settings.ascWanted = true;
    } else if (extension == ".flt") {
        settings.outputName = bare;
        say("Output file extension is .flt, setting output format to -flt.");
        settings.formatSpecified = true;
        settings.fltWanted = true;
    }
}

void checkFormats(run::RunSettings& settings)
{
    if (settings.ascWanted && settings.fltWanted) {
        warn("WARNING - Both -asc and -flt specified.  Outputting to .flt grid.");
        settings.ascWanted = false;
    }
}

// Neither clears anything, and the second goes on in spite of its word ERROR, on purpose: scripts rely on it.
void checkIgnoredOptions(const run::RunSettings& settings)
{
    if (settings.grc && !settings.classify) {
        warn("WARNING - \"-grc\" option only used with \"classify\". Flag ignored.");
    }
    if (!settings.materialGrids.empty() && !settings.xs) {
        warn("ERROR - \"-mat\" option only used with \"xs\". Flag ignored.");
    }
}

} // namespace

void validate(CommandLine& line)
{
    checkSourceSwitch(line.settings);
    checkOneOperation(line);
    checkColours(line.settings);
    checkDifferenceFiles(line);
    checkOutputName(line.settings);
    checkFormats(line.settings);
    checkIgnoredOptions(line.settings);
}

} // namespace gridforge::driver
