#include "netcdf/netcdf_file.h"

#include "host/system.h"
#include "support/child_run.h"
#include "support/consoles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <netcdf.h>
#include <string>
#include <vector>

namespace gridforge {
namespace {

using test::ChildRun;
using test::runInChild;
using test::ScratchFolder;

std::vector<std::string> namesIn(const ScratchFolder& folder)
{
    std::vector<std::string> names;
    EXPECT_EQ(nativeSystem().list(folder.path().string(), names), SystemStatus::done);
    return names;
}

TEST(NetcdfFile, ANameFromTheRootIsOnTheDriveOfTheCurrentFolder)
{
    for (const int mode : {NC_CLOBBER, NC_NETCDF4}) {
        const ScratchFolder folder;
        const std::string fromRoot = "\\" + (folder.path().relative_path() / "a.nc").string();
        const ChildRun run = runInChild(folder, [&] { nc_close(netcdf::createNetcdf(fromRoot, mode, "nf90_create")); });
        EXPECT_FALSE(run.ended) << fromRoot << ": " << run.console;
        EXPECT_EQ(run.errors, "");
        EXPECT_THAT(namesIn(folder), testing::ElementsAre("a.nc"));
    }
}

TEST(NetcdfFile, NoDeviceAndNoPartOfAFileIsWrittenInPlaceOfAFile)
{
    for (const int mode : {NC_CLOBBER, NC_NETCDF4}) {
        for (const char* name : {"flood:b.nc", "nul.nc", "a.nc."}) {
            const ScratchFolder folder;
            folder.give("flood", "first");
            const ChildRun run = runInChild(folder, [&] { netcdf::createNetcdf(name, mode, "nf90_create"); });
            EXPECT_TRUE(run.ended) << name;
            EXPECT_EQ(run.console,
                      "ERROR - With nectdf call nf90_create\nNetcdf error message: Permission denied\n" + test::kExits)
                << name;
            EXPECT_THAT(namesIn(folder), testing::ElementsAre("flood"));
            EXPECT_EQ(folder.read("flood"), "first");
        }
    }
}

} // namespace
} // namespace gridforge
