// Layers that are cut short, damaged or absurd: every run ends by itself, in bounded memory.
#include "gis/layer_reader.h"
#include "gis/layer_table.h"

#include "host/console.h"
#include "support/child_run.h"
#include "support/consoles.h"
#include "support/layer_files.h"
#include "support/process_limits.h"

#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>

namespace gridforge::test {
namespace {

using testing::EndsWith;

void readAll(const char* name, bool coordinates)
{
    gis::initialise();
    gis::OpenLayer& layer = gis::openFiles(name);
    gis::readHeader(layer);
    gis::LayerObject object;
    gis::Coordinates c;
    std::string line;
    int objects = 0;
    while (!layer.end) {
        if (gis::readKind(layer, object)) {
            gis::readRecord(layer, object.name, line);
            gis::readCoordinates(layer, object, c, 1000, coordinates);
            ++objects;
        }
    }
    gis::close(layer);
    say("objects ", objects);
}

// Either the whole layer was read, or a message tells why not.
void expectAnEnd(const ScratchFolder& folder, bool coordinates)
{
    const ChildRun run = runInChild(folder, [&] { readAll("l.mif", coordinates); });
    ASSERT_EQ(run.status, 0) << run.console;
    ASSERT_EQ(run.errors, "");
    if (run.ended) {
        ASSERT_THAT(run.console, EndsWith("\n" + kExits));
        ASSERT_THAT(run.console, testing::HasSubstr("\nERROR "));
    } else {
        ASSERT_THAT(run.console, testing::HasSubstr("\nobjects "));
    }
}

const std::string kBody = "Point 1 2\nPline 2\n1 1\n2 2\nRegion 2\n4\n0 0\n1 0\n1 1\n0 0\n4\n5 5\n6 5\n6 6\n5 5\n"
                          "    Center 1 1\nLine 1 2 3 4\nPline Multiple 1\n2\n1 1\n2 2\n";

TEST(HostileMif, CutAtEveryByte)
{
    const ScratchFolder folder;
    giveMif(folder, "l", kBody, 5);
    const std::string whole = folder.read("l.mif");
    for (std::size_t size = 0; size < whole.size(); ++size) {
        SCOPED_TRACE(size);
        folder.give("l.mif", whole.substr(0, size));
        expectAnEnd(folder, size % 2 == 0);
    }
}

TEST(HostileMif, RecordsCutAtEveryByte)
{
    const ScratchFolder folder;
    giveMif(folder, "l", kBody, 5);
    const std::string whole = folder.read("l.mid");
    for (std::size_t size = 0; size < whole.size(); ++size) {
        SCOPED_TRACE(size);
        folder.give("l.mid", whole.substr(0, size));
        expectAnEnd(folder, true);
    }
}

TEST(HostileMif, BytesChangedAtRandom)
{
    const ScratchFolder folder;
    giveMif(folder, "l", kBody, 5);
    const std::string whole = folder.read("l.mif");
    std::mt19937 random(7);
    for (int round = 0; round < 300; ++round) {
        std::string damaged = whole;
        for (int i = 0; i < 3; ++i) {
            damaged[random() % damaged.size()] = "0987654321-\n ,x\0\xFF"[random() % 17];
        }
        SCOPED_TRACE(damaged);
        folder.give("l.mif", damaged);
        expectAnEnd(folder, round % 2 == 0);
    }
}

TEST(HostileMif, LinesOf100MegabytesTakeLittleMemory)
{
    const ScratchFolder folder;
    {
        std::string longLine;
        longLine.resize(100'000'000, 'x');
        folder.give("l.mif", mifText("Point 1 2\n" + longLine + "\nPoint 3 4\n"));
        folder.give("l.mid", "a\n" + longLine + "\n");
    }
    const ChildRun run = runInChild(folder, [] {
        const std::size_t before = peakKilobytes();
        readAll("l.mif", true);
        say("grew ", peakKilobytes() - before < 20'000 ? "little" : "much");
    });
    EXPECT_THAT(run.console, EndsWith("objects 2\ngrew little\n"));
}

} // namespace
} // namespace gridforge::test
