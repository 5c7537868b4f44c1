// File units: small integer handles of open files, 0 meaning none. Opening is a dialogue on the console, so a missing
// file or a locked output waits for the user; every write and close is checked, and a failure ends the run with a
// message.
#pragma once

#include "host/file_stream.h"
#include "host/unit.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>

namespace gridforge::inline host {

// Prepares an empty table of units, which are base + 1 to base + 1000.
void startUnits(std::int32_t base);

// Opens `name` on the first free unit through the console dialogue and stores the unit. `mode` is "I " for text, "BI" or
// "BE" for bytes that are read; "O " or "BO" for a file that is replaced; "SB" or "SE" for one opened in place. The name
// may change in the dialogue: unitName returns the one opened.
void OPENER(Unit& unit, std::string_view mode, std::string_view name);
// Closes the unit with its console line and sets it to 0; 0 and unknown units do nothing.
void CLOSER(Unit& unit);
// Closes every open unit without a word.
void closeAllUnits();

// The file that `name` would be written to is open for input.
bool isOpenAsInput(std::string_view name);

const std::string& unitName(Unit unit);

// --- Reading text ----------------------------------------------------------------------------------------------------

// True at the end of the file, right after its last line has been read. A failed read is not the end; the next read
// reports it.
bool atEnd(Unit unit);
// The next line without its LF or CR LF and trailing blanks, cut at `width`; the rest of a longer line is skipped. False at
// the end and on a failed read.
bool readLine(Unit unit, std::string& line, std::size_t width = 1000);
// The system refused a read of the unit. Nothing more can be read from it.
bool readFailed(Unit unit);
// The next read returns the last line again. One step only.
void stepBack(Unit unit);

// --- Reading bytes ---------------------------------------------------------------------------------------------------

// The unread bytes in the unit's buffer; empty only at the end of the file.
std::string_view readyBytes(Unit unit);
// The ready bytes and those read after them: no more than before if the file has ended or the buffer is full (kReadAhead
// bytes).
std::string_view moreBytes(Unit unit);
void takeBytes(Unit unit, std::size_t count);
inline constexpr std::size_t kReadAhead = std::size_t{1} << 20;
// Fills `target`; false if the file ends too early.
bool readBytes(Unit unit, std::span<std::byte> target);
// Position from 0 of the next byte read or written.
void seekTo(Unit unit, std::int64_t position);
std::int64_t position(Unit unit);

// --- Writing ---------------------------------------------------------------------------------------------------------

void writeText(Unit unit, std::string_view text); // as it stands
void writeLine(Unit unit, std::string_view line); // with CR LF
void writeBytes(Unit unit, std::span<const std::byte> bytes);
// Room for `count` bytes (at most kWriteRoom) in the unit's buffer: fill it in place, then call wroteBytes.
std::span<char> writeRoom(Unit unit, std::size_t count);
void wroteBytes(Unit unit, std::size_t count);
inline constexpr std::size_t kWriteRoom = std::size_t{1} << 20;
// Ends the file at the position of the next byte.
void truncateHere(Unit unit);
// A hint to the file system that so many bytes will be written, so that it can lay them out together.
void reserveBytes(Unit unit, std::int64_t count);
// The open file itself, its buffered bytes written, for writing by position from where the unit is. None if the file has no
// positions, as a pipe. After such writes move the unit on by seekTo.
SystemFile positionedFile(Unit unit);
// Replaces the file of the unit, in which nothing is written yet, by the open file that `become` makes of its name. False where that
// makes none.
bool replaceFile(Unit unit, const std::function<SystemFile(const std::string& name)>& become);
// Called right after opening and right before closing. Between the two a file begins with a byte that no reader accepts, so
// that the file that a killed run leaves does not look whole.
void markUnfinished(Unit unit);
void markFinished(Unit unit);
// The same for a file that is finished when another one is: closes the unit as CLOSER does, while the file stays open and
// marked until finishLater.
FileStream closeUnfinished(Unit& unit);
void finishLater(FileStream file);

// Says what a failed write of this unit does, also at its close. It lasts until the unit is closed.
void onWriteFailure(Unit unit, WriteFailure handler);

} // namespace gridforge::inline host
