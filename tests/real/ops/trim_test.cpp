#include "support/ogr.h"
#include "support/paths.h"
#include "support/plain_region.h"
#include "support/tool_run.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>

namespace gridforge::test {
namespace {

const std::string kFolder = dataFolder() + "/bayou/";

std::string bytesOf(const std::string& name)
{
    std::ifstream in(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

// The smallest and largest of every second number from `first` on.
std::pair<double, double> range(const std::vector<double>& numbers, std::size_t first)
{
    double low = numbers[first];
    double high = low;
    for (std::size_t i = first; i < numbers.size(); i += 2) {
        low = std::min(low, numbers[i]);
        high = std::max(high, numbers[i]);
    }
    return {low, high};
}

class TrimReal : public testing::TestWithParam<const char*> {};

TEST_P(TrimReal, HoldsTheCellsWhoseCornerIsInside)
{
    const std::string extension = GetParam();
    if (!std::ifstream(kFolder + "regions.mif") || !haveOgr()) {
        GTEST_SKIP() << "no data or no OGR";
    }
    ToolRun run(("-b -trim regions" + extension + " dem.asc -decimal9").c_str());
    for (const char* name : {"dem.asc", "regions.mif", "regions.mid", "regions.shp", "regions.dbf", "regions.prj"}) {
        run.give(name, bytesOf(kFolder + name));
    }
    run.start();
    ASSERT_EQ(run.status(), 0);
    // The .asc is read by its numbers alone: six header lines of a word and a number, then the rows from the north.
    std::istringstream dem(bytesOf(kFolder + "dem.asc"));
    std::string word;
    double header[6];
    for (double& value : header) {
        dem >> word >> value;
    }
    const auto columns = static_cast<std::size_t>(header[0]);
    const auto rows = static_cast<std::size_t>(header[1]);
    const double size = static_cast<float>(header[4]);
    std::vector<float> cells(columns * rows);
    for (float& cell : cells) {
        dem >> cell;
    }
    ASSERT_TRUE(dem);

    std::size_t kept = 0;
    const auto regions = ogrFeatures(kFolder + "regions" + extension);
    ASSERT_EQ(regions.size(), 3U);
    for (const OgrFeature& region : regions) {
        SCOPED_TRACE(region.values[0]);
        const WrittenGrid output = run.grid(region.values[0] + "_dem.asc");
        const auto firstColumn = static_cast<std::size_t>(std::lround((output.xll - header[2]) / size));
        const auto firstRow = static_cast<std::size_t>(std::lround((output.yll - header[3]) / size));
        const auto [xmin, xmax] = range(region.numbers, 0);
        const auto [ymin, ymax] = range(region.numbers, 1);
        EXPECT_LE(output.xll, std::max(xmin, header[2]) + 0.01);
        EXPECT_LE(output.yll, std::max(ymin, header[3]) + 0.01);
        EXPECT_GE(output.xll + static_cast<double>(output.ncols) * size,
                  std::min(xmax, header[2] + header[0] * size) - 0.01);
        EXPECT_GE(output.yll + static_cast<double>(output.nrows) * size,
                  std::min(ymax, header[3] + header[1] * size) - 0.01);
        for (std::size_t row = 1; row <= static_cast<std::size_t>(output.nrows); ++row) {
            for (std::size_t column = 1; column <= static_cast<std::size_t>(output.ncols); ++column) {
                const double x = header[2] + static_cast<double>(firstColumn + column) * size;
                const double y = header[3] + static_cast<double>(firstRow + row) * size;
                const Verdict v = verdict(region.numbers, x, y);
                const float cell = cells[(rows - firstRow - row) * columns + firstColumn + column - 1];
                const double written = output.cells[static_cast<std::size_t>(output.nrows) - row][column - 1];
                if (!v.near) {
                    ASSERT_EQ(static_cast<float>(written), v.inside ? cell : -9999.0F) << row << " " << column;
                    kept += v.inside ? 1 : 0;
                }
            }
        }
    }
    EXPECT_GT(kept, 1000U);
}

INSTANTIATE_TEST_SUITE_P(Families, TrimReal, testing::Values(".mif", ".shp"));

} // namespace
} // namespace gridforge::test
