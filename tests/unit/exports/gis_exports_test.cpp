#include "gis/layer_reader.h"
#include "gis/layer_table.h"
#include "gis/layer_writer.h"
#include "support/child_run.h"
#include "support/exported_calls.h"
#include "support/layer_files.h"
#include "support/shp_bytes.h"

#include <array>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <gmock/gmock.h>
#include <gridforge/gridforge.h>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <string_view>

namespace gridforge::test {
namespace {

using testing::HasSubstr;

constexpr std::int32_t kRoom = 20;

// What gisReadObject fills, with marks where nothing was written.
struct Shape {
    std::array<double, kRoom> x;
    std::array<double, kRoom> y;
    std::int32_t np = -7;
    double xc = -7;
    double yc = -7;
    float angle = -7;
    float length = -7;

    Shape()
    {
        x.fill(-7);
        y.fill(-7);
    }
    void read(std::int32_t gisID, ::gisO& object, std::int32_t readCoordinates = 1)
    {
        ::gisReadObject(gisID, &object, x.data(), y.data(), kRoom, &np, &xc, &yc, &angle, &length, readCoordinates);
    }
};

// An object record that nothing has set yet.
std::unique_ptr<::gisO> anyObject()
{
    auto object = std::make_unique<::gisO>();
    object->arc = 1;
    object->nr = 99;
    return object;
}

std::string nameOf(const ::gisO& object)
{
    return {object.name, sizeof object.name};
}

// Runs code on the opened layer `name` in a process of its own, where the expectations stand as well.
ChildRun onLayer(const ScratchFolder& folder, std::string_view name, const std::function<void(std::int32_t)>& code)
{
    ChildRun run = runInChild(folder, [&] {
        gis::initialise();
        const std::int32_t id = gis::openFiles(name).id;
        ::gisReadHeader(id);
        code(id);
        if (testing::Test::HasFailure()) {
            std::abort();
        }
    });
    EXPECT_EQ(run.status, 0) << run.console << run.errors;
    return run;
}

TEST(ExportedLayers, AreReadObjectByObject)
{
    const ScratchFolder folder;
    giveMif(folder, "l",
            "Point 3 4\n"
            "Line 0 0 6 8\n"
            "Pline 3\n0 0\n4 0\n4 8\n"
            "Region 1\n5\n0 0\n4 0\n4 4\n0 4\n0 0\n"
            "none\n",
            5);
    onLayer(folder, "l.mif", [](std::int32_t id) {
        EXPECT_EQ(::gisNumberAttributes(id), 2);
        EXPECT_EQ(::gisNumberRecords(id), 5);
        const auto object = anyObject();
        std::string line(9, '~');

        ASSERT_EQ(::gisObjectType(id, object.get()), 1);
        EXPECT_EQ(object->point, 1);
        EXPECT_EQ(object->arc, 0);
        EXPECT_EQ(object->nr, 1);
        EXPECT_EQ(nameOf(*object), field("POINT", 24));
        call(::gisReadRecord, id, object.get(), line);
        EXPECT_EQ(line, "\"r1\",1   ");
        Shape point;
        point.read(id, *object);
        EXPECT_EQ(object->haveCoordinates, 1);
        EXPECT_EQ(point.np, 1);
        EXPECT_EQ(point.x[1], 3); // a point stands in both places
        EXPECT_EQ(point.y[1], 4);
        EXPECT_EQ(point.x[2], -7);
        EXPECT_EQ(point.xc, 3);
        EXPECT_EQ(point.length, 0);

        ASSERT_EQ(::gisObjectType(id, object.get()), 1);
        EXPECT_EQ(object->line, 1);
        call(::gisReadRecord, id, object.get(), line);
        Shape segment;
        segment.read(id, *object);
        EXPECT_EQ(segment.np, 2);
        EXPECT_EQ(segment.xc, 3);
        EXPECT_EQ(segment.yc, 4);
        EXPECT_EQ(segment.length, 10.0F);
        EXPECT_FLOAT_EQ(segment.angle, 53.130102F); // of a 3-4-5 triangle

        ASSERT_EQ(::gisObjectType(id, object.get()), 1);
        EXPECT_EQ(object->pline, 1);
        call(::gisReadRecord, id, object.get(), line);
        Shape polyline;
        polyline.read(id, *object);
        EXPECT_EQ(polyline.np, 3);
        EXPECT_EQ(polyline.x[2], 4);
        EXPECT_EQ(polyline.y[2], 8);
        EXPECT_EQ(polyline.x[3], -7);
        EXPECT_EQ(polyline.length, 12.0F);
        EXPECT_EQ(polyline.xc, 4); // half of the length is 2 up the second segment
        EXPECT_EQ(polyline.yc, 2);
        EXPECT_EQ(polyline.angle, 90.0F);

        ASSERT_EQ(::gisObjectType(id, object.get()), 1);
        EXPECT_EQ(object->region, 1);
        call(::gisReadRecord, id, object.get(), line);
        Shape region;
        region.read(id, *object);
        EXPECT_EQ(object->nr, 1);
        EXPECT_EQ(object->ir[0], 5);
        EXPECT_EQ(region.np, 6);
        EXPECT_EQ(region.x[5], 4); // the slot that repeats the second vertex
        EXPECT_EQ(region.xc, 2);
        EXPECT_EQ(region.angle, 0);

        ASSERT_EQ(::gisObjectType(id, object.get()), 1);
        EXPECT_EQ(object->none, 1);
        call(::gisReadRecord, id, object.get(), line);
        Shape nothing;
        nothing.read(id, *object);
        EXPECT_EQ(nothing.np, -7); // what a kind does not have stays
        EXPECT_EQ(nothing.x[0], -7);
        EXPECT_EQ(nothing.xc, -7);
        EXPECT_EQ(nothing.length, 0);

        EXPECT_EQ(::gisObjectType(id, object.get()), 0);
    });
}

TEST(ExportedLayers, CoordinatesMayBePassedOver)
{
    const ScratchFolder folder;
    giveMif(folder, "l", "Pline 3\n5 6\n4 0\n4 6\nPoint 1 2\n", 2);
    onLayer(folder, "l.mif", [](std::int32_t id) {
        const auto object = anyObject();
        std::string line(20, '~');
        ASSERT_EQ(::gisObjectType(id, object.get()), 1);
        call(::gisReadRecord, id, object.get(), line);
        Shape polyline;
        polyline.read(id, *object, 0);
        EXPECT_EQ(polyline.np, 3);
        EXPECT_EQ(polyline.x[0], 5); // a .mif is read that far all the same
        EXPECT_EQ(polyline.x[1], -7);
        EXPECT_EQ(polyline.xc, -7);
        ASSERT_EQ(::gisObjectType(id, object.get()), 1);
        EXPECT_EQ(object->point, 1);
    });
}

TEST(ExportedLayers, MoreVerticesThanRoomEndTheRun)
{
    const ScratchFolder folder;
    std::string body = "Pline 21\n";
    for (int i = 0; i < 21; ++i) {
        body += "1 2\n";
    }
    giveMif(folder, "l", body);
    const ChildRun run = onLayer(folder, "l.mif", [](std::int32_t id) {
        const auto object = anyObject();
        std::string line(20, '~');
        ::gisObjectType(id, object.get());
        call(::gisReadRecord, id, object.get(), line);
        Shape shape;
        shape.read(id, *object);
    });
    EXPECT_TRUE(run.ended);
}

TEST(ExportedLayers, GoBackToTheirBeginnings)
{
    const ScratchFolder folder;
    giveMif(folder, "l", "Point 1 2\n");
    const ChildRun run = onLayer(folder, "l.mif", [](std::int32_t id) {
        const auto object = anyObject();
        EXPECT_EQ(::gisObjectType(id, object.get()), 1);
        ::gisGotoBeginningOfData(id);
        EXPECT_EQ(::gisObjectType(id, object.get()), 1);
        std::int32_t count = 0;
        EXPECT_EQ(::gisGotoBeginningOfAttributes(id, &count), 1);
        EXPECT_EQ(count, 2);
        auto definition = std::make_unique<::gisAttribute>();
        ::gisReadAttributeDefinition(id, definition.get());
        EXPECT_EQ(std::string(definition->name, 256), field("Name", 256));
        EXPECT_EQ(std::string(definition->type, 24), field("Char(30)", 24));
    });
    EXPECT_THAT(run.console, HasSubstr("Rewinding GIS Layer 1...\n"));
}

TEST(ExportedLayers, ShapefilesCountTheRecordsOfTheirTableAndGoBackToTheirFirstObject)
{
    const ScratchFolder folder;
    giveShp(folder, "l", 1, {pointRecord(1, 2), pointRecord(3, 4)});
    onLayer(folder, "l.shp", [](std::int32_t id) {
        EXPECT_EQ(::gisNumberRecords(id), 2);
        const auto object = anyObject();
        for (int times = 0; times < 2; ++times) {
            EXPECT_EQ(::gisObjectType(id, object.get()), 1);
            Shape shape;
            shape.read(id, *object);
            EXPECT_EQ(shape.x[0], 1);
            EXPECT_EQ(shape.y[0], 2);
            ::gisGotoBeginningOfData(id);
        }
    });
}

struct HandleCall {
    const char* routine;
    void (*call)(std::int32_t id);
};
const HandleCall kCalls[] = {
    {"gisReadHeader", [](std::int32_t id) { ::gisReadHeader(id); }},
    {"gisNumberAttributes", [](std::int32_t id) { ::gisNumberAttributes(id); }},
    {"gisNumberRecords", [](std::int32_t id) { ::gisNumberRecords(id); }},
    {"gisGotoBeginningOfData", [](std::int32_t id) { ::gisGotoBeginningOfData(id); }},
    {"gisGotoBeginningOfAttributes",
     [](std::int32_t id) {
         std::int32_t count = 0;
         ::gisGotoBeginningOfAttributes(id, &count);
     }},
    {"gisReadAttributeDefinition",
     [](std::int32_t id) {
         const auto definition = std::make_unique<::gisAttribute>();
         ::gisReadAttributeDefinition(id, definition.get());
     }},
    {"gisObjectType", [](std::int32_t id) { ::gisObjectType(id, anyObject().get()); }},
    {"gisReadObject", [](std::int32_t id) { Shape().read(id, *anyObject()); }},
    {"gisReadRecord",
     [](std::int32_t id) {
         std::string line(10, '~');
         call(::gisReadRecord, id, anyObject().get(), line);
     }},
};

TEST(ExportedLayers, HandlesThatAreNoneEndTheRun)
{
    const ScratchFolder folder;
    const auto endOf = [&](const std::function<void()>& code) {
        const ChildRun run = runInChild(folder, [&] {
            gis::initialise();
            code();
        });
        EXPECT_TRUE(run.ended);
        return run.console;
    };
    for (const HandleCall& handle : kCalls) {
        for (const std::int32_t id : {0, -1, 101}) {
            EXPECT_THAT(endOf([&] { handle.call(id); }),
                        HasSubstr("\nShould not be here " + std::string(handle.routine) +
                                  "[gisID=0] - please contact SUPPORT_CONTACT.\n"))
                << id;
        }
    }
}

TEST(ExportedLayers, HandlesThatAreNotOpenForReadingEndTheRun)
{
    const ScratchFolder folder;
    for (const HandleCall& handle : kCalls) {
        const ChildRun run = runInChild(folder, [&] {
            gis::initialise();
            gis::createLayer("o.mif", {});
            handle.call(1);
        });
        const std::string words =
            "\nShould not be here [" + std::string(handle.routine) + "] - please contact SUPPORT_CONTACT.\n";
        EXPECT_THAT(run.console, HasSubstr(words));
        const ChildRun other = runInChild(folder, [&] {
            gis::initialise();
            handle.call(3);
        });
        EXPECT_THAT(other.console, HasSubstr(words));
    }
}

TEST(ExportedWords, AreFoundInControlLines)
{
    EXPECT_EQ(call(::READGIS, "read mi Lines", "LINES  "), 1);
    EXPECT_EQ(call(::READGIS, "Read GIS Lines", "lines"), 1);
    EXPECT_EQ(call(::READGIS, "Write GIS Lines", "lines"), 0);
    EXPECT_EQ(call(::WRITEGIS, "Write GIS Lines", "lines"), 1);
    EXPECT_EQ(call(::WRITEGIS, "Write MI Lines", "points"), 0);
    EXPECT_EQ(call(::READROWCOL, "Read MID x", "x"), 1);
    EXPECT_EQ(call(::READROWCOL, "Read RowCol x", "x"), 1);
    EXPECT_EQ(call(::READROWCOL, "Read GIS x", "x"), 0);
}

} // namespace
} // namespace gridforge::test
