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
#include <utility>

namespace gridforge::gis {

namespace {

constexpr std::string_view kShpExtension = ".shp";

enum class Family { mif, shp };

Family familyOf(std::string_view name)
{
    const std::string extension = FILEEXT(name);
    if (extension == kMifExtension || extension == ".mid" || trimRight(extension).empty()) {
        return Family::mif;
    }
    if (extension == kShpExtension) {
        return Family::shp;
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
    return FILEEXT(name) == kShpExtension ? shp::lookAtPoints(name) : mif::lookAtPoints(name);
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
    if (FILEEXT(gisFile) == kShpExtension) {
        shp::takeProjection(gisFile, projection.shp);
    } else if (FILEEXT(gisFile) == kMifExtension) {
        mif::takeProjection(gisFile, projection.mif);
    } else {
        fail("ERROR - Unable to determine gis file type, expecting .mif or .shp. File: ", gisFile);
    }
}

// --- Names -----------------------------------------------------------------------------------------------------------

bool hasMifExtension(std::string_view name)
{
    return FILEEXT(name) == kMifExtension;
}

bool hasLayerExtension(std::string_view name)
{
    return hasMifExtension(name) || FILEEXT(name) == kShpExtension;
}

std::string layerStem(std::string_view name, std::string_view family)
{
    std::string stem = FILENAMEPATH(name);
    const std::string tail = join("_", family);
    if (FILEEXT(name) == kShpExtension && stem.ends_with(tail)) {
        stem.resize(stem.size() - tail.size());
    }
    return stem;
}

} // namespace gridforge::gis
