// File names as text: their folder, stem and extension. Both "\" and "/" separate folders. Nothing here asks the file
// system.
#pragma once

#include <string>
#include <string_view>

namespace gridforge::inline core {

std::string FILEEXT(std::string_view name);      // ".asc", lower-cased; blank without one, or if the dot is in a folder
std::string FILENAMEPATH(std::string_view name); // the whole name without extension
std::string FILENAME(std::string_view name);     // without folder and extension
std::string FILENAMEEXT(std::string_view name);  // without folder
std::string FILEFOLDERPATH(std::string_view name); // the folder with its last separator; blank without one

// Left-trims and reduces doubled separators to one, except at the head of a share name.
std::string CLEANPATH(std::string_view name);

} // namespace gridforge::inline core
