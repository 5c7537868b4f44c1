#include "rainfall/rainfall_nc.h"

#include "support/child_run.h"
#include "support/process_limits.h"
#include "unit/rainfall/plain_rainfall.h"

#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <netcdf.h>
#include <string>

namespace gridforge::test {
namespace {

using testing::HasSubstr;

Grid cellsOf(const GridHeader& grid)
{
    Grid cells;
    EXPECT_TRUE(cells.allocate(grid.nrows, grid.ncols));
    return cells;
}

TEST(RainfallNc, IsClassicUnlessNetcdf4IsAskedFor)
{
    const ScratchFolder folder;
    for (const bool netcdf4 : {false, true}) {
        const std::string name = (folder.path() / (netcdf4 ? "new.nc" : "old.nc")).string();
        runInChild(folder, [&] {
            rainfall::RfNcRecord record;
            record.netcdf4 = netcdf4;
            rainfall::rf_nc_init(name, record, rainfallGrid(2, 3, 0, 0, 1.0F));
            rainfall::closeRainfallNc(record);
        });
        int file = -1;
        ASSERT_EQ(nc_open(name.c_str(), NC_NOWRITE, &file), NC_NOERR);
        int format = 0;
        EXPECT_EQ(nc_inq_format(file, &format), NC_NOERR);
        EXPECT_EQ(format, netcdf4 ? NC_FORMAT_NETCDF4 : NC_FORMAT_CLASSIC);
        nc_close(file);
    }
}

TEST(RainfallNc, CellsKeepTheirPlace)
{
    const ScratchFolder folder;
    const std::string name = (folder.path() / "a.nc").string();
    runInChild(folder, [&] {
        const GridHeader grid = rainfallGrid(2, 3, 100, 200, 10.0F);
        rainfall::RfNcRecord record;
        rainfall::rf_nc_init(name, record, grid);
        Grid cells = cellsOf(grid);
        for (const int step : {1, 2}) {
            for (int row = 1; row <= 2; ++row) {
                for (int column = 1; column <= 3; ++column) {
                    cells(row, column) = static_cast<float>(100 * step + 10 * row + column);
                }
            }
            rainfall::putStep(record, step, 0.5F * static_cast<float>(step), cells);
        }
        rainfall::putTotal(record, cells);
        rainfall::closeRainfallNc(record);
    });
    int file = -1;
    ASSERT_EQ(nc_open(name.c_str(), NC_NOWRITE, &file), NC_NOERR);
    const auto values = [file](const char* variable, std::size_t count) {
        int id = -1;
        EXPECT_EQ(nc_inq_varid(file, variable, &id), NC_NOERR);
        std::vector<double> read(count);
        EXPECT_EQ(nc_get_var_double(file, id, read.data()), NC_NOERR);
        return read;
    };
    using testing::ElementsAre;
    EXPECT_THAT(values("time", 2), ElementsAre(0.5, 1));
    EXPECT_THAT(values("x", 3), ElementsAre(105, 115, 125)); // cell centres
    EXPECT_THAT(values("y", 2), ElementsAre(205, 215));
    EXPECT_THAT(values("rainfall_depth", 12), ElementsAre(111, 112, 113, 121, 122, 123, 211, 212, 213, 221, 222, 223));
    EXPECT_THAT(values("total_rainfall_depth", 6), ElementsAre(211, 212, 213, 221, 222, 223));
    nc_close(file);
}

TEST(RainfallNc, AFailureNamesItsCall)
{
    struct Case {
        const char* call;
        std::function<void(rainfall::RfNcRecord&, const Grid&)> work;
    };
    const std::vector<Case> cases{
        {"nf90_put_var (time)",
         [](rainfall::RfNcRecord& record, const Grid& cells) {
             record.time = 99;
             rainfall::putStep(record, 1, 0.0F, cells);
         }},
        {"nf90_put_var (rf_val)",
         [](rainfall::RfNcRecord& record, const Grid& cells) {
             record.rainfallDepth = 99;
             rainfall::putStep(record, 1, 0.0F, cells);
         }},
        {"nf90_put_var (rf_cum)",
         [](rainfall::RfNcRecord& record, const Grid& cells) {
             record.totalRainfallDepth = 99;
             rainfall::putTotal(record, cells);
         }},
        {"nf90_close",
         [](rainfall::RfNcRecord& record, const Grid&) {
             nc_close(record.file);
             rainfall::closeRainfallNc(record);
         }},
    };
    const ScratchFolder folder;
    for (const Case& wrong : cases) {
        const ChildRun run = runInChild(folder, [&] {
            const GridHeader grid = rainfallGrid(2, 3, 0, 0, 1.0F);
            rainfall::RfNcRecord record;
            rainfall::rf_nc_init("a.nc", record, grid);
            wrong.work(record, cellsOf(grid));
        });
        EXPECT_TRUE(run.ended);
        EXPECT_THAT(run.console, HasSubstr(std::string("\nERROR - With nectdf call ") + wrong.call + "\n"));
    }
}

TEST(RainfallNc, CoordinatesThatCannotBeHadEndTheRun)
{
    if (!canLimitMemory()) {
        GTEST_SKIP() << "a sanitizer has memory of its own";
    }
    const ScratchFolder folder;
    const ChildRun run = runInChild(folder, [] {
        limitMemory(20);
        rainfall::RfNcRecord record;
        rainfall::rf_nc_init("a.nc", record, rainfallGrid(1, 4000000, 0, 0, 1.0F)); // 32 MB of x
    });
    EXPECT_TRUE(run.ended);
    EXPECT_THAT(run.console, HasSubstr("\nERROR ???? - Could not allocate temporary memory for netcdf coordinates.\n"));
}

} // namespace
} // namespace gridforge::test
