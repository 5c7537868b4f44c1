#include "gis/shp/reader.h"

#include "gis/layer_reader.h"
#include "gis/layer_table.h"
#include "host/console.h"
#include "support/child_run.h"
#include "support/consoles.h"
#include "support/process_limits.h"
#include "support/shp_bytes.h"

#include <array>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>
#include <variant>

namespace gridforge::test {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;

const std::string kNullRecord = little(0);
const std::vector<double> kTwoRings = {0, 0, 9, 0, 9, 9, 0, 0, 5, 1, 6, 1, 6, 2, 5, 2, 5, 1};

// A layer of the test's own process, opened and with its header read.
class ShpReading : public testing::Test {
protected:
    void open(std::int32_t type, const std::vector<std::string>& records)
    {
        giveShp(folder, "l", type, records);
        startUnits(1000);
        gis::initialise();
        layer = &gis::openFiles((folder.path() / "l.shp").string());
        gis::readHeader(*layer);
    }
    void TearDown() override
    {
        if (layer != nullptr) {
            gis::close(*layer);
        }
    }
    // The next object's kind, and its coordinates unless told otherwise.
    void next(bool coordinates = true)
    {
        ASSERT_TRUE(gis::readKind(*layer, object));
        gis::readCoordinates(*layer, object, c, 1000, coordinates);
    }
    std::vector<double> vertices() const
    {
        std::vector<double> numbers;
        for (std::size_t i = 0; i < static_cast<std::size_t>(c.np); ++i) {
            numbers.insert(numbers.end(), {c.x[i], c.y[i]});
        }
        return numbers;
    }

    ScratchFolder folder;
    gis::OpenLayer* layer = nullptr;
    gis::LayerObject object;
    gis::Coordinates c;
};

TEST_F(ShpReading, APoint)
{
    open(1, {pointRecord(1.5, -2.25), pointRecord(3, 4)});
    next();
    EXPECT_EQ(object.kind, gis::Kind::point);
    EXPECT_EQ(object.name, "Point");
    EXPECT_TRUE(object.haveCoordinates);
    EXPECT_THAT(vertices(), ElementsAre(1.5, -2.25));
    EXPECT_EQ(c.x[1], 1.5);
    EXPECT_EQ(c.xc, 1.5);
    EXPECT_FALSE(layer->end);
    next();
    EXPECT_THAT(vertices(), ElementsAre(3, 4));
    EXPECT_TRUE(layer->end);
}

TEST_F(ShpReading, ANullShapeAtTheEndEndsTheLayerWithItsRecord)
{
    open(1, {little(0), pointRecord(3, 4), little(0)});
    std::string record;
    std::vector<bool> ends; // after each record
    for (int i = 0; i < 3; ++i) {
        ASSERT_TRUE(gis::readKind(*layer, object));
        gis::readRecord(*layer, object.name, record);
        ends.push_back(layer->end);
        if (object.kind == gis::Kind::point) {
            gis::readCoordinates(*layer, object, c, 1000);
        }
    }
    EXPECT_THAT(ends, ElementsAre(false, false, true));
    EXPECT_EQ(record, "\"r3\"");
}

TEST_F(ShpReading, CoordinatesOfASkippedObjectAreStillLeftToRead)
{
    open(1, {pointRecord(3, 4)});
    std::string record;
    ASSERT_TRUE(gis::readKind(*layer, object));
    gis::readRecord(*layer, object.name, record);
    EXPECT_FALSE(layer->end);
}

TEST_F(ShpReading, APolyline)
{
    open(3, {partsRecord(3, {0}, {0, 0, 3, 4, 3, 10})});
    next();
    EXPECT_EQ(object.kind, gis::Kind::polyline);
    EXPECT_EQ(object.name, "Polyline");
    EXPECT_EQ(object.rings, 1);
    EXPECT_THAT(vertices(), ElementsAre(0, 0, 3, 4, 3, 10));
    EXPECT_EQ(c.length, 11.0F);
    EXPECT_EQ(c.xc, 3.0);
    EXPECT_NEAR(c.yc, 4.5, 1e-6); // half of 11 is 0.5 behind the second vertex
}

TEST_F(ShpReading, APolylineOfTwoPartsGivesOnePartACall)
{
    open(3, {partsRecord(3, {0, 2}, {0, 0, 3, 4, 10, 10, 11, 11, 12, 12}), partsRecord(3, {0}, {7, 7, 8, 8})});
    next();
    EXPECT_EQ(object.kind, gis::Kind::combinedPolyline);
    EXPECT_EQ(object.sections, 2);
    EXPECT_EQ(object.rings, 1);
    EXPECT_THAT(vertices(), ElementsAre(0, 0, 3, 4));
    gis::readCoordinates(*layer, object, c, 1000);
    EXPECT_EQ(object.rings, 2);
    EXPECT_THAT(vertices(), ElementsAre(10, 10, 11, 11, 12, 12));
    next();
    EXPECT_EQ(object.kind, gis::Kind::polyline);
    EXPECT_THAT(vertices(), ElementsAre(7, 7, 8, 8));
}

// Each ring is followed by its second vertex once more, which ir does not count.
TEST_F(ShpReading, ARegionInTheLayoutOfRings)
{
    open(5, {partsRecord(5, {0, 4}, kTwoRings)});
    next();
    EXPECT_EQ(object.kind, gis::Kind::region);
    EXPECT_EQ(object.name, "Polygon");
    EXPECT_EQ(object.rings, 2);
    EXPECT_EQ(c.np, 4 + 1 + 5 + 1);
    EXPECT_EQ(object.parts[0], 4);
    EXPECT_EQ(object.parts[1], 10);
    EXPECT_THAT(vertices(), ElementsAre(0, 0, 9, 0, 9, 9, 0, 0, 9, 0, 5, 1, 6, 1, 6, 2, 5, 2, 5, 1, 6, 1));
}

TEST_F(ShpReading, ARingOfFewVertices)
{
    open(5, {partsRecord(5, {0, 0, 1}, {4, 5, 6, 7, 8, 9})});
    next();
    EXPECT_EQ(object.rings, 3);
    // No vertex and its slot, one and its slot, two and theirs. Slots without a second vertex hold what was there.
    EXPECT_EQ(c.np, 1 + 2 + 3);
    EXPECT_EQ(object.parts[0], 0);
    EXPECT_EQ(object.parts[1], 2);
    EXPECT_EQ(object.parts[2], 5);
    EXPECT_EQ(c.x[1], 4);
    EXPECT_EQ(c.x[3], 6);
    EXPECT_EQ(c.x[4], 8);
    EXPECT_EQ(c.x[5], 8);
}

TEST_F(ShpReading, ANullShapeHasNoCoordinates)
{
    open(1, {kNullRecord, pointRecord(3, 4)});
    next();
    EXPECT_EQ(object.kind, gis::Kind::none);
    EXPECT_EQ(object.name, "Null Shape");
    next();
    EXPECT_EQ(object.kind, gis::Kind::point);
}

TEST_F(ShpReading, AMultipointGivesItsFirstPoint)
{
    open(8, {little(8) + reals({0, 0, 0, 0}) + little(2) + reals({5, 6, 7, 8})});
    next();
    EXPECT_EQ(object.kind, gis::Kind::multipoint);
    EXPECT_EQ(object.name, "MultiPoint");
    EXPECT_EQ(object.sections, 2);
    EXPECT_THAT(vertices(), ElementsAre(5, 6));
}

TEST_F(ShpReading, WithoutCoordinatesTheObjectIsPassedOver)
{
    std::vector<double> many(2000);
    open(3, {partsRecord(3, {0}, many), partsRecord(3, {0}, {1, 2, 3, 4})});
    next(false);
    EXPECT_EQ(c.np, 1000);
    next();
    EXPECT_THAT(vertices(), ElementsAre(1, 2, 3, 4));
}

TEST_F(ShpReading, WithoutCoordinatesARegionKeepsTheCountOfTheFile)
{
    open(5, {partsRecord(5, {0, 4}, kTwoRings), partsRecord(5, {0}, {0, 0, 1, 0, 1, 1, 0, 0})});
    next(false);
    EXPECT_EQ(c.np, 9);
    EXPECT_EQ(object.parts[1], 4);
    next();
    EXPECT_EQ(c.np, 5);
}

TEST_F(ShpReading, GoesBackToTheBeginning)
{
    open(1, {pointRecord(1, 2), pointRecord(3, 4)});
    next();
    next();
    gis::rewind(*layer);
    std::string line;
    gis::readRecord(*layer, object.name, line);
    EXPECT_EQ(line, "\"r1\"");
    next();
    EXPECT_THAT(vertices(), ElementsAre(1, 2));
}

TEST_F(ShpReading, ShowsTheHeader)
{
    giveShp(folder, "l", 1, {pointRecord(1, 2)});
    std::string bytes = folder.read("l.shp");
    bytes.replace(28, 4, little(77));
    folder.give("l.shp", bytes);
    const ChildRun run = runInChild(folder, [] {
        gis::initialise();
        gis::OpenLayer& opened = gis::openFiles("l.shp");
        gis::readHeader(opened);
    });
    EXPECT_THAT(run.console, EndsWith("Shapefile Code: 9994  Length: 64\n"
                                      "Shapefile Version: 77  Type: 1\n"
                                      "...Closed File Unit:1002\n"
                                      "DBF file contains 1 records.\n"
                                      "1 DBF Fields (Name [#/Type/Length]): NAME [1/C/3]  \n"));
}

TEST_F(ShpReading, HasNoDefinitionsToGoBackTo)
{
    giveShp(folder, "l", 1, {pointRecord(1, 2)});
    const auto consoleOf = [&](const std::function<void(gis::OpenLayer&)>& code) {
        return runInChild(folder,
                          [&] {
                              gis::initialise();
                              code(gis::openFiles("l.shp"));
                          })
            .console;
    };
    EXPECT_THAT(
        consoleOf([](gis::OpenLayer& opened) {
            std::int32_t count = 0;
            gis::goToColumns(opened, count);
        }),
        EndsWith("\nShould not be here [gisGotoBeginningOfAttributes] - please contact SUPPORT_CONTACT.\n" + kExits));
    EXPECT_THAT(
        consoleOf([](gis::OpenLayer& opened) { gis::readColumn(opened); }),
        EndsWith("\nShould not be here [gisReadAttributeDefinition] - please contact SUPPORT_CONTACT.\n" + kExits));
}

// --- What ends the run -----------------------------------------------------------------------------------------------

// Reads a layer to its end and says how many objects it had.
void readAll(bool coordinates, std::int32_t maxVertices = 1000)
{
    gis::initialise();
    gis::OpenLayer& layer = gis::openFiles("l.shp");
    gis::readHeader(layer);
    gis::LayerObject object;
    gis::Coordinates c;
    int objects = 0;
    while (!layer.end) {
        gis::readKind(layer, object);
        gis::readCoordinates(layer, object, c, maxVertices, coordinates);
        ++objects;
    }
    gis::close(layer);
    say("objects ", objects);
}

// The last lines of the console where reading these records ends the run.
std::string endOf(const std::vector<std::string>& records, bool coordinates = true, std::int32_t maxVertices = 1000)
{
    const ScratchFolder folder;
    giveShp(folder, "l", 1, records);
    const ChildRun run = runInChild(folder, [&] { readAll(coordinates, maxVertices); });
    EXPECT_TRUE(run.ended);
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.errors, "");
    const std::size_t header = run.console.find("NAME [1/C/3]  \n");
    return run.console.substr(header + 15);
}

TEST(ShpReadingEnds, OnShapesThatAreNotSupported)
{
    EXPECT_EQ(endOf({pointRecord(1, 2), little(11) + reals({1, 2, 3, 4})}),
              errorEndText("ERROR 0423 - Unsupported .shp object type PointZ [11]"));
    const std::vector<std::pair<std::int32_t, std::string>> names = {
        {13, "PolyLineZ"}, {15, "PolygonZ"},    {18, "MultiPointZ"},    {21, "PointM"}, {23, "PolyLineM"},
        {25, "PolygonM"},  {28, "MultiPointM"}, {31, "MultiPatch"},     {2, "Unknown"}, {32, "Unknown"},
        {33, "Unknown"},   {-1, "Unknown"},     {2147483647, "Unknown"}};
    for (const auto& [type, name] : names) {
        EXPECT_EQ(endOf({little(type) + reals({1, 2})}), errorEndText("ERROR 0423 - Unsupported .shp object type " +
                                                                      name + " [" + std::to_string(type) + "]"));
    }
}

TEST(ShpReadingEnds, OnTooManyPartsAndRings)
{
    const std::string box = reals({0, 0, 0, 0});
    for (const std::int32_t count : {10000, 2147483647}) {
        EXPECT_EQ(endOf({little(3) + box + little(count) + little(5)}),
                  errorEndText("ERROR 0421 - Exceeded maximum number of parts in a .shp polyline.  Limit is 10000"));
        EXPECT_EQ(
            endOf({little(5) + box + little(count) + little(5)}),
            errorEndText("ERROR 0422 - Exceeded maximum number of regions within a .shp region.  Limit is 10000"));
    }
    // One less passes here, and the file turns out to be too short for it.
    EXPECT_EQ(endOf({little(3) + box + little(9999) + little(5)}),
              errorEndText("ERROR 0425 - End of .shp file encountered whilst reading object type."));
    EXPECT_EQ(endOf({little(5) + box + little(9999) + little(5)}),
              errorEndText("ERROR 0430 - End of .shp file encountered whilst reading object coordinates."));
}

TEST(ShpReadingEnds, OnTooManyVertices)
{
    const std::string words = "ERROR 0310 - Exceeded number of allowable nodes in a single .shp polyline or region.\n"
                              "             Requested       6        Limit       5";
    EXPECT_EQ(endOf({partsRecord(3, {0}, std::vector<double>(12))}, true, 5), errorEndText(words));
    // Rings count their slots: 4 vertices and 2 rings.
    EXPECT_EQ(endOf({partsRecord(5, {0, 2}, std::vector<double>(8))}, true, 5), errorEndText(words));
    EXPECT_EQ(endOf({partsRecord(5, {0}, {}).substr(0, 40) + little(2147483647) + little(0)}, true, 1000000),
              errorEndText("ERROR 0310 - Exceeded number of allowable nodes in a single .shp polyline or region.\n"
                           "             Requested********        Limit 1000000"));
}

TEST(ShpReadingEnds, OnPartsThatDoNotRise)
{
    const std::vector<double> four(8);
    const auto words = [](int points) {
        return "ERROR - Parts of an object do not rise within its points in .shp file: l.shp  Points: " +
               std::to_string(points) + "\n" + kExits;
    };
    const std::vector<std::vector<std::int32_t>> tables = {
        {0, 3, 2}, {0, 5}, {-1, 2}, {0, -2147483647 - 1}, {2147483647, 0}, {0, 2147483647}};
    for (const auto& starts : tables) {
        EXPECT_EQ(endOf({partsRecord(5, starts, four)}), words(4));
    }
    EXPECT_EQ(endOf({partsRecord(3, {3, 2}, four)}), words(4));
    EXPECT_EQ(endOf({partsRecord(3, {5}, four)}), words(4));
    EXPECT_EQ(endOf({partsRecord(3, {-5}, four)}, false), words(4));
    std::string negative = partsRecord(3, {0}, {});
    negative.replace(40, 4, little(-7));
    EXPECT_EQ(endOf({negative}), words(-7));
}

TEST(ShpReadingEnds, OnCountsBelowZero)
{
    const std::string box = reals({0, 0, 0, 0});
    EXPECT_EQ(endOf({little(3) + box + little(-1) + little(5)}),
              "ERROR - Number of parts of a polyline is below 0 in .shp file: l.shp  Number: -1\n" + kExits);
    EXPECT_EQ(endOf({little(5) + box + little(-2147483647 - 1) + little(5)}),
              "ERROR - Number of rings of a region is below 0 in .shp file: l.shp  Number: -2147483648\n" + kExits);
    EXPECT_EQ(endOf({little(5) + box + little(1) + little(-5) + little(0)}),
              "ERROR - Number of points of a region is below 0 in .shp file: l.shp  Number: -5\n" + kExits);
}

TEST(ShpReadingEnds, OnMorePartsReadThanThereAre)
{
    EXPECT_EQ(endOf({little(3) + reals({0, 0, 0, 0}) + little(0) + little(0)}),
              "ERROR - More parts read than a polyline has in .shp file: l.shp  Parts: 0\n" + kExits);
}

TEST(ShpReadingEnds, OnAFileWithoutRecords)
{
    EXPECT_EQ(endOf({}), errorEndText("ERROR 0425 - End of .shp file encountered whilst reading object type."));
}

TEST(ShpReadingEnds, OnAShapeTypeThatIsNone)
{
    const ScratchFolder folder;
    giveShp(folder, "l", 1, {pointRecord(1, 2)});
    const ChildRun run = runInChild(folder, [] {
        gis::shp::ShpInput input;
        input.shp.recordShapeType = 11;
        gis::LayerObject object;
        gis::Coordinates c;
        readCoordinates(input, object, c, 10, true);
    });
    EXPECT_EQ(run.console, errorEndText("Should not be here [shpReadObject].  Please contact SUPPORT_CONTACT."));
}

// The memory of a process opens like a file and refuses to be read at its start.
TEST(ShpReadingEnds, OnAReadThatTheSystemRefuses)
{
    const ScratchFolder folder;
    const auto consoleOf = [&](const std::function<void(gis::shp::ShpInput&, gis::LayerObject&)>& code) {
        return runInChild(folder,
                          [&] {
                              gis::shp::ShpInput input;
                              OPENER(input.shp.shpUnit, "BI", "/proc/self/mem");
                              gis::LayerObject object;
                              code(input, object);
                          })
            .console;
    };
    EXPECT_THAT(consoleOf([](gis::shp::ShpInput& input, gis::LayerObject&) { readHeader(input); }),
                EndsWith(errorEndText("ERROR 0427 - Reading .shp file header.")));
    EXPECT_THAT(consoleOf([](gis::shp::ShpInput& input, gis::LayerObject& object) { readKind(input, object); }),
                EndsWith(errorEndText("ERROR 0424 - Reading .shp file object type.")));
    EXPECT_THAT(consoleOf([](gis::shp::ShpInput& input, gis::LayerObject& object) {
                    gis::Coordinates c;
                    input.shp.recordShapeType = 1;
                    readCoordinates(input, object, c, 10, true);
                }),
                EndsWith(errorEndText("ERROR 0429 - Reading .shp file object coordinates.")));
}

TEST(ShpReadingEnds, WhereverTheFileIsCut)
{
    const ScratchFolder folder;
    giveShp(folder, "l", 5,
            {kNullRecord, pointRecord(1, 2), partsRecord(3, {0}, {1, 1, 2, 2}), partsRecord(5, {0, 4}, kTwoRings)});
    const std::string whole = folder.read("l.shp");
    // Each record: 8 bytes of head, its type, and what counts as the object's type; then coordinates.
    const std::vector<std::pair<std::size_t, std::size_t>> typeAndEnd = {
        {12, 12}, {12, 28}, {12 + 32 + 8 + 4, 88}, {12 + 32 + 4, 8 + 4 + 32 + 8 + 8 + 18 * 8}};
    for (std::size_t size = 0; size < whole.size(); ++size) {
        std::string want;
        if (size < 100) {
            want = "ERROR 0428 - End of .shp file encountered whilst reading header.";
        } else {
            std::size_t start = 100;
            for (const auto& [type, end] : typeAndEnd) {
                if (size < start + end && size > start) {
                    want = size < start + type
                               ? "ERROR 0425 - End of .shp file encountered whilst reading object type."
                               : "ERROR 0430 - End of .shp file encountered whilst reading object coordinates.";
                }
                start += end;
            }
        }
        if (size == 100) {
            want = "ERROR 0425 - End of .shp file encountered whilst reading object type.";
        }
        folder.give("l.shp", whole.substr(0, size));
        const ChildRun run = runInChild(folder, [&] { readAll(size % 2 == 0); });
        ASSERT_EQ(run.status, 0) << size;
        ASSERT_EQ(run.ended, !want.empty()) << size << run.console;
        if (run.ended) {
            ASSERT_THAT(run.console, EndsWith(errorEndText(want))) << size;
        }
    }
}

// Whatever the bytes, the run ends by itself: with the whole layer read, or with a message.
TEST(ShpReadingEnds, OnBytesChangedAtRandom)
{
    const ScratchFolder folder;
    std::mt19937 random(1);
    const auto upTo = [&](std::size_t most) { return std::uniform_int_distribution<std::size_t>(0, most)(random); };
    giveShp(folder, "l", 5,
            {kNullRecord, pointRecord(1, 2), partsRecord(3, {0, 2}, {1, 1, 2, 2, 3, 3, 4, 4}),
             partsRecord(5, {0, 4}, kTwoRings)});
    const std::string shp = folder.read("l.shp");
    const std::string dbf = folder.read("l.dbf");
    for (int round = 0; round < 100; ++round) {
        std::string bytes = shp;
        std::string table = dbf;
        for (std::size_t change = upTo(3) + 1; change > 0; --change) {
            // Counts, starts and types are whole words: mostly these are changed.
            bytes.replace(100 + upTo(bytes.size() - 104), 4,
                          little(std::array<std::int32_t, 6>{-1, 0, 1, 9999, 1000000, 2147483647}[upTo(5)]));
            if (round % 3 == 0) {
                table[upTo(table.size() - 1)] = static_cast<char>(upTo(255));
            }
        }
        folder.give("l.shp", bytes);
        folder.give("l.dbf", table);
        const ChildRun run = runInChild(folder, [&] {
            if (canLimitMemory()) {
                limitMemory(1024); // far more than a layer needs
            }
            readAll(round % 2 == 0, 1000000);
        });
        ASSERT_EQ(run.status, 0) << run.console;
        ASSERT_EQ(run.errors, "");
        ASSERT_THAT(run.console, HasSubstr(run.ended ? "\n" + kExits : "\nobjects "));
        if (run.ended) {
            ASSERT_THAT(run.console, HasSubstr("\nERROR "));
        }
    }
}

} // namespace
} // namespace gridforge::test
