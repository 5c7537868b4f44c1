// File names as text: their folder, stem and extension, and how they are joined. Both "\" and "/" separate folders.
// Nothing here touches the file system.
#pragma once

#include <string>
#include <string_view>

namespace gridforge::inline core {

std::string FILEEXT(std::string_view name);      // ".asc", lower-cased; blank when none or when the dot is in a folder
std::string FILEEXTKC(std::string_view name);    // the same, its case kept
std::string FILENAMEPATH(std::string_view name); // the whole name without extension
std::string FILENAME(std::string_view name);     // without folder and extension
std::string FILENAMEEXT(std::string_view name);  // without folder
// The tail of FILENAME from its last "_", lower-cased. The place of that "_" is compared with the place of the last
// separator in the whole name, so a folder longer than the stem gives blank; deliberate.
std::string FILE___EXT(std::string_view name);
std::string FILENAMENO_(std::string_view name);     // FILENAME cut at its last "_"
std::string FILENAMEPATHNO_(std::string_view name); // FILENAMEPATH cut at its last "_"
std::string FILEFOLDERPATH(std::string_view name);  // the folder with its last separator; blank when none

// `name` as seen from `folder`, with "..\" and ".\" steps resolved. The joiner is "\" on every platform.
std::string ADDFOLDER(std::string_view folder, std::string_view name);
// Resolves "\..\" and "\.\" in the text. Names with "/" keep their dots; deliberate.
std::string REMOVEDOTDOT(std::string_view name);
// Rewrites the head of a drive ("C:\x" to "C Drive\x") or share ("\\s" to "URL\s") in place; true when the name is
// local.
bool DRIVEANDURLNAME(std::string& name);
// Left-trims and takes doubled separators together, but for those of a share name at the head.
std::string CLEANPATH(std::string_view name);

} // namespace gridforge::inline core
