#include "netcdf/chunk_dataset.h"

#include "netcdf/chunk_packer.h"
#include "netcdf/library.h"
#include "support/scratch_folder.h"

#include <algorithm>
#include <array>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <netcdf.h>
#include <string>
#include <vector>

namespace gridforge {
namespace {

using testing::Each;
using testing::ElementsAre;

// A file of the library with a series and a single grid of 3 rows by 5 columns in chunks of 2 by 3.
class ChunkDatasetTest : public testing::Test {
protected:
    ChunkDatasetTest()
    {
        name_ = (folder_.path() / "a.nc").string();
        EXPECT_EQ(nc_create(name_.c_str(), NC_NETCDF4, &file_), NC_NOERR);
        EXPECT_EQ(nc_def_dim(file_, "time", NC_UNLIMITED, dimensions_.data()), NC_NOERR);
        EXPECT_EQ(nc_def_dim(file_, "y", 3, &dimensions_[1]), NC_NOERR);
        EXPECT_EQ(nc_def_dim(file_, "x", 5, &dimensions_[2]), NC_NOERR);
        series_ = define("series", 3, NC_FLOAT);
        single_ = define("single", 2, NC_FLOAT);
    }
    ~ChunkDatasetTest() override { nc_close(file_); }

    int define(const char* name, int count, nc_type type)
    {
        int id = -1;
        EXPECT_EQ(nc_def_var(file_, name, type, count, dimensions_.data() + (3 - count), &id), NC_NOERR);
        return id;
    }
    void chunk(int id, std::vector<std::size_t> sizes) const
    {
        EXPECT_EQ(nc_def_var_chunking(file_, id, NC_CHUNKED, sizes.data()), NC_NOERR);
    }
    void pack(int id, int shuffle, int level) const
    {
        EXPECT_EQ(nc_def_var_deflate(file_, id, shuffle, level > 0 ? 1 : 0, level), NC_NOERR);
    }
    void define() const { EXPECT_EQ(nc_enddef(file_), NC_NOERR); }
    bool opens(const char* name) const { return netcdf::ChunkDataset::open(file_, name).has_value(); }

    // Row 1, 2, 3 of column 1 to 5 as 11 to 35, plus `more`.
    static void writeAll(netcdf::ChunkDataset& dataset, std::optional<std::int32_t> position, float more)
    {
        netcdf::ChunkPacker packer;
        ASSERT_TRUE(packer.take(dataset.form()));
        std::vector<std::byte> room(packer.mostBytes());
        const netcdf::ChunkForm& form = dataset.form();
        for (std::size_t row = 0; row < 3; row += form.rows) {
            for (std::size_t column = 0; column < 5; column += form.columns) {
                packer.start(room);
                for (std::size_t r = row; r < std::min<std::size_t>(row + form.rows, 3); ++r) {
                    std::vector<float> cells;
                    for (std::size_t c = column; c < std::min<std::size_t>(column + form.columns, 5); ++c) {
                        cells.push_back(static_cast<float>(10 * (r + 1) + c + 1) + more);
                    }
                    packer.add(cells);
                }
                EXPECT_EQ(dataset.write(position, row, column, std::span(room).first(packer.finish())), NC_NOERR);
            }
        }
    }

    // What the library reads once the file was closed and opened anew.
    std::vector<float> readAgain(const char* variable, std::size_t count)
    {
        nc_close(file_);
        EXPECT_EQ(nc_open(name_.c_str(), NC_NOWRITE, &file_), NC_NOERR);
        int id = -1;
        EXPECT_EQ(nc_inq_varid(file_, variable, &id), NC_NOERR);
        std::vector<float> cells(count);
        EXPECT_EQ(nc_get_var_float(file_, id, cells.data()), NC_NOERR);
        return cells;
    }

    test::ScratchFolder folder_;
    std::string name_;
    int file_ = -1;
    std::array<int, 3> dimensions_{};
    int series_ = -1;
    int single_ = -1;
};

const auto kSingle = ElementsAre(11, 12, 13, 14, 15, 21, 22, 23, 24, 25, 31, 32, 33, 34, 35);

TEST_F(ChunkDatasetTest, TheDatasetItselfSaysHowItIsPacked)
{
    const float fill = -7;
    chunk(series_, {1, 2, 3});
    pack(series_, 1, 4);
    nc_def_var_fill(file_, series_, NC_FILL, &fill);
    chunk(single_, {3, 2});
    pack(single_, 0, 9);
    define();
    const auto series = netcdf::ChunkDataset::open(file_, "series");
    ASSERT_TRUE(series);
    EXPECT_EQ(series->form().rows, 2U);
    EXPECT_EQ(series->form().columns, 3U);
    EXPECT_TRUE(series->form().shuffled);
    EXPECT_EQ(series->form().deflated, 4);
    EXPECT_EQ(series->form().fill, fill);
    const auto single = netcdf::ChunkDataset::open(file_, "single");
    ASSERT_TRUE(single);
    EXPECT_EQ(single->form().rows, 3U);
    EXPECT_EQ(single->form().columns, 2U);
    EXPECT_FALSE(single->form().shuffled);
    EXPECT_EQ(single->form().deflated, 9);
}

TEST_F(ChunkDatasetTest, TheLibraryReadsTheChunksOfEveryPacking)
{
    for (int shuffle = 0; shuffle < 2; ++shuffle) {
        for (const int level : {0, 1, 6, 9}) {
            const std::string name = "packed" + std::to_string(shuffle) + std::to_string(level);
            nc_redef(file_);
            const int id = define(name.c_str(), 2, NC_FLOAT);
            chunk(id, {2, 3});
            pack(id, shuffle, level);
            define();
            {
                auto dataset = netcdf::ChunkDataset::open(file_, name.c_str());
                ASSERT_TRUE(dataset) << name;
                writeAll(*dataset, std::nullopt, 0);
            }
            std::vector<float> cells(15);
            EXPECT_EQ(nc_get_var_float(file_, id, cells.data()), NC_NOERR); // from the file that is still open
            EXPECT_THAT(cells, kSingle) << name;
        }
    }
    EXPECT_THAT(readAgain("packed16", 15), kSingle);
    EXPECT_THAT(readAgain("packed01", 15), kSingle);
}

TEST_F(ChunkDatasetTest, ASeriesGrowsByGridsBesideWhatTheLibraryWrites)
{
    chunk(series_, {1, 2, 3});
    pack(series_, 1, 1);
    define();
    auto series = netcdf::ChunkDataset::open(file_, "series");
    ASSERT_TRUE(series);
    ASSERT_EQ(series->reach(1), NC_NOERR);
    writeAll(*series, 1, 100);
    ASSERT_EQ(nc_sync(file_), NC_NOERR);
    const std::array<std::size_t, 3> start{1, 0, 0};
    const std::array<std::size_t, 3> count{1, 3, 5};
    ASSERT_EQ(nc_put_vara_float(file_, series_, start.data(), count.data(), std::vector<float>(15, 200).data()),
              NC_NOERR);
    ASSERT_EQ(series->reach(2), NC_NOERR); // it does already
    ASSERT_EQ(series->reach(3), NC_NOERR);
    writeAll(*series, 3, 300);
    series.reset();

    const std::vector<float> cells = readAgain("series", 45);
    EXPECT_EQ(cells[0], 111);
    EXPECT_EQ(cells[14], 135);
    EXPECT_THAT(std::vector(cells.begin() + 15, cells.begin() + 30), Each(200));
    EXPECT_EQ(cells[30], 311);
    EXPECT_EQ(cells[44], 335);
}

TEST_F(ChunkDatasetTest, AChunkThatIsNotThereReadsAsFill)
{
    const float fill = -7;
    chunk(single_, {2, 3});
    pack(single_, 1, 1);
    nc_def_var_fill(file_, single_, NC_FILL, &fill);
    define();
    auto single = netcdf::ChunkDataset::open(file_, "single");
    ASSERT_TRUE(single);
    EXPECT_EQ(single->write(std::nullopt, 1, 0, {}), NC_EHDFERR); // no chunk begins there
    single.reset();
    EXPECT_THAT(readAgain("single", 15), Each(fill));
}

TEST_F(ChunkDatasetTest, WhatIsPackedInOtherWaysIsLeftToTheLibrary)
{
    define("doubles", 2, NC_DOUBLE);
    chunk(define("checked", 2, NC_FLOAT), {2, 3});
    EXPECT_EQ(nc_def_var_fletcher32(file_, 3, NC_FLETCHER32), NC_NOERR);
    chunk(define("pairs", 3, NC_FLOAT), {2, 2, 3});
    chunk(2, {2, 3});
    define("line", 1, NC_FLOAT);
    define();
    EXPECT_FALSE(opens("single")); // not in chunks
    EXPECT_FALSE(opens("doubles"));
    EXPECT_FALSE(opens("checked"));
    EXPECT_FALSE(opens("pairs"));
    EXPECT_FALSE(opens("line"));
    EXPECT_FALSE(opens("nothing"));
    EXPECT_TRUE(opens("series"));
}

TEST_F(ChunkDatasetTest, WhatTheLibraryDoesNotKnowAsAFileIsNone)
{
    define();
    EXPECT_TRUE(opens("series"));
    EXPECT_FALSE(netcdf::ChunkDataset::open(-1, "series"));
}

// All datasets that are open in HDF5.
std::vector<hid_t> openDatasets()
{
    constexpr auto kAll = static_cast<hid_t>(H5F_OBJ_ALL);
    std::vector<hid_t> ids(1000);
    const ssize_t count = netcdf::library().H5Fget_obj_ids(kAll, H5F_OBJ_DATASET, ids.size(), ids.data());
    ids.resize(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    return ids;
}

TEST_F(ChunkDatasetTest, OneThatIsNoLongerOpenIsRefused)
{
    chunk(series_, {1, 2, 3});
    define();
    const std::vector<hid_t> before = openDatasets();
    auto series = netcdf::ChunkDataset::open(file_, "series");
    ASSERT_TRUE(series);
    ASSERT_EQ(series->reach(1), NC_NOERR);
    for (const hid_t id : openDatasets()) {
        if (std::ranges::find(before, id) == before.end()) {
            netcdf::library().H5Dclose(id);
        }
    }
    EXPECT_EQ(series->reach(1), NC_EHDFERR);
    EXPECT_EQ(series->reach(2), NC_EHDFERR);
    EXPECT_EQ(series->write(1, 0, 0, std::vector<std::byte>(24)), NC_EHDFERR);
}

TEST(ChunkDataset, AClassicFileIsNoneWhereHdf5HasNothingOpen)
{
    const test::ScratchFolder folder;
    int classic = -1;
    ASSERT_EQ(nc_create((folder.path() / "classic.nc").string().c_str(), NC_CLOBBER, &classic), NC_NOERR);
    EXPECT_FALSE(netcdf::ChunkDataset::open(classic, "series"));
    nc_close(classic);
}

TEST_F(ChunkDatasetTest, AClassicFileIsNoneOfHdf5)
{
    const std::string name = (folder_.path() / "classic.nc").string();
    int classic = -1;
    ASSERT_EQ(nc_create(name.c_str(), NC_CLOBBER, &classic), NC_NOERR);
    EXPECT_FALSE(netcdf::ChunkDataset::open(classic, "series"));
    nc_close(classic);
}

} // namespace
} // namespace gridforge
