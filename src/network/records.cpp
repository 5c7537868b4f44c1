#include "network/records.h"

#include "core/text.h"

#include <algorithm>

namespace gridforge::network {

Box extentOf(const std::vector<double>& x, const std::vector<double>& y)
{
    if (x.empty()) {
        return {};
    }
    return {*std::ranges::min_element(x), *std::ranges::min_element(y), *std::ranges::max_element(x),
            *std::ranges::max_element(y)};
}

SectionCells sectionCellsFrom(std::string_view bufferMethod)
{
    if (FLAGEXISTS(bufferMethod, "Perp")) {
        return SectionCells::across;
    }
    return FLAGEXISTS(bufferMethod, "Buffer") ? SectionCells::around : SectionCells::atPoint;
}

Extraction extractionFrom(std::string_view extractionMethod)
{
    if (FLAGEXISTS(extractionMethod, "Max")) {
        return Extraction::maximum;
    }
    return FLAGEXISTS(extractionMethod, "Min") ? Extraction::minimum : Extraction::average;
}

} // namespace gridforge::network
