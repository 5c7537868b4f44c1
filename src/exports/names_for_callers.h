// Routines on file names that only outside callers use.
#pragma once

#include <string>
#include <string_view>

namespace gridforge::exports {

std::string FILEEXTKC(std::string_view name); // FILEEXT, its case kept
// The tail of FILENAME from its last "_", lower-cased. The place of that "_" is compared with the place of the last
// separator in the whole name, so a folder longer than the stem gives blank; callers rely on it.
std::string FILE___EXT(std::string_view name);
std::string FILENAMENO_(std::string_view name);     // FILENAME cut at its last "_"
std::string FILENAMEPATHNO_(std::string_view name); // FILENAMEPATH cut at its last "_"

// `name` as seen from `folder`, with "..\" and ".\" steps resolved. The joiner is "\" on every platform.
std::string ADDFOLDER(std::string_view folder, std::string_view name);
// Resolves "\..\" and "\.\" in the text. Names with "/" keep their dots; callers rely on it.
std::string REMOVEDOTDOT(std::string_view name);
// Rewrites the head of a drive ("C:\x" to "C Drive\x") or share ("\\s" to "URL\s") in place; true when the name is
// local.
bool DRIVEANDURLNAME(std::string& name);

} // namespace gridforge::exports
