#include "host/unit_table.h"

#include "host/ends.h"

#include <optional>
#include <utility>

namespace gridforge::inline host {

namespace {

Unit unitOf(const UnitEntry& entry)
{
    const UnitTable& t = unitTable();
    return t.base + 1 + static_cast<std::int32_t>(&entry - t.free.data());
}

} // namespace

UnitTable& unitTable()
{
    static UnitTable theTable = [] {
        closeFilesAtEnd([] { forEachOpen(closeEntry); });
        return UnitTable();
    }();
    return theTable;
}

UnitEntry* findEntry(Unit unit)
{
    UnitTable& t = unitTable();
    if (unit > t.base && unit - t.base <= static_cast<std::int32_t>(t.free.size())) {
        return &t.free[static_cast<std::size_t>(unit - t.base - 1)];
    }
    return nullptr;
}

void failWriting(std::string_view name)
{
    fail("ERROR - Could not write to file: ", name);
}

void failWrite(UnitEntry& entry)
{
    unitTable().writeFailed = true;
    if (const WriteFailure handler = std::exchange(entry.writeFailure, nullptr)) {
        handler(unitOf(entry));
    }
    failWriting(entry.stream.name());
}

void noteWritten(const FileStream& stream)
{
    const std::optional<FileIdentity> file = stream.identity();
    if (file && file->regular) { // what goes to a pipe or a device is not replaced by more
        unitTable().written.insert(*file);
    }
}

void closeEntry(UnitEntry& entry)
{
    if (entry.stream.isOutput()) {
        noteWritten(entry.stream);
    }
    // A run that ends because of a full disk closes its other files on that disk: one message is enough.
    if (!entry.stream.close() && !unitTable().writeFailed) {
        failWrite(entry);
    }
    entry.writeFailure = nullptr;
}

} // namespace gridforge::inline host
