#include "gis/point_look.h"

#include "core/free_form.h"
#include "core/text.h"
#include "gis/mif/base_name.h"
#include "host/quiet_input.h"

#include <algorithm>
#include <string>

namespace gridforge::gis::mif {

namespace {

constexpr std::string_view kPoint = "POINT";

bool findLine(FileStream& in, std::string_view word, std::string& line)
{
    while (in.readLine(line, kLineWidth)) {
        if (FLAGEXISTS(line, word)) {
            return true;
        }
    }
    return false;
}

// The text after the keyword of a point; none in any other line.
std::optional<std::string_view> afterKeyword(std::string_view line)
{
    const std::string_view text = line.substr(std::min(line.find_first_not_of(' '), line.size()));
    if (text.size() < kPoint.size() || !ASAME(text.substr(0, kPoint.size()), kPoint)) {
        return std::nullopt;
    }
    return text.substr(kPoint.size());
}

bool readPlace(std::string_view text, PointPlace& place)
{
    FreeForm values(text);
    return values.next(place.x) == FreeValue::value && values.next(place.y) == FreeValue::value;
}

} // namespace

std::optional<std::vector<PointPlace>> lookAtPoints(std::string_view fileName)
{
    const std::optional<QuietInput> input = findQuietly(baseOf(fileName) + ".mif");
    FileStream in = input ? openQuietly(*input) : FileStream();
    std::string line;
    if (!in.isOpen() || !findLine(in, "Columns", line) || !findLine(in, "Data", line)) {
        return std::nullopt;
    }
    std::vector<PointPlace> places;
    while (in.readLine(line, kLineWidth)) {
        std::ranges::replace(line, '\t', ' ');
        std::optional<std::string_view> text = afterKeyword(line);
        if (!text) {
            continue;
        }
        const std::string inLine(*text);
        const bool onNextLine = trimLeft(inLine).empty();
        if ((onNextLine && !in.readLine(line, kLineWidth)) ||
            !readPlace(onNextLine ? line : inLine, places.emplace_back())) {
            return std::nullopt;
        }
    }
    return in.failed() ? std::nullopt : std::optional(std::move(places));
}

} // namespace gridforge::gis::mif
