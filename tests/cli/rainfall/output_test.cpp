// What a run writes, in each format, and where.
#include "support/consoles.h"
#include "support/netcdf_failures.h"
#include "support/rainfall_files.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

namespace gridforge::test {
namespace {

using testing::ElementsAre;

constexpr double n = -999;

const std::string kCase =
    kRainfallGrid + kTwoHyetographs + "RF Interpolation Method == Poly\nRead GIS RF Polygon == areas.mif\n";

void giveCase(ToolRun& run, const std::string& more)
{
    giveRainfall(run, kCase + more);
    giveRainfallLayer(run, "areas", mifRectangle("110", "200", "130", "220"), "b,1,1\n");
}

TEST(RainfallOutputCli, BinaryGrids)
{
    ToolRun run("-b -rf rain.rfc");
    giveCase(run, "RF Grid Format == flt\n");
    run.start();
    EXPECT_GRID(run, "rain_t0..flt", {{n, 10, 10}, {n, 10, 10}});
    EXPECT_GRID(run, "rain_t0.5.flt", {{n, 20, 20}, {n, 20, 20}});
    EXPECT_GRID(run, "rain_total.flt", {{0, 30, 30}, {0, 30, 30}});
    EXPECT_EQ(run.read("rain_index.csv"), "0.000,rain_t0..flt\r\n0.500,rain_t0.5.flt\r\n");
    // The tables stay text.
    EXPECT_THAT(run.otherFiles(), ElementsAre("rf_fac.asc", "rf_index.asc"));
}

TEST(RainfallOutputCli, StandsBesideTheControlFileButForTheTables)
{
    ToolRun run("-b -rf in/v1.2/rain.rfc");
    giveCase(run, "");
    run.give("in/v1.2/rain.rfc", kCase);
    run.start();
    EXPECT_EQ(run.read("in/v1.2/rain_index.csv"), "0.000,in/v1.2/rain_t0..asc\r\n0.500,in/v1.2/rain_t0.5.asc\r\n");
    EXPECT_THAT(run.changedFiles(),
                ElementsAre("in/v1.2/rain_index.csv", "in/v1.2/rain_t0..asc", "in/v1.2/rain_t0.5.asc",
                            "in/v1.2/rain_total.asc", "rf_fac.asc", "rf_index.asc"));
}

TEST(RainfallOutputCli, NamesStepsByTheTimeAsNumbersArePrinted)
{
    ToolRun run("-b -rf rain.rfc");
    giveCase(run, "");
    run.give("a.csv", "t\n-1.5,1\n0.001,1\n12.3456,1\n1000,1\n1e9,1\n");
    run.give("b.csv", "t\n-1.5,1\n0.001,1\n12.3456,1\n1000,1\n1e9,1\n");
    run.start();
    EXPECT_THAT(run.read("rain_index.csv"),
                "-1.500,rain_t-1.5.asc\r\n0.001,rain_t0.001.asc\r\n12.346,rain_t12.35.asc\r\n"
                "1000.000,rain_t1000..asc\r\n1000000000.000,rain_t1000000000..asc\r\n");
    EXPECT_TRUE(run.has("rain_t12.35.asc"));
    EXPECT_TRUE(run.has("rain_t1000000000..asc"));
}

TEST(RainfallOutputCli, NetcdfHasNoGridsBesideIt)
{
    ToolRun run("-b -rf rain.rfc");
    giveCase(run, "RF Grid Format == NC\n");
    run.start();
    EXPECT_EQ(run.error(), "");
    EXPECT_CONSOLE_HOLDS(run, {openedOutput("rain_index.csv", 1001), "Opening output .nc file: rain.nc",
                               "Created NETCDF file \"rain.nc\"", "Finished initialising netcdf file.",
                               "Using rainfall polygons."});
    EXPECT_CONSOLE_HOLDS(run, {"Processing time: 0.", "Processing time: 0.5", closedUnit(1001), kFinished});
    EXPECT_EQ(run.read("rain_index.csv"), "");
    EXPECT_THAT(run.changedFiles(), ElementsAre("rain.nc", "rain_index.csv", "rf_fac.asc", "rf_index.asc"));
}

TEST(RainfallOutputCli, NetcdfThatCannotBeCreatedEndsTheRun)
{
    ToolRun run("-b -rf rain.rfc");
    giveCase(run, "RF Grid Format == NC\n");
    run.give("rain.nc/in_the_way", ""); // a folder with the name of the output
    run.start();
    EXPECT_EQ(run.status(), 0);
    EXPECT_CONSOLE_HOLDS(run, errorEnd("Opening output .nc file: rain.nc", "ERROR - With nectdf call nf90_create",
                                       "Netcdf error message: Is a directory"));
}

TEST(RainfallOutputCli, NetcdfThatFindsNoRoomEndsTheRun)
{
    ToolRun run("-b -rf rain.rfc");
    giveCase(run, "RF Grid Format == NC\n");
    std::filesystem::create_symlink("/dev/full", run.folder() / "rain.nc");
    run.start();
    EXPECT_TRUE(run.says("Netcdf error message: No space left on device"));
    EXPECT_FALSE(run.reachedEnd());
}

TEST(RainfallOutputCli, EveryNetcdfCallThatFailsIsNamed)
{
    std::vector<NetcdfFailure> failures = {
        {"nc_def_dim 1", "nf90_def_dim(x)"},
        {"nc_def_dim 2", "nf90_def_dim(y)"},
        {"nc_def_dim 3", "nf90_def_dim(time)"},
        {"nc_put_att_text 1", "nf90_put_att"}, // of the file
        {"nc_put_att_text 4", "nf90_put_att"},
        {"nc_put_att_text 5", "nf90_put_att(time)"},
        {"nc_put_att_text 8", "nf90_put_att(time)"},
        {"nc_put_att_text 9", "nf90_put_att"},
        {"nc_put_att_text 16", "nf90_put_att"},
        {"nc_put_vara_float 1", "nf90_put_var (rf_val)"},
        {"nc_put_vara_float 4", "nf90_put_var (rf_val)"},
        {"nc_put_vara_float 5", "nf90_put_var (rf_cum)"}, // behind two steps of two rows
    };
    failures.insert(failures.end(), kCallsOfEveryFile.begin(), kCallsOfEveryFile.end());
    for (const NetcdfFailure& failure : failures) {
        ToolRun run(failingNetcdfArguments(failure, {"-b", "-rf", "rain.rfc"}));
        giveCase(run, "RF Grid Format == NC\n");
        expectNetcdfFailure(run, failure);
    }
}

TEST(RainfallOutputCli, AnIndexThatCannotBeOpenedEndsWithTheDialogue)
{
    ToolRun run("-b -rf rain.rfc");
    giveCase(run, "");
    run.give("rain_index.csv/in_the_way", "");
    run.start();
    EXPECT_EQ(run.status(), 0);
    EXPECT_TRUE(run.says(kClose));
    EXPECT_FALSE(run.has("rf_index.asc"));
}

TEST(RainfallOutputCli, ARunWithoutBatchWaitsAtTheEnd)
{
    ToolRun run("-rf rain.rfc");
    giveCase(run, "");
    run.start();
    EXPECT_CONSOLE_HOLDS(run, normalEnd());
}

} // namespace
} // namespace gridforge::test
