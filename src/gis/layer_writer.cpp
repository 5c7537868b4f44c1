#include "gis/layer_writer.h"

#include "core/number_text.h"
#include "core/product.h"
#include "core/text.h"
#include "gis/gis_messages.h"
#include "gis/layer_table.h"
#include "host/console.h"
#include "host/ends.h"
#include "host/progress.h"

#include <cassert>
#include <utility>

namespace gridforge::gis {

namespace {

[[noreturn]] void failParts(std::int32_t id, const Feature& feature, std::int32_t part)
{
    constexpr int kNumberColumns = 5;
    say("Should not be here [gisO_%ir(i) <= gisO_%ir(i-1)] - please contact ", kSupportContact, ".");
    say("GIS Layer   =", integerField(id, kNumberColumns));
    say("i           =", integerField(part, kNumberColumns));
    say("gisO_%ir(i) =", integerField(feature.partStart(part), kNumberColumns));
    say("gisO_%nr    =", integerField(feature.partCount(), kNumberColumns));
    EXITS();
}

bool hasParts(Kind kind)
{
    return kind == Kind::line || kind == Kind::polyline || kind == Kind::combinedPolyline || kind == Kind::region;
}

// Parts must be in order, or the writers would go outside the vertices.
void requireParts(std::int32_t id, const Feature& feature)
{
    const std::int32_t count = feature.partCount();
    for (std::int32_t part = 2; part <= count; ++part) {
        if (feature.partStart(part) <= feature.partStart(part - 1)) {
            failParts(id, feature, part);
        }
    }
    if (count > 1 && feature.partStart(count) > feature.vertexCount()) {
        gisMisuse("[gisWriteObject]");
    }
}

void requireVertices(const Feature& feature)
{
    if (feature.x.size() > static_cast<std::size_t>(kMaxWriteVertices)) {
        fail("ERROR - Number of vertices of output object exceeds maximum: ", kMaxWriteVertices);
    }
    if (feature.x.size() != feature.y.size()) {
        gisMisuse("[gisWriteObject]");
    }
}

} // namespace

LayerWriter::LayerWriter(std::int32_t id, std::string name, std::variant<mif::MifOutput, shp::ShpOutput> files)
    : id_(id), name_(std::move(name)), files_(std::move(files))
{
}

void LayerWriter::write(const Feature& feature)
{
    assert(id_ != 0); // it has not been closed
    requireVertices(feature);
    if (hasParts(feature.kind)) {
        requireParts(id_, feature);
    }
    std::visit(
        [&](auto& files) {
            writeObject(files, feature);
            writeRecord(files, feature);
        },
        files_);
    countObject();
}

void LayerWriter::close()
{
    assert(id_ != 0);
    say("Closing GIS Layer ", id_, " [", name_, "]...");
    std::visit([](auto& files) { closeFiles(files); }, files_);
    releaseId(std::exchange(id_, 0));
}

} // namespace gridforge::gis
