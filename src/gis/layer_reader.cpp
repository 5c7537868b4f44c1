#include "gis/layer_reader.h"

#include "core/text.h"
#include "gis/layer_table.h"
#include "host/console.h"
#include "host/progress.h"
#include "plane/geometry.h"

#include <algorithm>
#include <cassert>

namespace gridforge::gis {

// --- What is derived from the coordinates ----------------------------------------------------------------------------

namespace {

float directionOf(const Coordinates& c, std::size_t from, std::size_t to)
{
    return static_cast<float>(atan2d(c.y[to] - c.y[from], c.x[to] - c.x[from]));
}

float segmentLength(const Coordinates& c, std::size_t to)
{
    return DISTANCE_8(c.x[to - 1], c.y[to - 1], c.x[to], c.y[to]);
}

void deriveLine(Coordinates& c)
{
    c.xc = (c.x[0] + c.x[1]) * 0.5;
    c.yc = (c.y[0] + c.y[1]) * 0.5;
    c.angle = directionOf(c, 0, 1);
    c.length = segmentLength(c, 1);
}

// The point at half the length, in single precision; the direction is that of the segment on which it lies.
void derivePolyline(Coordinates& c)
{
    const auto np = static_cast<std::size_t>(std::max(c.np, 0));
    for (std::size_t i = 1; i < np; ++i) {
        c.length += segmentLength(c, i);
    }
    const float half = c.length * 0.5F;
    float before = 0;
    std::size_t i = 1;
    while (i + 1 < np && before + segmentLength(c, i) < half) {
        before += segmentLength(c, i);
        ++i;
    }
    const float share = (half - before) / segmentLength(c, i);
    c.xc = c.x[i - 1] + static_cast<double>(share) * (c.x[i] - c.x[i - 1]);
    c.yc = c.y[i - 1] + static_cast<double>(share) * (c.y[i] - c.y[i - 1]);
    c.angle = directionOf(c, i - 1, i);
}

// np counts the closing vertex and the slot after it, so for one ring this is the mean of the distinct vertices. With
// several rings the closing vertices and slots of all except the last count too, on purpose: results rely on it.
void deriveRegion(Coordinates& c)
{
    const std::int32_t count = c.np - 2;
    double sumX = 0;
    double sumY = 0;
    for (std::size_t i = 0; i < static_cast<std::size_t>(std::max(count, 0)); ++i) {
        sumX += c.x[i];
        sumY += c.y[i];
    }
    c.xc = sumX / count;
    c.yc = sumY / count;
}

void derive(Kind kind, Centre centre, Coordinates& c)
{
    switch (kind) {
    case Kind::point:
    case Kind::multipoint:
        c.xc = c.x[0];
        c.yc = c.y[0];
        c.x[1] = c.x[0];
        c.y[1] = c.y[0];
        break;
    case Kind::line:
    case Kind::rectangle:
    case Kind::roundedRectangle: deriveLine(c); break;
    case Kind::ellipse:
    case Kind::arc: c.np = 0; break;
    case Kind::polyline:
    case Kind::combinedPolyline: derivePolyline(c); break;
    case Kind::region:
        if (centre == Centre::computed) {
            deriveRegion(c);
        }
        break;
    default: break;
    }
}

} // namespace

// --- The steps -------------------------------------------------------------------------------------------------------

void readHeader(OpenLayer& layer)
{
    std::visit([](auto& files) { readHeader(files); }, layer.files);
}

std::int32_t columnCount(const OpenLayer& layer)
{
    return std::visit([](const auto& files) { return columnCount(files); }, layer.files);
}

std::int32_t recordCount(OpenLayer& layer)
{
    return std::visit([](auto& files) { return recordCount(files); }, layer.files);
}

void rewind(OpenLayer& layer)
{
    say("Rewinding GIS Layer ", layer.id, "...");
    layer.end = false;
    std::visit([](auto& files) { rewind(files); }, layer.files);
}

bool goToColumns(OpenLayer& layer, std::int32_t& count)
{
    return std::visit([&](auto& files) { return goToColumns(files, count); }, layer.files);
}

Column readColumn(OpenLayer& layer)
{
    return std::visit([](auto& files) { return readColumn(files); }, layer.files);
}

bool readKind(OpenLayer& layer, LayerObject& object)
{
    object.clear();
    return std::visit(
        [&](auto& files) {
            const bool found = readKind(files, object);
            layer.end = atObjectsEnd(files);
            return found;
        },
        layer.files);
}

void readRecord(OpenLayer& layer, std::string_view name, std::string& line, std::size_t width)
{
    line.clear();
    layer.end = std::visit([&](auto& files) { return readRecord(files, name, line, width); }, layer.files);
}

void readCoordinates(OpenLayer& layer, LayerObject& object, Coordinates& coordinates, std::int32_t maxVertices,
                     bool wanted)
{
    coordinates.reserve(2);
    coordinates.angle = 0;
    coordinates.length = 0;
    const Centre centre = std::visit(
        [&](auto& files) {
            const Centre read = readCoordinates(files, object, coordinates, maxVertices, wanted);
            layer.end = atObjectsEnd(files);
            return read;
        },
        layer.files);
    if (wanted) {
        derive(object.kind, centre, coordinates);
    }
}

void close(OpenLayer& layer)
{
    say("Closing GIS Layer ", layer.id, " [", layer.name, "]...");
    std::visit([](auto& files) { closeFiles(files); }, layer.files);
    releaseId(layer.id);
}

// --- The loop --------------------------------------------------------------------------------------------------------

LayerObject* LayerReader::next()
{
    assert(layer_ != nullptr); // it has not been closed
    while (!layer_->end) {
        if (readKind(*layer_, object_)) {
            readRecord(*layer_, object_.name, object_.record);
            countObject();
            return &object_;
        }
    }
    return nullptr;
}

void LayerReader::readCoordinates(LayerObject& object, Coordinates& coordinates, std::int32_t maxVertices)
{
    assert(layer_ != nullptr);
    gis::readCoordinates(*layer_, object, coordinates, maxVertices);
}

std::int32_t LayerReader::columnCount() const
{
    assert(layer_ != nullptr);
    return gis::columnCount(*layer_);
}

std::vector<Column> LayerReader::columns() const
{
    assert(layer_ != nullptr);
    return std::visit([](const auto& files) { return columnsOf(files); }, layer_->files);
}

void LayerReader::close()
{
    assert(layer_ != nullptr);
    gis::close(*layer_);
    layer_ = nullptr;
}

} // namespace gridforge::gis
