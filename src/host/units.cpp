#include "host/units.h"

#include "core/names.h"
#include "core/numbers.h"
#include "core/product.h"
#include "host/dialogue.h"
#include "host/ends.h"
#include "host/file_identity.h"
#include "host/file_stream.h"
#include "host/file_system.h"
#include "host/system.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <optional>
#include <set>
#include <utility>
#include <vector>

namespace gridforge::inline host {

namespace {

constexpr std::int32_t kFreeUnits = 1000;
constexpr int kUnitWidth = 4;

struct UnitEntry {
    FileStream stream;
    WriteFailure writeFailure = nullptr;
};

struct UnitTable {
    std::int32_t base = kFreeUnits;
    std::vector<UnitEntry> free;
    std::set<FileIdentity> written; // output files that were closed in this run
    bool writeFailed = false;
};

UnitTable& table()
{
    static UnitTable theTable = [] {
        closeFilesAtEnd(closeAllUnits);
        return UnitTable();
    }();
    return theTable;
}

UnitEntry* findEntry(Unit unit)
{
    UnitTable& t = table();
    if (unit > t.base && unit - t.base <= static_cast<std::int32_t>(t.free.size())) {
        return &t.free[static_cast<std::size_t>(unit - t.base - 1)];
    }
    return nullptr;
}

FileStream& stream(Unit unit)
{
    UnitEntry* entry = findEntry(unit);
    if (entry == nullptr || !entry->stream.isOpen()) {
        shouldNotBeHere("file unit");
    }
    return entry->stream;
}

Unit unitOf(const UnitEntry& entry)
{
    const UnitTable& t = table();
    return t.base + 1 + static_cast<std::int32_t>(&entry - t.free.data());
}

[[noreturn]] void failWriting(std::string_view name)
{
    fail("ERROR - Could not write to file: ", name);
}

[[noreturn]] void failWrite(UnitEntry& entry)
{
    table().writeFailed = true;
    if (const WriteFailure handler = std::exchange(entry.writeFailure, nullptr)) {
        handler(unitOf(entry));
    }
    failWriting(entry.stream.name());
}

void requireWritten(bool written, Unit unit)
{
    if (!written) {
        failWrite(*findEntry(unit));
    }
}

void noteWritten(const FileStream& stream)
{
    const std::optional<FileIdentity> file = stream.identity();
    if (file && file->regular) { // what goes to a pipe or a device is not replaced by more
        table().written.insert(*file);
    }
}

void closeEntry(UnitEntry& entry)
{
    if (entry.stream.isOutput()) {
        noteWritten(entry.stream);
    }
    // A run that ends because of a full disk closes its other files on that disk: one message is enough.
    if (!entry.stream.close() && !table().writeFailed) {
        failWrite(entry);
    }
    entry.writeFailure = nullptr;
}

void sayClosed(Unit& unit)
{
    say("...Closed File Unit:", integerField(unit, kUnitWidth));
    unit = 0;
}

template <typename Action>
void forEachOpen(Action action)
{
    for (UnitEntry& entry : table().free) {
        if (entry.stream.isOpen()) {
            action(entry);
        }
    }
}

// --- The opening dialogue --------------------------------------------------------------------------------------------

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
    if (FILEEXT(name) == ".prj" || !file || table().written.erase(*file) == 0) {
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

void startUnits(std::int32_t base)
{
    closeAllUnits();
    table() = UnitTable();
    table().base = base;
}

void OPENER(Unit& unit, std::string_view mode, std::string_view name)
{
    const std::string opened = cut(name, kNameWidth);
    if (opened.empty()) {
        say("Empty filename specified.  Bailing out.  Please contact ", kSupportContact, ".");
        pause("Press Enter to Close");
        endNow();
    }
    auto& free = table().free;
    auto entry = std::find_if(free.begin(), free.end(), [](const UnitEntry& e) { return !e.stream.isOpen(); });
    if (entry == free.end()) {
        if (free.size() >= static_cast<std::size_t>(kFreeUnits)) {
            say("No free file numbers.");
            endNow();
        }
        free.emplace_back();
        entry = free.end() - 1;
    }
    const Unit number = table().base + 1 + static_cast<std::int32_t>(entry - free.begin());
    openOn(*entry, number, modeOf(mode), opened);
    unit = number;
}

void CLOSER(Unit& unit)
{
    UnitEntry* entry = findEntry(unit);
    if (entry == nullptr || !entry->stream.isOpen()) {
        return;
    }
    closeEntry(*entry);
    sayClosed(unit);
}

void closeAllUnits()
{
    forEachOpen(closeEntry);
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

const std::string& unitName(Unit unit)
{
    static const std::string none;
    const UnitEntry* entry = findEntry(unit);
    return entry == nullptr ? none : entry->stream.name();
}

// --- Reading ---------------------------------------------------------------------------------------------------------

bool atEnd(Unit unit)
{
    return stream(unit).atEnd();
}

bool readLine(Unit unit, std::string& line, std::size_t width)
{
    return stream(unit).readLine(line, width);
}

bool readFailed(Unit unit)
{
    return stream(unit).failed();
}

void stepBack(Unit unit)
{
    stream(unit).stepBack();
}

std::string_view readyBytes(Unit unit)
{
    return stream(unit).ready();
}

std::string_view moreBytes(Unit unit)
{
    return stream(unit).more();
}

void takeBytes(Unit unit, std::size_t count)
{
    stream(unit).take(count);
}

bool readBytes(Unit unit, std::span<std::byte> target)
{
    return stream(unit).readBytes(target);
}

void seekTo(Unit unit, std::int64_t position)
{
    requireWritten(stream(unit).seek(position), unit);
}

std::int64_t position(Unit unit)
{
    return stream(unit).position();
}

// --- Writing ---------------------------------------------------------------------------------------------------------

void writeText(Unit unit, std::string_view text)
{
    requireWritten(stream(unit).write(text), unit);
}

void writeLine(Unit unit, std::string_view line)
{
    FileStream& out = stream(unit);
    requireWritten(out.write(line) && out.write("\r\n"), unit);
}

void writeBytes(Unit unit, std::span<const std::byte> bytes)
{
    writeText(unit, {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

std::span<char> writeRoom(Unit unit, std::size_t count)
{
    FileStream& out = stream(unit);
    requireWritten(out.room(count), unit);
    return out.roomLeft();
}

void wroteBytes(Unit unit, std::size_t count)
{
    stream(unit).wrote(count);
}

void truncateHere(Unit unit)
{
    requireWritten(stream(unit).truncateHere(), unit);
}

void onWriteFailure(Unit unit, WriteFailure handler)
{
    if (UnitEntry* entry = findEntry(unit)) {
        entry->writeFailure = handler;
    }
}

void reserveBytes(Unit unit, std::int64_t count)
{
    stream(unit).reserve(count);
}

SystemFile positionedFile(Unit unit)
{
    const std::optional<FileIdentity> file = stream(unit).identity();
    if (!file || !file->regular) {
        return SystemFile::none;
    }
    requireWritten(stream(unit).flush(), unit);
    return stream(unit).file();
}

void takeFileInto(Unit unit, SystemFile file)
{
    FileStream& old = stream(unit);
    FileStream taken(file, Direction::out, old.name());
    requireWritten(old.close(), unit);
    old = std::move(taken);
}

void markUnfinished(Unit unit)
{
    stream(unit).markUnfinished();
}

void markFinished(Unit unit)
{
    requireWritten(stream(unit).markFinished(), unit);
}

FileStream closeUnfinished(Unit& unit)
{
    requireWritten(stream(unit).flush(), unit);
    noteWritten(stream(unit));
    FileStream file = std::move(stream(unit));
    closeEntry(*findEntry(unit));
    sayClosed(unit);
    return file;
}

void finishLater(FileStream file)
{
    if (!file.markFinished() || !file.close()) {
        failWriting(file.name());
    }
}

} // namespace gridforge::inline host
