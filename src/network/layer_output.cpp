#include "network/layer_output.h"

#include "core/number_text.h"

namespace gridforge::network {

std::string threeDecimals(double value)
{
    constexpr int kDecimals = 3;
    return fixedText(value, kDecimals);
}

} // namespace gridforge::network
