// The name that the two files of a layer share, without extension.
#pragma once

#include "core/names.h"
#include "core/text.h"

#include <string>
#include <string_view>

namespace gridforge::gis::mif {

// Removes the extension of either file; any other name is the base already.
inline std::string baseOf(std::string_view fileName)
{
    const std::string name(trimLeft(fileName));
    const std::string extension = FILEEXT(name);
    return extension == ".mif" || extension == ".mid" ? FILENAMEPATH(name) : name;
}

} // namespace gridforge::gis::mif
