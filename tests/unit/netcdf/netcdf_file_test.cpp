#include "netcdf/netcdf_file.h"

#include "host/console.h"
#include "host/system.h"
#include "netcdf/check_netcdf.h"
#include "support/child_run.h"

#include <array>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <vector>

namespace gridforge {
namespace {

using test::ChildRun;
using test::runInChild;
using test::ScratchFolder;
using testing::ElementsAre;

std::string readText(int file, int variable, const char* name)
{
    std::size_t length = 0;
    EXPECT_EQ(nc_inq_attlen(file, variable, name, &length), NC_NOERR) << name;
    std::string text(length, ' ');
    EXPECT_EQ(nc_get_att_text(file, variable, name, text.data()), NC_NOERR) << name;
    return text;
}

template <typename Value>
std::vector<Value> readValues(int file, int variable, std::size_t count)
{
    std::vector<Value> values(count);
    EXPECT_EQ(nc_get_var(file, variable, values.data()), NC_NOERR);
    return values;
}

struct Made {
    int time = -1;
    int x = -1;
    int series = -1;
    int total = -1;
};

// Two rows by three columns; of the second position and of the second row of the total one row is written.
Made writeSmall(const std::string& name, int mode)
{
    Made made;
    const int file = netcdf::createNetcdf(name, mode, "nf90_create");
    const int x = netcdf::defineNetcdfDimension(file, "x", 3, "nf90_def_dim(x)");
    const int y = netcdf::defineNetcdfDimension(file, "y", 2, "nf90_def_dim(y)");
    const int time = netcdf::defineNetcdfDimension(file, "time", NC_UNLIMITED, "nf90_def_dim(time)");
    netcdf::putNetcdfTexts(file, NC_GLOBAL, std::array<netcdf::NetcdfText, 2>{{{"title", "A title"}, {"comment", ""}}},
                           "nf90_put_att");

    made.time = netcdf::defineNetcdfVariable(file, {"time", NC_DOUBLE, {&time, 1}}, "nf90_def_var(time)");
    made.x = netcdf::defineNetcdfVariable(file, {"x", NC_DOUBLE, {&x, 1}}, "nf90_def_var(x)");
    netcdf::putNetcdfTexts(file, made.x, std::array<netcdf::NetcdfText, 1>{{{"units", "m"}}}, "nf90_put_att");
    const std::array<int, 3> all{time, y, x};
    made.series = netcdf::defineNetcdfVariable(file, {"depth", NC_FLOAT, all}, "nf90_def_var(data)");
    netcdf::defineNetcdfFill(file, made.series, -999.0F, "nf90_def_var_fill(data)");
    made.total = netcdf::defineNetcdfVariable(file, {"total", NC_FLOAT, std::span(all).last(2)}, "nf90_def_var(data)");
    netcdf::defineNetcdfFill(file, made.total, -999.0F, "nf90_def_var_fill(data)");
    netcdf::checkNetcdf(nc_enddef(file), "nf90_enddef");

    netcdf::putNetcdfValues(file, made.x, std::vector<double>{0.5, 1.5, 2.5}, "nf90_put_var (x)");
    netcdf::putNetcdfTime(file, made.time, 1, 0.25, "nf90_put_var (time)");
    netcdf::putNetcdfTime(file, made.time, 2, 0.75, "nf90_put_var (time)");
    netcdf::putNetcdfRow(file, made.series, 1, 1, std::vector<float>{111, 112, 113},
                         "nf90_put_var (rg)"); // time, row, column
    netcdf::putNetcdfRow(file, made.series, 1, 2, std::vector<float>{121, 122, 123}, "nf90_put_var (rg)");
    netcdf::putNetcdfRow(file, made.series, 2, 2, std::vector<float>{221, 222, 223}, "nf90_put_var (rg)");
    netcdf::putNetcdfRow(file, made.total, 2, std::vector<float>{21, 22, 23}, "nf90_put_var (rg2)");
    netcdf::checkNetcdf(nc_close(file), "nf90_close");
    return made;
}

TEST(NetcdfFile, WritesBothFormsAsTheLibraryReadsThem)
{
    for (const int mode : {NC_CLOBBER, NC_NETCDF4}) {
        const ScratchFolder folder;
        const std::string name = (folder.path() / "a.nc").string();
        const Made made = writeSmall(name, mode);

        int file = 0;
        ASSERT_EQ(nc_open(name.c_str(), NC_NOWRITE, &file), NC_NOERR);
        int form = 0;
        EXPECT_EQ(nc_inq_format(file, &form), NC_NOERR);
        EXPECT_EQ(form, mode == NC_NETCDF4 ? NC_FORMAT_NETCDF4 : NC_FORMAT_CLASSIC);
        EXPECT_EQ(readText(file, NC_GLOBAL, "title"), "A title");
        EXPECT_EQ(readText(file, NC_GLOBAL, "comment"), "");
        EXPECT_EQ(readText(file, made.x, "units"), "m");
        EXPECT_THAT(readValues<double>(file, made.time, 2), ElementsAre(0.25, 0.75));
        EXPECT_THAT(readValues<double>(file, made.x, 3), ElementsAre(0.5, 1.5, 2.5));
        EXPECT_THAT(readValues<float>(file, made.series, 12),
                    ElementsAre(111, 112, 113, 121, 122, 123, -999, -999, -999, 221, 222, 223));
        EXPECT_THAT(readValues<float>(file, made.total, 6), ElementsAre(-999, -999, -999, 21, 22, 23));
        nc_close(file);
    }
}

TEST(NetcdfFile, BothSeparatorsLeadToTheFolder)
{
    const ScratchFolder folder;
    folder.give("sub/keep", "");
    const ChildRun run =
        runInChild(folder, [] { nc_close(netcdf::createNetcdf("sub\\a.nc", NC_NETCDF4, "nf90_create")); });
    EXPECT_FALSE(run.ended) << run.console;
    EXPECT_TRUE(folder.has("sub/a.nc"));
}

TEST(NetcdfFile, NamesAreUtf8InBothForms)
{
    for (const int mode : {NC_CLOBBER, NC_NETCDF4}) {
        const ScratchFolder folder;
        folder.give("größe/keep", "");
        const ChildRun run =
            runInChild(folder, [mode] { nc_close(netcdf::createNetcdf("größe/水位.nc", mode, "nf90_create")); });
        EXPECT_FALSE(run.ended) << run.console;
        std::vector<std::string> names;
        EXPECT_EQ(nativeSystem().list(folder.path().string() + "/größe", names), SystemStatus::done);
        EXPECT_THAT(names, testing::UnorderedElementsAre("keep", "水位.nc"));
    }
}

TEST(NetcdfFile, NamesThatLookLikeADriveOrAServerAreFiles)
{
    const ScratchFolder folder;
    folder.give("c:/keep", "");
    folder.give("http:/host/keep", "");
    const ChildRun run = runInChild(folder, [] {
        nc_close(netcdf::createNetcdf("c:/a.nc", NC_NETCDF4, "nf90_create"));
        nc_close(netcdf::createNetcdf("http://host/a.nc", NC_NETCDF4, "nf90_create"));
        nc_close(netcdf::createNetcdf("b.nc#mode=zarr", NC_NETCDF4, "nf90_create"));
    });
    EXPECT_FALSE(run.ended) << run.console;
    EXPECT_TRUE(folder.has("c:/a.nc"));
    EXPECT_TRUE(folder.has("http:/host/a.nc"));
    EXPECT_TRUE(folder.has("b.nc#mode=zarr"));
}

// As on Windows. The library of this system looks for a folder of the drive from the root on, and so makes no file here.
TEST(NetcdfFile, ADriveGoesToTheLibraryWhereNamesHaveThem)
{
    if (nativeSystem().namesHaveDrives) {
        GTEST_SKIP() << "would write to a drive";
    }
    const ScratchFolder folder;
    folder.give("q:/keep", "");
    const ChildRun run = runInChild(folder, [] {
        static System system = nativeSystem();
        system.namesHaveDrives = true;
        useSystem(system);
        nc_close(netcdf::createNetcdf("q.nc", NC_NETCDF4, "nf90_create"));
        say("made");
        nc_close(netcdf::createNetcdf("q:/q.nc", NC_NETCDF4, "nf90_create"));
    });
    EXPECT_TRUE(run.ended);
    EXPECT_NE(run.console.find("made\nERROR - With nectdf call nf90_create"), std::string::npos) << run.console;
    EXPECT_TRUE(folder.has("q.nc"));
    EXPECT_FALSE(folder.has("q:/q.nc"));
}

// A folder stands for the drive.
TEST(NetcdfFile, ANameFromTheRootIsOnTheCurrentDriveWhereNamesHaveThem)
{
    if (nativeSystem().namesHaveDrives) {
        GTEST_SKIP() << "would write to a drive";
    }
    for (const int mode : {NC_CLOBBER, NC_NETCDF4}) {
        const ScratchFolder folder;
        folder.give("drive/sub/keep", "");
        const ChildRun run = runInChild(folder, [mode] {
            static System system = nativeSystem();
            system.namesHaveDrives = true;
            system.fullName = [](const std::string& name) {
                return name == "/" ? std::optional<std::string>("drive") : nativeSystem().fullName(name);
            };
            useSystem(system);
            nc_close(netcdf::createNetcdf("\\sub\\a.nc", mode, "nf90_create"));
        });
        EXPECT_FALSE(run.ended) << run.console;
        EXPECT_TRUE(folder.has("drive/sub/a.nc"));
    }
}

TEST(NetcdfFile, AFileThatCannotBeMadeEndsTheRun)
{
    const ScratchFolder folder;
    folder.give("folder.nc/keep", "");
    for (const char* name : {"none/a.nc", "folder.nc"}) {
        const ChildRun run = runInChild(folder, [name] { netcdf::createNetcdf(name, NC_NETCDF4, "nf90_create"); });
        EXPECT_TRUE(run.ended);
        EXPECT_EQ(run.console.find("ERROR - With nectdf call nf90_create\nNetcdf error message: "), 0U) << run.console;
        EXPECT_EQ(run.errors, "");
    }
}

} // namespace
} // namespace gridforge
