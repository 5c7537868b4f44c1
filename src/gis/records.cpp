#include "gis/records.h"

#include "core/text.h"
#include "host/ends.h"

#include <algorithm>

namespace gridforge {

void GisO::clear()
{
    none = point = line = pline = plineMultiple = region = false;
    ellipse = rect = roundRect = arc = center = text = multipoint = false;
    nSections = 1;
    nr = 1;
    if (ir.empty()) {
        ir.resize(1);
    }
    ir[0] = 1;
    name.clear();
}

void GisCoordinates::reserve(std::int32_t count)
{
    const auto wanted = static_cast<std::size_t>(std::max(count, 2));
    if (x.size() < wanted) {
        x.resize(wanted);
        y.resize(wanted);
    }
}

void GisOutputAttributes::clear()
{
    columns.clear();
    nRecords = 0;
}

void GisOutputAttributes::add(std::string_view name, std::string_view type, std::int32_t length)
{
    if (count() >= kMaxAttributes) {
        fail("ERROR - Number of attributes of output layer exceeds maximum: ", kMaxAttributes);
    }
    columns.push_back({cut(name, kAttributeNameWidth), cut(type, kAttributeTypeWidth), length});
}

void GisOutputCoordinates::add(double px, double py)
{
    if (np >= kMaxWriteVertices) {
        fail("ERROR - Number of vertices of output object exceeds maximum: ", kMaxWriteVertices);
    }
    const auto next = static_cast<std::size_t>(np);
    if (next >= x.size()) {
        x.resize(next + next / 2 + 1);
        y.resize(x.size());
    }
    x[next] = px;
    y[next] = py;
    ++np;
}

} // namespace gridforge
