// The table of classes that -classify and -histogram read, and the search for a value's class in it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace gridforge::ops {

inline constexpr std::int32_t kMaxClasses = 100;

struct ClassRow {
    float limit = 0; // upper, inclusive
    std::string name;
    std::int32_t red = 0;
    std::int32_t green = 0;
    std::int32_t blue = 0;
};
using ClassTable = std::vector<ClassRow>;

// What an operation says while it reads its table.
struct ClassWords {
    std::string_view from;
    std::string_view maximum;
    std::string_view tooMany;
    std::string_view found;
    std::string_view tooFew;
};

// Reads a heading and then rows of limit and name, and with `coloured` red, green and blue, up to kMaxClasses. A row
// that cannot be read, a row too many and less than two rows end the run. The order of the limits is not looked at.
ClassTable readClassTable(std::string_view file, bool coloured, const ClassWords& words);

// The limits that readClassTable will find, without a word. None where anything about the table is out of the ordinary.
std::optional<std::vector<float>> lookAtLimits(std::string_view file, bool coloured);

// The limits in a form that never falls, with the same class for every value: a limit that lies below an earlier one,
// or is not a number, is never the first that a value reaches.
std::vector<float> risingLimits(const ClassTable& table);

} // namespace gridforge::ops
