// The keywords that begin the objects of a .mif.
#pragma once

#include "gis/feature.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace gridforge::gis::mif {

struct ObjectKeyword {
    std::string_view word;
    Kind kind;
};

// In the order in which a reader tries them.
inline constexpr std::array<ObjectKeyword, 12> kKeywords = {{
    {"POINT", Kind::point},
    {"PLINE MULTIPLE", Kind::combinedPolyline},
    {"PLINE", Kind::polyline},
    {"LINE", Kind::line},
    {"REGION", Kind::region},
    {"MULTIPOINT", Kind::multipoint},
    {"NONE", Kind::none},
    {"RECT", Kind::rectangle},
    {"ROUNDRECT", Kind::roundedRectangle},
    {"TEXT", Kind::text},
    {"ARC", Kind::arc},
    {"ELLIPSE", Kind::ellipse},
}};
inline constexpr std::string_view kUnsupportedKeyword = "COLLECTION"; // tried last
inline constexpr std::string_view kCentreKeyword = "CENTER";          // not an object, but part of a region

// Blank for a kind that is unknown.
inline std::string_view keywordOf(Kind kind)
{
    const auto* const found = std::ranges::find(kKeywords, kind, &ObjectKeyword::kind);
    return found == kKeywords.end() ? std::string_view() : found->word;
}

} // namespace gridforge::gis::mif
