#include "network/records.h"

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

} // namespace gridforge::network
