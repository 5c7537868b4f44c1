#include "gis/projection.h"

#include "host/console.h"
#include "support/consoles.h"
#include "support/layer_files.h"
#include "support/layer_runs.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace gridforge::test {
namespace {

using testing::HasSubstr;

// The console of taking the projection of a layer, and what was taken.
std::string consoleWithProjection(const ScratchFolder& folder, const char* layer)
{
    return consoleOf(folder, [&] {
        gis::Projection p{"unset", "unset"};
        gis::get_projection(layer, p);
        say(p.mif, "|", p.shp);
    });
}

TEST(GetProjection, TakesTheCoordSysLineOfAMif)
{
    const ScratchFolder folder;
    giveMif(folder, "l", kPointBody);
    EXPECT_EQ(consoleWithProjection(folder, "l.mif"), "Getting Projection...\n"
                                                      "Trying to open file l.mif...OK.\n"
                                                      "Opened File Unit:1001\n"
                                                      "Using l.mif for setting projection.\n"
                                                      "mif Projection: CoordSys NonEarth Units \"m\"\n"
                                                      "...Closed File Unit:1001\n"
                                                      "CoordSys NonEarth Units \"m\"|unset\n");
}

TEST(GetProjection, TakesTheFirstProjcsLineBesideAShp)
{
    const ScratchFolder folder;
    folder.give("l.prj", "first line\n  PROJCS[\"a\"]\nPROJCS[\"b\"]\n");
    EXPECT_EQ(consoleWithProjection(folder, "l.SHP"), "Getting Projection...\n"
                                                      "Trying to open file l.prj...OK.\n"
                                                      "Opened File Unit:1001\n"
                                                      "Using l.prj for setting projection.\n"
                                                      "shp Projection:   PROJCS[\"a\"]\n"
                                                      "...Closed File Unit:1001\n"
                                                      "unset|  PROJCS[\"a\"]\n");
}

TEST(GetProjection, EndsTheRunWithoutOne)
{
    const ScratchFolder folder;
    const auto get = [](const char* name) {
        gis::Projection p{"unset", "unset"};
        gis::get_projection(name, p);
    };
    EXPECT_THAT(
        endOf(folder, [&] { get("gone.shp"); }),
        testing::StartsWith("Getting Projection...\nERROR - Projection file does not exist in folder: gone.prj\n"));
    folder.give("e.prj", "GEOGCS[\"a\"]\n");
    EXPECT_THAT(endOf(folder, [&] { get("e.shp"); }),
                HasSubstr("...Closed File Unit:1001\nERROR - Unable to find PROJCS line in e.prj\n"));
    folder.give("e.mif", "Version 300\n");
    EXPECT_THAT(endOf(folder, [&] { get("e.mif"); }),
                HasSubstr("Using e.mif for setting projection.\nERROR - Unable to find CoordSys line in e.mif\n"));
    EXPECT_THAT(endOf(folder, [&] { get("e.tab"); }),
                HasSubstr("ERROR - Unable to determine gis file type, expecting .mif or .shp. File: e.tab\n"));
}

TEST(GetProjection, EndsTheRunOnAReadThatTheSystemRefuses)
{
    const ScratchFolder folder;
    std::filesystem::create_symlink("/proc/self/mem", folder.path() / "l.prj");
    EXPECT_THAT(endOf(folder,
                      [] {
                          gis::Projection p{"unset", "unset"};
                          gis::get_projection("l.shp", p);
                      }),
                testing::EndsWith("Using l.prj for setting projection.\n"
                                  "ERROR - Reading following line in projection file:\n\n" +
                                  kExits));
}

} // namespace
} // namespace gridforge::test
