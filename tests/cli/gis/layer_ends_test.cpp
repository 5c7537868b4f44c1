// How the end of a layer is found, in every operation that reads one.
#include "support/consoles.h"
#include "support/layer_readers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <vector>

namespace gridforge::test {
namespace {

using testing::HasSubstr;
using testing::IsSupersetOf;
using testing::Not;

// The files that a run leaves, without the date of a .dbf.
std::map<std::string, std::string> filesLeft(const ToolRun& run)
{
    std::map<std::string, std::string> files;
    for (const std::string& name : run.changedFiles()) {
        std::string bytes = run.read(name);
        if (name.ends_with(".dbf")) {
            bytes.replace(1, 3, "ymd");
        }
        files[name] = bytes;
    }
    return files;
}

class LayerEnds : public testing::TestWithParam<LayerReader> {};

TEST_P(LayerEnds, NullShapesAtTheEndOfAShapefileChangeNothing)
{
    const LayerReader& reader = GetParam();
    for (const bool endMark : {true, false}) {
        std::map<std::string, std::string> plain;
        for (const std::size_t nulls : {0U, 1U, 2U}) {
            ToolRun run(("-b " + withLayer(reader.arguments, "l.shp")).c_str());
            giveControl(run, reader, "l.shp");
            std::vector<std::string> objects(nulls + 1, kNullShape);
            objects.front() = shpObject(reader);
            giveShpLayer(run, reader, objects, endMark);
            run.start();
            EXPECT_EQ(run.status(), 0);
            EXPECT_TRUE(run.reachedEnd()) << run.console();
            EXPECT_THAT(run.console(), Not(HasSubstr("ERROR")));
            EXPECT_THAT(run.changedFiles(), IsSupersetOf(reader.outputs));
            if (nulls == 0) {
                plain = filesLeft(run);
                EXPECT_FALSE(plain.empty());
            } else {
                EXPECT_EQ(filesLeft(run), plain) << nulls << " null shapes";
            }
        }
    }
}

TEST_P(LayerEnds, NullShapesInAShapefileAreSkippedWhereverTheyStand)
{
    const LayerReader& reader = GetParam();
    ToolRun run(("-b " + withLayer(reader.arguments, "l.shp")).c_str());
    giveControl(run, reader, "l.shp");
    giveShpLayer(run, reader, {kNullShape, shpObject(reader), kNullShape}, true);
    run.start();
    EXPECT_TRUE(run.reachedEnd()) << run.console();
    EXPECT_THAT(run.changedFiles(), IsSupersetOf(reader.outputs));
}

// A .mid one line short, after an object that no operation reads.
TEST_P(LayerEnds, AnObjectWithoutARecordEndsTheRunAfterASkippedObjectToo)
{
    const LayerReader& reader = GetParam();
    const std::string keyword = reader.kind == Kind::point ? "POINT" : reader.kind == Kind::line ? "PLINE" : "REGION";
    const std::string skipped = "Arc 0 0 1 1\n    0 90\n    Pen (1,2,0)\n";
    const std::vector<std::pair<std::string, std::string>> layers = {
        {mifObject(reader) + skipped + mifObject(reader), keyword},
        {mifObject(reader) + skipped + skipped, "ARC"}}; // the second one has no record and is reported too
    for (const auto& [objects, kind] : layers) {
        ToolRun run(("-b " + withLayer(reader.arguments, "l.mif")).c_str());
        giveControl(run, reader, "l.mif");
        giveMifLayer(run, reader, objects, 2);
        run.start();
        EXPECT_THAT(run.console(),
                    testing::EndsWith("\n\nERROR 0254 - Failed to read object attribute data record for a " + kind +
                                      " object in GIS layer.\n" + kExits));
    }
}

TEST_P(LayerEnds, ASkippedObjectAtTheEndOfAMifEndsItWell)
{
    const LayerReader& reader = GetParam();
    for (const std::string last : {"None\n", "Arc 0 0 1 1\n    0 90\n    Pen (1,2,0)\n"}) {
        for (const int records : {2, 3}) { // a record too many does no harm
            ToolRun run(("-b " + withLayer(reader.arguments, "l.mif")).c_str());
            giveControl(run, reader, "l.mif");
            giveMifLayer(run, reader, mifObject(reader) + last, records);
            run.start();
            EXPECT_TRUE(run.reachedEnd()) << run.console();
            EXPECT_THAT(run.changedFiles(), IsSupersetOf(reader.outputs));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Operations, LayerEnds, testing::ValuesIn(layerReaders()), [](const auto& reader) {
    std::string name = reader.param.name;
    std::erase(name, ' ');
    return name;
});

} // namespace
} // namespace gridforge::test
