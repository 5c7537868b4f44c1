#include "fuzz/changes.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <vector>

namespace gridforge::fuzz {

namespace {

std::size_t below(std::size_t count, Random& random)
{
    return count == 0 ? 0 : random() % count;
}

// --- Texts -----------------------------------------------------------------------------------------------------------

struct Stretch {
    std::size_t first = 0;
    std::size_t count = 0;
};

// With their line ends.
std::vector<Stretch> linesOf(std::string_view text)
{
    std::vector<Stretch> lines;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size() - 1) + 1;
        lines.push_back({at, end - at});
        at = end;
    }
    return lines;
}

bool isOfNumber(char c)
{
    return (c >= '0' && c <= '9') || c == '.' || c == '-';
}

std::vector<Stretch> numbersOf(std::string_view text)
{
    std::vector<Stretch> numbers;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const std::size_t first = at;
        while (at < text.size() && isOfNumber(text[at])) {
            ++at;
        }
        const std::string_view number = text.substr(first, at - first);
        if (number.find_first_of("0123456789") != std::string_view::npos) { // more than the mark of a flag
            numbers.push_back({first, number.size()});
        }
    }
    return numbers;
}

// Its first number grows by `more`, as that of the next row of a table does.
std::string nextRow(std::string line, std::size_t more)
{
    const std::vector<Stretch> numbers = numbersOf(line);
    if (!numbers.empty()) {
        const double number = std::strtod(line.c_str() + numbers[0].first, nullptr) + static_cast<double>(more);
        line.replace(numbers[0].first, numbers[0].count, std::to_string(number));
    }
    return line;
}

std::string repeatLine(std::string text, Random& random)
{
    const std::vector<Stretch> lines = linesOf(text);
    const Stretch from = lines[below(lines.size(), random)];
    const Stretch to = random() % 2 == 0 ? from : lines[below(lines.size(), random)];
    std::string line = text.substr(from.first, from.count);
    if (!line.ends_with('\n')) {
        line.insert(0, "\n");
    }
    const bool asRows = random() % 2 == 0;
    for (std::size_t copies = 1 + below(3, random); copies > 0; --copies) {
        text.insert(to.first + to.count, asRows ? nextRow(line, copies) : line);
    }
    return text;
}

std::string dropLine(std::string text, Random& random)
{
    const std::vector<Stretch> lines = linesOf(text);
    const Stretch line = lines[below(lines.size(), random)];
    return text.erase(line.first, line.count);
}

std::string newNumber(std::string_view old, Random& random)
{
    static constexpr std::string_view kOdd[] = {
        "0",   "1",    "-1",  "2", "3",   "0.5",        "1000",        "-9999",      "99999",    "1e30",        "1e-40",
        "NaN", "-inf", "1d5", "",  "1,,", "2147483647", "-2147483648", "4294967296", "16777217", "3.4028235e38"};
    switch (random() % 4) {
    case 0: return std::string(kOdd[below(std::size(kOdd), random)]);
    case 1: return std::to_string(below(10, random));
    case 2: return std::to_string(below(100, random)) + '.' + std::to_string(below(10, random));
    default: return old.starts_with('-') ? std::string(old.substr(1)) : '-' + std::string(old);
    }
}

std::string changeNumber(std::string text, const std::vector<Stretch>& numbers, Random& random)
{
    const Stretch chosen = numbers[below(numbers.size(), random)];
    const std::string old = text.substr(chosen.first, chosen.count);
    return text.replace(chosen.first, chosen.count, newNumber(old, random));
}

std::string copyNumber(std::string text, const std::vector<Stretch>& numbers, Random& random)
{
    const Stretch from = numbers[below(numbers.size(), random)];
    const Stretch to = numbers[below(numbers.size(), random)];
    return text.replace(to.first, to.count, text.substr(from.first, from.count));
}

std::string changedText(std::string_view text, Random& random)
{
    const std::vector<Stretch> numbers = numbersOf(text);
    switch (random() % 8) {
    case 0:
    case 1: return repeatLine(std::string(text), random);
    case 2: return dropLine(std::string(text), random);
    case 3: return numbers.empty() ? std::string(text) : copyNumber(std::string(text), numbers, random);
    default: return numbers.empty() ? std::string(text) : changeNumber(std::string(text), numbers, random);
    }
}

// --- Binary files ----------------------------------------------------------------------------------------------------

template <typename Value>
void put(std::string& bytes, std::size_t at, Value value)
{
    std::memcpy(bytes.data() + at, &value, std::min(sizeof value, bytes.size() - at));
}

std::string changedNumbers(std::string bytes, Random& random)
{
    static constexpr double kReals[] = {0, -0.0, 1, -1, 0.5, 1e30, -1e30, 1e300, 5e-324, 10, 100, 9, 7.5};
    const std::size_t at = below(bytes.size(), random) / 4 * 4;
    const double real = kReals[below(std::size(kReals), random)];
    const auto small = static_cast<std::int32_t>(below(16, random)) - 2;
    switch (random() % 6) {
    case 0: put(bytes, at, real); break;
    case 1: put(bytes, at, static_cast<float>(real)); break;
    case 2: put(bytes, at, __builtin_bswap32(static_cast<std::uint32_t>(small))); break;
    case 3: bytes.insert(at, bytes.substr(at, 4 * (1 + below(8, random)))); break;
    default: put(bytes, at, small); break;
    }
    return bytes;
}

} // namespace

std::string changed(std::string_view bytes, Random& random)
{
    if (bytes.empty()) {
        return {};
    }
    const bool isBinary = bytes.find('\0') != std::string_view::npos;
    return isBinary ? changedNumbers(std::string(bytes), random) : changedText(bytes, random);
}

} // namespace gridforge::fuzz
