// Small layers for tests, made by a few lines that share nothing with the tool.
#pragma once

#include "support/scratch_folder.h"

#include <string>
#include <string_view>
#include <vector>

namespace gridforge::test {

// The head of a .mif with these columns, as "Name Char(30)", up to where its objects follow. `bounds` stands at the end of its
// CoordSys.
inline std::string mifHeader(const std::vector<std::string>& columns, const std::string& bounds = "")
{
    std::string text = "Version 300\nCharset \"WindowsLatin1\"\nDelimiter \",\"\nCoordSys NonEarth Units \"m\"" +
                       bounds + "\nColumns " + std::to_string(columns.size()) + "\n";
    for (const std::string& column : columns) {
        text += "  " + column + "\n";
    }
    return text + "Data\n\n";
}

inline const std::string kHundredBounds = " Bounds (0, 0) (100, 100)";

// The text of a .mif with the columns Name and Val and the objects in `body`.
inline std::string mifText(std::string_view body)
{
    return mifHeader({"Name Char(30)", "Val Float"}) + std::string(body);
}

// The lines of a written .mif after its "Data" line and the empty line that follows.
inline std::string mifObjects(std::string_view mif)
{
    constexpr std::string_view kData = "Data\r\n\r\n";
    const std::size_t data = mif.find(kData);
    return data == std::string_view::npos ? "no data" : std::string(mif.substr(data + kData.size()));
}

// Of a layer that holds one point.
inline constexpr std::string_view kPointBody = "Point 1 2\n";

// <name>.mif and <name>.mid, which gets `records` lines "r1",1 and so on.
inline void giveMif(const ScratchFolder& folder, const std::string& name, std::string_view body, int records = 1)
{
    folder.give(name + ".mif", mifText(body));
    std::string mid;
    for (int i = 1; i <= records; ++i) {
        const std::string number = std::to_string(i);
        mid += "\"r" + number + "\"," + number + "\n";
    }
    folder.give(name + ".mid", mid);
}

} // namespace gridforge::test
