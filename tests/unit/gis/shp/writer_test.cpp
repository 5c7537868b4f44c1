#include "gis/shp/writer.h"

#include "gis/layer_table.h"
#include "support/child_run.h"
#include "support/consoles.h"
#include "support/process_limits.h"
#include "support/shp_bytes.h"
#include "support/write_layer.h"

#include <filesystem>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>

namespace gridforge::test {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::SizeIs;

constexpr double kMost = std::numeric_limits<double>::max();

using gis::Kind;
using gis::LayerWriter;

// An object of one kind and its record; the parts are their first vertices.
void write(LayerWriter& layer, Kind kind, const std::vector<Vertex>& vertices, std::vector<std::int32_t> parts = {1})
{
    writeObject(layer, kind, std::move(parts), vertices, "a,1");
}

gis::LayerSpec specFor(const char* letters)
{
    return {
        .columns = {{"Name", "Char", 3}, {"N", "Integer"}}, .projection = {"", "PROJCS[\"p\"]"}, .families = letters};
}

LayerWriter create(const char* letters)
{
    gis::initialise();
    return gis::createLayer("l.shp", specFor(letters));
}

// Writes a layer of the letters by `body`; the console of it.
std::string writeLayer(
    const ScratchFolder& folder, const char* letters,
    const std::function<void(LayerWriter&)>& body = [](LayerWriter&) {})
{
    const ChildRun run = runInChild(folder, [&] {
        LayerWriter layer = create(letters);
        body(layer);
        layer.close();
    });
    EXPECT_EQ(run.errors, "");
    return run.console;
}

// The header of a .shp or .shx of this size, by its words and box.
std::string header(std::size_t bytes, std::int32_t type, const std::vector<double>& box)
{
    return big(9994) + std::string(20, '\0') + big(static_cast<std::int32_t>(bytes / 2)) + little(1000) + little(type) +
           reals(box) + std::string(32, '\0');
}

TEST(ShpWriter, PointsHaveTheirBytes)
{
    const ScratchFolder folder;
    writeLayer(folder, "P", [](LayerWriter& layer) {
        write(layer, Kind::point, {{1.5, -2}});
        write(layer, Kind::text, {{3, 4}});
        write(layer, Kind::multipoint, {{0, 9}, {5, 1}});
    });
    const std::string first = big(1) + big(10) + little(1) + reals({1.5, -2});
    const std::string second = big(2) + big(10) + little(1) + reals({3, 4});
    const std::string third = big(3) + big(36) + little(8) + reals({0, 1, 5, 9}) + little(2) + reals({0, 9, 5, 1});
    const std::string body = first + second + third;
    EXPECT_EQ(folder.read("l_P.shp"), header(100 + body.size(), 1, {0, -2, 5, 9}) + body);
    EXPECT_EQ(folder.read("l_P.shx"),
              header(124, 1, {0, -2, 5, 9}) + big(50) + big(10) + big(64) + big(10) + big(78) + big(36));
    EXPECT_EQ(folder.read("l_P.prj"), "PROJCS[\"p\"]\r\n");
}

TEST(ShpWriter, LinesHaveTheirBytes)
{
    const ScratchFolder folder;
    writeLayer(folder, "L", [](LayerWriter& layer) {
        write(layer, Kind::line, {{1, 2}, {3, 1}});
        write(layer, Kind::combinedPolyline, {{1, 2}, {3, 4}, {6, 6}, {7, 9}, {8, 8}}, {1, 3});
    });
    const std::string first = big(1) + big(2 + 22 + 16) + little(3) + reals({1, 1, 3, 2}) + little(1) + little(2) +
                              little(0) + reals({1, 2, 3, 1});
    const std::string second = big(2) + big(4 + 22 + 40) + little(3) + reals({1, 2, 8, 9}) + little(2) + little(5) +
                               little(0) + little(2) + reals({1, 2, 3, 4, 6, 6, 7, 9, 8, 8});
    EXPECT_EQ(folder.read("l_L.shp"), header(100 + first.size() + second.size(), 3, {1, 1, 8, 9}) + first + second);
    EXPECT_EQ(folder.read("l_L.shx"), header(116, 3, {1, 1, 8, 9}) + big(50) + big(40) + big(94) + big(66));
}

TEST(ShpWriter, RegionsHaveTheirBytes)
{
    const ScratchFolder folder;
    writeLayer(folder, "R", [](LayerWriter& layer) {
        write(layer, Kind::region, {{0, 0}, {9, 0}, {9, 9}, {0, 0}, {5, 1}, {6, 1}, {6, 2}, {5, 1}}, {1, 5});
    });
    const std::string body = big(1) + big(4 + 22 + 64) + little(5) + reals({0, 0, 9, 9}) + little(2) + little(8) +
                             little(0) + little(4) + reals({0, 0, 9, 0, 9, 9, 0, 0, 5, 1, 6, 1, 6, 2, 5, 1});
    EXPECT_EQ(folder.read("l_R.shp"), header(100 + body.size(), 5, {0, 0, 9, 9}) + body);
}

TEST(ShpWriter, AnObjectWithoutShapeGoesToEveryOpenSet)
{
    const ScratchFolder folder;
    writeLayer(folder, "PR", [](LayerWriter& layer) { write(layer, Kind::none, {}); });
    const std::string body = big(1) + big(2) + little(0);
    const std::vector<double> noBox = {9.000000135427196e+29, 9.000000135427196e+29, -9.000000135427196e+29,
                                       -9.000000135427196e+29};
    EXPECT_EQ(folder.read("l_P.shp"), header(112, 1, noBox) + body);
    EXPECT_EQ(folder.read("l_R.shp"), header(112, 5, noBox) + body);
    EXPECT_EQ(folder.read("l_P.shx"), header(108, 1, noBox) + big(50) + big(2));
    EXPECT_FALSE(folder.has("l_L.shp"));
    EXPECT_EQ(folder.read("l_R.dbf").substr(4, 4), little(1));
}

TEST(ShpWriter, ABoxWithoutVerticesIsLeftAsItStarts)
{
    const ScratchFolder folder;
    writeLayer(folder, "L", [](LayerWriter& layer) { write(layer, Kind::polyline, {}); });
    EXPECT_EQ(
        folder.read("l_L.shp"),
        header(156, 3, {9.000000135427196e+29, 9.000000135427196e+29, -9.000000135427196e+29, -9.000000135427196e+29}) +
            big(1) + big(24) + little(3) + reals({kMost, kMost, -kMost, -kMost}) + little(1) + little(0) + little(0));
}

TEST(ShpWriter, ALayerWithoutObjectsKeepsItsFirstHeaders)
{
    const ScratchFolder folder;
    const std::string console = writeLayer(folder, "PL");
    for (const char* name : {"l_P", "l_L"}) {
        const std::int32_t type = name[2] == 'P' ? 1 : 3;
        EXPECT_EQ(folder.read(std::string(name) + ".shp"), header(100, type, {0, 0, -1, -1}));
        EXPECT_EQ(folder.read(std::string(name) + ".shx"), header(100, type, {0, 0, -1, -1}));
        EXPECT_EQ(folder.read(std::string(name) + ".dbf").substr(4, 4), little(0));
    }
}

TEST(ShpWriter, EndsItsFilesWhereItsDataEnd)
{
    const ScratchFolder folder;
    for (const char* name : {"l_P.shp", "l_P.shx", "l_P.dbf", "l_P.prj"}) {
        folder.give(name, std::string(5000, 'x'));
    }
    writeLayer(folder, "P", [](LayerWriter& layer) { write(layer, Kind::point, {{1, 2}}); });
    EXPECT_THAT(folder.read("l_P.shp"), SizeIs(128));
    EXPECT_THAT(folder.read("l_P.shx"), SizeIs(108));
    EXPECT_THAT(folder.read("l_P.dbf"), SizeIs(32 + 2 * 32 + 1 + 12 + 1));
    writeLayer(folder, "P");
    EXPECT_THAT(folder.read("l_P.shp"), SizeIs(100));
    EXPECT_THAT(folder.read("l_P.shx"), SizeIs(100));
}

TEST(ShpWriter, ClosesTheTableFirst)
{
    const ScratchFolder folder;
    const std::string console = writeLayer(folder, "P", [](LayerWriter& layer) {
        write(layer, Kind::point, {{1, 2}});
    });
    EXPECT_EQ(console, "Opening GIS Layer: l.shp\n"
                       "GIS Layer assigned ID of 1\n"
                       "Trying to open file l_P.shp...OK.  File Unit:1001\n"
                       "Trying to open file l_P.shp...OK.  File Unit:1002\n"
                       "Trying to open file l_P.shx...OK.  File Unit:1003\n"
                       "Trying to open file l_P.shx...OK.  File Unit:1004\n"
                       "Trying to open file l_P.prj...OK.  File Unit:1005\n"
                       "Trying to open file l_P.dbf...OK.  File Unit:1006\n"
                       "...Closed File Unit:1005\n"
                       "...Closed File Unit:1003\n"
                       "Closing GIS Layer 1 [l.shp]...\n"
                       "...Closed File Unit:1006\n"
                       "...Closed File Unit:1001\n"
                       "...Closed File Unit:1002\n"
                       "...Closed File Unit:1004\n");
    // Without objects all but the table are left to the layer's close.
    EXPECT_THAT(writeLayer(folder, "P"), EndsWith("Closing GIS Layer 1 [l.shp]...\n"
                                                  "...Closed File Unit:1006\n"
                                                  "...Closed File Unit:1001\n"
                                                  "...Closed File Unit:1002\n"
                                                  "...Closed File Unit:1004\n"));
}

TEST(ShpWriter, ABlankProjectionIsAnEmptyLine)
{
    const ScratchFolder folder;
    runInChild(folder, [] {
        gis::initialise();
        gis::createLayer("l.shp", {.columns = {{"N", "Integer"}}, .families = "P"}).close();
    });
    EXPECT_EQ(folder.read("l_P.prj"), "\r\n");
}

TEST(ShpWriter, ALongLineIsWrittenInPieces)
{
    const ScratchFolder folder;
    constexpr int kVertices = 100000;
    writeLayer(folder, "L", [](LayerWriter& layer) {
        std::vector<Vertex> vertices;
        for (int i = 0; i < kVertices; ++i) {
            vertices.push_back({i * 0.5, -i * 1.0});
        }
        write(layer, Kind::polyline, vertices);
    });
    const std::string bytes = folder.read("l_L.shp");
    ASSERT_EQ(bytes.size(), 100U + 8 + 48 + 16 * kVertices);
    for (const int i : {0, 4095, 4096, 77777, kVertices - 1}) {
        EXPECT_EQ(bytes.substr(156 + 16 * static_cast<std::size_t>(i), 16), reals({i * 0.5, -i * 1.0}));
    }
}

// --- Refusals --------------------------------------------------------------------------------------------------------

// What the run says last, when `code` ends it.
std::string lastWords(const ScratchFolder& folder, const std::function<void()>& code)
{
    const ChildRun run = runInChild(folder, code);
    EXPECT_TRUE(run.ended) << run.console;
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.errors, "");
    return run.console;
}

// What the run says last, when `code` ends it on the files of a layer of the letters.
std::string lastWordsOn(const ScratchFolder& folder, const char* letters,
                        const std::function<void(gis::shp::ShpOutput&)>& code)
{
    return lastWords(folder, [&] {
        gis::shp::ShpOutput output = gis::shp::create("l.shp", specFor(letters));
        code(output);
    });
}

TEST(ShpWriter, RefusesKindsThatHaveNoPlace)
{
    const ScratchFolder folder;
    const gis::Feature ellipse = featureOf(Kind::ellipse, {{1, 1}});
    EXPECT_THAT(lastWordsOn(folder, "P", [&](gis::shp::ShpOutput& output) { writeObject(output, ellipse); }),
                EndsWith(errorEndText("Should not be here [gisWriteObject-shp].  Please contact SUPPORT_CONTACT.")));
    EXPECT_THAT(lastWordsOn(folder, "P",
                            [](gis::shp::ShpOutput& output) { writeRecord(output, featureOf(Kind::rectangle, {})); }),
                EndsWith(errorEndText("Should not be here [gisWriteRecord-dbf].  Please contact SUPPORT_CONTACT.")));
    EXPECT_THAT(
        lastWordsOn(folder, "P",
                    [](gis::shp::ShpOutput& output) { writeObject(output.sets[0], featureOf(Kind::arc, {})); }),
        EndsWith(errorEndText("ERROR 0350 - Trying to write a SHP object that is not yet supported.  Please contact "
                              "SUPPORT_CONTACT.")));
}

TEST(ShpWriter, RefusesAKindTheLayerWasNotOpenedFor)
{
    const ScratchFolder folder;
    const std::string message = errorEndText("Should not be here [shpnotopen] - please contact SUPPORT_CONTACT.");
    EXPECT_THAT(lastWords(folder,
                          [] {
                              LayerWriter layer = create("PL");
                              write(layer, Kind::region, {{0, 0}, {1, 0}, {1, 1}, {0, 0}});
                          }),
                EndsWith(message));
    EXPECT_THAT(lastWords(folder,
                          [] {
                              gis::shp::ShpTarget none;
                              gis::shp::writeFileHeader(none, none.shpUnit, none.shpUnitBE);
                          }),
                EndsWith(message));
}

TEST(ShpWriter, RefusesAFileOfTooManyWords)
{
    const ScratchFolder folder;
    EXPECT_THAT(lastWordsOn(folder, "P",
                            [](gis::shp::ShpOutput& output) {
                                output.sets[0].shp.shxOffset = 2147483647 - 14;
                                const gis::Feature point = featureOf(Kind::point, {{1, 1}});
                                writeObject(output, point); // the last that fits
                                writeObject(output, point);
                            }),
                EndsWith("ERROR - Size of .shp file exceeds maximum of 2147483647 words of 16 bits: l_P.shp\n\nPress "
                         "Enter to Close\n"));
}

// --- Files that cannot be written ------------------------------------------------------------------------------------

TEST(ShpWriter, TellsAHeaderThatCannotBeWritten)
{
    const ScratchFolder folder;
    for (const char* name : {"l_P.shp", "l_P.shx"}) {
        std::filesystem::remove(folder.path() / name);
        std::filesystem::create_symlink("/dev/full", folder.path() / name);
        EXPECT_THAT(lastWords(folder, [] { create("P"); }),
                    EndsWith(errorEndText("ERROR 0437 - Writing .shp file header.")));
        std::filesystem::remove(folder.path() / name);
    }
    std::filesystem::remove(folder.path() / "l_P.dbf");
    std::filesystem::create_symlink("/dev/full", folder.path() / "l_P.dbf");
    EXPECT_THAT(lastWords(folder, [] { create("P"); }),
                EndsWith(errorEndText("ERROR 0413 - Writing .dbf file header.")));
}

TEST(ShpWriter, TellsObjectsAndRecordsThatCannotBeWritten)
{
    if (!canLimitFiles()) {
        GTEST_SKIP() << "the system has no limit on the size of files";
    }
    const ScratchFolder folder;
    EXPECT_THAT(lastWords(folder,
                          [] {
                              LayerWriter layer = create("L");
                              limitFiles(20000);
                              write(layer, Kind::polyline, std::vector<Vertex>(2000));
                              layer.close();
                          }),
                EndsWith(errorEndText("ERROR 0439 - Writing .shp file object coordinates.")));

    // The table is 32 + 2 * 32 + 1 bytes and 12 for each record, and then one to close it.
    constexpr int kRecords = 2000;
    constexpr std::size_t kTableBytes = 97 + 12 * kRecords;
    const auto writeNulls = [](std::size_t limit) {
        LayerWriter layer = create("P");
        for (int i = 0; i < kRecords; ++i) {
            layer.write({});
        }
        limitFiles(limit);
        layer.close();
    };
    // The .shp is too long as well, and says so behind the table.
    const std::string closing = "Closing GIS Layer 1 [l.shp]...\n\n";
    EXPECT_THAT(lastWords(folder, [&] { writeNulls(kTableBytes - 1); }),
                HasSubstr(closing + "ERROR 0417 - Writing .dbf record.\n"));
    EXPECT_THAT(lastWords(folder, [&] { writeNulls(kTableBytes); }),
                HasSubstr(closing + "ERROR 0413 - Rewriting .dbf file header with final information.\n"));
}

} // namespace
} // namespace gridforge::test
