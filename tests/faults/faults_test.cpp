// Runs in which one call of the system fails, is cut short or is interrupted. A table says what is right for each call: a
// message about the file and the end of the run, or no effect at all.
#include "faults/system_run.h"
#include "faults/whole_grids.h"

#include "driver/operations.h"
#include "driver/scan.h"
#include "support/consoles.h"
#include "support/sanitizers.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <gmock/gmock.h>
#include <iterator>
#include <map>
#include <set>
#include <sstream>

namespace gridforge::test {
namespace {

// --- What is right ---------------------------------------------------------------------------------------------------

// What is done to a call: it fails for good, a signal interrupts it, or it moves half of the bytes.
enum class Kind { error, interruption, half };

struct Row {
    const char* functions; // separated by blanks
    const char* roles;     // of the file, as SystemCall has them
    const char* files;     // endings of its name, separated by blanks; "" for any
    // The last lines of the console, <file> for its name, * for the rest of a line; {} where nothing changes. After kGoesOn
    // the run goes on and leaves what a good run leaves.
    Lines end;
};

const Lines kNoEffect = {};
const Lines kNotFound = errorEnd({"Trying to open file <file>...", "CHECK 0008 - \"<file>\" cannot be found",
                                  "Check file exists and press enter or enter another file name: "});
const std::string kGoesOn = "...";
const Lines kOpenedWhenAsked = {"Trying to open file <file>...", "CHECK 0008 - \"<file>\" cannot be found",
                                "Check file exists and press enter or enter another file name: ",
                                "No file name entered.  Trying file again...", kGoesOn};
const Lines kNotOpened =
    errorEnd({"Trying to open file <file>...Can't Open", "", "Can't open: <file>", "",
              "Another application or user maybe using it,", "   or the file's folder does not exist.",
              "If so, close the file or create file path.", "Press Enter to Continue"});
const Lines kNotWritten = errorEnd({"ERROR - Could not write to file: <file>"});
const Lines kNoInput = errorEnd({" ERROR - Invalid file or pathname specified"});
const Lines kNoMemory = errorEnd({"ERROR - Could not allocate enough memory (RAM)."});

constexpr const char* kWriting = "write pwrite close ftruncate lseek";

// Errors of calls that the tool itself makes. Where several rows fit, each of them is right.
const std::vector<Row> kErrors = {
    // Hints, and the closing of what was read.
    {"fadvise madvise fallocate", "rw-", "", kNoEffect},
    {"close", "r", "", kNoEffect},
    // The console is gone; the files are written all the same.
    {"write stat", "c", "", kNoEffect},
    // A failed read is the end of standard input: the run ends where it waits for an answer. Nothing
    // changes where it has ended already and waits for Enter.
    {"read", "c", "", {kClose}},
    {"read", "c", "", kNoEffect},

    // Looking for files.
    {"stat", "-", "", kNoInput},
    {"stat", "-", "", kNotFound},
    {"stat", "-", ".prj", errorEnd({"ERROR - Projection file does not exist in folder: <file>"})},
    {"stat", "-", ".prj .tab", kNoEffect}, // it is opened all the same, or is not there
    {"stat", "rw-", "", kNoEffect},        // whether two names are the same file
    {"opendir readdir", "r", "", kNoInput},
    {"opendir readdir", "r", "", kNoEffect}, // a search for the name in another letter case
    {"opendir", "r", "", errorEnd({" ERROR - Out of memory.  Contact SUPPORT_CONTACT"})},

    {"open", "r", "", kNotFound},
    {"open", "r", "", kOpenedWhenAsked}, // an answer waits
    {"open", "w", "", kNotOpened},

    // What is only tried, as there is another way: cells that are computed ahead, and what is asked of the machine for them.
    {"open close pread pwrite ftruncate", "w", "(unnamed)", kNoEffect},
    {"pread", "r", ".asc .flt .xyz", kNoEffect},
    {"open", "r", ".mif .shp", kNoEffect}, // a look at the points of a layer
    {"pwrite", "w", ".asc", kNoEffect},
    {"link rename", "w", ".flt .part", kNoEffect},
    {"mmap", "-", "", kNoEffect},
    {"limits close", "-", "", kNoEffect}, // files about the machine, opened by the library of C++
    {"open read close", "r", "read_ahead_kb", kNoEffect},

    // Writing.
    {kWriting, "w", "", kNotWritten},
    {kWriting, "w", ".mif", errorEnd({"ERROR 0439 - Writing .mif file object coordinates."})},
    {kWriting, "w", ".mid", errorEnd({"ERROR 0254 - Failed to write attribute data record for a *"})},
    {kWriting, "w", ".shp .shx", errorEnd({"ERROR 0437 - Writing .shp file header."})},
    {kWriting, "w", ".shp .shx", errorEnd({"ERROR 0439 - Writing .shp file object coordinates."})},
    {kWriting, "w", ".dbf .shp .shx", errorEnd({"ERROR 0413 - Rewriting .dbf file header with final information."})},
    {kWriting, "w", ".dbf", errorEnd({"ERROR 0413 - Writing .dbf file header."})},
    {kWriting, "w", ".dbf", errorEnd({"ERROR 0417 - Writing .dbf record."})},

    // Reading.
    {"read pread", "r", ".asc .hdr", errorEnd({"ERROR 2334 - Reading Grid file header information.", "Line = *"})},
    {"read pread", "r", ".asc .flt",
     errorEnd({"ERROR 2334 - Reading Grid file data.  Check format and file is complete by viewing in GIS."})},
    {"read", "r", ".prj", errorEnd({"ERROR - Reading projection file information.", "Line = *"})},
    {"read", "r", ".prj .mif", errorEnd({"ERROR - Reading following line in projection file:", "*"})},
    {"read lseek", "r", ".mif", errorEnd({"ERROR 0315 - Could not find start of attribute definitions in .mif file"})},
    {"read lseek", "r", ".mif", errorEnd({"ERROR 0321 - Reading .mif file object type."})},
    {"read", "r", ".mid", errorEnd({"ERROR 0254 - Failed to read object attribute data record for a *"})},
    {"read", "r", ".mid", kNoEffect}, // a search for more records after the last one
    {"read lseek", "r", ".shp", errorEnd({"ERROR 0427 - Reading .shp file header."})},
    {"read lseek", "r", ".shp", errorEnd({"ERROR 0424 - Reading .shp file object type."})},
    {"read lseek", "r", ".dbf", errorEnd({"ERROR 0403 - Reading .dbf file header."})},
    {"read lseek", "r", ".dbf", errorEnd({"ERROR 0407 - Reading .dbf record."})},
    {"read lseek", "r", ".csv .xyz", errorEnd({"ERROR - Reading following line in classes file:", "*"})},
    {"read", "r", ".csv", errorEnd({"Skipping first line: ", "ERROR - Reading following line in classes file:", "*"})},
    {"read", "r", ".csv", errorEnd({"ERROR - Reading following line in damages curve file:", "*"})},
    {"read", "r", ".csv", errorEnd({"ERROR - Reading following line in rainfall hyetograph:", "*"})},
    {"read", "r", ".dmg .rfc .nbc", errorEnd({"ERROR 0201 - Reading text line from file unit number *"})},

    // Memory.
    {"mmap malloc", "-", "", kNoMemory},
    {"pread", "w", "(unnamed)", // where regions are cut out of cells that wait
     errorEnd({"ERROR 2334 - Reading Grid file data.  Check format and file is complete by viewing in GIS."})},
    {"pread pwrite", "w", "(unnamed)", kNoMemory}, // room for waiting cells is memory, on the disk too
    {"malloc", "-", "", errorEnd({" ERROR - Out of memory.  Contact SUPPORT_CONTACT"})},
    {"malloc", "-", "", errorEnd({"Could not allocate memory."})}, // of the lines of a TIN
    {"malloc", "-", "", errorEnd({"ERROR - Allocating RAM for storing IDW distances"})},
    {"malloc", "-", "", errorEnd({"ERROR ???? - Could not allocate temporary memory for netcdf coordinates."})},
    {"malloc", "-", "", errorEnd({"ERROR - With nectdf call nf90_create", "Netcdf error message: *"})}, // its library
    {"malloc", "-", "", kNoEffect}, // memory that the run can do without
};

// Errors and interruptions of calls that the NetCDF library and HDF5 make.
const std::vector<Row> kLibraryErrors = {
    {"open stat lseek read write pwrite close ftruncate", "rw-", ".nc",
     errorEnd({"ERROR - With nectdf call *", "Netcdf error message: *"})},
    // A file that need not be there; a write that the library makes again later.
    {"open stat lseek write close", "rw-", ".nc", kNoEffect},
};

bool isAmong(const std::string& word, const char* words)
{
    std::istringstream rest(words);
    for (std::string one; rest >> one;) {
        if (one == word) {
            return true;
        }
    }
    return false;
}

bool endsAsOne(const std::string& name, const char* ends)
{
    std::istringstream rest(ends);
    bool any = false;
    for (std::string end; rest >> end;) {
        if (name.ends_with(end)) {
            return true;
        }
        any = true;
    }
    return !any;
}

std::vector<Lines> rightEnds(const SystemCall& call, Kind kind)
{
    const bool byTool = call.caller == "tool";
    if (kind == Kind::half || (kind == Kind::interruption && byTool)) {
        return {kNoEffect};
    }
    std::vector<Lines> ends;
    if (kind == Kind::interruption) {
        ends.push_back(kNoEffect);
    }
    for (const Row& row : byTool ? kErrors : kLibraryErrors) {
        if (isAmong(call.function, row.functions) && std::string(row.roles).find(call.role) != std::string::npos &&
            endsAsOne(call.file, row.files)) {
            ends.push_back(row.end);
        }
    }
    return ends;
}

bool isSame(const SystemCall& one, const SystemCall& other)
{
    return one.function == other.function && one.number == other.number;
}

// Does the call lie in the third opening of a layer? -cp opens it for its projection or its second unit, for its objects, and
// then, while that one is open, for a look at the places of its points.
bool isLookAtLayer(const SystemCall& call, const SystemRun& good)
{
    int openings = 0;
    bool isOpen = false;
    for (const SystemCall& other : good.calls) {
        const bool isOfFile = other.file == call.file;
        if (isOfFile && other.function == "open") {
            isOpen = ++openings == 3;
        }
        if (isSame(other, call)) {
            return isOpen;
        }
        isOpen = isOpen && !(isOfFile && other.function == "close");
    }
    return false;
}

// Is this a look at a grid or a table that is opened once more later, or at a layer that is open? Where a look fails, the run
// goes step by step.
bool isLook(const SystemCall& call, const SystemRun& good)
{
    const bool isStat = call.function == "stat";
    if (call.role == 'r' && endsAsOne(call.file, ".mif .shp")) {
        return isLookAtLayer(call, good);
    }
    if (!endsAsOne(call.file, ".asc .flt .hdr .csv .xyz") || !(isStat || call.role == 'r')) {
        return false;
    }
    bool isLater = false;
    for (const SystemCall& other : good.calls) {
        if (isLater && other.file == call.file && other.function == (isStat ? "stat" : "open") &&
            other.role == call.role) {
            return true;
        }
        isLater = isLater || isSame(other, call);
    }
    return false;
}

// --- What is done ----------------------------------------------------------------------------------------------------

struct Fault {
    Kind kind;
    int error; // 0 for half
};

std::vector<Fault> faultsOf(const SystemCall& call)
{
    const std::string& f = call.function;
    std::vector<Fault> faults;
    const auto add = [&](Kind kind, std::initializer_list<int> errors) {
        for (const int error : errors) {
            faults.push_back({kind, error});
        }
    };
    if (isAmong(f, "malloc mmap")) {
        add(Kind::error, {ENOMEM});
    } else if (isAmong(f, "read limits pread")) {
        add(Kind::error, {EIO});
    } else if (isAmong(f, "write pwrite fallocate")) {
        add(Kind::error, {ENOSPC, EIO});
    } else if (isAmong(f, "open opendir")) {
        add(Kind::error, {EACCES, EMFILE});
    } else if (isAmong(f, "fadvise madvise")) {
        add(Kind::error, {EINVAL});
    } else {
        add(Kind::error, {EIO});
    }
    if (f == "opendir") {
        add(Kind::error, {ENOMEM});
    }
    if (isAmong(f, "open read limits pread write pwrite close ftruncate fallocate")) {
        add(Kind::interruption, {EINTR});
    }
    if (isAmong(f, "read limits pread write pwrite") && call.bytes > 1) {
        add(Kind::half, {0});
    }
    return faults;
}

std::string missionOf(const SystemCall& call, const Fault& fault)
{
    const std::string which = call.function + " " + std::to_string(call.number);
    return fault.kind == Kind::half ? "short " + which : "fail " + which + " " + std::to_string(fault.error);
}

// --- What came of it -------------------------------------------------------------------------------------------------

// Names as the system has them: with / as the separator, and without the ./ that a library puts first.
std::string plainNames(std::string text)
{
    std::ranges::replace(text, '\\', '/');
    return text.starts_with("./") ? text.substr(2) : text;
}

Lines linesOf(const std::string& text)
{
    Lines lines;
    std::istringstream rest(text);
    for (std::string line; std::getline(rest, line);) {
        lines.push_back(line);
    }
    return lines;
}

bool fits(std::string line, std::string expected, const std::string& file)
{
    for (std::size_t at = expected.find("<file>"); at != std::string::npos; at = expected.find("<file>")) {
        expected.replace(at, 6, file);
    }
    if (expected.ends_with('*')) {
        expected.pop_back();
        line.resize(std::min(line.size(), expected.size()));
    }
    return line == expected;
}

// The lines from the first that differs from a good run are these. Left out before them are empty lines, and a line of the
// good run that was cut short.
bool endsIn(const Lines& end, const SystemRun& run, const SystemRun& good, const std::string& file)
{
    const Lines lines = linesOf(plainNames(run.console));
    const Lines goodLines = linesOf(plainNames(good.console));
    const bool goesOn = end.back() == kGoesOn;
    const auto isEnd = [&](auto at) {
        at = std::find_if(at, lines.end(), [](const std::string& line) { return !line.empty(); });
        const auto [line, expected] =
            std::mismatch(at, lines.end(), end.begin(), end.end(),
                          [&](const std::string& one, const std::string& other) { return fits(one, other, file); });
        return goesOn ? expected == std::prev(end.end()) : line == lines.end() && expected == end.end();
    };
    if (goesOn && run.files != good.files) {
        return false;
    }
    const auto [at, goodAt] = std::ranges::mismatch(lines, goodLines);
    const bool isCutShort = at != lines.end() && goodAt != goodLines.end() && goodAt->starts_with(*at);
    return isEnd(at) || (isCutShort && isEnd(std::next(at)));
}

bool hasNoEffect(const SystemRun& run, const SystemRun& good, const SystemCall& call)
{
    const bool consoleFailed = call.role == 'c' && call.function == "write";
    return run.files == good.files && run.permissions == good.permissions &&
           (run.console == good.console || consoleFailed);
}

// Files that were finished before the call, or were only read, are the same as after a good run.
Lines damagedFiles(const SystemRun& run, const SystemRun& good, const SystemCall& call)
{
    std::set<std::string> open;
    bool isLater = false;
    for (const SystemCall& other : good.calls) {
        isLater = isLater || isSame(other, call);
        if (isLater && other.role == 'w') {
            open.insert(plainNames(other.file));
        }
    }
    Lines damaged;
    for (const auto& [name, bytes] : good.files) {
        const auto found = run.files.find(name);
        if (!open.contains(name) && (found == run.files.end() || found->second != bytes)) {
            damaged.push_back(name);
        }
    }
    return damaged;
}

// What a good run does not leave, or not with these permissions.
Lines foreignFiles(const SystemRun& run, const SystemRun& good)
{
    Lines foreign;
    for (const auto& [name, permissions] : run.permissions) {
        const auto found = good.permissions.find(name);
        if (found == good.permissions.end() || found->second != permissions) {
            foreign.push_back(name);
        }
    }
    return foreign;
}

// A message about memory is not about a file, nor is the end of input. What has no name cannot be named. Of files that are
// read one at a time, the message names the file or follows the line about its opening. Of layers and others, several are open
// at once and the messages are without a name, so the table's row for the ending has to do.
bool namesTheFile(const SystemRun& run, const SystemRun& good, const SystemCall& call)
{
    if (isAmong(call.function, "malloc mmap") || call.role == 'c') {
        return true;
    }
    const std::string file = plainNames(call.file);
    if (file == "(unnamed)") {
        return true;
    }
    const Lines lines = linesOf(plainNames(run.console));
    const auto names = [&](const std::string& line) { return line.find(file) != std::string::npos; };
    // Cells that stay in their file are read when others have been opened.
    const bool stayedInFile = call.function == "pread" && file.ends_with(".flt");
    if (call.role == '-' || stayedInFile || !endsAsOne(file, ".asc .flt .hdr .prj .csv .xyz")) {
        return std::ranges::any_of(lines, names);
    }
    const Lines goodLines = linesOf(plainNames(good.console));
    const auto differs = std::ranges::mismatch(lines, goodLines).in1;
    if (std::any_of(differs, lines.end(), names)) {
        return true;
    }
    const auto opening = std::find_if(std::reverse_iterator(differs), lines.rend(),
                                      [](const std::string& line) { return line.starts_with("Trying to open file "); });
    return opening != lines.rend() && names(*opening);
}

// "" where the run is right.
std::string whatIsWrong(const SystemRun& run, const SystemRun& good, const SystemCall& call, Kind kind)
{
    if (run.calls.size() != 1 || run.calls[0].place != call.place) {
        return "another call, or none, failed";
    }
    if (run.status != 0 || !run.error.empty()) {
        return "status " + std::to_string(run.status) + ", standard error |" + run.error + "|";
    }
    std::vector<Lines> ends = rightEnds(call, kind);
    if (isLook(call, good)) {
        ends.push_back(kNoEffect);
    }
    if (ends.empty()) {
        return "no row of the table fits";
    }
    if (hasNoEffect(run, good, call)) {
        return std::ranges::find(ends, kNoEffect) != ends.end() ? "" : "the fault had no effect";
    }
    const std::string file = plainNames(call.file);
    if (!namesTheFile(run, good, call)) {
        return "the console does not name the file";
    }
    const Lines foreign = foreignFiles(run, good);
    if (!foreign.empty()) {
        return "not left by a good run, or with other permissions: " + foreign[0];
    }
    const Lines damaged = damagedFiles(run, good, call);
    if (!damaged.empty()) {
        return "damaged is " + damaged[0];
    }
    const auto isTheEnd = [&](const Lines& end) { return !end.empty() && endsIn(end, run, good, file); };
    return std::ranges::any_of(ends, isTheEnd) ? "" : "none of the right ends";
}

// --- The tests -------------------------------------------------------------------------------------------------------

// In the quick part a run takes one of five places. Those that several runs reach are taken in turn.
bool isTaken(const SystemCall& call, std::size_t runNumber)
{
    constexpr std::uint64_t kOneOf = 5;
    return isWholeAsked() || (std::stoull(call.place, nullptr, 16) + runNumber) % kOneOf == 0;
}

// What the libraries do without memory is theirs, and what they look for elsewhere on the machine.
bool isOfLibrary(const SystemCall& call)
{
    return call.caller != "tool" && (call.function == "malloc" || call.file.starts_with('/'));
}

// The first call of each place that is taken.
std::vector<SystemCall> placesOf(const SystemRun& run, std::size_t runNumber, bool memory)
{
    std::set<std::string> seen;
    std::vector<SystemCall> places;
    for (const SystemCall& call : run.calls) {
        const bool isMemory = call.function == "malloc";
        if (isMemory == memory && !isOfLibrary(call) && isTaken(call, runNumber) &&
            seen.insert(call.function + call.place).second) {
            places.push_back(call);
        }
    }
    return places;
}

void failAll(const FaultRun& run, bool memory)
{
    const SystemRun good = runSystem(run, "watch");
    ASSERT_EQ(good.status, 0) << commandOf(run, "watch");
    ASSERT_EQ(good.error, "");
    countRun();
    const std::vector<SystemCall> places = placesOf(good, numberOf(run), memory);
    GridsLeft left(good.given, good.files);
    Lines wrong;
    for (const SystemCall& place : places) {
        countPlace();
        for (const Fault& fault : faultsOf(place)) {
            const std::string mission = missionOf(place, fault);
            const SystemRun failed = runSystem(run, mission);
            countFault(memory);
            const std::string what = whatIsWrong(failed, good, place, fault.kind);
            if (!what.empty()) {
                wrong.push_back(what + ": " + place.function + " of " + place.file + " (" + place.role + ", " +
                                place.caller + ")\n" + failed.console + commandOf(run, mission) + "\n");
            }
            left.add(failed.files, mission, mission);
        }
    }
    EXPECT_THAT(wrong, testing::IsEmpty());
    for (const WrongFile& grid : left.wrong(isWholeAsked() ? Readers::toolAndGdal : Readers::tool)) {
        ADD_FAILURE() << grid.what << '\n' << commandOf(run, grid.mission);
    }
}

class Faults : public testing::TestWithParam<FaultRun> {};

TEST_P(Faults, OfCallsEndInAMessageOrDoNothing)
{
    failAll(GetParam(), false);
}

TEST_P(Faults, OfAllocationsEndInAMessage)
{
    if (!canFailMemory()) {
        GTEST_SKIP() << "the sanitizer has an allocator of its own";
    }
    failAll(GetParam(), true);
}

TEST_P(Faults, AtRandomThatCanBeTriedAgainDoNothing)
{
    const SystemRun good = runSystem(GetParam(), "watch");
    std::size_t disturbances = 0;
    for (std::size_t seed = 1; seed <= (isWholeAsked() ? 20U : 2U); ++seed) {
        for (const FaultRun& run : {GetParam(), withThreads(GetParam(), threadsOf(seed))}) {
            const std::string mission = "disturb " + std::to_string(seed);
            const SystemRun disturbed = runSystem(run, mission);
            countDisturbed();
            const bool isAsGood = disturbed.status == 0 && disturbed.error.empty() &&
                                  disturbed.console == good.console && disturbed.files == good.files &&
                                  disturbed.permissions == good.permissions;
            EXPECT_TRUE(isAsGood) << "status " << disturbed.status << ", standard error |" << disturbed.error << "|\n"
                                  << disturbed.console << commandOf(run, mission);
            disturbances += disturbed.calls.size();
        }
    }
    EXPECT_TRUE(disturbances > 0 || good.given.empty());
}

// --- With threads ----------------------------------------------------------------------------------------------------

// Calls to let fail: of each function up to `most`, spread over those that the run made.
std::vector<SystemCall> sampleOf(const SystemRun& run, std::size_t most)
{
    std::map<std::string, std::vector<SystemCall>> byFunction;
    for (const SystemCall& call : run.calls) {
        if (!isOfLibrary(call) && (call.function != "malloc" || canFailMemory())) {
            byFunction[call.function].push_back(call);
        }
    }
    std::vector<SystemCall> sample;
    for (const auto& [function, calls] : byFunction) {
        const std::size_t count = std::min(most, calls.size());
        for (std::size_t i = 0; i < count; ++i) {
            sample.push_back(calls[(2 * i + 1) * calls.size() / (2 * count)]);
        }
    }
    return sample;
}

// Which of the threads makes the n-th call differs from run to run: the call that failed is judged, and what was open then is
// not known. "" where the run is right.
std::string whatIsWrongWithThreads(const SystemRun& run, const SystemRun& good, Kind kind)
{
    const bool isTheirs = !run.calls.empty() && isOfLibrary(run.calls[0]);
    if (run.status != 0 || (!run.error.empty() && !isTheirs)) {
        return "status " + std::to_string(run.status) + ", standard error |" + run.error + "|";
    }
    if (isTheirs) {
        return "";
    }
    if (run.calls.empty()) { // this run has made fewer of them
        return run.files == good.files && run.console == good.console ? "" : "other files, and no call failed";
    }
    const SystemCall& call = run.calls[0];
    const std::vector<Lines> ends = rightEnds(call, kind);
    const auto isSameFile = [&](const SystemCall& other) {
        return other.function == call.function && other.file == call.file && other.role == call.role;
    };
    const bool isRead = call.role == 'r' || call.function == "stat";
    const bool mayBeALook = isRead && std::ranges::count_if(good.calls, isSameFile) > 1;
    if (hasNoEffect(run, good, call)) {
        return mayBeALook || std::ranges::find(ends, kNoEffect) != ends.end() ? "" : "the fault had no effect";
    }
    const Lines foreign = foreignFiles(run, good);
    if (!foreign.empty()) {
        return "not left by a good run, or with other permissions: " + foreign[0];
    }
    const std::string file = plainNames(call.file);
    const auto isTheEnd = [&](const Lines& end) { return !end.empty() && endsIn(end, run, good, file); };
    return std::ranges::any_of(ends, isTheEnd) ? "" : "none of the right ends";
}

void failWithThreads(const FaultRun& run, std::size_t most)
{
    const SystemRun good = runSystem(run, "watch");
    ASSERT_EQ(good.status, 0) << commandOf(run, "watch");
    countRun();
    GridsLeft left(good.given, good.files);
    Lines wrong;
    std::size_t turn = numberOf(run);
    for (const SystemCall& call : sampleOf(good, most)) {
        std::vector<Fault> faults = faultsOf(call);
        if (!isWholeAsked()) {
            faults = {faults[turn++ % faults.size()]};
        }
        for (const Fault& fault : faults) {
            const std::string mission = missionOf(call, fault);
            const SystemRun failed = runSystem(run, mission);
            countFault(call.function == "malloc");
            const std::string what = whatIsWrongWithThreads(failed, good, fault.kind);
            if (!what.empty()) {
                wrong.push_back(what + ": " + call.function + " of " + call.file + "\n" + failed.console +
                                commandOf(run, mission) + "\n");
            }
            left.add(failed.files, mission, mission);
        }
    }
    EXPECT_THAT(wrong, testing::IsEmpty());
    for (const WrongFile& grid : left.wrong(Readers::tool)) {
        ADD_FAILURE() << grid.what << '\n' << commandOf(run, grid.mission);
    }
}

TEST_P(Faults, OfCallsOfThreadsEndInAMessageOrDoNothing)
{
    const std::size_t turn = numberOf(GetParam());
    if (!isWholeAsked()) {
        failWithThreads(withThreads(GetParam(), threadsOf(turn)), 1);
        return;
    }
    for (const int threads : kThreadsTried) {
        failWithThreads(withThreads(GetParam(), threads), 6);
    }
}

// ---------------------------------------------------------------------------------------------------------------------

INSTANTIATE_TEST_SUITE_P(Runs, Faults, testing::ValuesIn(startedRuns()),
                         [](const auto& one) { return one.param.name; });

// The runs are of use only if they are what the table of them says.
TEST(FaultRuns, AreOfAllOperations)
{
    std::set<std::string_view> missing;
    for (const driver::OperationRow& operation : driver::operationTable()) {
        missing.insert(operation.name);
    }
    for (const FaultRun& run : faultRuns()) {
        std::istringstream rest(run.arguments);
        const std::vector<std::string> arguments{std::istream_iterator<std::string>(rest), {}};
        const driver::OperationRow* const operation = driver::selectOperation(driver::scanArguments(arguments));
        if (operation != nullptr) {
            missing.erase(operation->name);
        }
    }
    EXPECT_THAT(missing, testing::IsEmpty());
    EXPECT_GE(faultRuns().size(), 60U);
    EXPECT_GE(std::ranges::count_if(faultRuns(), &FaultRun::writesGrids), 30);
}

TEST(FaultRuns, GoWellAndReachTheCalls)
{
    std::set<std::string> reached;
    for (const FaultRun& run : startedRuns()) {
        const SystemRun good = runSystem(run, "watch");
        for (const SystemCall& call : good.calls) {
            if (call.caller == "tool") {
                reached.insert(call.function);
            }
        }
        EXPECT_EQ(good.console.find("Finished.") != std::string::npos, run.name != "Usage") << good.console;
        bool writesGrids = false;
        for (const FoundGrid& grid : gridsIn(good.files)) {
            const auto given = good.given.find(grid.name);
            writesGrids = writesGrids || given == good.given.end() || given->second != grid.bytes;
        }
        EXPECT_EQ(writesGrids, run.writesGrids) << run.name;
    }
    // Of the calls that are watched, the tool makes all except unlink, which is for an output that standard output goes to.
    const std::set<std::string> calls = {"fadvise", "madvise", "close",  "fallocate", "ftruncate", "limits", "link",
                                         "lseek",   "malloc",  "mmap",   "open",      "opendir",   "pread",  "pwrite",
                                         "read",    "readdir", "rename", "stat",      "write"};
    if (!kSanitized) { // there only some runs are started
        EXPECT_EQ(reached, calls);
    }
}

} // namespace
} // namespace gridforge::test
