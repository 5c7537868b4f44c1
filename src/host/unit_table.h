// The table of open files behind the units, for the files that open, use and close them. Nothing else looks at it.
#pragma once

#include "host/file_identity.h"
#include "host/file_stream.h"
#include "host/unit.h"

#include <cstdint>
#include <set>
#include <string_view>
#include <vector>

namespace gridforge::inline host {

inline constexpr std::int32_t kFreeUnits = 1000;
inline constexpr int kUnitWidth = 4; // in messages

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

UnitTable& unitTable();

// The entry of a unit, open or not; none for another number.
UnitEntry* findEntry(Unit unit);

// Writes what is buffered and closes without a word.
void closeEntry(UnitEntry& entry);
// The output is one that was written in this run.
void noteWritten(const FileStream& stream);

// Ends the run over a file that cannot be written.
[[noreturn]] void failWriting(std::string_view name);
// The same for an open unit, which may have a message of its own.
[[noreturn]] void failWrite(UnitEntry& entry);

template <typename Action>
void forEachOpen(Action action)
{
    for (UnitEntry& entry : unitTable().free) {
        if (entry.stream.isOpen()) {
            action(entry);
        }
    }
}

} // namespace gridforge::inline host
