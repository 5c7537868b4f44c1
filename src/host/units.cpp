#include "host/units.h"

#include "core/number_text.h"
#include "host/ends.h"
#include "host/file_system.h"
#include "host/system.h"
#include "host/unit_table.h"

#include <optional>
#include <utility>

namespace gridforge::inline host {

namespace {

FileStream& stream(Unit unit)
{
    UnitEntry* entry = findEntry(unit);
    if (entry == nullptr || !entry->stream.isOpen()) {
        shouldNotBeHere("file unit");
    }
    return entry->stream;
}

void requireWritten(bool written, Unit unit)
{
    if (!written) {
        failWrite(*findEntry(unit));
    }
}

void sayClosed(Unit& unit)
{
    say("...Closed File Unit:", integerField(unit, kUnitWidth));
    unit = 0;
}

} // namespace

void startUnits(std::int32_t base)
{
    closeAllUnits();
    unitTable() = UnitTable();
    unitTable().base = base;
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

bool replaceFile(Unit unit, const std::function<SystemFile(const std::string& name)>& become)
{
    FileStream& old = stream(unit);
    const std::string name = systemName(old.name());
    const bool closesFirst = theSystem().replacesOnlyClosedFiles;
    if (closesFirst) {
        requireWritten(old.close(), unit);
    }
    const SystemFile made = become(name);
    if (made == SystemFile::none && !closesFirst) {
        return false;
    }
    FileStream taken(made != SystemFile::none ? made : theSystem().open(name, OpenFor::replacing), Direction::out,
                     old.name());
    requireWritten(old.close() && taken.isOpen(), unit);
    old = std::move(taken);
    return made != SystemFile::none;
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
