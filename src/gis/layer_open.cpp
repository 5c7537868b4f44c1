// The only file that knows which family of files an extension stands for.
#include "core/names.h"
#include "core/text.h"
#include "gis/gis_messages.h"
#include "gis/layer_name.h"
#include "gis/layer_reader.h"
#include "gis/layer_table.h"
#include "gis/layer_writer.h"
#include "gis/point_look.h"
#include "gis/projection.h"
#include "host/console.h"
#include "host/ends.h"

#include <memory>
#include <optional>
#include <utility>

namespace gridforge::gis {

namespace {

constexpr std::string_view kShpExtension = ".shp";

enum class Family { mif, shp };

// By the extensions .mif and .shp alone.
std::optional<Family> namedFamily(std::string_view name)
{
    const std::string extension = FILEEXT(name);
    return extension == kMifExtension   ? std::optional(Family::mif)
           : extension == kShpExtension ? std::optional(Family::shp)
                                        : std::nullopt;
}

Family familyOf(std::string_view name)
{
    if (const auto named = namedFamily(name)) {
        return *named;
    }
    const std::string extension = FILEEXT(name);
    if (extension == ".mid" || trimRight(extension).empty()) {
        return Family::mif;
    }
    gisFail(join("ERROR 0252 - ", trimRight(extension), " is not a supported GIS file format."));
}

// Says that the layer is being opened, and finds its ID. A 101st layer ends the run.
std::int32_t announce(const std::string& name)
{
    say("Opening GIS Layer: ", name);
    const std::int32_t id = findFreeId();
    if (id == 0) {
        gisFail("ERROR 0251 - Cannot have more than 100 GIS layers open at once.");
    }
    say("GIS Layer assigned ID of ", id);
    return id;
}

} // namespace

OpenLayer& openFiles(std::string_view fileName)
{
    const std::string name = cut(fileName, kNameWidth);
    const std::int32_t id = announce(name);
    auto layer = std::make_unique<OpenLayer>();
    layer->id = id;
    layer->name = name;
    const Family family = familyOf(name);
    trackLayer(name);
    switch (family) {
    case Family::mif: layer->files = mif::open(name); break;
    case Family::shp: layer->files = shp::open(name); break;
    }
    return takeId(id, std::move(layer));
}

LayerReader openLayer(std::string_view fileName)
{
    OpenLayer& layer = openFiles(fileName);
    readHeader(layer);
    return LayerReader(layer);
}

ProjectedLayer openWithProjection(std::string_view fileName)
{
    Projection projection;
    get_projection(fileName, projection);
    return {projection, openLayer(fileName)};
}

std::optional<std::vector<PointPlace>> lookAtPoints(std::string_view fileName)
{
    const std::string name = cut(fileName, kNameWidth);
    return namedFamily(name) == Family::shp ? shp::lookAtPoints(name) : mif::lookAtPoints(name);
}

LayerWriter createLayer(std::string_view fileName, const LayerSpec& spec)
{
    if (spec.columns.size() > static_cast<std::size_t>(kMaxColumns)) {
        fail("ERROR - Number of attributes of output layer exceeds maximum: ", kMaxColumns);
    }
    const std::string name = cut(fileName, kNameWidth);
    const std::int32_t id = announce(name);
    const bool isShp = familyOf(name) == Family::shp;
    LayerWriter writer =
        isShp ? LayerWriter(id, name, shp::create(name, spec)) : LayerWriter(id, name, mif::create(name, spec));
    takeId(id);
    return writer;
}

void get_projection(std::string_view gisFile, Projection& projection)
{
    say("Getting Projection...");
    const std::optional<Family> family = namedFamily(gisFile);
    if (!family) {
        fail("ERROR - Unable to determine gis file type, expecting .mif or .shp. File: ", gisFile);
    }
    switch (*family) {
    case Family::mif: mif::takeProjection(gisFile, projection.mif); break;
    case Family::shp: shp::takeProjection(gisFile, projection.shp); break;
    }
}

// --- Names -----------------------------------------------------------------------------------------------------------

bool hasMifExtension(std::string_view name)
{
    return namedFamily(name) == Family::mif;
}

bool hasLayerExtension(std::string_view name)
{
    return namedFamily(name).has_value();
}

std::string layerStem(std::string_view name, std::string_view family)
{
    std::string stem = FILENAMEPATH(name);
    const std::string tail = join("_", family);
    if (namedFamily(name) == Family::shp && stem.ends_with(tail)) {
        stem.resize(stem.size() - tail.size());
    }
    return stem;
}

} // namespace gridforge::gis
