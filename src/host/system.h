// The seam to the operating system: a record of routines for files, console, time and limits, and beside it a few routines
// for the process itself. Only the folders of its forms include headers of a system. `posix` and `windows` ask the system
// that the tool is built for; `memory` keeps files and console in memory. All names of files are results of `systemName`.
#pragma once

#include "core/huge_array.h"

#include <compare>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace gridforge::inline host {

// An open file, by whatever number the system has for it.
enum class SystemFile : std::intptr_t { none = -1 };

enum class OpenFor {
    reading,
    replacing, // writes a new file, or over all of an old one
    updating,  // reads and writes in place; a missing file is made
};

// Whether all of the stretch that a hint names will be read, or only parts of it.
enum class ReadOf { all, parts };

enum class SystemStatus {
    done,
    noSuchFile,
    outOfMemory,
    refused, // no such file can be opened: the name is not valid, or leads through a closed folder or a file
    unknown, // the system cannot tell, as of a faulty disk
};

// Equal for two names of one file.
struct FileIdentity {
    std::uint64_t device = 0;
    std::uint64_t number = 0;
    bool regular = false; // keeps what is written to it, unlike a pipe or a device

    auto operator<=>(const FileIdentity&) const = default; // NOLINT(modernize-use-nullptr): taken for a pointer
};

struct FileFacts {
    bool isFolder = false;
    std::int64_t size = 0;
    // When bytes, name or rights last changed, in nanoseconds by the clock of `now`. Programs that set the time of writing
    // back do not hide such a change.
    std::int64_t lastChange = 0;
    FileIdentity identity;
};

struct CalendarDate {
    int year = 0;
    int month = 0; // from 1
    int day = 0;
};

struct System {
    // --- Open files. A count of bytes is below 0 if the system refuses, and may be less than asked for.
    SystemFile (*open)(const std::string& name, OpenFor purpose);
    // The one that the caller of the process left open under that number; none if there is none.
    SystemFile (*inherited)(std::int64_t number);
    bool (*close)(SystemFile file);                                // false: what was written may be lost
    std::int64_t (*read)(SystemFile file, std::span<char> target); // 0 at the end of the file
    std::int64_t (*readAt)(SystemFile file, std::int64_t position, std::span<char> target); // does not move `read`
    std::int64_t (*write)(SystemFile file, std::span<const char> bytes);
    std::int64_t (*writeAt)(SystemFile file, std::int64_t position, std::span<const char> bytes);
    bool (*seek)(SystemFile file, std::int64_t position);
    bool (*truncate)(SystemFile file, std::int64_t size);
    void (*reserve)(SystemFile file, std::int64_t position, std::int64_t count); // a hint that so much will be written
    // A hint that so much, or some of it, will be read soon.
    void (*willRead)(SystemFile file, std::int64_t position, std::int64_t count, ReadOf of);
    std::optional<FileFacts> (*factsOfOpen)(SystemFile file);

    // --- Files without a name, read and written by position, which are gone when they are closed
    SystemFile (*openUnnamed)(const std::string& folder);
    // Sets bytes aside for all of the file; false if there is no room for them.
    bool (*setAside)(SystemFile file, std::int64_t size);
    // Gives an unnamed file a name in its folder. It replaces a file of that name only if that is a plain file of the same
    // user and group with one name. False, and nothing has changed, if this cannot be done in one step.
    bool (*giveName)(SystemFile file, const std::string& name);
    bool replacesOnlyClosedFiles = false; // so `giveName`: it is false while a file of that name is open

    // --- Names
    bool namesIgnoreCase = false; // in searches of a folder; ASCII letters
    bool namesHaveDrives = false; // a name may begin with a drive, "C:", or be on a share, "//server/share/..."
    SystemStatus (*facts)(const std::string& name, FileFacts& facts); // changes `facts` when done
    SystemStatus (*lookUp)(const std::string& name); // done: an entry of that name exists, even if it leads nowhere
    // Adds the names in the folder, except "." and "..", in no order.
    SystemStatus (*list)(const std::string& folder, std::vector<std::string>& names);
    std::optional<std::string> (*fullName)(const std::string& name); // with all folders, links followed; must exist

    // --- Console and time
    std::int64_t (*readConsole)(std::span<char> target); // waits for input; 0 at its end
    void (*writeConsole)(std::string_view text);         // all of it, unless nobody reads the console any more
    bool (*consoleIsWatched)();                          // by a person, who must see each line at once
    std::int64_t (*now)();                               // nanoseconds
    void (*wait)(std::int64_t nanoseconds);              // without using the processor
    CalendarDate (*today)();

    // --- What the process may take
    std::size_t (*processors)();
    std::string (*temporaryFolder)();
    std::uint64_t (*memoryLeft)(); // bytes, by the machine and all limits on the process
};

// The system in use: the one that the tool is built for, unless useSystem replaced it.
const System& theSystem();
// Nothing if there is no such file.
std::optional<FileFacts> factsOf(const std::string& name);
// For tests and fuzz targets. No file may be open.
void useSystem(const System& system);

// --- Of the form that the tool is built with -------------------------------------------------------------------------

const System& nativeSystem();
PageSource nativePages() noexcept;
// False where the system asks programs to do without AVX2, whatever the processor has.
bool nativeAvx2() noexcept;
// Loads a shared library into the process, as if the executable were linked with it. The reason if that fails. Only `posix` has
// these two; a build for another system links what it needs.
std::optional<std::string> loadLibrary(const char* name);
// The routine or variable of this name, where the linker would find it; null if there is none.
void* findLoaded(const char* name);
// Called first in the tool, so that no file gets the number of a standard stream and no signal ends a run that writes.
void prepareProcess();
// The arguments after the name of the program, in UTF-8 where the system keeps texts in another form.
std::vector<std::string> argumentsOf(int argc, char** argv);
std::optional<std::string> processVariable(const char* name);
// Runs `work`, and abandons it if it reads or writes memory that is missing.
void runGuarded(const std::function<void()>& work);

} // namespace gridforge::inline host
