// Both families of layers side by side with OGR: what it writes is read, what is written it reads, and what goes through it
// from one family to the other comes back as it was.
#include "core/free_form.h"
#include "core/text.h"
#include "gis/layer_reader.h"
#include "host/console.h"
#include "support/child_run.h"
#include "support/ogr_test.h"
#include "support/read_layer.h"
#include "support/write_layer.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>

namespace gridforge::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

constexpr const char* kKinds = "PLR";

class LayersInterop : public OgrTest<testing::TestWithParam<const char*>> {
protected:
    std::string kind() const { return GetParam(); }
    // The file of a written layer that holds objects of a family, P, L or R.
    std::string file(const std::string& base, char family) const
    {
        return at(base + (kind() == ".shp" ? std::string("_") + family : "") + kind());
    }
    // A layer with the attributes Name and N; `write` gets it open.
    template <typename Write>
    void writeLayer(const std::string& base, const char* families, Write write)
    {
        gis::LayerWriter layer = newLayer(
            at(base + kind()),
            {.columns = {{"Name", "Char", 20}, {"N", "Integer"}},
             .projection = {"CoordSys NonEarth Units \"m\" Bounds (-10000000, -10000000) (10000000, 10000000)", ""},
             .families = families});
        write(layer);
        layer.close();
    }
};

std::vector<std::string> valuesOf(const std::string& record)
{
    std::vector<std::string> values;
    FreeForm text(record);
    std::string value;
    for (FreeValue got = text.nextText(value, kLineWidth); got != FreeValue::end;
         got = text.nextText(value, kLineWidth)) {
        values.push_back(got == FreeValue::empty ? "" : value);
    }
    return values;
}

// --- What OGR writes -------------------------------------------------------------------------------------------------

TEST_P(LayersInterop, PointsWithTheirRecordsAreRead)
{
    ogrWrites("in" + kind(),
              "id,name,level,WKT\n1,\"a, b\",2.5,POINT (293000.125 6178000.5)\n2,c d,-3.25,POINT (-1 2)\n");
    const auto objects = readLayer(at("in" + kind()));
    ASSERT_THAT(objects, SizeIs(2));
    EXPECT_EQ(objects[0].kind, gis::Kind::point);
    EXPECT_THAT(objects[0].numbers, ElementsAre(293000.125, 6178000.5));
    EXPECT_THAT(objects[1].numbers, ElementsAre(-1, 2));
    const auto first = valuesOf(objects[0].record);
    const auto second = valuesOf(objects[1].record);
    ASSERT_THAT(first, SizeIs(3));
    ASSERT_THAT(second, SizeIs(3));
    EXPECT_EQ(first[1], "a, b");
    EXPECT_EQ(std::stod(first[2]), 2.5);
    EXPECT_EQ(std::stod(second[0]), 2);
    EXPECT_EQ(std::stod(second[2]), -3.25);
}

TEST_P(LayersInterop, LinesOfSeveralPartsAreRead)
{
    ogrWrites("in" + kind(), "id,WKT\n1,\"MULTILINESTRING ((1 2,3 4),(5 6,7 8,9 10.5),(0 0,-1 -1))\"\n"
                             "2,\"LINESTRING (4 4,5 5,6 4)\"\n");
    const auto objects = readLayer(at("in" + kind()));
    ASSERT_THAT(objects, SizeIs(2));
    EXPECT_EQ(objects[0].kind, gis::Kind::combinedPolyline);
    EXPECT_EQ(objects[0].sections, 3);
    if (kind() == ".shp") {
        EXPECT_THAT(objects[0].numbers, ElementsAre(1, 2, 3, 4, 5, 6, 7, 8, 9, 10.5, 0, 0, -1, -1));
    } else {
        EXPECT_THAT(objects[0].numbers, ElementsAre(1, 2, 3, 4)) << "of a .mif the first section only";
    }
    EXPECT_EQ(objects[1].kind, gis::Kind::polyline) << "the parts left over do not get in the way";
    EXPECT_THAT(objects[1].numbers, ElementsAre(4, 4, 5, 5, 6, 4));
}

TEST_P(LayersInterop, PolygonsWithHolesAndIslandsAreRead)
{
    // Outer rings clockwise, holes the other way: so OGR leaves their order alone.
    ogrWrites("in" + kind(), "id,WKT\n1,\"POLYGON ((0 0,0 10,10 10,10 0,0 0),(1 1,2 1,2 2,1 1),(5 5,6 5,6 6,5 5))\"\n"
                             "2,\"MULTIPOLYGON (((20 0,20 6,30 6,20 0)),((40 0,40 6,50 6,40 0)))\"\n");
    const auto objects = readLayer(at("in" + kind()));
    ASSERT_THAT(objects, SizeIs(2));
    EXPECT_EQ(objects[0].kind, gis::Kind::region);
    EXPECT_EQ(objects[0].rings, 3);
    EXPECT_THAT(objects[0].numbers,
                ElementsAre(0, 0, 0, 10, 10, 10, 10, 0, 0, 0, 1, 1, 2, 1, 2, 2, 1, 1, 5, 5, 6, 5, 6, 6, 5, 5));
    EXPECT_EQ(objects[1].rings, 2);
    EXPECT_THAT(objects[1].numbers, ElementsAre(20, 0, 20, 6, 30, 6, 20, 0, 40, 0, 40, 6, 50, 6, 40, 0));
}

TEST_P(LayersInterop, ManyFieldsAreReadInOrder)
{
    constexpr int kFields = 120; // records of less than a line of 1000 characters
    std::string heading;
    std::string row;
    for (int i = 1; i <= kFields; ++i) {
        heading += "f" + std::to_string(i) + ",";
        row += i % 3 == 0 ? "t" + std::to_string(i) + "," : std::to_string(i) + ",";
    }
    ogrWrites("in" + kind(), heading + "WKT\n" + row + "POINT (1 2)\n", "-oo AUTODETECT_WIDTH=YES");
    const auto objects = readLayer(at("in" + kind()));
    ASSERT_THAT(objects, SizeIs(1));
    const auto values = valuesOf(objects[0].record);
    ASSERT_THAT(values, SizeIs(kFields));
    for (int i = 1; i <= kFields; ++i) {
        EXPECT_EQ(values[static_cast<std::size_t>(i - 1)], (i % 3 == 0 ? "t" : "") + std::to_string(i));
    }
}

TEST_P(LayersInterop, NamesInWindows1252AreReadByteByByte)
{
    ogrWrites("in" + kind(),
              "id,name,WKT\n1,Stra\xC3\x9F"
              "e \xE2\x82\xAC,POINT (1 2)\n2,caf\xC3\xA9,POINT (3 4)\n",
              "-lco ENCODING=CP1252");
    const auto objects = readLayer(at("in" + kind()));
    ASSERT_THAT(objects, SizeIs(2));
    EXPECT_THAT(objects[0].record, HasSubstr("\"Stra\xDF"
                                             "e \x80\""));
    EXPECT_THAT(objects[1].record, HasSubstr("\"caf\xE9\""));
}

TEST_P(LayersInterop, ALayerWithoutObjectsHasNoneOrEndsTheRun)
{
    ogrWrites("in" + kind(), "id,name,WKT\n1,x,POINT (1 2)\n", "-where \"id='7'\" -nlt POINT");
    const ChildRun run = runInChild(folder, [&] { say("objects ", readLayer("in" + kind()).size()); });
    if (kind() == ".shp") {
        EXPECT_THAT(run.console, HasSubstr("ERROR 0425 - End of .shp file encountered whilst reading object type."));
    } else {
        EXPECT_THAT(run.console, HasSubstr("\nobjects 0\n"));
    }
}

// --- What OGR reads --------------------------------------------------------------------------------------------------

TEST_P(LayersInterop, AttributesHaveTheirTypesAndWidths)
{
    gis::LayerWriter layer =
        newLayer(at("out" + kind()), {.columns = {{"Text", "Char", 12}, {"Whole", "Integer"}, {"Real", "Float"}},
                                      .projection = {"CoordSys NonEarth Units \"m\"", ""},
                                      .families = "P"});
    writeObject(layer, gis::Kind::point, {1}, {{1, 2}}, "\"abc\",-17,1234.5");
    layer.close();
    if (kind() == ".shp") {
        EXPECT_THAT(ogrFields(file("out", 'P')),
                    ElementsAre("Text: String (12.0)", "Whole: Integer (8.0)", "Real: Real (16.5)"));
    } else {
        EXPECT_THAT(ogrFields(file("out", 'P')),
                    ElementsAre("Text: String (12.0)", "Whole: Integer (0.0)", "Real: Real (0.0)"));
    }
    const auto features = ogrFeatures(file("out", 'P'));
    ASSERT_THAT(features, SizeIs(1));
    EXPECT_EQ(features[0].values[0], "abc");
    EXPECT_EQ(features[0].values[1], "-17");
    EXPECT_EQ(std::stod(features[0].values[2]), 1234.5);
}

TEST_P(LayersInterop, NamesInWindows1252AreUnderstood)
{
    writeLayer("out", "P", [](gis::LayerWriter& layer) {
        writeObject(layer, gis::Kind::point, {1}, {{1, 2}},
                    "\"Stra\xDF"
                    "e\",1");
    });
    const auto features = ogrFeatures(file("out", 'P'));
    ASSERT_THAT(features, SizeIs(1));
    // The .mif tells its character set, and OGR shows UTF-8; the .dbf has no place for it, and its bytes are shown.
    EXPECT_EQ(features[0].values[0], kind() == ".mif" ? "Stra\xC3\x9F"
                                                        "e"
                                                      : "Stra\xDF"
                                                        "e");
}

TEST_P(LayersInterop, LayersWithoutObjectsAreAccepted)
{
    writeLayer("out", kKinds, [](gis::LayerWriter&) {});
    for (const char family : std::string(kKinds)) {
        EXPECT_THAT(ogrFeatures(file("out", family)), IsEmpty());
    }
}

TEST_P(LayersInterop, PointsInGroups)
{
    writeLayer("out", "P", [](gis::LayerWriter& layer) {
        writeObject(layer, gis::Kind::multipoint, {1}, {{1, 2}, {3, 4}, {5, 6}}, "\"m\",1");
    });
    const auto features = ogrFeatures(file("out", 'P'));
    ASSERT_THAT(features, SizeIs(1));
    EXPECT_EQ(features[0].kind, "MULTIPOINT");
    EXPECT_THAT(features[0].numbers, ElementsAre(1, 2, 3, 4, 5, 6));
}

// --- Through OGR and back --------------------------------------------------------------------------------------------

struct RandomObject {
    gis::Kind kind;
    char family;
    std::vector<std::int32_t> parts;
    std::vector<Vertex> vertices;
    std::string name;
};

class RandomObjects {
public:
    explicit RandomObjects(unsigned seed) : random_(seed) {}

    // Points, lines of one or several parts, polygons with and without holes, on a lattice that six decimals can hold.
    std::vector<RandomObject> some(int count)
    {
        std::vector<RandomObject> objects;
        for (int i = 1; i <= count; ++i) {
            RandomObject object = next();
            object.name = "object " + std::to_string(i);
            objects.push_back(object);
        }
        return objects;
    }

private:
    int below(int limit) { return static_cast<int>(random_() % static_cast<unsigned>(limit)); }
    Vertex place() { return {293000 + below(1 << 20) / 64.0, 6178000 + below(1 << 20) / 64.0}; }

    RandomObject next()
    {
        switch (below(4)) {
        case 0: return {gis::Kind::point, 'P', {1}, {place()}, ""};
        case 1: return {gis::Kind::polyline, 'L', {1}, path(3 + below(20)), ""};
        case 2: return multiple();
        default: return polygon();
        }
    }
    std::vector<Vertex> path(int count)
    {
        std::vector<Vertex> vertices(static_cast<std::size_t>(count));
        std::ranges::generate(vertices, [this] { return place(); });
        return vertices;
    }
    RandomObject multiple()
    {
        RandomObject object{gis::Kind::combinedPolyline, 'L', {}, {}, ""};
        for (int part = 2 + below(4); part > 0; --part) {
            object.parts.push_back(static_cast<std::int32_t>(object.vertices.size()) + 1);
            const auto more = path(2 + below(9));
            object.vertices.insert(object.vertices.end(), more.begin(), more.end());
        }
        return object;
    }
    static void addSquare(RandomObject& object, Vertex corner, double side, bool clockwise)
    {
        const auto [x, y] = corner;
        object.parts.push_back(static_cast<std::int32_t>(object.vertices.size()) + 1);
        std::vector<Vertex> ring = {{x, y}, {x, y + side}, {x + side, y + side}, {x + side, y}, {x, y}};
        if (!clockwise) {
            std::ranges::reverse(ring);
        }
        object.vertices.insert(object.vertices.end(), ring.begin(), ring.end());
    }
    RandomObject polygon()
    {
        RandomObject object{gis::Kind::region, 'R', {}, {}, ""};
        const Vertex corner = place();
        addSquare(object, corner, 64, true);
        for (int hole = below(4); hole > 0; --hole) {
            addSquare(object, {corner.x + 10.0 * hole, corner.y + 10.0 * hole}, 1 + below(8), false);
        }
        return object;
    }

    std::mt19937 random_;
};

std::vector<double> numbersOf(const std::vector<Vertex>& vertices)
{
    std::vector<double> numbers;
    for (const Vertex& v : vertices) {
        numbers.push_back(v.x);
        numbers.push_back(v.y);
    }
    return numbers;
}

TEST_P(LayersInterop, ObjectsComeBackFromTheOtherFamilyAsTheyWere)
{
    const std::vector<RandomObject> objects = RandomObjects(5).some(300);
    for (const char family : std::string(kKinds)) {
        const std::string base = std::string("made") + family;
        std::vector<RandomObject> mine;
        std::ranges::copy_if(objects, std::back_inserter(mine), [&](const auto& o) { return o.family == family; });
        writeLayer(base, std::string(1, family).c_str(), [&](gis::LayerWriter& layer) {
            for (const RandomObject& o : mine) {
                writeObject(layer, o.kind, o.parts, o.vertices, "\"" + o.name + "\",7");
            }
        });
        const std::string other = at(std::string("other") + family + (kind() == ".shp" ? ".mif" : ".shp"));
        ASSERT_TRUE(ogrConvert((kind() == ".shp" ? "-f 'MapInfo File' -dsco FORMAT=MIF '" : "-f 'ESRI Shapefile' '") +
                               other + "' '" + file(base, family) + "'"));
        const auto read = readLayer(other);
        ASSERT_EQ(read.size(), mine.size());
        for (std::size_t i = 0; i < mine.size(); ++i) {
            const std::vector<double> numbers = numbersOf(mine[i].vertices);
            EXPECT_EQ(read[i].kind, mine[i].kind) << mine[i].name;
            EXPECT_THAT(valuesOf(read[i].record), ElementsAre(mine[i].name, HasSubstr("7")));
            if (read[i].kind == gis::Kind::combinedPolyline &&
                kind() == ".shp") { // of a .mif the first section is read
                EXPECT_TRUE(std::equal(read[i].numbers.begin(), read[i].numbers.end(), numbers.begin()));
            } else {
                EXPECT_EQ(read[i].numbers, numbers) << mine[i].name;
            }
            if (read[i].kind == gis::Kind::region) {
                EXPECT_EQ(read[i].rings, static_cast<std::int32_t>(mine[i].parts.size()));
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Both, LayersInterop, testing::Values(".mif", ".shp"),
                         [](const auto& family) { return std::string(family.param).substr(1); });

// --- The bytes of Shapefiles -----------------------------------------------------------------------------------------

std::uint32_t bigAt(const std::string& bytes, std::size_t at)
{
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        value = value << 8U | static_cast<unsigned char>(bytes.at(at + i));
    }
    return value;
}

// The .shx tells place and length of each record of the .shp, and both headers the size of their file, in words of 16 bits.
void expectIndexFits(const std::string& shp, const std::string& shx, std::size_t records)
{
    EXPECT_EQ(bigAt(shp, 24) * 2, shp.size());
    EXPECT_EQ(bigAt(shx, 24) * 2, shx.size());
    EXPECT_EQ(shp.substr(28, 72), shx.substr(28, 72)) << "version, type and box";
    ASSERT_EQ(shx.size(), 100 + 8 * records);
    std::size_t at = 100;
    for (std::size_t i = 0; i < records; ++i) {
        EXPECT_EQ(bigAt(shx, 100 + 8 * i) * 2, at);
        EXPECT_EQ(bigAt(shx, 104 + 8 * i), bigAt(shp, at + 4));
        EXPECT_EQ(bigAt(shp, at), i + 1);
        at += 8 + 2 * std::size_t{bigAt(shp, at + 4)};
    }
    EXPECT_EQ(at, shp.size());
}

using ShpBytesInterop = OgrTest<>;

TEST_F(ShpBytesInterop, FilesAreThoseThatOgrWrites)
{
    const std::vector<RandomObject> objects = RandomObjects(6).some(300);
    gis::LayerWriter layer = newLayer(at("out.shp"), {.columns = {{"Name", "Char", 20}}, .families = kKinds});
    for (const RandomObject& o : objects) {
        writeObject(layer, o.kind, o.parts, o.vertices, "\"" + o.name + "\"");
    }
    layer.close();
    for (const char family : std::string(kKinds)) {
        const std::string made = std::string("out_") + family;
        ASSERT_TRUE(ogrConvert("-f 'ESRI Shapefile' '" + at("copy.shp") + "' '" + at(made + ".shp") + "' -overwrite"));
        const auto count = static_cast<std::size_t>(
            std::ranges::count_if(objects, [&](const RandomObject& o) { return o.family == family; }));
        expectIndexFits(folder.read(made + ".shp"), folder.read(made + ".shx"), count);
        EXPECT_EQ(folder.read(made + ".shp"), folder.read("copy.shp")) << family;
        EXPECT_EQ(folder.read(made + ".shx"), folder.read("copy.shx")) << family;
        // The table but for its date and the places that are the writer's own in the header.
        const std::string table = folder.read(made + ".dbf");
        const std::string copied = folder.read("copy.dbf");
        EXPECT_EQ(table.substr(4, 8), copied.substr(4, 8)) << "records, length of header and record";
        EXPECT_EQ(table.substr(65), copied.substr(65));
    }
}

TEST_F(ShpBytesInterop, RingsComeBackClosed)
{
    ogrWrites("in.shp", "id,WKT\n1,\"POLYGON ((0 0,0 10,10 10,0 0),(1 2,2 3,1 3,1 2))\"\n");
    const auto objects = readLayer(at("in.shp"));
    ASSERT_EQ(objects.size(), 1U);
    const auto& numbers = objects[0].numbers;
    ASSERT_EQ(numbers.size(), 16U);
    EXPECT_EQ(numbers[0], numbers[6]);
    EXPECT_EQ(numbers[1], numbers[7]);
    EXPECT_EQ(numbers[8], numbers[14]);
    EXPECT_EQ(numbers[9], numbers[15]);
}

} // namespace
} // namespace gridforge::test
