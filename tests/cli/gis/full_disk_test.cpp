// A full disk under output layers: one message, which says what could not be written, and the end of the run.
#include "support/consoles.h"
#include "support/layer_readers.h"
#include "support/paths.h"

#include <algorithm>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace gridforge::test {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

const LayerReader& readerOf(const std::string& name)
{
    return *std::ranges::find(layerReaders(), name, &LayerReader::name);
}

void giveMifCase(ToolRun& run, const LayerReader& reader)
{
    giveControl(run, reader, "l.mif");
    giveMifLayer(run, reader, mifObject(reader), 1);
}

void giveShpCase(ToolRun& run, const LayerReader& reader)
{
    giveControl(run, reader, "l.shp");
    giveShpLayer(run, reader, {shpObject(reader)}, true);
}

// An output file with the object that its layer wrote last.
struct FullFile {
    std::string operation;
    std::string layer;
    std::string lastObject;
};

void PrintTo(const FullFile& full, std::ostream* out)
{
    *out << full.operation << ' ' << full.layer;
}

class FullMif : public testing::TestWithParam<FullFile> {};

TEST_P(FullMif, AMidNamesTheObjectWrittenLast)
{
    const FullFile& full = GetParam();
    const LayerReader& reader = readerOf(full.operation);
    ToolRun run(("-b " + withLayer(reader.arguments, "l.mif")).c_str());
    giveMifCase(run, reader);
    std::filesystem::create_symlink("/dev/full", run.folder() / (full.layer + ".mid"));
    run.start();
    EXPECT_EQ(run.status(), 0);
    EXPECT_THAT(run.console(), EndsWith("\n\nERROR 0254 - Failed to write attribute data record for a " +
                                        full.lastObject + " object in GIS layer.\n" + kExits));
}

TEST_P(FullMif, AMifHasOneMessage)
{
    const FullFile& full = GetParam();
    const LayerReader& reader = readerOf(full.operation);
    ToolRun run(("-b " + withLayer(reader.arguments, "l.mif")).c_str());
    giveMifCase(run, reader);
    std::filesystem::create_symlink("/dev/full", run.folder() / (full.layer + ".mif"));
    run.start();
    EXPECT_THAT(run.console(), EndsWith("\n\nERROR 0439 - Writing .mif file object coordinates.\n" + kExits));
    EXPECT_EQ(run.console().find("ERROR"), run.console().rfind("ERROR"));
}

INSTANTIATE_TEST_SUITE_P(
    Operations, FullMif,
    testing::Values(FullFile{"cp", "l_Res", "POINT"}, FullFile{"cp", "l_Cn", "LINE"},
                    FullFile{"lp", "l_LP_check", "POINT"}, FullFile{"brkline", "l_brkline", "PLINE"},
                    FullFile{"brkline", "l_check", "REGION"}, FullFile{"damages", "l_Damages", "POINT"},
                    FullFile{"form losses", "1d_nwk_a", "PLINE"}, FullFile{"sections", "1d_xsl", "PLINE"}));

// --- A disk on which nothing finds room ------------------------------------------------------------------------------

// The case through a shell that lets no file take a byte.
std::vector<std::string> onFullDisk(const LayerReader& reader, const std::string& layer)
{
    return {"-c", "trap '' XFSZ; ulimit -f 0; exec " + toolPath() + " -b " + withLayer(reader.arguments, layer)};
}

class FullDisk : public testing::TestWithParam<LayerReader> {};

TEST_P(FullDisk, HasOneMessageWhateverTheOutputs)
{
    const LayerReader& reader = GetParam();
    for (const std::string layer : {"l.mif", "l.shp"}) {
        ToolRun run(onFullDisk(reader, layer));
        run.program("/bin/sh");
        layer == "l.mif" ? giveMifCase(run, reader) : giveShpCase(run, reader);
        run.start();
        EXPECT_EQ(run.status(), 0);
        EXPECT_THAT(run.console(), HasSubstr("\nERROR")) << run.command();
        EXPECT_EQ(run.console().find("\nERROR"), run.console().rfind("\nERROR")) << run.console();
        EXPECT_THAT(run.console(), EndsWith("\n" + kExits));
        EXPECT_THAT(run.console(), Not(HasSubstr(kFinished)));
    }
}

INSTANTIATE_TEST_SUITE_P(Operations, FullDisk, testing::ValuesIn(layerReaders()), [](const auto& reader) {
    std::string name = reader.param.name;
    std::erase(name, ' ');
    return name;
});

} // namespace
} // namespace gridforge::test
