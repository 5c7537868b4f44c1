#include "rainfall/points.h"

#include "gis/layer_reader.h"
#include "gis/record_values.h"
#include "host/console.h"
#include "host/ends.h"

#include <utility>

namespace gridforge::rainfall {

namespace {

constexpr std::int32_t kMaxPointVertices = 100;
constexpr float kLeastFactor = 0.001F;

void mendFactor(std::string_view warning, const std::string& name, float& factor)
{
    if (factor < kLeastFactor) {
        say(warning, name);
        factor = 1.0F;
    }
}

void addPoint(const gis::Coordinates& read, const std::string& record, RfPoints& points)
{
    if (points.count() >= points.maxLocations) {
        failTooManyLocations(points.maxLocations);
    }
    RfPoint point;
    point.x = read.xc;
    point.y = read.yc;
    point.record = parseRfRecord(record);
    mendFactors(point.record);
    points.records.push_back(std::move(point));
}

} // namespace

RfRecord parseRfRecord(std::string_view dataLine)
{
    RfRecord record;
    gis::RecordValues values(dataLine);
    values.take(record.name, kRfNameWidth);
    values.take(record.f1);
    values.take(record.f2);
    return record;
}

void mendFactors(RfRecord& record)
{
    mendFactor("WARNING - F1 rainfall factor of 0 set to 1. RF Name: ", record.name, record.f1);
    mendFactor("WARNING - F2 rainfall factor of 0 set to 1. RF Name: ", record.name, record.f2);
}

void rf_read_points(const std::string& layerName, RfPoints& points)
{
    say("Read rainfall points data from GIS file: ", layerName);
    gis::LayerReader layer = gis::openLayer(layerName);
    gis::Coordinates read;
    while (gis::LayerObject* object = layer.next()) {
        if (object->kind == gis::Kind::point) {
            layer.readCoordinates(*object, read, kMaxPointVertices);
            addPoint(read, object->record, points);
        } else {
            say("WARNING - Object is not a point and is being skipped.");
        }
    }
    say(" Finished reading rainfall points.");
    layer.close();
}

void rf_match_points(const RfHyetographs& hyetographs, RfPoints& points)
{
    say("Finding hyetographs for points.");
    for (RfPoint& point : points.records) {
        point.hyetograph = findHyetograph(point.record.name, hyetographs);
        if (point.hyetograph == 0) {
            fail("ERROR - Could not find rainfall hyetogpraph with name: ", point.record.name);
        }
    }
    say("   Done");
}

} // namespace gridforge::rainfall
