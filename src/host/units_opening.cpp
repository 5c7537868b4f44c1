// The dialogue that opens a unit.
#include "core/names.h"
#include "core/number_text.h"
#include "core/product.h"
#include "core/text.h"
#include "host/dialogue.h"
#include "host/ends.h"
#include "host/file_system.h"
#include "host/system.h"
#include "host/unit_table.h"
#include "host/units.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <optional>

namespace gridforge::inline host {

namespace {

struct OpenMode {
    std::string_view letters;
    Direction direction;
    OpenFor purpose;
    bool replaces; // asks before it takes a file that is open already
};

constexpr std::string_view kTextInput = "I";

constexpr std::array<OpenMode, 7> kOpenModes = {{
    {kTextInput, Direction::in, OpenFor::reading, false},
    {"BI", Direction::in, OpenFor::reading, false},
    {"BE", Direction::in, OpenFor::reading, false},
    {"O", Direction::out, OpenFor::replacing, true},
    {"BO", Direction::out, OpenFor::replacing, true},
    {"SB", Direction::out, OpenFor::updating, false},
    {"SE", Direction::out, OpenFor::updating, false},
}};

const OpenMode& modeOf(std::string_view mode)
{
    const auto* const found = std::find_if(kOpenModes.begin(), kOpenModes.end(),
                                           [&](const OpenMode& m) { return m.letters == trimRight(mode); });
    assert(found != kOpenModes.end());
    return *found;
}

void askName(std::string& name)
{
    do {
        const std::string answer = ask("Check file exists and press enter or enter another file name: ");
        if (trim(answer).empty()) {
            say("No file name entered.  Trying file again...");
        } else {
            name = TRIMF(answer);
        }
    } while (name.empty());
}

// False when the file is open already and is to stay so.
bool releaseOpenFile(const std::string& name)
{
    const std::optional<FileIdentity> file = identityOfOutput(name);
    bool released = true;
    forEachOpen([&](UnitEntry& entry) {
        if (released && file && entry.stream.identity() == file) {
            endLine();
            say("");
            const std::string answer = ask(join(name, " is already open, close it? "));
            released = answer == "Y" || answer == "y";
            if (released) {
                closeEntry(entry);
            }
        }
    });
    return released;
}

// One warning each time that a file is written again, although layers open some of their files twice. Files of one base
// name share a .prj, which is replaced without a word.
void warnOfReplacement(const std::string& name)
{
    const std::optional<FileIdentity> file = identityOfOutput(name);
    if (FILEEXT(name) == ".prj" || !file || unitTable().written.erase(*file) == 0) {
        return;
    }
    say("WARNING - Output file was already written in this run and is replaced: ", name);
}

SystemFile openOutput(const std::string& name, OpenFor purpose)
{
    for (bool first = true;; first = false) {
        const SystemFile file = theSystem().open(systemName(name), purpose);
        if (file != SystemFile::none) {
            return file;
        }
        if (first) {
            sayOn("Can't Open");
        } else {
            say("Can't Open");
        }
        say("");
        say("Can't open: ", name);
        say("");
        say("Another application or user maybe using it,");
        say("   or the file's folder does not exist.");
        say("If so, close the file or create file path.");
        pauseForRetry("Press Enter to Continue");
    }
}

// Opens through the dialogue on the entry of `unit`; the name may change in it.
void openOn(UnitEntry& entry, Unit unit, const OpenMode& how, std::string name)
{
    bool askFirst = false;
    for (;;) {
        if (askFirst) {
            askName(name);
        }
        name = CLEANPATH(name);
        if (how.direction == Direction::out) {
            warnOfReplacement(name);
        }
        sayOpen("Trying to open file ", name, "...");
        if (how.direction == Direction::in) {
            const std::optional<std::string> input = findInput(name);
            const SystemFile file = input ? theSystem().open(*input, how.purpose) : SystemFile::none;
            if (file == SystemFile::none) {
                say("CHECK 0008 - ", quoted(name), " cannot be found");
                askFirst = true;
                continue;
            }
            entry.stream = FileStream(file, how.direction, name);
            if (how.letters == kTextInput) {
                entry.stream.skipByteOrderMark();
            }
            sayOn("OK.");
            say("Opened File Unit:", integerField(unit, kUnitWidth));
        } else {
            if (how.replaces && !releaseOpenFile(name)) {
                askFirst = false; // there is a name, so it is tried again until the user lets go of the file
                continue;
            }
            entry.stream = FileStream(openOutput(name, how.purpose), how.direction, name);
            sayOn("OK.  File Unit:", integerField(unit, kUnitWidth));
        }
        return;
    }
}

} // namespace

void OPENER(Unit& unit, std::string_view mode, std::string_view name)
{
    const std::string opened = cut(name, kNameWidth);
    if (opened.empty()) {
        say("Empty filename specified.  Bailing out.  Please contact ", kSupportContact, ".");
        pause("Press Enter to Close");
        endNow();
    }
    auto& free = unitTable().free;
    auto entry = std::find_if(free.begin(), free.end(), [](const UnitEntry& e) { return !e.stream.isOpen(); });
    if (entry == free.end()) {
        if (free.size() >= static_cast<std::size_t>(kFreeUnits)) {
            say("No free file numbers.");
            endNow();
        }
        free.emplace_back();
        entry = free.end() - 1;
    }
    const Unit number = unitTable().base + 1 + static_cast<std::int32_t>(entry - free.begin());
    openOn(*entry, number, modeOf(mode), opened);
    unit = number;
}

bool isOpenAsInput(std::string_view name)
{
    const std::optional<FileIdentity> file = identityOfOutput(name);
    bool found = false;
    forEachOpen([&](const UnitEntry& entry) {
        found = found || (file && !entry.stream.isOutput() && entry.stream.identity() == file);
    });
    return found;
}

} // namespace gridforge::inline host
