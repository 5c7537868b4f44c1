// How far a run has come, for programs that wait for it. Where the variable GRIDFORGE_PROGRESS names a file, or by
// its number above 2, as "7" or "fd:7", an open one, a line of JSON goes there at the first read or write, then at most once a second
// while something is read or written, and at the end of the run:
//
//     {"seconds": 3.1, "read": 52428800, "written": 0, "objects": 12}
//
// The bytes are those that the tool itself reads from and writes to files; objects are those of layers. Without the
// variable bytes are not counted. Lines that cannot be written are left out, and nothing else in the run changes.
#pragma once

namespace gridforge::inline host {

// From now on the system counts bytes. No file may be open.
void startProgress();
// Counts an object that was read or written.
void countObject();
// Writes the last line and ends the counting.
void endProgress();

} // namespace gridforge::inline host
