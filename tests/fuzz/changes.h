// Changes to the bytes of a file that leave most of its form as it is: lines and numbers of texts, numbers of binary files.
#pragma once

#include <random>
#include <string>
#include <string_view>

namespace gridforge::fuzz {

using Random = std::mt19937;

// One change at random, of a kind that the bytes allow.
std::string changed(std::string_view bytes, Random& random);

} // namespace gridforge::fuzz
