#include "gis/point_look.h"

#include "gis/shp/byte_order.h"
#include "gis/shp/codes.h"
#include "host/quiet_input.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace gridforge::gis::shp {

std::optional<std::vector<PointPlace>> lookAtPoints(std::string_view fileName)
{
    constexpr std::size_t kHeadBytes = 8; // of a record, before its type
    const std::optional<QuietInput> input = findQuietly(fileName);
    FileStream in = input ? openQuietly(*input) : FileStream();
    std::array<std::byte, kShpHeaderBytes> header;
    if (!in.isOpen() || !in.readBytes(header)) {
        return std::nullopt;
    }
    std::vector<PointPlace> places;
    while (!in.atEnd()) {
        std::array<std::byte, kHeadBytes + sizeof(std::int32_t)> head;
        if (!in.readBytes(head)) {
            return std::nullopt;
        }
        const auto type = fromBytes<std::int32_t>(&head[kHeadBytes]);
        if (type == kNull) {
            continue;
        }
        std::array<std::byte, 2 * sizeof(double)> place;
        if (type != kPoint || !in.readBytes(place)) {
            return std::nullopt;
        }
        places.push_back({fromBytes<double>(place.data()), fromBytes<double>(&place[sizeof(double)])});
    }
    return places;
}

} // namespace gridforge::gis::shp
