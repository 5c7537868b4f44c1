// Names as Windows takes them.
#pragma once

#include <string>
#include <string_view>

namespace gridforge::inline host {

// Names are UTF-8 inside. Bytes that are not, as in a control file of an older editor, are taken for Windows-1252. A half of a pair of
// UTF-16 that stands alone, which names of files may have, becomes three bytes and comes back from them.
std::wstring wide(std::string_view text);
std::string narrow(std::wstring_view text);

// The name for a call of the system. A name that is too long for the usual form is given in full, in the form for long names. Where
// the system would take a name for that of another file, of a device or of a part of a file, it is one that no file can have.
std::wstring systemPath(std::string_view name);
// With all folders, in the form for long names where it is too long; the file need not exist.
std::wstring fullPath(std::string_view name);
// As users write it: not in the form for long names.
std::string usualName(std::wstring_view full);

} // namespace gridforge::inline host
